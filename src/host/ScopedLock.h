#pragma once

#include "host/BRMutex.h"

namespace sensorhost {

/// Holds a BRMutex for a scope.
class [[nodiscard]] ScopedLock {
public:
    explicit ScopedLock(BRMutex& mutex, const char* file = __builtin_FILE(), int line = __builtin_LINE())
        : m_Mutex(mutex) {
        m_Mutex.Lock(file, line);
    }
    ~ScopedLock() { m_Mutex.Unlock(); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    BRMutex& m_Mutex;
};

} // namespace sensorhost
