#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/visca/ConsolePrints.h"
#include "drivers/visca/SonyController.h"

#include <atomic>

/// The CH3310 camera block, module 18: shutter, iris, gain and exposure mode are read from the block.
class SENSORCONTROL_API SONYCH3310SenseController
    : public sensorcontrol::SonyController<sensorcontrol::ViscaController<ISensorController>> {
public:
    static constexpr int ModuleIds[] = {18};
    static constexpr sensorcontrol::ControllerTraits Traits{};

    SONYCH3310SenseController();
    ~SONYCH3310SenseController() override;

    static const sensorcontrol::ModelDescription& model();

    int getDNStatusFromSensor(int& status) override;
    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;

    // As the block has it now.
    int getShutter(int& value);
    int getIris(int& value);
    int getGain(int& value);
    /// 0 until the start is over.
    int getExposalMode(int& value);

protected:
    std::atomic<int> m_nNeedRestart{0}; ///< inter-sync or the video system was written

private:
    int askLevel(int code, int& value);
    template <std::size_t Length>
    int inquireTwice(const sensorcontrol::FramePattern& frame, char (&reply)[Length], const char* notice,
                     const char* failure);
};

namespace CH3310_TOOL {

using sensorcontrol::visca::printArray;
using sensorcontrol::visca::printIntArray;

} // namespace CH3310_TOOL
