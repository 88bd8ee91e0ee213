#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/visca/CmdController.h"
#include "drivers/visca/ConsolePrints.h"

#include <atomic>

/// The first CMD8100 camera block, module 24: no mask unit, coarser settings.
class SENSORCONTROL_API CMD8100_OldSenseController : public sensorcontrol::CmdController<ISensorController> {
public:
    static constexpr int ModuleIds[] = {24};
    static constexpr sensorcontrol::ControllerTraits Traits{.filterOffAtFactory = true};

    CMD8100_OldSenseController();
    ~CMD8100_OldSenseController() override;

    static const sensorcontrol::ModelDescription& model();

    /// Restarts the block also when an earlier change has not led to a restart yet.
    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;

private:
    int setVideoSystem(int videoSystem);

    std::atomic<int> m_nNeedRestart{0};
};

namespace CMD8100_Old_TOOL {

using sensorcontrol::visca::printArray;
using sensorcontrol::visca::printIntArray;

} // namespace CMD8100_Old_TOOL
