#pragma once

#include "host/Export.h"

/// A span of time, and the one way to wait in this system.
class SENSORHOST_API BreltoTime {
public:
    constexpr BreltoTime(long seconds, long microseconds) : m_nSeconds(seconds), m_nMicroseconds(microseconds) {}

    constexpr long getSeconds() const { return m_nSeconds; }
    constexpr long getMicroseconds() const { return m_nMicroseconds; }

    /// Blocks the calling thread for the span. On the thread of a GThread that is being stopped it returns at once.
    static void wait(const BreltoTime& span);

private:
    long m_nSeconds;
    long m_nMicroseconds;
};
