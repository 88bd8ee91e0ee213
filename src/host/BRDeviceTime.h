#pragma once

#include "host/Export.h"

/// A reading of the device's clock, local time.
class SENSORHOST_API BRDeviceTime {
public:
    int getHour() const { return m_nHour; }     ///< 0 to 23
    int getMinute() const { return m_nMinute; } ///< 0 to 59
    int getSecond() const { return m_nSecond; } ///< 0 to 60

    /// The clock now.
    static BRDeviceTime getCurrentTime();

    /// Seconds since some fixed moment, for measuring spans: setting the clock does not move it.
    static double getSeconds();

private:
    int m_nHour = 0;
    int m_nMinute = 0;
    int m_nSecond = 0;
};
