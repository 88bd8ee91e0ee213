#include "controller/SensorControllerManager.h"

#include "controller/SenseControllerFactory.h"
#include "host/GlobalEnv.h"
#include "host/ModuleConfigure.h"
#include "host/ScopedLock.h"

#include <cstdio>

namespace {

void printDiagnostic(const char* text) {
    if (GlobalEnv::getInstance()->getPrintFlag())
        std::puts(text);
}

} // namespace

SensorControllerManager::SensorControllerManager() = default;

SensorControllerManager::~SensorControllerManager() = default;

void SensorControllerManager::setUARTController(const SafePointer<IUARTController>& uart) { m_pUARTController = uart; }

void SensorControllerManager::setGPIO(const SafePointer<IGPIO>& gpio) { m_pGPIO = gpio; }

void SensorControllerManager::init(int videoSystem, const VideoResolution& resolution,
                                   const ModuleConfigure& configure) {
    const int moduleId = configure.getModuleId();
    m_pSensorController = SenseControllerFactory::create(moduleId);
    if (moduleId == 0)
        return;
    m_pSensorController->setOperator(m_pUARTController, m_pGPIO);
    m_pSensorController->setObserver(m_pObserver);
    int isUp = 0;
    {
        // cancelStart finds the controller as long as this lives, however the start ends.
        struct Starting {
            Starting(SensorControllerManager& of, ISensorController& controller) : manager(of) { set(&controller); }
            ~Starting() { set(nullptr); }
            Starting(const Starting&) = delete;
            Starting& operator=(const Starting&) = delete;
            void set(ISensorController* controller) const {
                sensorhost::ScopedLock lock(manager.m_StartMutex);
                manager.m_pStarting = controller;
            }
            SensorControllerManager& manager;
        };
        const Starting starting(*this, *m_pSensorController);
        isUp = m_pSensorController->init(videoSystem, configure, resolution);
    }
    if (!isUp) {
        printDiagnostic("SensorControllerManager::initController error");
        return;
    }
    if (m_pGPIO->enable())
        printDiagnostic("!!!!!!!!!!!!!!!!!!SensorControllerManager::init successs");
}

int SensorControllerManager::cancelStart() {
    sensorhost::ScopedLock lock(m_StartMutex);
    return m_pStarting != nullptr ? m_pStarting->cancelStart() : 0;
}

SafePointer<ISensorController> SensorControllerManager::getSensorController() const { return m_pSensorController; }

int SensorControllerManager::updateSensorVideoSystem(int videoSystem, const VideoResolution& resolution) {
    return m_pSensorController->updateSensorVideoSystem(videoSystem, resolution);
}

int SensorControllerManager::getStillImageValue(int& value) {
    if (m_pSensorController.isNull()) {
        printDiagnostic("SensorControllerManager::getStillImageValue:m_pSensorController is NULL");
        return 0;
    }
    return m_pSensorController->getStillImageValue(value);
}

int SensorControllerManager::getMirrorValue(int& value) {
    if (m_pSensorController.isNull()) {
        printDiagnostic("SensorControllerManager::getMirrorValue:m_pSensorController is NULL");
        return 0;
    }
    return m_pSensorController->getMirrorValue(value);
}
