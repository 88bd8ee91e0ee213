#pragma once

#include "host/Export.h"

/// Operations on the device as a whole.
class SENSORHOST_API SystemHelper {
public:
    /// Restarts the device. Returns before it goes down.
    static int rebootDevice(const char* reason);
};

/// Runs a shell line and waits for its end, at most `timeLimit` seconds; what runs then is ended.
/// The line's exit status, -1 if it could not be run or ran out of time. What a cp or mv line of plain absolute paths
/// made is on the disk when the call returns.
SENSORHOST_API int sy_system(const char* command, int timeLimit);
