#include "PortGuard.h"

namespace sensorctl {

namespace {

/// Two commands with their retries and a send that expects no answer.
constexpr int UnansweredLimit = 7;

} // namespace

void PortGuard::cutIfHopeless() {
    if (m_bArmed && m_nUnanswered >= UnansweredLimit)
        m_bCut = true;
}

int PortGuard::open(const char* deviceName) {
    const int handle = m_pPort->open(deviceName);
    if (handle < 0)
        m_strFailure = m_SerialPort.getOpenFailure();
    return handle;
}

int PortGuard::close(int handle) { return m_pPort->close(handle); }

int PortGuard::setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) {
    const int result = m_pPort->setParameter(handle, baudRate, dataBits, parity, stopBits);
    if (result == 0)
        m_strFailure = "it does not take the line settings " + std::to_string(baudRate) + ',' +
                       std::to_string(dataBits) + ',' + std::to_string(stopBits) + ',' + std::to_string(parity);
    return result;
}

int PortGuard::send(int handle, const char* bytes, int length) {
    if (m_bCut)
        return -1;
    ++m_nUnanswered;
    const int sent = m_pPort->send(handle, bytes, length);
    m_bPortFailed = sent != length;
    if (sent < 0)
        cutIfHopeless();
    return sent;
}

int PortGuard::recv(int handle, char* buffer, int length, int timeout) {
    if (m_bCut)
        return 0;
    const int received = m_pPort->recv(handle, buffer, length, timeout);
    m_bPortFailed = received < 0;
    if (received > 0)
        m_nUnanswered = 0;
    else
        cutIfHopeless();
    return received;
}

} // namespace sensorctl
