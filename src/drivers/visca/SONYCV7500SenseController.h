#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/visca/ConsolePrints.h"
#include "drivers/visca/SonyController.h"

#include <atomic>

/// The CV7500 camera block, module 19. Its point-light focus is a set of block registers, and comes into force with a
/// restart of the whole device.
class SENSORCONTROL_API SONYCV7500SenseController
    : public sensorcontrol::SonyController<sensorcontrol::ViscaLensController<ISensorController>> {
public:
    static constexpr int ModuleIds[] = {19};
    static constexpr sensorcontrol::ControllerTraits Traits{.filterOffAtFactory = true};

    SONYCV7500SenseController();
    ~SONYCV7500SenseController() override;

    static const sensorcontrol::ModelDescription& model();

    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;

    /// Write the registers, read them back and restart the device. 1 at once while a change is under way, and for ever
    /// after one that led to the restart.
    int OpenPointLightFocus();
    int ClosePointLightFocus();
    /// What the registers say: 1 open, 0 closed; fails on anything else and leaves `mode` as it was.
    int checkPointLightFocusMode(int& mode);

protected:
    std::atomic<bool> m_bPointLightBusy{false};

private:
    struct PointLightChange;

    int changePointLight(const PointLightChange& change);
};

namespace CV7500_TOOL {

using sensorcontrol::visca::printArray;
using sensorcontrol::visca::printIntArray;

} // namespace CV7500_TOOL
