#pragma once

#include "host/IUARTController.h"
#include "simulator/InProcessLine.h"
#include "simulator/TimeSource.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

/// The host's clock as a simulated line sees it.
class HostTime final : public camerasim::TimeSource {
public:
    std::int64_t nowMicroseconds() override;
    void waitMicroseconds(std::int64_t microseconds) override;
};

/// A simulated block as the host's serial port, without a thread or a pseudo-terminal in between. Keeps every frame
/// sent, and what was done with the port.
///
/// Where a module has a second port, the first device opened is the block, and another name, or the same name opened
/// once more, is what stands at the second one.
class BlockPort final : public IUARTController {
public:
    explicit BlockPort(int moduleId = 16, const camerasim::BlockSettings& settings = {});
    /// The block of a name, for models that no module id stands for.
    explicit BlockPort(std::string_view blockName, const camerasim::BlockSettings& settings = {});

    int open(const char* deviceName) override;
    int close(int handle) override;
    int setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) override;
    int send(int handle, const char* bytes, int length) override;
    int recv(int handle, char* buffer, int length, int timeout) override;

    camerasim::InProcessLine& line() { return m_Line; }
    /// What stands at the second port; null for a module with one.
    camerasim::InProcessLine* companion() { return m_pCompanion.get(); }

    /// Frames sent since the last call, on both ports, as hex: "81 01 04 4E 00 00 00 07 FF".
    std::vector<std::string> takeSent();
    void addFault(const std::string& plan);
    void clearFaults();
    /// All ones if there is no such register.
    std::uint32_t registerValue(std::uint32_t address);
    std::uint32_t registerValue(std::string_view name);
    void setAmbient(camerasim::Ambient ambient);
    /// The light at the block's sensor, in lux.
    void setLight(double lux);

    bool m_bOpens = true;
    std::string m_strDeviceName;
    std::vector<int> m_LineSettings; ///< as setParameter got them for the block
    std::atomic<int> m_nReceives{0};

private:
    BlockPort(std::unique_ptr<camerasim::CameraBlock> block, std::unique_ptr<camerasim::CameraBlock> companion);

    /// Null for a handle that open did not give.
    camerasim::InProcessLine* lineOf(int handle);

    HostTime m_Time;
    camerasim::InProcessLine m_Line;
    std::unique_ptr<camerasim::InProcessLine> m_pCompanion;
    int m_nOpens = 0; ///< of the block's device name
    std::mutex m_Mutex;
    std::vector<std::string> m_Sent;
};

std::string toHex(const char* bytes, int length);
