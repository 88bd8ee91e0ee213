#include "WireTrace.h"

#include "host/BRDeviceTime.h"

#include <algorithm>
#include <cstdio>

namespace sensorctl {

namespace {

constexpr std::size_t Capacity = 4096;

std::vector<std::uint8_t> copyOf(const char* bytes, int length) {
    return {reinterpret_cast<const std::uint8_t*>(bytes), reinterpret_cast<const std::uint8_t*>(bytes) + length};
}

} // namespace

WireTrace::WireTrace(std::unique_ptr<FrameDecoder> decoder)
    : m_pDecoder(std::move(decoder)), m_dStart(BRDeviceTime::getSeconds()) {}

void WireTrace::onSend(double seconds, const char* bytes, int length, int result) {
    TraceLine line;
    line.seconds = seconds - m_dStart;
    line.direction = result == length ? TraceLine::Direction::Sent : TraceLine::Direction::SendFailed;
    line.bytes = copyOf(bytes, length);
    const std::lock_guard guard(m_Mutex);
    m_bAnswerDue = result == length;
    add(std::move(line));
}

void WireTrace::onReceive(double seconds, const char* bytes, int received, int wanted, int timeout) {
    const std::lock_guard guard(m_Mutex);
    if (received == 0 && !m_bAnswerDue)
        return;
    TraceLine line;
    line.seconds = seconds - m_dStart;
    line.direction = TraceLine::Direction::Received;
    if (received > 0) {
        line.bytes = copyOf(bytes, received);
    } else if (received == 0) {
        char text[64];
        std::snprintf(text, sizeof text, "nothing within %d.%d s, %d bytes wanted", timeout / 10, timeout % 10, wanted);
        line.meaning = text;
    } else {
        line.meaning = "the port failed";
    }
    m_bAnswerDue = false;
    add(std::move(line));
}

void WireTrace::add(TraceLine line) {
    if (m_pDecoder != nullptr)
        line.decode(*m_pDecoder);
    for (const std::unique_ptr<Listener>& listener : m_Listeners)
        listener->hear(line);
    m_Lines.push_back(std::move(line));
    if (m_Lines.size() > Capacity)
        m_Lines.pop_front();
}

std::vector<TraceLine> WireTrace::lastLines(std::size_t limit) const {
    const std::lock_guard guard(m_Mutex);
    return {m_Lines.end() - static_cast<std::ptrdiff_t>(std::min(m_Lines.size(), limit)), m_Lines.end()};
}

} // namespace sensorctl
