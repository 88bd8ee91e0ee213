#include "ControllerEvents.h"

#include "Progress.h"

#include <utility>

namespace sensorctl {

std::vector<ControllerEvents::Event> ControllerEvents::take() {
    const std::lock_guard guard(m_Mutex);
    return std::exchange(m_Events, {});
}

void ControllerEvents::onProgress(const sensorcontrol::StartProgress& progress) {
    if (m_pProgress != nullptr)
        m_pProgress->onProgress(progress);
}

void ControllerEvents::add(Kind kind, int value) {
    constexpr std::size_t Most = 1000; // of a command that never asks
    const std::lock_guard guard(m_Mutex);
    if (m_Events.size() < Most)
        m_Events.push_back({std::chrono::steady_clock::now(), kind, value});
}

} // namespace sensorctl
