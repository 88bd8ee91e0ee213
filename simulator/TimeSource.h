#pragma once

#include <cstdint>

namespace camerasim {

/// Clock and waiting of whoever drives a simulated line: the real one, or a simulated one in tests.
struct TimeSource {
    virtual ~TimeSource() = default;

    /// Microseconds since any fixed moment, never going back. Called from any thread, also with a line's
    /// lock held, so it must not call back into a line.
    virtual std::int64_t nowMicroseconds() = 0;

    /// Blocks the calling thread for so many microseconds (more than 0) of this clock; at once over on a thread that is
    /// being stopped. Called without a lock held.
    virtual void waitMicroseconds(std::int64_t microseconds) = 0;
};

} // namespace camerasim
