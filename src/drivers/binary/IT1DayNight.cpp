// Day and night of the IT1 blocks. The thread judges by the block's metered level, or follows a light sensor or an
// external board, and runs while the setup is automatic.
//
// The operations that stop and start it hold m_DNMutex: two of them at a time must not leave it running for a fixed
// setup. The thread itself never takes that lock, nor m_ParamMutex, so that waiting for it under both ends.

#include "controller/DriverServices.h"
#include "drivers/binary/IBaseIT1SenseController.h"
#include "drivers/binary/IT1Model.h"
#include "drivers/binary/Log2.h"
#include "drivers/binary/RegisterFrames.h"
#include "host/BreltoTime.h"

#include <bit>
#include <climits>
#include <cstdio>

using namespace sensorcontrol;
using binary::reading;
using binary::writing;

namespace {

constexpr int HighestThreshold = 255;
constexpr BreltoTime FailureWait(1, 0);

constexpr int PassSeconds = 1;
constexpr int FailedPassSeconds = 3;

constexpr int ModeBit = 6; ///< of register 01 01: set by night

/// The metered level in steps of a 32nd of a doubling above 128, cut towards zero.
constexpr int levelIndex(int level) {
    if (level <= 0)
        return INT_MIN;
    const std::uint32_t bits = static_cast<std::uint32_t>(level);
    const int index = binary::scaledLog2(bits, 5) - 7 * 32;
    return index < 0 && !std::has_single_bit(bits) ? index + 1 : index;
}

} // namespace

int IBaseIT1SenseController::setDayNightSetup(int setup) {
    const sensorhost::ScopedLock lock(m_DNMutex);
    m_nDayNightSetup = setup;
    switch (setup) {
    case 0:
        stopSwitchThread();
        if (!openDayNightMode())
            return 0;
        setTransitionBack(); // without stored thresholds those in force stay
        return startSwitchThread();
    case 1:
        stopSwitchThread();
        return exitNightMode();
    case 2:
        stopSwitchThread();
        return enterNightMode();
    default:
        return 0;
    }
}

int IBaseIT1SenseController::setInfrared(int mode) {
    if (mode < 0 || mode > 2) {
        ErrorPrintf("setInfrared out of range,p_nInfrared=%d", mode);
        return 0;
    }
    const sensorhost::ScopedLock lock(m_DNMutex);
    m_nInfraredMode = mode;
    if (!m_bisInited)
        return 1;
    if (m_nDayNightSetup != 0)
        return 0;
    if (mode == 2) {
        stopSwitchThread();
        return enterNightMode();
    }
    if (mode == 1 && !m_pGPIO->setValue(m_nInfraredGPIOGroup, m_nInfraredGPIOPin, m_nInfraredGPIOLevel)) {
        ErrorPrintf("focus open infrared light failed");
        DriverServices::wait(*this, FailureWait);
        return 0;
    }
    return startSwitchThread();
}

int IBaseIT1SenseController::setDayToNightTransition(int value) {
    if (value < 0 || value > HighestThreshold) {
        ErrorPrintf("p_nDayToNightTransition(%d) is out of range", value);
        return 0;
    }
    int nightToDay = m_nNightToDay;
    getParameter(it1::NightToDayId, nightToDay);
    if (value <= nightToDay) {
        std::printf("Error : NTD(%d) is more than DTN(%d)\n", nightToDay, value);
        return 0;
    }
    m_nDayToNight = value;
    return 1;
}

int IBaseIT1SenseController::setNightToDayTransition(int value) {
    if (value < 0 || value > HighestThreshold) {
        ErrorPrintf("p_nNightToDayTransition(%d) is out of range", value);
        return 0;
    }
    int dayToNight = m_nDayToNight;
    getParameter(it1::DayToNightId, dayToNight);
    if (value >= dayToNight) {
        std::printf("Error : DTN(%d) is less than NTD(%d) \n", dayToNight, value);
        return 0;
    }
    m_nNightToDay = value;
    return 1;
}

int IBaseIT1SenseController::setTransitionBack() {
    int dayToNight = 0;
    int nightToDay = 0;
    return getParameter(it1::DayToNightId, dayToNight) && getParameter(it1::NightToDayId, nightToDay) &&
                   setDayToNightTransition(dayToNight) && setNightToDayTransition(nightToDay)
               ? 1
               : 0;
}

int IBaseIT1SenseController::base_setDayToNightTransition(int value) { return send(writing(0x14, 0x12), value); }

int IBaseIT1SenseController::base_setNightToDayTransition(int value) { return send(writing(0x14, 0x11), value); }

int IBaseIT1SenseController::getDayNightValue(int& status) {
    int level = 0;
    if (!ask(reading(0x3d, 0x0b, 2), level))
        return 0;
    const int index = levelIndex(level);
    if (index < m_nNightToDay)
        m_nDayNightValue = 1;
    else if (index > m_nDayToNight)
        m_nDayNightValue = 0;
    status = m_nDayNightValue;
    return 1;
}

