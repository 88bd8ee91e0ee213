#pragma once

#include "host/Export.h"
#include "host/IUARTController.h"
#include "host/SafePointer.h"

namespace sensorhost {

/// Hears what goes over a port. Called on the thread that sends or receives, after the call has ended; the bytes are
/// valid during the call only. Times are the host's, in seconds.
class SENSORHOST_API WireSink {
public:
    virtual ~WireSink();

    /// What was to be sent and what the port said to it: the bytes sent, or a failure.
    virtual void onSend(double seconds, const char* bytes, int length, int result) = 0;

    /// What was received (0 or less: nothing) of the bytes wanted; timeout in tenths of a second.
    virtual void onReceive(double seconds, const char* bytes, int received, int wanted, int timeout) = 0;
};

/// A port that tells a sink of everything sent and received.
class SENSORHOST_API TracedPort final : public IUARTController {
public:
    /// The sink outlives the port.
    TracedPort(const SafePointer<IUARTController>& port, WireSink& sink);

    int open(const char* deviceName) override;
    int close(int handle) override;
    int setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) override;
    int send(int handle, const char* bytes, int length) override;
    int recv(int handle, char* buffer, int length, int timeout) override;

private:
    SafePointer<IUARTController> m_pPort;
    WireSink& m_Sink;
};

} // namespace sensorhost
