#pragma once

#include "host/Export.h"
#include "host/IUARTController.h"

#include <memory>

namespace sensorhost {

/// The machine's serial ports. Handles may be used from any thread, several at once; a handle that is not open gives
/// a failure. A close takes effect once the calls under way on that handle have ended. Always in real time.
class SENSORHOST_API SerialPort final : public IUARTController {
public:
    SerialPort();
    /// Closes what is open.
    ~SerialPort() override;
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    /// Opens the device raw, with 9600 baud, 8 data bits, no parity, 1 stop bit and no flow control.
    int open(const char* deviceName) override;
    int close(int handle) override;

    /// Fails for a rate that the system has no name for or that the device does not take.
    int setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) override;

    /// Gives up when the line takes no byte for 1 second and the time of 512 characters.
    int send(int handle, const char* bytes, int length) override;

    int recv(int handle, char* buffer, int length, int timeout) override;

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

} // namespace sensorhost
