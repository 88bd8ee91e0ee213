#pragma once

#include "host/IUARTController.h"
#include "simulator/InProcessLine.h"
#include "simulator/TimeSource.h"

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

/// The host's clock as a simulated line sees it.
class HostTime final : public camerasim::TimeSource {
public:
    std::int64_t nowMicroseconds() override;
    void waitMicroseconds(std::int64_t microseconds) override;
};

/// A simulated block as the host's serial port, without a thread or a pseudo-terminal in between. Keeps every frame
/// sent, and what was done with the port.
class BlockPort final : public IUARTController {
public:
    explicit BlockPort(int moduleId = 16, const camerasim::BlockSettings& settings = {});

    int open(const char* deviceName) override;
    int close(int handle) override;
    int setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) override;
    int send(int handle, const char* bytes, int length) override;
    int recv(int handle, char* buffer, int length, int timeout) override;

    camerasim::InProcessLine& line() { return m_Line; }

    /// Frames sent since the last call, as hex: "81 01 04 4E 00 00 00 07 FF".
    std::vector<std::string> takeSent();
    void addFault(const std::string& plan);
    void clearFaults();
    std::uint32_t registerValue(std::uint32_t address);
    void setAmbient(camerasim::Ambient ambient);

    bool m_bOpens = true;
    std::string m_strDeviceName;
    std::vector<int> m_LineSettings; ///< as setParameter got them
    std::atomic<int> m_nReceives{0};

private:
    HostTime m_Time;
    camerasim::InProcessLine m_Line;
    std::mutex m_Mutex;
    std::vector<std::string> m_Sent;
};

std::string toHex(const char* bytes, int length);
