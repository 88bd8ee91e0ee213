#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/visca/CmdController.h"
#include "drivers/visca/ConsolePrints.h"

/// The CMD8100 zoom camera block, module 16.
class SENSORCONTROL_API CMD8100SenseController : public sensorcontrol::CmdController<ITrellisZoomSensorController> {
public:
    static constexpr int ModuleIds[] = {16};
    static constexpr sensorcontrol::ControllerTraits Traits{.filterOffAtFactory = true};

    CMD8100SenseController();
    ~CMD8100SenseController() override;

    static const sensorcontrol::ModelDescription& model();

    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;
};

namespace CMD8100_TOOL {

using sensorcontrol::visca::printArray;
using sensorcontrol::visca::printIntArray;

} // namespace CMD8100_TOOL