int IBaseIT1SenseController::openDayNightMode() { return changeModeBit(1, 0, "openDayNight failed"); }

int IBaseIT1SenseController::closeDayNightMode() { return changeModeBit(0, 1, "closeDayNight failed"); }

int IBaseIT1SenseController::changeModeBit(int bit, int status, const char* failure) {
    const auto write = [this](int word) { return send(writing(0x01, 0x01), word); };
    if (!m_nRegister0101.change(bit, ModeBit, 1, write)) {
        ErrorPrintf("%s", failure);
        return 0;
    }
    DriverServices::putInForce(*this, status);
    return 1;
}

int IBaseIT1SenseController::exitNightMode() {
    if (!closeDayNightMode()) {
        ErrorPrintf("closeDayNightMode failed");
        return 0;
    }
    if (!m_bNewInfrared && m_nInfraredMode != 0)
        return 1;
    if (m_bNewInfrared && m_nInfraredMode != 1 && !DriverServices::driveInfraredLight(*this, m_nInfraredGPIOLevel))
        return 0;
    return DriverServices::driveFilter(*this, m_nFilterGPIOLevel);
}

int IBaseIT1SenseController::enterNightMode() {
    if (!openDayNightMode()) {
        ErrorPrintf("openDayNightMode failed");
        return 0;
    }
    if (!m_bNewInfrared && m_nInfraredMode != 0)
        return 1;
    const bool isLightLeft = m_nDayNightSetup != 2 && m_nInfraredMode == 1;
    if (m_bNewInfrared && !isLightLeft && !DriverServices::driveInfraredLight(*this, 1 - m_nInfraredGPIOLevel))
        return 0;
    return DriverServices::driveFilter(*this, 1 - m_nFilterGPIOLevel);
}

int IBaseIT1SenseController::turnTo(int status) { return status == 1 ? exitNightMode() : enterNightMode(); }

int IBaseIT1SenseController::startSwitchThread() {
    if (m_DNSwitchThread.IsRunning())
        return 1;
    m_nLastLevel = -1;
    if (m_DNSwitchThread.start())
        return 1;
    ErrorPrintf("start IBaseIT1SenseController DayNightSwitchThread failed");
    return 0;
}

int IBaseIT1SenseController::stopSwitchThread() { return m_DNSwitchThread.stop(); }

int IBaseIT1SenseController::switchThreadBody() {
    return m_nInfrared == 0 ? autoThreadFunc() : externalTriggerThreadFunc();
}

int IBaseIT1SenseController::autoThreadFunc() {
    if (const char* failure = turnByMetering())
        ErrorPrintf("%s", failure);
    BreltoTime::wait(BreltoTime(PassSeconds, 0));
    return 0;
}

const char* IBaseIT1SenseController::turnByMetering() {
    int status = -1;
    if (!getDayNightValue(status))
        return "getDayNightValue error";
    if (status != 0 && status != 1)
        return "nDayOrNight is out of range!";
    if (!isTimeToSwitch(status))
        return nullptr;
    if (!turnTo(status))
        return status == 1 ? "exitNightMode failed" : "enterNightMode failed";
    const int nightLevel = m_nDayLevel > 1 ? 0 : 1 - m_nDayLevel;
    if (!writeExternalLevel(status == 1 ? m_nDayLevel : nightLevel))
        return status == 1 ? "setDayLevel() error" : "setNightLevel() error";
    return nullptr;
}

int IBaseIT1SenseController::writeExternalLevel(int level) {
    return m_bExternalLevel ? m_pGPIO->setValue(m_nExternalLevelGPIOGroup, m_nExternalLevelGPIOPin, level) : 1;
}

int IBaseIT1SenseController::externalTriggerThreadFunc() {
    const int isInOrder = m_bNewInfrared ? followLightSensor() : followExternalLevel();
    BreltoTime::wait(BreltoTime(isInOrder ? PassSeconds : FailedPassSeconds, 0));
    return 0;
}

int IBaseIT1SenseController::followLightSensor() {
    int status = -1;
    if (!getDNStatusFromLDR(status))
        return 0;
    return isTimeToSwitch(status) ? turnTo(status) : 1;
}

int IBaseIT1SenseController::followExternalLevel() {
    int level = -1;
    if (!m_bExternalLevel || !m_pGPIO->getValue(m_nExternalLevelGPIOGroup, m_nExternalLevelGPIOPin, level)) {
        ErrorPrintf("--------getLevel() error------");
        return 0;
    }
    if (level == m_nLastLevel)
        return 1;
    const bool isDay = level == m_nDayLevel;
    std::printf("begin to turn to %s,level = %d\n", isDay ? "Color" : "BlackWhite", level);
    if (!turnTo(isDay ? 1 : 0))
        return 0;
    m_nLastLevel = level;
    return 1;
}
