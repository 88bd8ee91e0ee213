#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/regtext/HitachController.h"

/// The Hitach camera blocks, module 7. Their third generation restarts slower and stores its settings.
///
/// Where neither generation nor an infrared board forbids it, a thread of its own, "threadBody", writes the camera mode
/// again once a minute. The members are shared by that thread, "getDN" and the host's.
class SENSORCONTROL_API HitachSenseController : public sensorcontrol::HitachController<ISensorController> {
public:
    static constexpr int ModuleIds[] = {7};
    static constexpr sensorcontrol::ControllerTraits Traits{};

    HitachSenseController();
    ~HitachSenseController() override;

    static const sensorcontrol::ModelDescription& model();

    /// PAL at 1280x720, NTSC at 1280x960 and 1280x720; system 2 is left alone. Blocks for 10 seconds if the system
    /// changes, for 20 in the third generation.
    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    /// Only the third generation is told to store its settings.
    int NotifySensorInitComplate() override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;

    /// Gives 0, which from then on counts as the mode that was written last.
    int getCameraMode(int& mode);

    /// One pass of the "threadBody" thread; ends with its minute of sleep. Always 0.
    int threadBody();

private:
    BRMutex m_LineMutex;
    std::atomic<int> m_bThirdGeneration{0};
    SafePointer<GThread> m_pCameraModeThread;
};
