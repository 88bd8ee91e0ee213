#pragma once

#include "controller/ControllerTraits.h"
#include "controller/ISensorController.h"

namespace sensorcontrol {
struct ModelDescription;
}

/// A camera block that the web interface does not configure, module 17: it has no parameters, every operation on them
/// succeeds and sends nothing. A thread of its own asks it every second whether it is day.
class SENSORCONTROL_API NoSensorUIController : public ISensorController {
public:
    static constexpr int ModuleIds[] = {17};
    static constexpr sensorcontrol::ControllerTraits Traits{.isParameterAccessClosed = true};

    NoSensorUIController();
    ~NoSensorUIController() override;

    static const sensorcontrol::ModelDescription& model();

    int getMirrorValue(int& value) override;
    int getParameterFromSensor(int id, int& value) override;
    int setParameterToSensor(int id, int value) override;
    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int NotifySensorInitComplate() override;
    /// Sends only: reads no reply and tries once.
    int setParameterValue(const char* command, int length) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;
    int initFactorySetting() override;

    /// One pass of the "getDN" thread; ends with its sleep. Always 0.
    int getDNbody();

private:
    BRMutex m_SendMutex;
    SafePointer<GThread> m_pDNThread;
};
