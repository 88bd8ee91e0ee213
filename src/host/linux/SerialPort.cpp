#include "host/linux/SerialPort.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <map>
#include <mutex>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace sensorhost {

namespace {

using Clock = std::chrono::steady_clock;

struct BaudRate {
    int rate;
    speed_t speed;
};

constexpr auto BAUD_RATES = std::to_array<BaudRate>({
    {50, B50},           {75, B75},           {110, B110},         {134, B134},         {150, B150},
    {200, B200},         {300, B300},         {600, B600},         {1200, B1200},       {1800, B1800},
    {2400, B2400},       {4800, B4800},       {9600, B9600},       {19200, B19200},     {38400, B38400},
    {57600, B57600},     {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
    {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000}, {1500000, B1500000},
    {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000}, {3500000, B3500000}, {4000000, B4000000},
});

constexpr auto CHARACTER_SIZES = std::to_array<tcflag_t>({CS5, CS6, CS7, CS8});
constexpr auto PARITIES = std::to_array<tcflag_t>({0, PARENB | PARODD, PARENB});

class Line {
public:
    explicit Line(int descriptor) : m_nDescriptor(descriptor) {}
    ~Line() { ::close(m_nDescriptor); }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    bool set(const BaudRate& baudRate, tcflag_t characterSize, tcflag_t parity, tcflag_t stopBits);
    int send(const char* bytes, int length);
    int recv(char* buffer, int length, int silence);

private:
    /// Waits for the events: those that came, 0 when the time is over.
    int await(short events, int milliseconds) const;

    const int m_nDescriptor;
    std::atomic<int> m_nSendLimit{0}; ///< milliseconds without progress
};

bool Line::set(const BaudRate& baudRate, tcflag_t characterSize, tcflag_t parity, tcflag_t stopBits) {
    termios settings{};
    if (::tcgetattr(m_nDescriptor, &settings) != 0)
        return false;
    ::cfmakeraw(&settings);
    settings.c_iflag &= ~tcflag_t{IXON | IXOFF | IXANY | INPCK};
    settings.c_cflag &= ~tcflag_t{CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS | HUPCL};
    settings.c_cflag |= characterSize | parity | stopBits | CLOCAL | CREAD;
    settings.c_cc[VMIN] = 0;
    settings.c_cc[VTIME] = 0;
    ::cfsetispeed(&settings, baudRate.speed);
    ::cfsetospeed(&settings, baudRate.speed);
    if (::tcsetattr(m_nDescriptor, TCSANOW, &settings) != 0)
        return false;

    // The call succeeds if the device took any of the settings. Pseudo-terminals force the character format, so only
    // the rate can be held against it.
    termios taken{};
    if (::tcgetattr(m_nDescriptor, &taken) != 0 || ::cfgetospeed(&taken) != baudRate.speed)
        return false;
    constexpr int BITS_OF_512_CHARACTERS = 512 * 11;
    m_nSendLimit = 1000 + BITS_OF_512_CHARACTERS * 1000 / baudRate.rate;
    return true;
}

int Line::await(short events, int milliseconds) const {
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(milliseconds);
    pollfd entry{m_nDescriptor, events, 0};
    int rest = milliseconds;
    for (;;) {
        const int ready = ::poll(&entry, 1, rest);
        if (ready >= 0)
            return ready == 0 ? 0 : entry.revents;
        if (errno != EINTR)
            return POLLERR;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        rest = static_cast<int>(std::max<decltype(left)>(left, 0));
    }
}

int Line::send(const char* bytes, int length) {
    int sent = 0;
    while (sent < length) {
        const ssize_t written = ::write(m_nDescriptor, bytes + sent, static_cast<std::size_t>(length - sent));
        if (written > 0)
            sent += static_cast<int>(written);
        else if (written < 0 && errno == EINTR)
            continue;
        else if (written < 0 && errno != EAGAIN)
            return sent > 0 ? sent : -1;
        else if ((await(POLLOUT, m_nSendLimit) & POLLOUT) == 0)
            return sent;
    }
    return sent;
}

int Line::recv(char* buffer, int length, int silence) {
    constexpr int EMPTY_READS = 3;
    int received = 0;
    int empty = 0;
    while (received < length) {
        const int events = await(POLLIN, silence);
        if (events == 0)
            return received;
        const ssize_t got = ::read(m_nDescriptor, buffer + received, static_cast<std::size_t>(length - received));
        if (got > 0) {
            received += static_cast<int>(got);
            empty = 0;
        } else if (got < 0 && (errno == EINTR || errno == EAGAIN)) {
            continue;
        } else if (got < 0 || (events & (POLLHUP | POLLERR | POLLNVAL)) != 0 || ++empty == EMPTY_READS) {
            // A device that reports input and has none is gone, unless another thread was quicker.
            return received > 0 ? received : -1;
        }
    }
    return received;
}

const BaudRate* findBaudRate(int rate) {
    const auto* const found = std::find_if(BAUD_RATES.begin(), BAUD_RATES.end(),
                                           [rate](const BaudRate& entry) { return entry.rate == rate; });
    return found != BAUD_RATES.end() ? found : nullptr;
}

} // namespace

struct SerialPort::State {
    std::mutex mutex;
    std::map<int, std::shared_ptr<Line>> lines;
    int lastHandle = 0; ///< handles are not used again: a stale one must not reach another device

