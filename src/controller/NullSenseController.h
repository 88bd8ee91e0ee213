#pragma once

#include "controller/ISensorController.h"

/// The controller of every id that names no module: refuses everything.
class SENSORCONTROL_API NullSenseController final : public ISensorController {
public:
    NullSenseController();
    ~NullSenseController() override;

    int getMirrorValue(int& value) override;
    int getParameterFromSensor(int id, int& value) override;
    int setParameterToSensor(int id, int value) override;
    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;
};
