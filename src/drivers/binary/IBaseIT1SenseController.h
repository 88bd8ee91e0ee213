#pragma once

#include "drivers/ShadowRegister.h"
#include "drivers/TableController.h"

#include <array>
#include <atomic>

namespace sensorcontrol {
class FramePattern;
struct SerialLine;
namespace it1 {
struct Shadows;
}
} // namespace sensorcontrol

/// What the IT1 camera blocks share. A thread of its own, "DayNightSwitchThread", takes the place of the base class's
/// day/night engine; the stored parameters start it.
///
/// An operation that talks to the block blocks for an exchange, and for one of the thread's that is under way.
class SENSORCONTROL_API IBaseIT1SenseController : public sensorcontrol::TableController<ISensorController> {
public:
    ~IBaseIT1SenseController() override;

    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;
    int initFactorySetting() override;

    // The exchange. A command's last byte is its sum, which these put in.

    /// The reply's length, or -1 for a short send, -2 for a reply that did not come, -3 for a wrong sum, -4 for a reply
    /// beyond the capacity, which is left in the port.
    int baseSendCommand(char* command, int commandLength, char* result, int resultCapacity);
    /// The same, once more if it fails.
    int sendCommand(char* command, int commandLength, char* result, int resultCapacity);
    /// A read of one or two bytes. What is left in the port after a failure is thrown away. 1 or 0.
    int getParameterValue(char* command, int length, int& value);
    int setParameterValue(char* command, int length);
    /// Throws away what the port holds. Blocks until it was silent for 0.6 seconds.
    void recvLeftData();

    // Bytes and bits of a register, bits counted from 0.
    static void computeCheckSum(char* buffer, int length);
    static void getHigh8Bits(int value, int& high);
    static void getLow8Bits(int value, int& low);
    static int modifyLowFourBits(int byte, int value);
    static int modifyAppointedBit(int byte, int position, int value, int bits);
    static int getAppointedBit(int byte, int position, int bits);
    static double getLog2Value(double x);

    // The first four fill the shadows or the factory chroma.
    int getSharpness(int& value);
    int getMirror(int& value);
    int getChroma(int& value);
    int getLowShutterSetup(int& value);
    int getWhiteBalance(int& value);
    /// 50 is the factory chroma; any value.
    int setChroma(int value);
    // Of the automatic mode, which the rows test: 1 to 8 and 2 to 13, refused where one leaves no room for the other.
    int setMinShutterValue(int value);
    int setMaxShutterValue(int value);
    /// 0 automatic, other values fixed: sends the stored shutters of the mode.
    int setShutterMode(int mode);
    // Without a look at the mode and at the other shutter.
    int setLowShutterSetup(int value);
    int base_setMinShutter(int value);
    int base_setMaxShutter(int value);
    int base_setFixedShutter(int value);
    int base_getMinShutter(int& value);
    int base_getMaxShutter(int& value);
    int base_getFixedShutter(int& value);
    int base_getShutterMode(int& mode);

    // Day and night.

    /// 0 automatic, 1 day, 2 night. Waits for a pass of the thread that is under way, as setInfrared does.
    int setDayNightSetup(int setup);
    /// 0 to 2; only remembered before the end of the start, and without effect unless the setup is automatic.
    int setInfrared(int mode);
    /// The thresholds of the metered level, 0 to 255; day to night lies above night to day.
    int setDayToNightTransition(int value);
    int setNightToDayTransition(int value);
    int setTransitionBack();
    /// The block's own thresholds.
    int base_setDayToNightTransition(int value);
    int base_setNightToDayTransition(int value);
    /// Day or night by the metered level; between the thresholds as before.
    int getDayNightValue(int& status);
    /// The picture alone: night when it is open.
    int openDayNightMode();
    int closeDayNightMode();
    /// The picture, and the filter and lights that the board leaves to the driver.
    int enterNightMode();
    int exitNightMode();
    int startSwitchThread();
    int stopSwitchThread();
    /// One pass of the thread; ends with its sleep. Always 0, as the two that it chooses from.
    int switchThreadBody();
    int autoThreadFunc();
    int externalTriggerThreadFunc();

protected:
    IBaseIT1SenseController(int moduleType, const sensorcontrol::ModelDescription& model);

    /// Ends both threads, as a concrete destructor does before anything goes. Safe to repeat.
    SENSORCONTROL_LOCAL void stopThreads();

    std::atomic<int> m_nDayNightSetup{0};

private:
    friend struct sensorcontrol::it1::Shadows;

    // The base class's frames are those of other blocks: none of them is for this one's port.
    using ISensorController::getParameterValue;
    using ISensorController::setParameterValue;

    SENSORCONTROL_LOCAL sensorcontrol::SerialLine line(std::span<char> reply = {});
    SENSORCONTROL_LOCAL int send(const sensorcontrol::FramePattern& frame, int value = 0);
    SENSORCONTROL_LOCAL int sendUnanswered(const sensorcontrol::FramePattern& frame);
    SENSORCONTROL_LOCAL int ask(const sensorcontrol::FramePattern& frame, int& value);
    SENSORCONTROL_LOCAL int refill(sensorcontrol::ShadowRegister& shadow, int page, int address, int& word);

    SENSORCONTROL_LOCAL void readExternalLevelKey(sensorcontrol::ModuleKeys& keys);
    SENSORCONTROL_LOCAL int wakeBlock();

    SENSORCONTROL_LOCAL int changeModeBit(int bit, int status, const char* failure);
    SENSORCONTROL_LOCAL const char* turnByMetering();
    SENSORCONTROL_LOCAL int turnTo(int status);
    SENSORCONTROL_LOCAL int followLightSensor();
    SENSORCONTROL_LOCAL int followExternalLevel();
    SENSORCONTROL_LOCAL int writeExternalLevel(int level);

    int m_nRS232Handle = -1;
    BRMutex m_ExchangeMutex; ///< one exchange on the port
    std::atomic<int> m_nLastLevel{-1};
    bool m_bExternalLevel = false; ///< there is an external level line
    int m_nExternalLevelGPIOGroup = 0;
    int m_nExternalLevelGPIOPin = 0;
    int m_nDayLevel = 1;
    sensorcontrol::ShadowRegister m_nRegister0A01; ///< bit 0 the low shutter, bit 1 the inverted iris drive mode
    sensorcontrol::ShadowRegister m_nSharpness1;   ///< register 14 02
    sensorcontrol::ShadowRegister m_nSharpness2;   ///< register 14 03
    sensorcontrol::ShadowRegister m_nRegister0101; ///< bit 6 the day/night mode
    sensorcontrol::ShadowRegister m_n1500Value;    ///< bits 0 and 1 the mirror
    std::array<std::atomic<int>, 8> m_nChroma{};   ///< of the factory: RY1, BY1, to RY4, BY4
    std::atomic<int> m_nDayToNight{0};
    std::atomic<int> m_nNightToDay{0};
    GThread m_DNSwitchThread;
};
