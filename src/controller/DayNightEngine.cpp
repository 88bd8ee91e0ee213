// Decides whether the camera is in day or night mode and carries the decision out. Runs on the background thread, one
// pass about every second.

#include "controller/ControllerRooms.h"
#include "controller/DailySpan.h"
#include "host/BRDeviceTime.h"
#include "host/ScopedLock.h"

#include <cmath>
#include <cstdio>

using sensorhost::ScopedLock;

namespace {

using namespace sensorcontrol;

enum DayNightMode { Automatic = 0, FixedDay = 1, FixedNight = 2, ByClock = 3, LeftToModule = 4 };

} // namespace

int ISensorController::DNChangeThreadBody() {
    m_pRooms->drainAfterStart();
    paramSchemeSwitchBody();
    if (!m_pRooms->isStopping)
        doDependOnThread();
    if (m_bDNThreadSwitch && !m_pRooms->isStopping)
        DNSwitchHandle();
    ISPParamBody(); // holds the only sleep of the pass
    return 0;
}

void ISensorController::Rooms::putInForce(int status) {
    // A module that reports nothing leaves -1: no status, and no news.
    if (c.m_nDNState.exchange(status) != status && status >= 0)
        journal.dayNight(status);
}

int ISensorController::DNSwitchHandle() {
    ScopedLock lock(m_DNMutex);
    // A model's own setDayNightMode takes no lock: a mode that comes during the pass must not count as completed by it.
    const int mode = m_nDayNightMode;
    int status = -1;
    if (DNSwitchJudge(status)) {
        set2AParam(status);
        if (mode == LeftToModule) {
            m_nLastDayNightMode = LeftToModule;
            m_pRooms->putInForce(status);
            return 1;
        }
        if (status == 1) {
            if (!enterDayMode()) {
                std::puts("enterDayMode failed");
                return 0;
            }
        } else if (status == 0) {
            if (!enterNightMode()) {
                std::puts("enterNightMode failed");
                return 0;
            }
        } else {
            std::printf("=====error!=====nCurrentDNStatus out of range,nCurrentDNStatus=%d\n", status);
            return 0;
        }
    }
    m_nLastDayNightMode = mode;
    return 1;
}

int ISensorController::DNSwitchJudge(int& status) {
    int current = -1;
    switch (m_nDayNightMode) {
    case Automatic:
        if (!getCurrentDNStatus(current)) {
            std::puts("getCurrentDNStatus false");
            return 0;
        }
        if (!isTimeToSwitch(current))
            return 0;
        status = current;
        return 1;
    case FixedDay:
        status = 1;
        return 1;
    case FixedNight:
        status = 0;
        return 1;
    case ByClock:
        DNSwitchByTime(current);
        status = current;
        return 1;
    case LeftToModule:
        if (m_nLastDayNightMode != LeftToModule)
            enterAutoMode();
        if (!getCurrentDNStatus(current)) {
            std::puts("getCurrentDNStatus false");
            return 0;
        }
        status = current;
        return 1;
    default:
        ErrorPrintf("====error=====,m_nDayNightMode out of range");
        return 0;
    }
}

int ISensorController::getCurrentDNStatus(int& status) {
    if (m_nInfrared == 0 || m_bisZoomModule) {
        if (!getDNStatusFromSensor(status)) {
            ErrorPrintf("getDNStatusFromSensor failed");
            return 0;
        }
        return 1;
    }
    if (m_bNewInfrared) {
        if (!getDNStatusFromLDR(status)) {
            ErrorPrintf("getDNStatusFromLDR failed");
            return 0;
        }
        return 1;
    }
    if (m_nInfrared != 1)
        return 0;
    // An old infrared board moves the filter by itself; its pin tells what it did.
    int value = -1;
    if (!m_pGPIO->getValue(m_nFilterGPIOGroup, m_nFilterGPIOPin, value)) {
        ErrorPrintf("GPIO(%d) get DNLevel failed value = %d", m_nFilterGPIOPin, value);
        return 0;
    }
    status = value == m_nFilterGPIOLevel ? 1 : 0;
    return 1;
}

int ISensorController::isTimeToSwitch(int status) {
    // An old infrared board has a delay of its own.
    if (m_nInfrared != 0 && !m_bNewInfrared)
        return 1;
    if (status != m_nLastDNStatus) {
        reInitDelayStartTime();
        m_nLastDNStatus = status;
    }
    // On every pass, not only on the change: a turn to night that failed is tried again.
    if (status == 0)
        return 1;
    double now = 0;
    getCurrentTime(now);
    return std::fabs(now - m_dDelayStartTime) >= m_nDNSwitchDelay ? 1 : 0;
}

int ISensorController::DNSwitchByTime(int& status) {
    const BRDeviceTime clock = BRDeviceTime::getCurrentTime();
    {
        ScopedLock lock(m_pRooms->clockMutex);
        m_DeviceTime = clock;
    }
    const int toNight = m_nDTNTime;
    const int toDay = m_nNTDTime;
    if (toNight == toDay) {
        std::puts("Error @ DNSwitchByTime");
        return 0;
    }
    status = span::isNight(hourMinute(clock.getHour(), clock.getMinute()), toNight, toDay) ? 0 : 1;
    return 1;
}

int ISensorController::setDayNightMode(int mode) {
    ScopedLock lock(m_DNMutex);
    if (mode == Automatic)
        turnToAutoDayNightMode();
    else if (mode == FixedDay || mode == FixedNight || mode == ByClock)
        turnToManualDayNightMode();
    m_nDayNightMode = mode;
    reInitDelayStartTime();
    return 1;
}

int ISensorController::setDNSwitchDelay(int seconds) {
    m_nDNSwitchDelay = seconds;
    return 1;
}

int ISensorController::reInitDelayStartTime() {
    double now = 0;
    getCurrentTime(now);
    m_dDelayStartTime = now;
    return 1;
}

void ISensorController::getCurrentTime(double& seconds) { seconds = BRDeviceTime::getSeconds(); }

int ISensorController::setDTNTime_H(int hour) {
    return m_pRooms->setSwitchTime(m_nDTNTime, hourMinute(hour, m_nDTNTime % 100), m_nNTDTime, "DTN");
}

int ISensorController::setDTNTime_M(int tensOfMinutes) {
    return m_pRooms->setSwitchTime(m_nDTNTime, hourMinute(m_nDTNTime / 100, tensOfMinutes * 10LL), m_nNTDTime, "DTN");
}

int ISensorController::setNTDTime_H(int hour) {
    return m_pRooms->setSwitchTime(m_nNTDTime, hourMinute(hour, m_nNTDTime % 100), m_nDTNTime, "NTD");
}

int ISensorController::setNTDTime_M(int tensOfMinutes) {
    return m_pRooms->setSwitchTime(m_nNTDTime, hourMinute(m_nNTDTime / 100, tensOfMinutes * 10LL), m_nDTNTime, "NTD");
}

int ISensorController::Rooms::setSwitchTime(std::atomic<int>& time, int newTime, const std::atomic<int>& otherTime,
                                            const char* name) {
    if (c.m_bisInited && !c.m_bisReset && newTime == otherTime) {
        c.ErrorPrintf("failed:DTNTIME == NTDTIME,value = %d\n", newTime);
        return 0;
    }
    std::printf("set %s time:%d\n", name, newTime);
    time = newTime;
    return 1;
}
