#pragma once

#include "host/Export.h"

/// The device's serial ports. A driver's transport serialises its own exchanges; the port itself must allow a send
/// and a recv from different threads.
class SENSORHOST_API IUARTController {
public:
    virtual ~IUARTController() = default;

    /// A handle for the calls below, negative on failure.
    virtual int open(const char* deviceName) = 0;

    /// Non-zero on success.
    virtual int close(int handle) = 0;

    /// Sets the line: baud rate, data bits (5 to 8), parity (0 none, 1 odd, 2 even), stop bits (1 or 2).
    /// Non-zero on success.
    virtual int setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) = 0;

    /// Bytes sent, fewer than `length` (or negative) on failure. Blocks until the line took the bytes.
    virtual int send(int handle, const char* bytes, int length) = 0;

    /// Bytes received: as soon as `length` are there, or those that came before the line was silent for `timeout`
    /// tenths of a second; 0 on silence, negative on a dead port.
    virtual int recv(int handle, char* buffer, int length, int timeout) = 0;
};
