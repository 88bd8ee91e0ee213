#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/regtext/RegisterTextController.h"

#include <atomic>

/// Camera blocks, module 14, that speak the Hitach blocks' text with a register map of their own. Their firmware
/// version decides how they tell day from night.
class SENSORCONTROL_API HitachCompatSenseController : public sensorcontrol::RegisterTextController<ISensorController> {
public:
    static constexpr int ModuleIds[] = {14};
    static constexpr sensorcontrol::ControllerTraits Traits{};

    HitachCompatSenseController();
    ~HitachCompatSenseController() override;

    static const sensorcontrol::ModelDescription& model();

    /// PAL at 1280x720, NTSC at 1280x960 and 1280x720. Blocks for three seconds if the system changes.
    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;

    /// 0 with an infrared board, else 2.
    int getCameraMode(int& mode);

    int getDNbody() override;

private:
    BRMutex m_LineMutex;
    std::atomic<int> m_nSensorVersion{0};
};
