#pragma once

#include "host/BRMutex.h"

namespace sensorhost {

/// Holds a BRMutex, or what locks like one, for a scope.
template <class Mutex = BRMutex>
class [[nodiscard]] ScopedLock {
public:
    explicit ScopedLock(Mutex& mutex, const char* file = __builtin_FILE(), int line = __builtin_LINE())
        : m_Mutex(mutex) {
        m_Mutex.Lock(file, line);
    }
    ~ScopedLock() { m_Mutex.Unlock(); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    Mutex& m_Mutex;
};

} // namespace sensorhost
