#pragma once

#include "host/Export.h"
#include "host/ThreadSafety.h"

#include <memory>

/// Mutual exclusion between threads. One thread must not lock it twice.
/// Use sensorhost::ScopedLock; Lock and Unlock are not to be called by hand.
class SENSOR_LOCK SENSORHOST_API BRMutex {
public:
    BRMutex();
    ~BRMutex();
    BRMutex(const BRMutex&) = delete;
    BRMutex& operator=(const BRMutex&) = delete;

    /// Blocks until the mutex is free. File and line name the caller for tracing.
    void Lock(const char* file = __builtin_FILE(), int line = __builtin_LINE()) SENSOR_ACQUIRES();
    void Unlock(const char* file = __builtin_FILE(), int line = __builtin_LINE()) SENSOR_RELEASES();

private:
    struct State;
    std::unique_ptr<State> m_pState;
};
