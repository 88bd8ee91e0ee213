// Without it a device with a large inode number cannot be looked at on a 32-bit device.
#define _FILE_OFFSET_BITS 64 // NOLINT(bugprone-reserved-identifier): libc asks for it by this name

#include "host/linux/SerialDevice.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>

namespace sensorhost {

namespace {

using Clock = std::chrono::steady_clock;

struct BaudRate {
    int rate;
    speed_t speed;
};

constexpr auto BaudRates = std::to_array<BaudRate>({
    {50, B50},           {75, B75},           {110, B110},         {134, B134},         {150, B150},
    {200, B200},         {300, B300},         {600, B600},         {1200, B1200},       {1800, B1800},
    {2400, B2400},       {4800, B4800},       {9600, B9600},       {19200, B19200},     {38400, B38400},
    {57600, B57600},     {115200, B115200},   {230400, B230400},   {460800, B460800},   {500000, B500000},
    {576000, B576000},   {921600, B921600},   {1000000, B1000000}, {1152000, B1152000}, {1500000, B1500000},
    {2000000, B2000000}, {2500000, B2500000}, {3000000, B3000000}, {3500000, B3500000}, {4000000, B4000000},
});

constexpr auto CharacterSizes = std::to_array<tcflag_t>({CS5, CS6, CS7, CS8});
constexpr auto Parities = std::to_array<tcflag_t>({0, PARENB | PARODD, PARENB});

const BaudRate* findBaudRate(int rate) {
    const auto* const found =
        std::find_if(BaudRates.begin(), BaudRates.end(), [rate](const BaudRate& entry) { return entry.rate == rate; });
    return found != BaudRates.end() ? found : nullptr;
}

bool isPseudoTerminal(const struct stat& status) {
    constexpr unsigned int FirstSlaves = 136; // the kernel's fixed numbers of the slaves
    constexpr unsigned int LastSlaves = 143;
    const unsigned int number = major(status.st_rdev);
    return number >= FirstSlaves && number <= LastSlaves;
}

/// Who holds the lock on the device: "process 1234 (name)".
std::string findHolder(const struct stat& status) {
    std::ifstream locks("/proc/locks");
    for (std::string line; std::getline(locks, line);) {
        int process = 0;
        unsigned int majorNumber = 0;
        unsigned int minorNumber = 0;
        unsigned long long inode = 0;
        if (std::sscanf(line.c_str(), "%*d: FLOCK %*s %*s %d %x:%x:%llu", &process, &majorNumber, &minorNumber,
                        &inode) != 4 ||
            process <= 0 || inode != status.st_ino || makedev(majorNumber, minorNumber) != status.st_dev)
            continue;
        std::string name;
        std::ifstream comm("/proc/" + std::to_string(process) + "/comm");
        std::getline(comm, name);
        return "process " + std::to_string(process) + (name.empty() ? "" : " (" + name + ')');
    }
    return "another process";
}

} // namespace

SerialDevice::SerialDevice(int descriptor, bool isPseudoTerminal)
    : m_Descriptor(descriptor), m_bPseudoTerminal(isPseudoTerminal) {}

SerialDevice::~SerialDevice() { release(); }

std::shared_ptr<SerialDevice> SerialDevice::open(const std::string& name, const LineFormat& format,
                                                 std::string& failure) {
    // Not even opened: whoever waits at the other end of a pipe would take it for a start.
    struct stat status {};
    if (::stat(name.c_str(), &status) == 0 && !S_ISCHR(status.st_mode)) {
        failure = name + " is no serial port";
        return nullptr;
    }
    const int descriptor = ::open(name.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        failure = name + (errno == EBUSY ? " is in use by " + findHolder(status)
                                         : " cannot be opened: " + std::generic_category().message(errno));
        return nullptr;
    }
    ::fstat(descriptor, &status);
    auto device = std::make_shared<SerialDevice>(descriptor, isPseudoTerminal(status));
    if (::isatty(descriptor) == 0)
        failure = name + " is no serial port";
    else if (!device->take())
        failure = name + " is in use by " + findHolder(status);
    else if (!device->set(format))
        failure = name + " does not take serial settings";
    else
        return device;
    return nullptr;
}

// The lock is seen by whoever asks for it, of any user; the exclusive mode also keeps out those that do not ask. A
// pseudo-terminal keeps that mode for as long as its master lives: a client that was killed would lock every later one
// out that is not the superuser.
bool SerialDevice::take() {
    if (::flock(m_Descriptor.get(), LOCK_EX | LOCK_NB) != 0)
        return false;
    m_bTaken = true;
    if (!m_bPseudoTerminal)
        ::ioctl(m_Descriptor.get(), TIOCEXCL);
    return true;
}

// Once: the mode of whoever took the device behind us is not ours to end.
void SerialDevice::release() {
    if (!m_bTaken.exchange(false))
        return;
    if (!m_bPseudoTerminal)
        ::ioctl(m_Descriptor.get(), TIOCNXCL);
    ::flock(m_Descriptor.get(), LOCK_UN);
}

bool SerialDevice::isAt(const std::string& name) const {
    struct stat own {};
    struct stat there {};
    return ::fstat(m_Descriptor.get(), &own) == 0 && ::stat(name.c_str(), &there) == 0 && own.st_dev == there.st_dev &&
           own.st_ino == there.st_ino;
}

bool SerialDevice::set(const LineFormat& format) {
    const BaudRate* const baudRate = findBaudRate(format.baudRate);
    if (baudRate == nullptr || format.dataBits < 5 || format.dataBits > 8 || format.parity < 0 || format.parity > 2 ||
        format.stopBits < 1 || format.stopBits > 2)
        return false;
    termios settings{};
    if (::tcgetattr(m_Descriptor.get(), &settings) != 0)
        return false;
    ::cfmakeraw(&settings);
    settings.c_iflag &= ~tcflag_t{IXON | IXOFF | IXANY | INPCK};
    settings.c_cflag &= ~tcflag_t{CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS | HUPCL};
    settings.c_cflag |= CharacterSizes[static_cast<std::size_t>(format.dataBits - 5)] |
                        Parities[static_cast<std::size_t>(format.parity)] |
                        (format.stopBits == 2 ? tcflag_t{CSTOPB} : 0) | CLOCAL | CREAD;
    settings.c_cc[VMIN] = 0;
    settings.c_cc[VTIME] = 0;
    ::cfsetispeed(&settings, baudRate->speed);
    ::cfsetospeed(&settings, baudRate->speed);
    if (::tcsetattr(m_Descriptor.get(), TCSANOW, &settings) != 0)
        return false;

    // The call succeeds if the device took any of the settings. Pseudo-terminals force the character format, so only
    // the rate can be held against it.
    termios taken{};
    if (::tcgetattr(m_Descriptor.get(), &taken) != 0 || ::cfgetospeed(&taken) != baudRate->speed)
        return false;
    constexpr int BitsOf512Characters = 512 * 11;
    m_nSendLimit = 1000 + BitsOf512Characters * 1000 / baudRate->rate;
    return true;
}

int SerialDevice::await(short events, int milliseconds) const {
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(milliseconds);
    pollfd entry{m_Descriptor.get(), events, 0};
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

int SerialDevice::send(const char* bytes, int length) {
    int sent = 0;
    while (sent < length) {
        const ssize_t written = ::write(m_Descriptor.get(), bytes + sent, static_cast<std::size_t>(length - sent));
        if (written > 0) {
            sent += static_cast<int>(written);
            m_bWorked = true;
        } else if (written < 0 && errno == EINTR) {
            continue;
        } else if (written < 0 && errno != EAGAIN) {
            m_bGone = true;
            return sent > 0 ? sent : -1;
        } else if ((await(POLLOUT, m_nSendLimit) & (POLLOUT | POLLHUP | POLLERR | POLLNVAL)) == 0) {
            return sent;
        }
    }
    return sent;
}

int SerialDevice::recv(char* buffer, int length, int silence) {
    constexpr int EmptyReads = 3;
    int received = 0;
    int empty = 0;
    while (received < length) {
        const int events = await(POLLIN, silence);
        if (events == 0)
            return received;
        const ssize_t got = ::read(m_Descriptor.get(), buffer + received, static_cast<std::size_t>(length - received));
        const int error = got < 0 ? errno : 0;
        if (got > 0) {
            received += static_cast<int>(got);
            empty = 0;
            m_bWorked = true;
        } else if (error == EINTR || (error == EAGAIN && (events & (POLLHUP | POLLERR | POLLNVAL)) == 0)) {
            continue;
        } else if (got < 0 || (events & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
            m_bGone = true;
            return received > 0 ? received : -1;
        } else if (++empty == EmptyReads) {
            // Input is reported and there is none, again and again: another thread was quicker, or the driver is ill.
            return received > 0 ? received : -1;
        }
    }
    return received;
}

} // namespace sensorhost
