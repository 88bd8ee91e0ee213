#include "simulator/Line.h"

#include <algorithm>
#include <utility>

namespace camerasim {

namespace {

constexpr std::int64_t MicrosecondsPerMillisecond = 1000;

/// Start, eight data bits and stop, in millionths of a second times the baud rate.
constexpr std::int64_t ByteBitMicroseconds = 10 * 1'000'000;

} // namespace

void Line::Flow::push(std::span<const std::uint8_t> bytes, std::int64_t start, int baud) {
    const std::int64_t begin = std::max(start, freeAt);
    std::int64_t count = 0;
    for (const std::uint8_t byte : bytes) {
        ++count;
        freeAt = baud == 0 ? begin : begin + count * ByteBitMicroseconds / baud;
        items.push_back({freeAt, byte});
    }
}

void Line::Flow::pop() {
    ++head;
    if (head == items.size()) {
        items.clear();
        head = 0;
    } else if (head >= 4096) {
        items.erase(items.begin(), items.begin() + static_cast<std::ptrdiff_t>(head));
        head = 0;
    }
}

void Line::Flow::clear() {
    items.clear();
    head = 0;
    freeAt = 0;
}

Line::Line(CameraBlock& block, int baud)
    : m_Block(block), m_nBaud(baud > 0 ? baud : 0), m_nPowerChanges(block.powerChanges()) {}

std::ptrdiff_t Line::write(std::span<const std::uint8_t> bytes, std::int64_t now) {
    advance(now);
    if (portGone(now)) {
        return -1;
    }
    std::size_t taken = bytes.size();
    const Fault* shortWrite = taken > 0 ? m_Faults.hit(FaultKind::ShortWrite, 1) : nullptr;
    if (shortWrite != nullptr) {
        m_Faults.beginExchange();
        --taken;
        if (shortWrite->argument >= 0) {
            taken = std::min(taken, static_cast<std::size_t>(shortWrite->argument));
        }
    }
    const std::span<const std::uint8_t> carried = bytes.first(taken);
    if (m_nBaud == 0 && m_ToBlock.empty()) {
        deliver(carried, now);
    } else {
        m_ToBlock.push(carried, now, m_nBaud);
    }
    return static_cast<std::ptrdiff_t>(taken);
}

std::size_t Line::read(std::span<std::uint8_t> buffer, std::int64_t now) {
    advance(now);
    std::size_t read = 0;
    while (read < buffer.size() && !m_ToHost.empty() && m_ToHost.front().time <= now) {
        buffer[read++] = m_ToHost.front().byte;
        m_ToHost.pop();
    }
    return read;
}

std::int64_t Line::nextDue() const {
    std::int64_t due = Never;
    if (!m_ToBlock.empty()) {
        due = std::min(due, m_ToBlock.front().time);
    }
    if (!m_Pending.empty()) {
        due = std::min(due, m_Pending.front().time);
    }
    if (!m_ToHost.empty()) {
        due = std::min(due, m_ToHost.front().time);
    }
    return due;
}

void Line::unplug(std::int64_t now, std::int64_t microseconds) {
    m_nGoneUntil = microseconds < 0 ? Never : now + microseconds;
    m_ToBlock.clear();
    m_ToHost.clear();
    m_Pending.clear();
    m_Held.clear();
}

void Line::advance(std::int64_t now) {
    dropUnsentAfterRestart();
    while (!m_ToBlock.empty() && m_ToBlock.front().time <= now) {
        const Flow::Item item = m_ToBlock.front();
        m_ToBlock.pop();
        deliver({&item.byte, 1}, item.time);
    }
    sendPending(now);
}

void Line::deliver(std::span<const std::uint8_t> bytes, std::int64_t now) {
    while (!bytes.empty() && !portGone(now)) {
        bytes = bytes.subspan(m_Block.feed(bytes, now));
        while (m_Block.nextFrame(now)) {
            serveFrame(now);
        }
    }
}

void Line::serveFrame(std::int64_t now) {
    // What was due before this frame is out, even if the frame restarts the block.
    sendPending(now);
    m_Faults.beginExchange();
    m_Made.clear();
    if (const Fault* gone = m_Faults.hit(FaultKind::PortGone)) {
        unplug(now, gone->argument * MicrosecondsPerMillisecond);
        return;
    }
    if (m_Faults.hit(FaultKind::Reboot) != nullptr) {
        m_Block.reboot(now, true);
        dropUnsentAfterRestart();
        return;
    }
    if (m_Faults.hit(FaultKind::Refuse) != nullptr) {
        m_Block.refuse(now, m_Made);
    } else {
        m_Block.execute(now, m_Made);
    }
    dropUnsentAfterRestart();
    for (const Fault& fault : m_Faults.faults()) {
        if (m_Faults.hits(fault)) {
            spoil(fault, now);
        }
    }
    schedule();
}

std::int64_t Line::replyTime(std::int64_t now) const {
    return m_Made.empty() ? now + m_Block.settings().reactionTime : m_Made.front().time;
}

void Line::spoil(const Fault& fault, std::int64_t now) {
    const auto insert = [this](std::size_t index, const WireFrame& frame) {
        m_Made.insert(m_Made.begin() + static_cast<std::ptrdiff_t>(std::min(index, m_Made.size())), frame);
    };
    const auto argument = static_cast<std::size_t>(std::max(fault.argument, 0));

    switch (fault.kind) {
    case FaultKind::Echo: {
        WireFrame echoed = m_Block.frame();
        echoed.time = replyTime(now);
        insert(0, echoed);
        return;
    }
    case FaultKind::NoiseBefore:
    case FaultKind::NoiseBetween: {
        WireFrame noise;
        noise.time = replyTime(now);
        for (std::size_t i = 0; i < std::min(argument, WireFrame::Capacity); ++i) {
            noise.append(static_cast<std::uint8_t>(m_Faults.random() >> 8));
        }
        insert(fault.kind == FaultKind::NoiseBefore ? 0 : 1, noise);
        return;
    }
    default:
        break;
    }
    if (m_Made.empty() || m_Made.front().length == 0) {
        return;
    }
    WireFrame& first = m_Made.front();
    switch (fault.kind) {
    case FaultKind::Silence:
        m_Made.clear();
        break;
    case FaultKind::Late:
        for (WireFrame& frame : m_Made) {
            frame.time += fault.argument * MicrosecondsPerMillisecond;
        }
        break;
    case FaultKind::Truncate:
        first.length = std::min(first.length, argument);
        break;
    case FaultKind::Split: {
        const std::size_t head = std::min(first.length, argument);
        WireFrame rest;
        rest.assign(first.bytes().subspan(head));
        rest.time = first.time + fault.extra * MicrosecondsPerMillisecond;
        first.length = head;
        for (std::size_t i = 1; i < m_Made.size(); ++i) {
            m_Made[i].time = std::max(m_Made[i].time, rest.time);
        }
        insert(1, rest);
        break;
    }
    case FaultKind::Merge:
        m_Held.insert(m_Held.end(), m_Made.begin(), m_Made.end());
        m_Made.clear();
        break;
    case FaultKind::Flip: {
        const std::size_t byte =
            fault.argument < 0 ? m_Faults.random() % first.length : std::min(argument, first.length - 1);
        const unsigned bit = fault.extra < 0 ? m_Faults.random() % 8U : static_cast<unsigned>(fault.extra) % 8U;
        first.buffer[byte] = static_cast<std::uint8_t>(first.buffer[byte] ^ 1U << bit);
        break;
    }
    case FaultKind::Duplicate: {
        const WireFrame copy = first;
        insert(1, copy);
        break;
    }
    case FaultKind::Checksum: {
        std::uint8_t& check = first.buffer[std::min(m_Block.checkByteIndex(first.bytes()), first.length - 1)];
        check = static_cast<std::uint8_t>(check + 1U);
        break;
    }
    default:
        break;
    }
}

void Line::schedule() {
    const auto add = [this](const WireFrame& frame) {
        const auto it = std::upper_bound(m_Pending.begin(), m_Pending.end(), frame.time,
                                         [](std::int64_t time, const WireFrame& other) { return time < other.time; });
        m_Pending.insert(it, frame);
    };
    if (m_Made.empty()) {
        return;
    }
    for (WireFrame& held : m_Held) {
        held.time = m_Made.front().time;
        add(held);
    }
    m_Held.clear();
    for (const WireFrame& made : m_Made) {
        add(made);
    }
}

void Line::sendPending(std::int64_t now) {
    auto it = m_Pending.begin();
    for (; it != m_Pending.end() && it->time <= now; ++it) {
        m_ToHost.push(std::as_const(*it).bytes(), it->time, m_nBaud);
    }
    m_Pending.erase(m_Pending.begin(), it);
}

void Line::dropUnsentAfterRestart() {
    if (m_nPowerChanges != m_Block.powerChanges()) {
        m_nPowerChanges = m_Block.powerChanges();
        m_Pending.clear();
        m_Held.clear();
    }
}

} // namespace camerasim
