#include "simulator/InProcessLine.h"

#include <algorithm>

namespace camerasim {

namespace {

constexpr std::int64_t MicrosecondsPerTenth = 100'000;
/// Waits in a row in which no time passed: the thread is being stopped, and its waits are cut.
constexpr int MostCutWaits = 3;

} // namespace

InProcessLine::InProcessLine(std::unique_ptr<CameraBlock> block, TimeSource& time, int baud)
    : m_pBlock(std::move(block)), m_Time(time), m_Line(*m_pBlock, baud) {}

std::ptrdiff_t InProcessLine::send(std::span<const std::uint8_t> bytes) {
    const std::lock_guard lock(m_Mutex);
    return m_Line.write(bytes, m_Time.nowMicroseconds());
}

std::size_t InProcessLine::recv(std::span<std::uint8_t> buffer, int tenths) {
    const std::int64_t silence = std::max(tenths, 0) * MicrosecondsPerTenth;
    std::int64_t deadline = m_Time.nowMicroseconds() + silence;
    std::size_t received = 0;
    int cutWaits = 0;
    while (received < buffer.size() && cutWaits < MostCutWaits) {
        std::int64_t now = 0;
        std::int64_t due = 0;
        {
            const std::lock_guard lock(m_Mutex);
            now = m_Time.nowMicroseconds();
            const std::size_t added = m_Line.read(buffer.subspan(received), now);
            received += added;
            if (added > 0) {
                deadline = now + silence;
            }
            due = m_Line.nextDue();
        }
        if (received == buffer.size() || now >= deadline) {
            break;
        }
        m_Time.waitMicroseconds(std::max<std::int64_t>(std::min(due, deadline) - now, 1));
        cutWaits = m_Time.nowMicroseconds() == now ? cutWaits + 1 : 0;
    }
    return received;
}

} // namespace camerasim
