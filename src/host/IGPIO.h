#pragma once

#include "host/Export.h"

/// The device's input and output pins, named by group (chip) and pin (line of the chip). Any thread may call it.
class SENSORHOST_API IGPIO {
public:
    virtual ~IGPIO() = default;

    /// Makes the pins usable. Non-zero on success.
    virtual int enable() = 0;
    virtual int disable() = 0;

    /// Drives a pin to 0 or 1. Non-zero on success.
    virtual int setValue(int group, int pin, int value) = 0;

    /// Reads a pin. Non-zero on success; on failure `value` stays.
    virtual int getValue(int group, int pin, int& value) = 0;
};
