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
    add(std::move(line), result == length ? Outcome::Silent : Outcome::PortFailed);
}

void WireTrace::onReceive(double seconds, const char* bytes, int received, int wanted, int timeout) {
    const std::lock_guard guard(m_Mutex);
    if (received == 0 && !m_bAnswerDue)
        return;
    TraceLine line;
    line.seconds = seconds - m_dStart;
    line.direction = TraceLine::Direction::Received;
    Outcome outcome = Outcome::Answered;
    if (received > 0) {
        line.bytes = copyOf(bytes, received);
        outcome = received < wanted ? Outcome::Incomplete : Outcome::Answered;
    } else if (received == 0) {
        char text[64];
        std::snprintf(text, sizeof text, "nothing within %d.%d s, %d bytes wanted", timeout / 10, timeout % 10, wanted);
        line.meaning = text;
        outcome = Outcome::Silent;
    } else {
        line.meaning = "the port failed";
        outcome = Outcome::PortFailed;
    }
    // Bytes that come behind an answer are drained: they say nothing of what became of the command.
    if (!m_bAnswerDue)
        outcome = received < 0 ? Outcome::PortFailed : Outcome::NothingSent;
    m_bAnswerDue = false;
    add(std::move(line), outcome);
}

void WireTrace::add(TraceLine line, Outcome outcome) {
    if (m_pDecoder != nullptr)
        line.decode(*m_pDecoder);
    for (const std::unique_ptr<Listener>& listener : m_Listeners)
        listener->hear(line);
    m_Entries.push_back({std::move(line), std::this_thread::get_id(), outcome});
    if (m_Entries.size() > Capacity) {
        m_Entries.pop_front();
        ++m_nForgotten;
    }
}

std::size_t WireTrace::mark() const {
    const std::lock_guard guard(m_Mutex);
    return m_nForgotten + m_Entries.size();
}

WireTrace::Outcome WireTrace::outcomeSince(std::size_t mark) const {
    const std::lock_guard guard(m_Mutex);
    for (std::size_t i = m_Entries.size(); i > 0 && i + m_nForgotten > mark; --i) {
        const Entry& entry = m_Entries[i - 1];
        if (entry.thread == std::this_thread::get_id() && entry.outcome != Outcome::NothingSent)
            return entry.outcome;
    }
    return Outcome::NothingSent;
}

std::vector<TraceLine> WireTrace::linesSince(std::size_t mark, std::size_t limit) const {
    const std::lock_guard guard(m_Mutex);
    std::vector<TraceLine> lines;
    for (std::size_t i = m_Entries.size(); i > 0 && i + m_nForgotten > mark && lines.size() < limit; --i)
        if (m_Entries[i - 1].thread == std::this_thread::get_id())
            lines.push_back(m_Entries[i - 1].line);
    std::reverse(lines.begin(), lines.end());
    return lines;
}

std::vector<TraceLine> WireTrace::lastLines(std::size_t limit) const {
    const std::lock_guard guard(m_Mutex);
    std::vector<TraceLine> lines;
    for (std::size_t i = m_Entries.size() - std::min(m_Entries.size(), limit); i < m_Entries.size(); ++i)
        lines.push_back(m_Entries[i].line);
    return lines;
}

} // namespace sensorctl
