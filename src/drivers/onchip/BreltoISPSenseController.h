#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/TableController.h"

#include <atomic>
#include <cstdint>

/// The on-chip image pipeline, modules 4, 5 and 6: no camera block and no serial port, every parameter goes to the
/// imaging library, which keeps the values and answers reads. The modules differ in their module keys only.
class SENSORCONTROL_API BreltoISPSenseController final : public sensorcontrol::TableController<ISensorController> {
public:
    static constexpr int ModuleIds[] = {4, 5, 6};
    static constexpr sensorcontrol::ControllerTraits Traits{.edgesByTable = false};

    explicit BreltoISPSenseController(int moduleId);
    ~BreltoISPSenseController() override;

    static const sensorcontrol::ModelDescription& model();

    /// Always 0: the mirror is not read back.
    int getMirrorValue(int& value) override;
    /// Blocks for three seconds.
    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    /// By the pipeline's gain: night from the day-to-night threshold up, day from the night-to-day threshold down, in
    /// between `status` as it was.
    int getDNStatusFromSensor(int& status) override;
    int turnPictureToDay() override;
    int turnPictureToNight() override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;
    int initFactorySetting() override;
    /// 100 is no amplification.
    int getCurrentGain(int& gain) override;
    /// The HDR level; from the background thread as from a host call.
    int updateHDRMode(int level) override;

    /// 0 to 2 a level, 3 level 1 by day and 2 by night; 3 fails as long as neither is decided. Waits for a day/night
    /// switch under way.
    int setHDRMode(int mode);
    /// What the module can do, not what is in force.
    int getHDRMode(int& value);
    /// 0 off, 1 the stored strength, 2 automatic; other values do nothing and give 1.
    int setNRMode(int mode);
    int setNRManual(int strength);
    int setNRControl(int control);
    int getNRControl(int& control);
    /// 0 50 Hz, 1 60 Hz.
    int setPowerFrequency(int frequency);
    int getPowerFrequency(int& frequency);
    /// 1 if the module has an automatic iris.
    int getAutoIris(int& mode);

    /// Puts a value into the bits firstBit to lastBit of a word, in either order, both included. Bits of the value that
    /// the field has no room for are set above it. 0 for bits outside 0 to 31.
    int modifyAppointValue(int& word, int value, int firstBit, int lastBit);
    /// Cuts a field out of a word, without sign.
    int getAppointValue(int word, int& value, int firstBit, int lastBit);

private:
    struct Field;
    struct Table;

    int setField(const Field& field, int value);
    int getField(const Field& field, int& value);

    int m_nHDR = 0; ///< ability, from the module keys
    // Images of the library's words. There is no port, but the same one exchange at a time.
    std::uint32_t m_nWBCtrl SENSOR_GUARDED_BY(m_UartMutex) = 0;
    std::uint32_t m_nHDRCtrl SENSOR_GUARDED_BY(m_UartMutex) = 0;
    std::uint32_t m_nNR SENSOR_GUARDED_BY(m_UartMutex) = 0;
    int m_nAutoIris = 0; ///< from the module keys
    std::atomic<int> m_nPowerFrequency{0};
};
