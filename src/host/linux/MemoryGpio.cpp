#include "host/linux/MemoryGpio.h"

#include "host/BRDeviceTime.h"

#include <algorithm>

namespace sensorhost {

namespace {
constexpr std::size_t HistoryLimit = 10'000;
}

MemoryGpio::MemoryGpio() = default;

MemoryGpio::~MemoryGpio() = default;

int MemoryGpio::enable() { return 1; }

int MemoryGpio::disable() { return 1; }

int MemoryGpio::setValue(int group, int pin, int value) {
    const double seconds = BRDeviceTime::getSeconds();
    const std::lock_guard guard(m_Mutex);
    if (m_Failing.contains({group, pin}))
        return 0;
    m_Levels[{group, pin}] = value != 0 ? 1 : 0;
    const Write write{seconds, group, pin, value != 0 ? 1 : 0};
    if (m_History.size() < HistoryLimit) {
        m_History.push_back(write);
    } else {
        m_History[m_nOldest] = write;
        m_nOldest = (m_nOldest + 1) % HistoryLimit;
    }
    return 1;
}

int MemoryGpio::getValue(int group, int pin, int& value) {
    const std::lock_guard guard(m_Mutex);
    const auto found = m_Levels.find({group, pin});
    if (m_Failing.contains({group, pin}) || (found == m_Levels.end() && m_bUnknownFailing))
        return 0;
    value = found != m_Levels.end() ? found->second : 0;
    return 1;
}

void MemoryGpio::setLevel(int group, int pin, int value) {
    const std::lock_guard guard(m_Mutex);
    m_Levels[{group, pin}] = value != 0 ? 1 : 0;
}

int MemoryGpio::getLevel(int group, int pin) const {
    const std::lock_guard guard(m_Mutex);
    const auto found = m_Levels.find({group, pin});
    return found != m_Levels.end() ? found->second : 0;
}

void MemoryGpio::setFailing(int group, int pin, bool failing) {
    const std::lock_guard guard(m_Mutex);
    if (failing)
        m_Failing.insert({group, pin});
    else
        m_Failing.erase({group, pin});
}

void MemoryGpio::setUnknownFailing(bool failing) {
    const std::lock_guard guard(m_Mutex);
    m_bUnknownFailing = failing;
}

std::vector<MemoryGpio::Write> MemoryGpio::getHistory() const {
    const std::lock_guard guard(m_Mutex);
    std::vector<Write> history = m_History;
    std::rotate(history.begin(), history.begin() + static_cast<std::ptrdiff_t>(m_nOldest), history.end());
    return history;
}

void MemoryGpio::clearHistory() {
    const std::lock_guard guard(m_Mutex);
    m_History.clear();
    m_nOldest = 0;
}

} // namespace sensorhost
