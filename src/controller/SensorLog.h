#pragma once

#include "host/BRLogger.h"
#include "host/Export.h"

/// A log that shows on the console too. May be used from any thread, also before init: then the console alone has it.
class SENSORCONTROL_API SensorLog {
public:
    /// Starts the file: at most `size` bytes a file, `count` files. 1 or 0.
    int init(const char* path, unsigned int size, unsigned int count);
    void WriteSensorLog(const char* tag, const char* text);

private:
    BRLogger m_Logger;
};
