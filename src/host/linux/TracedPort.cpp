#include "host/linux/TracedPort.h"

#include "host/BRDeviceTime.h"

namespace sensorhost {

WireSink::~WireSink() = default;

TracedPort::TracedPort(const SafePointer<IUARTController>& port, WireSink& sink) : m_pPort(port), m_Sink(sink) {}

int TracedPort::open(const char* deviceName) { return m_pPort->open(deviceName); }

int TracedPort::close(int handle) { return m_pPort->close(handle); }

int TracedPort::setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) {
    return m_pPort->setParameter(handle, baudRate, dataBits, parity, stopBits);
}

int TracedPort::send(int handle, const char* bytes, int length) {
    // A send is shown at its start: the reply may be on its way before the call returns.
    const double seconds = BRDeviceTime::getSeconds();
    const int result = m_pPort->send(handle, bytes, length);
    m_Sink.onSend(seconds, bytes, length, result);
    return result;
}

int TracedPort::recv(int handle, char* buffer, int length, int timeout) {
    const int result = m_pPort->recv(handle, buffer, length, timeout);
    m_Sink.onReceive(BRDeviceTime::getSeconds(), buffer, result, length, timeout);
    return result;
}

} // namespace sensorhost
