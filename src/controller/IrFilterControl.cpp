// Moves the IR-cut filter, switches the IR lights and turns the picture, in their order: on the way to day the lights
// go out before the filter moves, on the way to night the picture is monochrome before the filter lets infrared in.

#include "controller/ControllerRooms.h"
#include "controller/Recorder.h"
#include "host/BreltoTime.h"

#include <cstdio>

namespace {

/// Between filter and lights, so that the picture never shows one without the other.
constexpr BreltoTime SwitchGap(0, 100000);
constexpr BreltoTime FailureWait(1, 0);

constexpr int PowerModeSelector = 0x01;
constexpr int NearLightSelector = 0x06;
constexpr int MiddleLightSelector = 0x07;
constexpr int FarLightSelector = 0x08;
constexpr int FullPower = 100;

} // namespace

int ISensorController::setNearLight(int power) {
    return m_pRooms->turnInfraredLight(NearLightSelector, power, FullPower, "setNearLight");
}

int ISensorController::setMiddleLight(int power) {
    return m_pRooms->turnInfraredLight(MiddleLightSelector, power, FullPower, "setMiddleLight");
}

int ISensorController::setFarLight(int power) {
    return m_pRooms->turnInfraredLight(FarLightSelector, power, FullPower, "setFarLight");
}

int ISensorController::setPowerMode(int mode) {
    return m_pRooms->turnInfraredLight(PowerModeSelector, mode, 1, "setPowerMode");
}

int ISensorController::Rooms::turnInfraredLight(int selector, int value, int highest, const char* name) {
    if (value < 0 || value > highest) {
        c.ErrorPrintf("%s(%d) out of range", name, value);
        return 0;
    }
    if (c.m_nInfrared == 0) {
        sensorcontrol::recorder::keep("only with an infrared board");
        return 1;
    }
    char frame[] = {'\xfe', 0x01, 0x1e, 0x02, static_cast<char>(selector), static_cast<char>(value), 0, '\xff'};
    c.computeSum(frame, sizeof frame);
    return c.setParameterValue(frame, sizeof frame) ? 1 : 0;
}

int ISensorController::getDNStatusFromLDR(int& status) {
    int value = -1;
    if (!m_pGPIO->getValue(m_nDNLevelGPIOGroup, m_nDNLevelGPIOPin, value)) {
        ErrorPrintf("GPIO(%d) get DNLevel failed value = %d", m_nDNLevelGPIOPin, value);
        return 0;
    }
    status = value == m_nDNLevelGPIOLevel ? 1 : 0;
    return 1;
}

int ISensorController::enterDayMode() {
    if (m_nDNState == 1 && m_nLastDayNightMode == m_nDayNightMode)
        return 1;
    std::puts("!!!enterDayMode");
    if (m_nHDRMode == 3)
        updateHDRMode(1);
    if (!SwitchInfraredIrCutToDay()) {
        ErrorPrintf("SwitchInfraredIrCutToDay failed\n");
        return 0;
    }
    if (!turnPictureToDay()) {
        ErrorPrintf("turnPictureToDay failed\n");
        return 0;
    }
    m_pRooms->putInForce(1);
    return 1;
}

int ISensorController::enterNightMode() {
    if (m_nDNState == 0 && m_nLastDayNightMode == m_nDayNightMode)
        return 1;
    std::puts("!!!enterNightMode");
    if (m_nHDRMode == 3)
        updateHDRMode(2);
    if (!turnPictureToNight()) {
        ErrorPrintf("turnPictureToNight failed\n");
        return 0;
    }
    if (!SwitchInfraredIrCutToNight()) {
        ErrorPrintf("SwitchInfraredIrCutToNight failed\n");
        return 0;
    }
    m_pRooms->putInForce(0);
    return 1;
}

int ISensorController::SwitchInfraredIrCutToDay() {
    if (m_bisZoomModule)
        return 1;
    if (m_bNewInfrared && m_nInfrared != 2 && !m_pRooms->driveInfraredLight(m_nInfraredGPIOLevel))
        return 0;
    BreltoTime::wait(SwitchGap);
    if (m_nInfrared != 0 && m_nInfrared != 2 && !m_bNewInfrared)
        return 1;
    return m_pRooms->driveFilter(m_nFilterGPIOLevel);
}

int ISensorController::SwitchInfraredIrCutToNight() {
    if (m_bisZoomModule)
        return 1;
    if ((m_nInfrared == 0 || m_nInfrared == 2 || m_bNewInfrared) && !m_pRooms->driveFilter(1 - m_nFilterGPIOLevel))
        return 0;
    BreltoTime::wait(SwitchGap);
    if (!m_bNewInfrared || m_nInfrared == 2)
        return 1;
    return m_pRooms->driveInfraredLight(1 - m_nInfraredGPIOLevel);
}

int ISensorController::Rooms::driveFilter(int level) {
    if (c.m_pGPIO->setValue(c.m_nFilterGPIOGroup, c.m_nFilterGPIOPin, level))
        return 1;
    c.ErrorPrintf("gpio set filter failed");
    BreltoTime::wait(FailureWait);
    return 0;
}

int ISensorController::Rooms::driveInfraredLight(int level) {
    if (c.m_pGPIO->setValue(c.m_nInfraredGPIOGroup, c.m_nInfraredGPIOPin, level))
        return 1;
    c.ErrorPrintf("gpio set infrared failed");
    BreltoTime::wait(FailureWait);
    return 0;
}
