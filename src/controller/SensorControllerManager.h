#pragma once

#include "controller/ISensorController.h"
#include "host/BRMutex.h"
#include "host/Export.h"
#include "host/IGPIO.h"
#include "host/IUARTController.h"
#include "host/SafePointer.h"

/// What a host holds: the serial port, the pins and the one controller of the camera. Used from one thread, cancelStart
/// apart; the controller that it gives out may be used from any.
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
    /// Who hears what happens, from the start on; before init, null for nobody. It outlives the manager.
    void setObserver(sensorcontrol::ControllerObserver* observer) { m_pObserver = observer; }

    /// Makes the controller of the module id and brings it up; blocks as ISensorController::init does. Video system:
    /// 0 NTSC, 1 PAL. Whether it came up says the controller's getSensorStatus. Module id 0 is not started.
    /// Replaces the controller of an earlier call.
    void init(int videoSystem, const VideoResolution& resolution, const ModuleConfigure& configure);

    /// As ISensorController::cancelStart, for the init that is under way on another thread.
    int cancelStart();

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
    sensorcontrol::ControllerObserver* m_pObserver = nullptr;

    BRMutex m_StartMutex;
    ISensorController* m_pStarting SENSOR_GUARDED_BY(m_StartMutex) = nullptr; ///< while its init runs
};
