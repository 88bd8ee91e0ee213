// Serial port and pins.
#include "HostLayer.h"

#include <algorithm>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace hostlayer {

namespace {

speed_t speedOf(int baudRate) {
    switch (baudRate) {
    case 2400:
        return B2400;
    case 4800:
        return B4800;
    case 9600:
        return B9600;
    case 19200:
        return B19200;
    case 38400:
        return B38400;
    case 57600:
        return B57600;
    case 115200:
        return B115200;
    default:
        return B0;
    }
}

} // namespace

int UartPort::open(const char* deviceName) { return ::open(deviceName, O_RDWR | O_NOCTTY | O_CLOEXEC); }

int UartPort::close(int handle) { return ::close(handle) == 0 ? 1 : 0; }

int UartPort::setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) {
    const speed_t speed = speedOf(baudRate);
    termios line{};
    if (speed == B0 || dataBits < 7 || dataBits > 8 || ::tcgetattr(handle, &line) != 0)
        return 0;
    ::cfmakeraw(&line);
    line.c_cflag &= ~tcflag_t{CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS};
    line.c_cflag |= CLOCAL | CREAD | (dataBits == 7 ? CS7 : CS8);
    if (parity != 0)
        line.c_cflag |= PARENB | (parity == 1 ? PARODD : 0);
    if (stopBits == 2)
        line.c_cflag |= CSTOPB;
    line.c_cc[VMIN] = 0; // the waiting is recv's own
    line.c_cc[VTIME] = 0;
    ::cfsetispeed(&line, speed);
    ::cfsetospeed(&line, speed);
    return ::tcsetattr(handle, TCSANOW, &line) == 0 ? 1 : 0;
}

// A product gives the write a limit: a line with flow control that stalls would block the controller for good.
int UartPort::send(int handle, const char* bytes, int length) {
    return static_cast<int>(::write(handle, bytes, static_cast<std::size_t>(length)));
}

// The limit, in tenths of a second, holds for the first byte and between two bytes.
int UartPort::recv(int handle, char* buffer, int length, int timeout) {
    int received = 0;
    while (received < length) {
        pollfd waiting{handle, POLLIN, 0};
        if (::poll(&waiting, 1, timeout * 100) != 1)
            break;
        const ssize_t got = ::read(handle, buffer + received, static_cast<std::size_t>(length - received));
        if (got <= 0)
            return received > 0 ? received : -1;
        received += static_cast<int>(got);
    }
    return received;
}

int MemoryPins::setValue(int group, int pin, int value) {
    const std::lock_guard guard(m_Mutex);
    m_Levels[{group, pin}] = value;
    return 1;
}

int MemoryPins::getValue(int group, int pin, int& value) {
    const std::lock_guard guard(m_Mutex);
    value = m_Levels[{group, pin}];
    return 1;
}

} // namespace hostlayer
