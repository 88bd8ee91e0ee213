#pragma once

#include "controller/ISensorController.h"
#include "host/Export.h"
#include "host/IGPIO.h"
#include "host/IUARTController.h"
#include "host/SafePointer.h"

/// What a host holds: the serial port, the pins and the one controller of the camera. Used from one thread; the
/// controller that it gives out may be used from any.
class SENSORCONTROL_API SensorControllerManager {
public:
    SensorControllerManager();
    /// The controller goes with its last reference, which stops its thread.
    ~SensorControllerManager();
    SensorControllerManager(const SensorControllerManager&) = delete;
    SensorControllerManager& operator=(const SensorControllerManager&) = delete;

    /// Both come before init.
    void setUARTController(const SafePointer<IUARTController>& uart);
    void setGPIO(const SafePointer<IGPIO>& gpio);

    /// Makes the controller of the module id and brings it up; blocks as ISensorController::init does. Video system:
    /// 0 NTSC, 1 PAL. Whether it came up says the controller's getSensorStatus. Module id 0 is not started.
    /// Replaces the controller of an earlier call.
    void init(int videoSystem, const VideoResolution& resolution, const ModuleConfigure& configure);

    /// Null before init.
    SafePointer<ISensorController> getSensorController() const;

    /// The controller's result. Before init it throws BRRuntimeError.
    int updateSensorVideoSystem(int videoSystem, const VideoResolution& resolution);
    /// The controller's result, 0 before init.
    int getStillImageValue(int& value);
    int getMirrorValue(int& value);

private:
    // In the order that makes the controller go first, the serial port last.
    SafePointer<IUARTController> m_pUARTController;
    SafePointer<IGPIO> m_pGPIO;
    SafePointer<ISensorController> m_pSensorController;
};
