#pragma once

#include "controller/ISensorController.h"

class BRMutex;
class BreltoTime;

namespace sensorcontrol {

/// What a driver asks of the framework, and tells it, beside the controller's own operations. Any thread.
class DriverServices {
public:
    /// Whether work under way is to be left: the controller's thread is being stopped, or its start was cancelled.
    /// Asked between tries, frames and parameters.
    static bool isEnding(const ISensorController& controller);

    /// Blocks for the span; a start that is cancelled cuts it short.
    static void wait(ISensorController& controller, const BreltoTime& span);
    /// The same for the time in which the module restarts, which the start's progress tells.
    static void waitForRestart(ISensorController& controller, int seconds);

    /// A module that decides day and night by itself has told which it is: 1 day, 0 night, -1 unknown.
    static void putInForce(ISensorController& controller, int status);

    /// Drives the pin of the filter, or of the IR lights, to a level. A failure is logged and waited out for a second.
    static int driveFilter(ISensorController& controller, int level);
    static int driveInfraredLight(ISensorController& controller, int level);

    /// Gives the port a lock of the model's own in place of m_UartMutex. For constructors; the mutex must outlive the
    /// controller's threads.
    static void setLineMutex(ISensorController& controller, BRMutex& mutex);
    /// What guards the port and the receive buffer over a whole exchange.
    static BRMutex& lineMutex(ISensorController& controller);

    /// Whether the port took and gave bytes as a port does. A silent module's port works.
    static void tellPort(ISensorController& controller, bool works);
};

} // namespace sensorcontrol
