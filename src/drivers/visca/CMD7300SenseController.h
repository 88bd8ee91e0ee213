#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/visca/CmdController.h"
#include "drivers/visca/ConsolePrints.h"

/// The CMD7300 camera block, module 21: a CMD8100 without mask unit, with a gain that can be read.
class SENSORCONTROL_API CMD7300SenseController : public sensorcontrol::CmdController<ISensorController> {
public:
    static constexpr int ModuleIds[] = {21};
    static constexpr sensorcontrol::ControllerTraits Traits{.edgesOffWithFilter = true};

    CMD7300SenseController();
    ~CMD7300SenseController() override;

    static const sensorcontrol::ModelDescription& model();

    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;
    /// Always 1; 0 as gain, after three seconds, from a block that does not answer.
    int getCurrentGain(int& gain) override;
};

namespace CMD7300_TOOL {

using sensorcontrol::visca::printArray;
using sensorcontrol::visca::printIntArray;

} // namespace CMD7300_TOOL
