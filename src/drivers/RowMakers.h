#pragma once

#include "controller/FactoryValues.h"
#include "drivers/ParameterRow.h"

/// Rows of what the base class serves, which models have under ids of their own.
namespace sensorcontrol {

constexpr ParameterRow powerModeRow(int id) {
    return {.id = id,
            .name = "PowerMode",
            .accepts = range(0, 1),
            .set = call<&ISensorController::setPowerMode>,
            .factory = factory::PowerMode};
}

constexpr ParameterRow lightRow(int id, const char* name, SetBy set) {
    return {.id = id, .name = name, .accepts = range(0, 100), .set = set, .factory = factory::LightPower};
}
constexpr ParameterRow nearLightRow(int id) {
    return lightRow(id, "NearLight", call<&ISensorController::setNearLight>);
}
constexpr ParameterRow middleLightRow(int id) {
    return lightRow(id, "MiddleLight", call<&ISensorController::setMiddleLight>);
}
constexpr ParameterRow farLightRow(int id) { return lightRow(id, "FarLight", call<&ISensorController::setFarLight>); }

constexpr ParameterRow hourOfNightRow(int id) {
    return {
        .id = id, .name = "DTNTime_H", .set = call<&ISensorController::setDTNTime_H>, .factory = factory::DTNTime_H};
}
constexpr ParameterRow minuteOfNightRow(int id) {
    return {
        .id = id, .name = "DTNTime_M", .set = call<&ISensorController::setDTNTime_M>, .factory = factory::DTNTime_M};
}
constexpr ParameterRow hourOfDayRow(int id) {
    return {
        .id = id, .name = "NTDTime_H", .set = call<&ISensorController::setNTDTime_H>, .factory = factory::NTDTime_H};
}
constexpr ParameterRow minuteOfDayRow(int id) {
    return {
        .id = id, .name = "NTDTime_M", .set = call<&ISensorController::setNTDTime_M>, .factory = factory::NTDTime_M};
}

constexpr ParameterRow switchDelayRow(int id) {
    return {.id = id,
            .name = "DNSwitchDelay",
            .set = call<&ISensorController::setDNSwitchDelay>,
            .factory = factory::DNSwitchDelay};
}

/// The temporal noise filter's mode.
constexpr ParameterRow filterModeRow(int id) {
    return {.id = id,
            .name = "TNFMode",
            .set = call<&ISensorController::setTNFMode>,
            .get = ask<&ISensorController::getTNFMode>};
}

/// A row with other texts for its failures.
constexpr ParameterRow saying(ParameterRow row, const Message& setFailure, const Message& getFailure = {}) {
    row.setFailure = setFailure;
    row.getFailure = getFailure;
    return row;
}

/// A row with a wait of its own, in microseconds.
constexpr ParameterRow waiting(ParameterRow row, int microseconds) {
    row.wait = microseconds;
    return row;
}

} // namespace sensorcontrol
