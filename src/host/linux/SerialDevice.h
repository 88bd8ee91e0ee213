#pragma once

#include "host/linux/FileSystem.h"

#include <atomic>
#include <memory>
#include <string>

#include <sys/types.h>

namespace sensorhost {

/// The format of a serial line, in the terms of IUARTController::setParameter.
struct LineFormat {
    int baudRate = 9600;
    int dataBits = 8;
    int parity = 0;
    int stopBits = 1;
};

/// A serial device that this process alone has open. Any thread may call it.
class SerialDevice {
public:
    /// Takes the device for this process and sets it raw, in the format. Null with a sentence that says why not; the
    /// process that has the device is named. What is no character device is left alone.
    static std::shared_ptr<SerialDevice> open(const std::string& name, const LineFormat& format, std::string& failure);

    SerialDevice(int descriptor, bool isPseudoTerminal);
    /// Releases and closes it.
    ~SerialDevice();
    SerialDevice(const SerialDevice&) = delete;
    SerialDevice& operator=(const SerialDevice&) = delete;

    /// False for a format that the device does not take.
    bool set(const LineFormat& format);
    /// As IUARTController's; `silence` in milliseconds.
    int send(const char* bytes, int length);
    int recv(char* buffer, int length, int silence);

    /// Lets others have the device from now on. Calls under way end as they would; the descriptor closes behind the
    /// last.
    void release();

    /// The device hung up, as a call found out: it is of no use any more.
    bool isGone() const { return m_bGone; }
    /// A byte went through since it was opened.
    bool hasWorked() const { return m_bWorked; }
    /// The path leads to this device.
    bool isAt(const std::string& name) const;

private:
    bool take();
    /// Waits for the events: those that came, 0 when the time is over.
    int await(short events, int milliseconds) const;

    const Descriptor m_Descriptor;
    const bool m_bPseudoTerminal;
    std::atomic<bool> m_bTaken{false};
    std::atomic<bool> m_bGone{false};
    std::atomic<bool> m_bWorked{false};
    std::atomic<int> m_nSendLimit{0}; ///< milliseconds without progress
};

} // namespace sensorhost
