#include "host/BRMutex.h"

#include "host/linux/ActiveClock.h"

#include <mutex>

struct BRMutex::State {
    std::mutex mutex;
};

BRMutex::BRMutex() : m_pState(std::make_unique<State>()) {}

BRMutex::~BRMutex() = default;

void BRMutex::Lock(const char* file, int line) {
    if (sensorhost::ClockSource* clock = sensorhost::activeClock())
        clock->lock(m_pState->mutex, file, line);
    else
        m_pState->mutex.lock();
}

void BRMutex::Unlock(const char*, int) {
    // The one that gets the mutex next may destroy this object.
    std::mutex& mutex = m_pState->mutex;
    mutex.unlock();
    if (sensorhost::ClockSource* clock = sensorhost::activeClock())
        clock->unlocked(mutex);
}
