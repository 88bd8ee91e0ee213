#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/ITrellisZoomSensorController.h"
#include "drivers/visca/ConsolePrints.h"
#include "drivers/visca/ViscaController.h"

/// The CMD8100 zoom camera block, module 16.
class SENSORCONTROL_API CMD8100SenseController final
    : public sensorcontrol::ViscaLensController<ITrellisZoomSensorController> {
public:
    static constexpr int ModuleIds[] = {16};
    static constexpr sensorcontrol::ControllerTraits Traits{.filterOffAtFactory = true};

    CMD8100SenseController();
    ~CMD8100SenseController() override;

    static const sensorcontrol::ModelDescription& model();

    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int NotifySensorInitComplate() override;
    /// As the base's modes, but 0 too leaves the choice to the block.
    int setDayNightMode(int mode) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;

    /// 0 automatic, 1 shutter priority, 2 iris priority, 3 the block's mode A0. Sends the shutter or iris that belongs
    /// to the new mode again.
    int setExposalMode(int mode);
    /// 0 off, 1 left-right, 2 up-down, 3 both.
    int setMirror(int mirror);

private:
    int m_nGeneration = 3; ///< of the block; selects the mirror commands
};

namespace CMD8100_TOOL {

using sensorcontrol::visca::printArray;
using sensorcontrol::visca::printIntArray;

} // namespace CMD8100_TOOL
