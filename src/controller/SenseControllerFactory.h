#pragma once

#include "controller/ISensorController.h"
#include "host/SafePointer.h"

/// Turns module ids into controllers.
class SENSORCONTROL_API SenseControllerFactory {
public:
    /// A new controller, not started. An id that names no module gives a NullSenseController.
    static SafePointer<ISensorController> create(int moduleId);
};
