#pragma once

#include "controller/FactoryValues.h"
#include "controller/ISensorController.h"
#include "controller/SchemeParameters.h"

#include <array>

namespace sensorcontrol {

/// A parameter that the base class serves for every module.
struct BaseParameter {
    int id;
    const char* name; ///< "EnableParam" of setEnableParam
    int factory;
    int (ISensorController::*set)(int);
    int (ISensorController::*get)(int&);
};

inline constexpr auto BaseParameters = std::to_array<BaseParameter>({
    {scheme::EnableId, "EnableParam", factory::EnableParam, &ISensorController::setEnableParam,
     &ISensorController::getEnableParam},
    {scheme::StartHourId, "ParamStartTime_H", factory::ParamStartTime_H, &ISensorController::setParamStartTime_H,
     &ISensorController::getParamStartTime_H},
    {scheme::StartMinuteId, "ParamStartTime_M", factory::ParamStartTime_M, &ISensorController::setParamStartTime_M,
     &ISensorController::getParamStartTime_M},
    {scheme::EndHourId, "ParamEndTime_H", factory::ParamEndTime_H, &ISensorController::setParamEndTime_H,
     &ISensorController::getParamEndTime_H},
    {scheme::EndMinuteId, "ParamEndTime_M", factory::ParamEndTime_M, &ISensorController::setParamEndTime_M,
     &ISensorController::getParamEndTime_M},
});

/// Null for an id that the base class does not serve.
constexpr const BaseParameter* findBaseParameter(int id) {
    return scheme::isSchemeId(id) ? &BaseParameters[static_cast<std::size_t>(id - scheme::FirstId)] : nullptr;
}

} // namespace sensorcontrol
