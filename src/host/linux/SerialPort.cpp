#define _FILE_OFFSET_BITS 64 // NOLINT(bugprone-reserved-identifier): libc asks for it by this name

#include "host/linux/SerialPort.h"

#include "host/linux/SerialDevice.h"

#include <algorithm>
#include <chrono>
#include <climits>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include <sys/stat.h>

namespace sensorhost {

namespace {

using Clock = std::chrono::steady_clock;

/// What a path leads to at a moment. Another adapter under the same path differs, and so does the same node with other
/// rights: udev gives them a moment after the node is there.
struct Node {
    dev_t device = 0;
    ino_t inode = 0;
    dev_t number = 0;
    time_t changed = 0;
    long changedNanoseconds = 0;
    bool operator==(const Node&) const = default;
};

Node nodeAt(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return {};
    return {status.st_dev, status.st_ino, status.st_rdev, status.st_ctim.tv_sec, status.st_ctim.tv_nsec};
}

struct Listening {
    std::mutex mutex;
    std::shared_ptr<PortListener> listener;
};

/// A device by its name, over all its comings and goings.
class Line {
public:
    Line(std::string name, std::shared_ptr<Listening> listening)
        : m_strName(std::move(name)), m_pListening(std::move(listening)) {}

    /// One more handle. False with a sentence that says why not.
    bool open(std::string& failure);
    /// One handle less.
    void close();

    bool set(const LineFormat& format);
    int send(const char* bytes, int length);
    int recv(char* buffer, int length, int silence);

private:
    /// The device, held: it stays open until the call that uses it has ended. Null while it is gone.
    std::shared_ptr<SerialDevice> findDevice();
    void lose(const std::shared_ptr<SerialDevice>& device);
    void tell();

    const std::string m_strName;
    const std::shared_ptr<Listening> m_pListening;

    std::mutex m_Mutex;
    int m_nHandles = 0;
    LineFormat m_Format;
    std::shared_ptr<SerialDevice> m_pDevice;
    Node m_Tried; ///< what the last attempt to get the device back was made on
    Clock::time_point m_NextTry;
    enum class Event { Lost, Back };
    std::deque<Event> m_Untold;
    bool m_bTelling = false;
};

bool Line::open(std::string& failure) {
    bool isOpen = false;
    {
        const std::lock_guard guard(m_Mutex);
        m_Format = {};
        isOpen = m_pDevice != nullptr && m_pDevice->isAt(m_strName) && m_pDevice->set(m_Format);
        if (!isOpen) {
            if (m_pDevice != nullptr) {
                m_pDevice->release();
                m_Untold.push_back(Event::Lost);
            }
            m_pDevice = SerialDevice::open(m_strName, m_Format, failure);
            isOpen = m_pDevice != nullptr;
            if (isOpen && m_nHandles > 0)
                m_Untold.push_back(Event::Back);
        }
        if (isOpen)
            ++m_nHandles;
    }
    tell();
    return isOpen;
}

void Line::close() {
    const std::lock_guard guard(m_Mutex);
    if (--m_nHandles > 0 || m_pDevice == nullptr)
        return;
    m_pDevice->release();
    m_pDevice.reset();
}

bool Line::set(const LineFormat& format) {
    const std::lock_guard guard(m_Mutex);
    if (m_pDevice == nullptr || !m_pDevice->set(format))
        return false;
    m_Format = format;
    return true;
}

int Line::send(const char* bytes, int length) {
    for (int round = 0; round < 2; ++round) {
        const std::shared_ptr<SerialDevice> device = findDevice();
        if (device == nullptr)
            return -1;
        const int sent = device->send(bytes, length);
        if (!device->isGone())
            return sent;
        lose(device);
        if (sent > 0)
            return sent;
    }
    return -1;
}

int Line::recv(char* buffer, int length, int silence) {
    const std::shared_ptr<SerialDevice> device = findDevice();
    if (device == nullptr)
        return -1;
    const int received = device->recv(buffer, length, silence);
    if (device->isGone())
        lose(device);
    return received;
}

std::shared_ptr<SerialDevice> Line::findDevice() {
    std::shared_ptr<SerialDevice> device;
    {
        const std::lock_guard guard(m_Mutex);
        if (m_pDevice != nullptr || m_nHandles == 0)
            return m_pDevice;
        const Node there = nodeAt(m_strName);
        const Clock::time_point now = Clock::now();
        if (there == m_Tried && now < m_NextTry)
            return nullptr;
        m_Tried = there;
        m_NextTry = now + std::chrono::seconds(1);
        std::string failure;
        m_pDevice = SerialDevice::open(m_strName, m_Format, failure);
        if (m_pDevice == nullptr)
            return nullptr;
        device = m_pDevice;
        m_Untold.push_back(Event::Back);
    }
    tell();
    return device;
}

void Line::lose(const std::shared_ptr<SerialDevice>& device) {
    {
        const std::lock_guard guard(m_Mutex);
        if (m_pDevice != device)
            return;
        // A descriptor that stayed open would keep the name from a new adapter.
        m_pDevice->release();
        m_pDevice.reset();
        if (device->hasWorked())
            m_NextTry = {};
        m_Untold.push_back(Event::Lost);
    }
    tell();
}

// One thread tells at a time, or "lost" could overtake "back".
void Line::tell() {
    std::unique_lock lock(m_Mutex);
    if (m_bTelling)
        return;
    m_bTelling = true;
    while (!m_Untold.empty()) {
        const Event event = m_Untold.front();
        m_Untold.pop_front();
        lock.unlock();
        std::shared_ptr<PortListener> listener;
        {
            const std::lock_guard guard(m_pListening->mutex);
            listener = m_pListening->listener;
        }
        if (listener != nullptr && event == Event::Lost)
            listener->onPortLost(m_strName);
        else if (listener != nullptr)
            listener->onPortBack(m_strName);
        lock.lock();
    }
    m_bTelling = false;
}

} // namespace

PortListener::~PortListener() = default;

struct SerialPort::State {
    mutable std::mutex mutex;
    std::map<int, std::shared_ptr<Line>> lines;
    std::map<std::string, std::weak_ptr<Line>> names;
    int lastHandle = 0; ///< handles are not used again: a stale one must not reach another device
    std::string failure;
    std::shared_ptr<Listening> listening = std::make_shared<Listening>();

