#pragma once

#include "host/BRMutex.h"

#include <atomic>
#include <thread>

namespace sensorcontrol {

/// A BRMutex that the thread which holds it may lock again; free once it was unlocked as often.
/// Use sensorhost::ScopedLock.
class SENSOR_LOCK RecursiveMutex {
public:
    void Lock(const char* file = __builtin_FILE(), int line = __builtin_LINE()) SENSOR_ACQUIRES() SENSOR_UNCHECKED {
        if (m_Owner != std::this_thread::get_id()) {
            m_Mutex.Lock(file, line);
            m_Owner = std::this_thread::get_id();
        }
        ++m_nDepth;
    }
    void Unlock() SENSOR_RELEASES() SENSOR_UNCHECKED {
        if (--m_nDepth > 0)
            return;
        m_Owner = std::thread::id();
        m_Mutex.Unlock();
    }

private:
    BRMutex m_Mutex;
    std::atomic<std::thread::id> m_Owner;
    int m_nDepth = 0; ///< the owner's
};

} // namespace sensorcontrol
