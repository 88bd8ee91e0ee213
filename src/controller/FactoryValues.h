#pragma once

/// Factory values of the parameters that the base class serves, for its getters and for the models' tables.
namespace sensorcontrol::factory {

inline constexpr int LightPower = 50;
inline constexpr int PowerMode = 0;
inline constexpr int DayNightMode = 0;
inline constexpr int DNSwitchDelay = 5;
inline constexpr int DTNTime_H = 18;
inline constexpr int DTNTime_M = 0;
inline constexpr int NTDTime_H = 6;
inline constexpr int NTDTime_M = 0;
inline constexpr int EnableParam = 1;
inline constexpr int ParamStartTime_H = 0;
inline constexpr int ParamStartTime_M = 0;
inline constexpr int ParamEndTime_H = 24;
inline constexpr int ParamEndTime_M = 0;

} // namespace sensorcontrol::factory
