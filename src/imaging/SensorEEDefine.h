#pragma once

#include "host/Export.h"

#include <array>
#include <cstdint>

/// The constants of edge enhancement that others share.
namespace SensorEEDefine {

/// The curve that every edge-enhancement record points to: an odd function of the edge signal with its negative half in
/// the upper half of the table, as 9-bit two's complement numbers. Nothing here reads or changes it.
extern SENSORCONTROL_API std::array<std::int32_t, 1024> SensorEdgeEnhanceTbl;

} // namespace SensorEEDefine
