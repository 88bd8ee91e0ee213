#include "controller/SensorLog.h"

#include <cstdio>

int SensorLog::init(const char* path, unsigned int size, unsigned int count) {
    return m_Logger.init(path, size, count);
}

void SensorLog::WriteSensorLog(const char* tag, const char* text) {
    std::puts(text);
    m_Logger.writeLog(tag, text);
}
