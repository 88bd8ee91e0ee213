#include "controller/ISensorController.h"

#include "controller/FactoryValues.h"

// What a controller does that has nothing of its own to add. The read-backs report the factory values: they fill the
// factory file at the first start, and from then on getParameter tells the value in force.

namespace {

namespace factory = sensorcontrol::factory;

int give(int factoryValue, int& value) {
    value = factoryValue;
    return 1;
}

} // namespace

int ISensorController::updateSensorVideoSystem(int, const VideoResolution&) { return 1; }
int ISensorController::set2AParam(int) { return 0; }
int ISensorController::getCameraVerInf(std::string&) { return 0; }
int ISensorController::restoreAeMode() { return 0; }
int ISensorController::setRunAutoIris() { return 0; }
int ISensorController::IrisUp() { return 0; }
int ISensorController::IrisDown() { return 0; }
int ISensorController::FocusFar(int) { return 0; }
int ISensorController::FocusNear(int) { return 0; }
int ISensorController::ZoomIn(int) { return 0; }
int ISensorController::ZoomOut(int) { return 0; }
int ISensorController::getZoomValue(int&, int&) { return 0; }
int ISensorController::setZoomValue(int) { return 0; }
int ISensorController::setFocusValue(int) { return 0; }
int ISensorController::getFocusValue(int&) { return 0; }
int ISensorController::setFocusMode(int) { return 0; }
int ISensorController::getFocusMode(int&) { return 0; }
int ISensorController::StopZoomContrl() { return 0; }
int ISensorController::StopFocusContrl() { return 0; }
int ISensorController::StopIris() { return 0; }
int ISensorController::setZoomAndFocusValue(int, int) { return 0; }
int ISensorController::getDayNightState(int&) { return 0; }
int ISensorController::getCameraFocusMode(int&) { return 0; }
int ISensorController::getNearLight(int& power) { return give(factory::LightPower, power); }
int ISensorController::getMiddleLight(int& power) { return give(factory::LightPower, power); }
int ISensorController::getFarLight(int& power) { return give(factory::LightPower, power); }
int ISensorController::getStillImageValue(int&) { return 0; }
int ISensorController::enterAutoMode() { return 1; }
int ISensorController::getPowerMode(int& mode) { return give(factory::PowerMode, mode); }
int ISensorController::NotifySensorInitComplate() { return 1; }
int ISensorController::UpdateParameters(std::string&) { return 1; }
int ISensorController::getParameterValue(const char*, int, char*, int) { return 1; }
int ISensorController::setParameterValue(const char*, int) { return 1; }
int ISensorController::getDayNightMode(int& mode) { return give(factory::DayNightMode, mode); }
int ISensorController::getDNStatusFromSensor(int&) { return 1; }
int ISensorController::turnPictureToDay() { return 1; }
int ISensorController::turnPictureToNight() { return 1; }
int ISensorController::turnToAutoDayNightMode() { return 1; }
int ISensorController::turnToManualDayNightMode() { return 1; }
int ISensorController::initFactorySetting() { return 1; }
int ISensorController::getCurrentGain(int&) { return 0; }
void ISensorController::doDependOnThread() {}
int ISensorController::updateHDRMode(int) { return 1; }

int ISensorController::getDNSwitchDelay(int& seconds) { return give(factory::DNSwitchDelay, seconds); }
int ISensorController::getDTNTime_H(int& hour) { return give(factory::DTNTime_H, hour); }
int ISensorController::getDTNTime_M(int& tensOfMinutes) { return give(factory::DTNTime_M, tensOfMinutes); }
int ISensorController::getNTDTime_H(int& hour) { return give(factory::NTDTime_H, hour); }
int ISensorController::getNTDTime_M(int& tensOfMinutes) { return give(factory::NTDTime_M, tensOfMinutes); }
int ISensorController::getEnableParam(int& flag) { return give(factory::EnableParam, flag); }
int ISensorController::getParamStartTime_H(int& hour) { return give(factory::ParamStartTime_H, hour); }
int ISensorController::getParamStartTime_M(int& tensOfMinutes) {
    return give(factory::ParamStartTime_M, tensOfMinutes);
}
int ISensorController::getParamEndTime_H(int& hour) { return give(factory::ParamEndTime_H, hour); }
int ISensorController::getParamEndTime_M(int& tensOfMinutes) { return give(factory::ParamEndTime_M, tensOfMinutes); }
