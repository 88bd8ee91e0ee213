#include "simulator/InProcessLine.h"

#include <algorithm>

namespace camerasim {

namespace {

constexpr std::int64_t microsecondsPerTenth = 100'000;

} // namespace

InProcessLine::InProcessLine(std::unique_ptr<CameraBlock> p_pBlock, TimeSource& p_Time, int p_nBaud)
    : m_pBlock(std::move(p_pBlock)), m_Time(p_Time), m_Line(*m_pBlock, p_nBaud) {}

std::ptrdiff_t InProcessLine::send(std::span<const std::uint8_t> p_Bytes) {
    const std::lock_guard lock(m_Mutex);
    return m_Line.write(p_Bytes, m_Time.nowMicroseconds());
}

std::size_t InProcessLine::recv(std::span<std::uint8_t> p_Buffer, int p_nTenths) {
    const std::int64_t nSilence = std::max(p_nTenths, 0) * microsecondsPerTenth;
    std::int64_t nDeadline = m_Time.nowMicroseconds() + nSilence;
    std::size_t nReceived = 0;
    while (nReceived < p_Buffer.size()) {
        std::int64_t nNow = 0;
        std::int64_t nDue = 0;
        {
            const std::lock_guard lock(m_Mutex);
            nNow = m_Time.nowMicroseconds();
            const std::size_t nNew = m_Line.read(p_Buffer.subspan(nReceived), nNow);
            nReceived += nNew;
            if (nNew > 0) {
                nDeadline = nNow + nSilence;
            }
            nDue = m_Line.nextDue();
        }
        if (nReceived == p_Buffer.size() || nNow >= nDeadline) {
            break;
        }
        m_Time.waitMicroseconds(std::max<std::int64_t>(std::min(nDue, nDeadline) - nNow, 1));
    }
    return nReceived;
}

} // namespace camerasim
