#pragma once

#include "host/IUARTController.h"
#include "host/SafePointer.h"
#include "host/linux/SerialPort.h"

#include <atomic>
#include <string>

namespace sensorctl {

/// Stands between the library and the port: keeps why a port did not open, and cuts a bring-up short that talks to
/// nobody. Behind a cut every call fails at once, so that the library's retries do too.
class PortGuard final : public IUARTController {
public:
    /// `serialPort` is what `port` ends in.
    PortGuard(const SafePointer<IUARTController>& port, const sensorhost::SerialPort& serialPort)
        : m_pPort(port), m_SerialPort(serialPort) {}

    int open(const char* deviceName) override;
    int close(int handle) override;
    int setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) override;
    int send(int handle, const char* bytes, int length) override;
    int recv(int handle, char* buffer, int length, int timeout) override;

    /// From now on several commands in a row without a single byte for an answer cut the line; until disarmed.
    void arm() { m_bArmed = true; }
    void disarm() { m_bArmed = false; }
    bool isCut() const { return m_bCut; }
    /// The last call failed as on a port that is gone.
    bool hasPortFailed() const { return m_bPortFailed; }

    /// Why the port could not be used, as a sentence; empty if it could. To be read after the bring-up.
    const std::string& failure() const { return m_strFailure; }

private:
    void cutIfHopeless();

    SafePointer<IUARTController> m_pPort;
    const sensorhost::SerialPort& m_SerialPort;
    std::string m_strFailure;
    std::atomic<bool> m_bArmed{false};
    std::atomic<bool> m_bCut{false};
    std::atomic<bool> m_bPortFailed{false};
    std::atomic<int> m_nUnanswered{0};
};

} // namespace sensorctl
