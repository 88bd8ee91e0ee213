#pragma once

#include "drivers/ITrellisZoomSensorController.h"
#include "drivers/visca/ViscaController.h"

#include <atomic>

namespace sensorcontrol {

struct SonyHabits;

/// What the Sony blocks share, on top of the family with or without lens keys. Settings that belong to an exposure,
/// white-balance or focus mode are sent in that mode alone, and sent again when it is chosen.
template <class Family>
class SENSORCONTROL_API SonyController : public Family {
public:
    /// 0 automatic, 1 manual, 2 shutter priority, 3 iris priority, 4 brightness. Sends the settings of the mode again;
    /// the first failure ends it and leaves the block in the new mode.
    int setExposalMode(int mode);
    /// 1 left to the block, 3 day, 4 night, 5 by clock; other values only restart the delay.
    int setDayNightMode(int mode) override;
    /// Farther than 1 m where an infrared board lights the scene.
    int getFocusNearLimit(int& value);
    /// 0 to 100, as a brightness step that is kept as a parameter of its own.
    int setBrightRemoteSensor2(int value);
    /// 0 to 100, as an exposure compensation that is kept as a parameter of its own.
    int setBrightness(int value);

    int NotifySensorInitComplate() override;
    int UpdateParameters(std::string& parameters) override;
    int getCurrentGain(int& gain) override;

protected:
    SonyController(int moduleType, const ModelDescription& model, const ViscaHabits& habits, const SonyHabits& sony);

    /// Writes the video system; 1 and nothing is sent for one that the block has not.
    int setVideoSystem(int videoSystem);
    /// Restarts the block: wants its acknowledgement, then blocks for 20 seconds.
    SENSORCONTROL_LOCAL int restart();

    std::atomic<int> m_nLastExposalMode{0}; ///< written last with success

private:
    const SonyHabits& m_Sony;
};

} // namespace sensorcontrol
