#include "host/linux/StopSignal.h"

#include <chrono>

namespace sensorhost {

namespace {
constinit thread_local StopSignal* t_pCurrent = nullptr;
}

void StopSignal::raise() {
    const std::lock_guard guard(m_Mutex);
    m_bRaised = true;
    m_Raised.notify_all();
}

void StopSignal::clear() {
    const std::lock_guard guard(m_Mutex);
    m_bRaised = false;
}

bool StopSignal::isRaised() const {
    const std::lock_guard guard(m_Mutex);
    return m_bRaised;
}

void StopSignal::waitFor(long long microseconds) {
    std::unique_lock guard(m_Mutex);
    m_Raised.wait_for(guard, std::chrono::microseconds(microseconds), [this] { return m_bRaised; });
}

StopSignal* StopSignal::current() { return t_pCurrent; }

void StopSignal::setCurrent(StopSignal* signal) { t_pCurrent = signal; }

} // namespace sensorhost
