#include "controller/NullSenseController.h"

NullSenseController::NullSenseController() : ISensorController(0) {}

NullSenseController::~NullSenseController() = default;

int NullSenseController::getMirrorValue(int&) { return 0; }

int NullSenseController::getParameterFromSensor(int, int&) { return 0; }

int NullSenseController::setParameterToSensor(int, int) { return 0; }

int NullSenseController::setSensorVideoSystem(int, const VideoResolution&) { return 0; }

int NullSenseController::initController(int, const ModuleConfigure&) { return 0; }
