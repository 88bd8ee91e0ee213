#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/regtext/RegisterTextController.h"

#include <atomic>

/// The CMD7200 camera block, module 22. It decides day and night by itself.
class SENSORCONTROL_API CMD7200SenseController : public sensorcontrol::RegisterTextController<ISensorController> {
public:
    static constexpr int ModuleIds[] = {22};
    static constexpr sensorcontrol::ControllerTraits Traits{};

    CMD7200SenseController();
    ~CMD7200SenseController() override;

    static const sensorcontrol::ModelDescription& model();

    /// The resolution is not looked at. Blocks for five seconds if the system changes.
    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;

    /// 0 left to the block, 1 fixed day, 2 fixed night.
    int setDNMode(int mode);
    /// 0 automatic, 1 fixed: sends the stored fixed shutter again.
    int setShutterMode(int mode);

private:
    SENSORCONTROL_LOCAL int writeExposure(int isDNFixed, int shutterMode);

    // What the exposure register holds, as far as it was taken.
    std::atomic<int> m_nDNFixed{0};
    std::atomic<int> m_nShutterMode{0};
};
