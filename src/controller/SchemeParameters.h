#pragma once

/// The parameters that every module has: the daily span of the scheme in force and whether it takes part in the choice
/// by the clock. The base class serves them; minutes count in tens. The catalogue lists them with names and factory
/// values.
namespace sensorcontrol::scheme {

enum ParameterId { EnableId = 500, StartHourId = 501, StartMinuteId = 502, EndHourId = 503, EndMinuteId = 504 };

inline constexpr int FirstId = EnableId;
inline constexpr int LastId = EndMinuteId;

constexpr bool isSchemeId(int id) { return id >= FirstId && id <= LastId; }

} // namespace sensorcontrol::scheme
