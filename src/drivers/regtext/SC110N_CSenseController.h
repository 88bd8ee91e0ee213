#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/ITrellisZoomSensorController.h"
#include "drivers/regtext/HitachController.h"

/// The SC110N_C zoom block, module 23, with its mask unit on the same line.
class SENSORCONTROL_API SC110N_CSenseController : public sensorcontrol::HitachController<ITrellisZoomSensorController> {
public:
    static constexpr int ModuleIds[] = {23};
    static constexpr sensorcontrol::ControllerTraits Traits{};

    SC110N_CSenseController();
    ~SC110N_CSenseController() override;

    static const sensorcontrol::ModelDescription& model();

    /// The resolution is not looked at. Blocks for 20 seconds if the system changes.
    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    /// Sends any bytes and wants them back, at most three times. 1 or 0.
    int setParameterValue(const char* command, int length) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;
    /// A thirty-second of what the block tells, without the fraction.
    int getCurrentGain(int& gain) override;

    /// 0 with an infrared board, else 2, which from then on counts as the mode that was written last.
    int getCameraMode(int& mode);
};
