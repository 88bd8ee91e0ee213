#pragma once

#include "simulator/Line.h"
#include "simulator/TimeSource.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <utility>

namespace camerasim {

/// A block on a line inside the process, without a thread: the host's own calls drive it. All calls may come from any
/// thread; the one inner lock is never held while waiting.
class InProcessLine {
public:
    /// The time source must outlive the line. Baud 0 carries everything instantly.
    InProcessLine(std::unique_ptr<CameraBlock> block, TimeSource& time, int baud = 0);

    /// Number of bytes taken, at once; -1 while the port is gone.
    std::ptrdiff_t send(std::span<const std::uint8_t> bytes);
    /// Returns as soon as the buffer is full, or with what came before a silence of `tenths` of a second (also
    /// before the first byte). Waits through the time source.
    std::size_t recv(std::span<std::uint8_t> buffer, int tenths);

    /// Calls `function(CameraBlock&, now in microseconds)` under the lock and gives its result.
    template <class Function>
    decltype(auto) withBlock(Function&& function) {
        const std::lock_guard lock(m_Mutex);
        const std::int64_t now = m_Time.nowMicroseconds();
        m_Line.advance(now);
        return std::forward<Function>(function)(m_Line.block(), now);
    }
    /// Calls `function(Line&, now in microseconds)` under the lock, for faults, speed, unplugging.
    template <class Function>
    decltype(auto) withLine(Function&& function) {
        const std::lock_guard lock(m_Mutex);
        const std::int64_t now = m_Time.nowMicroseconds();
        m_Line.advance(now);
        return std::forward<Function>(function)(m_Line, now);
    }

private:
    std::unique_ptr<CameraBlock> m_pBlock;
    TimeSource& m_Time;
    std::mutex m_Mutex;
    Line m_Line;
};

} // namespace camerasim
