#include "controller/SenseControllerFactory.h"

#include "controller/ModelCatalogue.h"
#include "controller/NullSenseController.h"

SafePointer<ISensorController> SenseControllerFactory::create(int moduleId) {
    if (ISensorController* controller = sensorcontrol::createController(moduleId))
        return SafePointer<ISensorController>(controller);
    return SafePointer<ISensorController>(new NullSenseController);
}
