#pragma once

#include "host/IGPIO.h"
#include "host/IUARTController.h"

#include <map>
#include <mutex>
#include <string>
#include <utility>

// A host layer in its smallest whole form: every class and function that libsensorcontrol.so leaves open, and nothing
// else. Copy it and replace what the comments name; the headers of the classes are the installed ones.

namespace hostlayer {

/// The folder under which the library's absolute paths live, "" on the device. Set once, before a controller starts.
void setPathPrefix(const std::string& folder);
std::string hostPath(const std::string& devicePath);

/// Serial ports by termios; the handle is the descriptor.
class UartPort final : public IUARTController {
public:
    int open(const char* deviceName) override;
    int close(int handle) override;
    int setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) override;
    int send(int handle, const char* bytes, int length) override;
    int recv(int handle, char* buffer, int length, int timeout) override;
};

/// Pins that remember what they were set to. A product drives its own: IR-cut filter, IR lights, light sensor.
class MemoryPins final : public IGPIO {
public:
    int enable() override { return 1; }
    int disable() override { return 1; }
    int setValue(int group, int pin, int value) override;
    int getValue(int group, int pin, int& value) override;

private:
    std::mutex m_Mutex; // the controller's thread and the host's calls come here
    std::map<std::pair<int, int>, int> m_Levels;
};

} // namespace hostlayer
