#pragma once

#include "drivers/RowMakers.h"

/// Rows that models of the VISCA family share under other ids.
namespace sensorcontrol::visca {

// The four times have failure texts without a value.
constexpr ParameterRow hourOfNight(int id) {
    return saying(hourOfNightRow(id), "setDTNTime_H failed", "getDTNTime_H failed");
}
constexpr ParameterRow minuteOfNight(int id) {
    return saying(minuteOfNightRow(id), "setDTNTime_M failed", "getDTNTime_M failed");
}
constexpr ParameterRow hourOfDay(int id) {
    return saying(hourOfDayRow(id), "setNTDTime_H failed", "getNTDTime_H failed");
}
constexpr ParameterRow minuteOfDay(int id) {
    return saying(minuteOfDayRow(id), "setNTDTime_M failed", "getNTDTime_M failed");
}

/// A command of the lens or the auto focus.
constexpr ParameterRow commandRow(int id, const char* name, SetBy operation) {
    return {.id = id, .name = name, .kind = IdManager::SetOnly, .set = operation};
}

} // namespace sensorcontrol::visca
