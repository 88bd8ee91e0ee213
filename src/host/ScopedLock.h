#pragma once

#include "host/BRMutex.h"

namespace sensorhost {

/// Holds a BRMutex, or what locks like one, for a scope.
template <class Mutex = BRMutex>
class [[nodiscard]] SENSOR_SCOPED_LOCK ScopedLock {
public:
    explicit ScopedLock(Mutex& mutex, const char* file = __builtin_FILE(), int line = __builtin_LINE())
        SENSOR_ACQUIRES(mutex) SENSOR_UNCHECKED : m_Mutex(mutex) {
        m_Mutex.Lock(file, line);
    }
    ~ScopedLock() SENSOR_RELEASES() SENSOR_UNCHECKED { m_Mutex.Unlock(); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    Mutex& m_Mutex;
};

} // namespace sensorhost