    /// The line, held: it stays open until the call that uses it has ended.
    std::shared_ptr<Line> find(int handle) {
        const std::lock_guard guard(mutex);
        const auto found = lines.find(handle);
        return found != lines.end() ? found->second : nullptr;
    }
};

SerialPort::SerialPort() : m_pState(std::make_unique<State>()) {}

SerialPort::~SerialPort() = default;

int SerialPort::open(const char* deviceName) {
    if (deviceName == nullptr)
        return -1;
    const int descriptor = ::open(deviceName, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        return -1;
    auto line = std::make_shared<Line>(descriptor);
    if (!line->set(*findBaudRate(9600), CS8, 0, 0))
        return -1;
    const std::lock_guard guard(m_pState->mutex);
    const int handle = ++m_pState->lastHandle;
    m_pState->lines.emplace(handle, std::move(line));
    return handle;
}

int SerialPort::close(int handle) {
    std::shared_ptr<Line> closed;
    const std::lock_guard guard(m_pState->mutex);
    const auto found = m_pState->lines.find(handle);
    if (found == m_pState->lines.end())
        return 0;
    closed = std::move(found->second);
    m_pState->lines.erase(found);
    return 1;
}

int SerialPort::setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) {
    const std::shared_ptr<Line> line = m_pState->find(handle);
    const BaudRate* const rate = findBaudRate(baudRate);
    if (line == nullptr || rate == nullptr || dataBits < 5 || dataBits > 8 || parity < 0 || parity > 2 ||
        stopBits < 1 || stopBits > 2)
        return 0;
    return line->set(*rate, CHARACTER_SIZES[static_cast<std::size_t>(dataBits - 5)],
                     PARITIES[static_cast<std::size_t>(parity)], stopBits == 2 ? tcflag_t{CSTOPB} : 0)
               ? 1
               : 0;
}

int SerialPort::send(int handle, const char* bytes, int length) {
    const std::shared_ptr<Line> line = m_pState->find(handle);
    return line == nullptr || bytes == nullptr || length < 0 ? -1 : line->send(bytes, length);
}

int SerialPort::recv(int handle, char* buffer, int length, int timeout) {
    const std::shared_ptr<Line> line = m_pState->find(handle);
    if (line == nullptr || buffer == nullptr || length < 0)
        return -1;
    constexpr int MILLISECONDS = 100;
    return line->recv(buffer, length, std::clamp(timeout, 0, INT_MAX / MILLISECONDS) * MILLISECONDS);
}

} // namespace sensorhost
