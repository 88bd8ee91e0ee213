#include "BlockPort.h"

#include "host/BRDeviceTime.h"
#include "host/BreltoTime.h"
#include "simulator/BlockRegistry.h"

#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace {

constexpr int Handle = 3;
constexpr int SecondHandle = 4;

std::span<const std::uint8_t> asBytes(const char* bytes, int length) {
    return {reinterpret_cast<const std::uint8_t*>(bytes), static_cast<std::size_t>(length)};
}

} // namespace

std::int64_t HostTime::nowMicroseconds() { return std::llround(BRDeviceTime::getSeconds() * 1e6); }

void HostTime::waitMicroseconds(std::int64_t microseconds) {
    BreltoTime::wait(BreltoTime(static_cast<long>(microseconds / 1000000), static_cast<long>(microseconds % 1000000)));
}

BlockPort::BlockPort(int moduleId, const camerasim::BlockSettings& settings)
    : BlockPort(camerasim::makeBlock(moduleId, settings), camerasim::makeCompanion(moduleId, settings)) {}

BlockPort::BlockPort(std::string_view blockName, const camerasim::BlockSettings& settings)
    : BlockPort(camerasim::makeBlock(blockName, settings), nullptr) {}

BlockPort::BlockPort(std::unique_ptr<camerasim::CameraBlock> block, std::unique_ptr<camerasim::CameraBlock> companion)
    : m_Line(std::move(block), m_Time) {
    if (companion != nullptr)
        m_pCompanion = std::make_unique<camerasim::InProcessLine>(std::move(companion), m_Time);
}

int BlockPort::open(const char* deviceName) {
    if (!m_bOpens)
        return -1;
    if (m_nOpens == 0)
        m_strDeviceName = deviceName;
    const bool isBlocks = m_strDeviceName == deviceName;
    m_nOpens += isBlocks ? 1 : 0;
    const bool isSecond = m_pCompanion != nullptr && (!isBlocks || m_nOpens % 2 == 0);
    return isSecond ? SecondHandle : Handle;
}

int BlockPort::close(int) { return 1; }

int BlockPort::setParameter(int handle, int baudRate, int dataBits, int parity, int stopBits) {
    if (handle == Handle)
        m_LineSettings = {baudRate, dataBits, parity, stopBits};
    return 1;
}

camerasim::InProcessLine* BlockPort::lineOf(int handle) {
    if (handle == SecondHandle)
        return m_pCompanion.get();
    return handle == Handle ? &m_Line : nullptr;
}

int BlockPort::send(int handle, const char* bytes, int length) {
    camerasim::InProcessLine* const line = lineOf(handle);
    if (line == nullptr)
        return -1;
    {
        const std::lock_guard lock(m_Mutex);
        m_Sent.push_back(toHex(bytes, length));
    }
    return static_cast<int>(line->send(asBytes(bytes, length)));
}

int BlockPort::recv(int handle, char* buffer, int length, int timeout) {
    camerasim::InProcessLine* const line = lineOf(handle);
    if (line == nullptr)
        return -1;
    ++m_nReceives;
    return static_cast<int>(
        line->recv({reinterpret_cast<std::uint8_t*>(buffer), static_cast<std::size_t>(length)}, timeout));
}

std::vector<std::string> BlockPort::takeSent() {
    const std::lock_guard lock(m_Mutex);
    return std::exchange(m_Sent, {});
}

void BlockPort::addFault(const std::string& plan) {
    std::string error;
    m_Line.withLine([&](camerasim::Line& line, std::int64_t) {
        if (!line.faults().add(plan, error))
            throw std::invalid_argument(error);
    });
}

void BlockPort::clearFaults() {
    m_Line.withLine([](camerasim::Line& line, std::int64_t) { line.faults().clear(); });
}

std::uint32_t BlockPort::registerValue(std::uint32_t address) {
    return m_Line.withBlock([&](const camerasim::CameraBlock& block, std::int64_t) {
        return block.registerValue(address).value_or(0xffffffff);
    });
}

std::uint32_t BlockPort::registerValue(std::string_view name) {
    return m_Line.withBlock([&](const camerasim::CameraBlock& block, std::int64_t) {
        return block.registerValue(name).value_or(0xffffffff);
    });
}

void BlockPort::setLight(double lux) {
    m_Line.withBlock([&](camerasim::CameraBlock& block, std::int64_t) { block.setLight(lux); });
}

void BlockPort::setAmbient(camerasim::Ambient ambient) {
    m_Line.withBlock([&](camerasim::CameraBlock& block, std::int64_t) { block.setAmbient(ambient); });
}

std::string toHex(const char* bytes, int length) {
    std::string text;
    for (int i = 0; i < length; ++i) {
        char byte[8];
        std::snprintf(byte, sizeof byte, i == 0 ? "%02X" : " %02X", static_cast<unsigned char>(bytes[i]));
        text += byte;
    }
    return text;
}
