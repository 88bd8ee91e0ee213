#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/visca/ConsolePrints.h"
#include "drivers/visca/SonyEHController.h"

/// The EH4300 zoom camera block, module 11.
class SENSORCONTROL_API SONYEH4300SenseController
    : public sensorcontrol::SonyEHController<ITrellisZoomSensorController> {
public:
    static constexpr int ModuleIds[] = {11};
    static constexpr sensorcontrol::ControllerTraits Traits{.filterOffAtFactory = true};

    SONYEH4300SenseController();
    ~SONYEH4300SenseController() override;

    static const sensorcontrol::ModelDescription& model();
};

namespace EH4300_TOOL {

using sensorcontrol::visca::printArray;
using sensorcontrol::visca::printIntArray;

} // namespace EH4300_TOOL