    /// The line, held for the call that uses it.
    std::shared_ptr<Line> find(int handle) const {
        const std::lock_guard guard(mutex);
        const auto found = lines.find(handle);
        return found != lines.end() ? found->second : nullptr;
    }

    std::shared_ptr<Line> lineOf(const std::string& name) {
        const std::lock_guard guard(mutex);
        std::erase_if(names, [](const auto& entry) { return entry.second.expired(); });
        std::shared_ptr<Line> line = names[name].lock();
        if (line == nullptr) {
            line = std::make_shared<Line>(name, listening);
            names[name] = line;
        }
        return line;
    }
};

SerialPort::SerialPort() : m_pState(std::make_unique<State>()) {}

SerialPort::~SerialPort() = default;

int SerialPort::open(const char* deviceName) {
    State& s = *m_pState;
    std::string failure;
    std::shared_ptr<Line> line = s.lineOf(deviceName != nullptr ? deviceName : "");
    const bool isOpen = line->open(failure);
    const std::lock_guard guard(s.mutex);
    s.failure = isOpen ? "" : failure;
    if (!isOpen)
        return -1;
    const int handle = ++s.lastHandle;
    s.lines.emplace(handle, std::move(line));
    return handle;
}

int SerialPort::close(int handle) {
    std::shared_ptr<Line> closed;
    {
        const std::lock_guard guard(m_pState->mutex);
        const auto found = m_pState->lines.find(handle);
        if (found == m_pState->lines.end())
            return 0;
        closed = std::move(found->second);
        m_pState->lines.erase(found);
    }
    closed->close();
    return 1;
}

int SerialPort::setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) {
    const std::shared_ptr<Line> line = m_pState->find(handle);
    return line != nullptr && line->set({baudRate, dataBits, parity, stopBits}) ? 1 : 0;
}

int SerialPort::send(int handle, const char* bytes, int length) {
    const std::shared_ptr<Line> line = m_pState->find(handle);
    return line == nullptr || bytes == nullptr || length < 0 ? -1 : line->send(bytes, length);
}

int SerialPort::recv(int handle, char* buffer, int length, int timeout) {
    const std::shared_ptr<Line> line = m_pState->find(handle);
    if (line == nullptr || buffer == nullptr || length < 0)
        return -1;
    constexpr int Milliseconds = 100;
    return line->recv(buffer, length, std::clamp(timeout, 0, INT_MAX / Milliseconds) * Milliseconds);
}

std::string SerialPort::getOpenFailure() const {
    const std::lock_guard guard(m_pState->mutex);
    return m_pState->failure;
}

void SerialPort::setListener(std::shared_ptr<PortListener> listener) {
    const std::lock_guard guard(m_pState->listening->mutex);
    std::swap(m_pState->listening->listener, listener);
}

} // namespace sensorhost
