#pragma once

#include "host/Export.h"
#include "host/IUARTController.h"

#include <memory>
#include <string>

namespace sensorhost {

/// Hears when a device goes (an adapter is pulled, a simulated block ends) and comes back. Each change is told once, in
/// order, on a thread that sends, receives or opens, after the port's state has changed and under no lock of the
/// port's. That thread may hold locks of its own, a controller's among them: no call may wait for another thread or
/// throw.
class SENSORHOST_API PortListener {
public:
    virtual ~PortListener();

    /// The name is the one that the device was opened by.
    virtual void onPortLost(const std::string& deviceName) = 0;
    virtual void onPortBack(const std::string& deviceName) = 0;
};

/// The machine's serial ports. Handles may be used from any thread, several at once; a handle that is not open gives
/// a failure. Always in real time.
///
/// A device is taken for this object alone: by a lock that every process sees, and closed to programs that ask for no
/// lock (pseudo-terminals excepted). Several handles for one name share the device and its line settings.
///
/// A device that hangs up leaves its handles open. While it is gone send and recv give -1 at once. Each of them looks
/// whether its name leads to a serial port again, and opens that with the line settings in force before; one that does
/// not open, or fails before it took or gave a byte, is tried once a second at most. The send that finds a device gone
/// and back already goes to the new one.
class SENSORHOST_API SerialPort final : public IUARTController {
public:
    SerialPort();
    /// Closes what is open.
    ~SerialPort() override;
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    /// Opens the device raw, with 9600 baud, 8 data bits, no parity, 1 stop bit and no flow control.
    int open(const char* deviceName) override;
    /// With a device's last handle others can have it, at once; calls under way on the handle end as they would.
    int close(int handle) override;

    /// Fails for a rate that the system has no name for or that the device does not take, and while the device is gone.
    int setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) override;

    /// Gives up when the line takes no byte for 1 second and the time of 512 characters.
    int send(int handle, const char* bytes, int length) override;

    int recv(int handle, char* buffer, int length, int timeout) override;

    /// Why the last open gave no handle, as a sentence without a stop: "/dev/ttyUSB0 is in use by process 1234
    /// (sensorctl)", "/dev/ttyUSB0 cannot be opened: No such file or directory". Empty if it gave one.
    std::string getOpenFailure() const;

    /// Installs the listener for all devices of this object; null for none. A call under way on the previous one may
    /// still end.
    void setListener(std::shared_ptr<PortListener> listener);

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

} // namespace sensorhost
