#pragma once

#include <condition_variable>
#include <mutex>

namespace sensorhost {

/// What ends the waits of a thread that is being stopped.
class StopSignal {
public:
    void raise();
    void clear();
    bool isRaised() const;

    /// Blocks for the span, or until the signal is raised.
    void waitFor(long long microseconds);

    /// The signal of the calling thread, null outside a GThread.
    static StopSignal* current();
    static void setCurrent(StopSignal* signal);

private:
    mutable std::mutex m_Mutex;
    std::condition_variable m_Raised;
    bool m_bRaised = false;
};

} // namespace sensorhost
