#include "simulator/Line.h"

#include <algorithm>
#include <utility>

namespace camerasim {

namespace {

constexpr std::int64_t microsecondsPerMillisecond = 1000;

/// Start, eight data bits and stop, in millionths of a second times the baud rate.
constexpr std::int64_t byteBitMicroseconds = 10 * 1'000'000;

} // namespace

void Line::Flow::push(std::span<const std::uint8_t> p_Bytes, std::int64_t p_nStart, int p_nBaud) {
    const std::int64_t nStart = std::max(p_nStart, freeAt);
    std::int64_t nCount = 0;
    for (const std::uint8_t nByte : p_Bytes) {
        ++nCount;
        freeAt = p_nBaud == 0 ? nStart : nStart + nCount * byteBitMicroseconds / p_nBaud;
        items.push_back({freeAt, nByte});
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

Line::Line(CameraBlock& p_Block, int p_nBaud)
    : m_Block(p_Block), m_nBaud(p_nBaud > 0 ? p_nBaud : 0), m_nPowerChanges(p_Block.powerChanges()) {}

std::ptrdiff_t Line::write(std::span<const std::uint8_t> p_Bytes, std::int64_t p_nNow) {
    advance(p_nNow);
    if (portGone(p_nNow)) {
        return -1;
    }
    std::size_t nTaken = p_Bytes.size();
    const Fault* pShort = nTaken > 0 ? m_Faults.hit(FaultKind::shortWrite, 1) : nullptr;
    if (pShort != nullptr) {
        m_Faults.beginExchange();
        --nTaken;
        if (pShort->argument >= 0) {
            nTaken = std::min(nTaken, static_cast<std::size_t>(pShort->argument));
        }
    }
    const std::span<const std::uint8_t> taken = p_Bytes.first(nTaken);
    if (m_nBaud == 0 && m_ToBlock.empty()) {
        deliver(taken, p_nNow);
    } else {
        m_ToBlock.push(taken, p_nNow, m_nBaud);
    }
    return static_cast<std::ptrdiff_t>(nTaken);
}

std::size_t Line::read(std::span<std::uint8_t> p_Buffer, std::int64_t p_nNow) {
    advance(p_nNow);
    std::size_t nRead = 0;
    while (nRead < p_Buffer.size() && !m_ToHost.empty() && m_ToHost.front().time <= p_nNow) {
        p_Buffer[nRead++] = m_ToHost.front().byte;
        m_ToHost.pop();
    }
    return nRead;
}

std::int64_t Line::nextDue() const {
    std::int64_t nDue = never;
    if (!m_ToBlock.empty()) {
        nDue = std::min(nDue, m_ToBlock.front().time);
    }
    if (!m_Pending.empty()) {
        nDue = std::min(nDue, m_Pending.front().time);
    }
    if (!m_ToHost.empty()) {
        nDue = std::min(nDue, m_ToHost.front().time);
    }
    return nDue;
}

void Line::unplug(std::int64_t p_nNow, std::int64_t p_nMicroseconds) {
    m_nGoneUntil = p_nMicroseconds < 0 ? never : p_nNow + p_nMicroseconds;
    m_ToBlock.clear();
    m_ToHost.clear();
    m_Pending.clear();
    m_Held.clear();
}

void Line::advance(std::int64_t p_nNow) {
    dropUnsentAfterRestart();
    while (!m_ToBlock.empty() && m_ToBlock.front().time <= p_nNow) {
        const Flow::Item item = m_ToBlock.front();
        m_ToBlock.pop();
        deliver({&item.byte, 1}, item.time);
    }
    sendPending(p_nNow);
}

void Line::deliver(std::span<const std::uint8_t> p_Bytes, std::int64_t p_nNow) {
    while (!p_Bytes.empty() && !portGone(p_nNow)) {
        p_Bytes = p_Bytes.subspan(m_Block.feed(p_Bytes, p_nNow));
        while (m_Block.nextFrame(p_nNow)) {
            serveFrame(p_nNow);
        }
    }
}

void Line::serveFrame(std::int64_t p_nNow) {
    // What was due before this frame is out, even if the frame restarts the block.
    sendPending(p_nNow);
    m_Faults.beginExchange();
    m_Made.clear();
    if (const Fault* pGone = m_Faults.hit(FaultKind::portGone)) {
        unplug(p_nNow, pGone->argument * microsecondsPerMillisecond);
        return;
    }
    if (m_Faults.hit(FaultKind::reboot) != nullptr) {
        m_Block.reboot(p_nNow, true);
        dropUnsentAfterRestart();
        return;
    }
    if (m_Faults.hit(FaultKind::refuse) != nullptr) {
        m_Block.refuse(p_nNow, m_Made);
    } else {
        m_Block.execute(p_nNow, m_Made);
    }
    dropUnsentAfterRestart();
    for (const Fault& fault : m_Faults.faults()) {
        if (m_Faults.hits(fault)) {
            spoil(fault, p_nNow);
        }
    }
    schedule();
}

std::int64_t Line::replyTime(std::int64_t p_nNow) const {
    return m_Made.empty() ? p_nNow + m_Block.settings().reactionTime : m_Made.front().time;
}

void Line::spoil(const Fault& p_Fault, std::int64_t p_nNow) {
    const auto insert = [this](std::size_t nIndex, const WireFrame& frame) {
        m_Made.insert(m_Made.begin() + static_cast<std::ptrdiff_t>(std::min(nIndex, m_Made.size())), frame);
    };
    const auto nArgument = static_cast<std::size_t>(std::max(p_Fault.argument, 0));

    switch (p_Fault.kind) {
    case FaultKind::echo: {
        WireFrame echoed = m_Block.frame();
        echoed.time = replyTime(p_nNow);
        insert(0, echoed);
        return;
    }
    case FaultKind::noiseBefore:
    case FaultKind::noiseBetween: {
        WireFrame noise;
        noise.time = replyTime(p_nNow);
        for (std::size_t i = 0; i < std::min(nArgument, WireFrame::capacity); ++i) {
            noise.append(static_cast<std::uint8_t>(m_Faults.random() >> 8));
        }
        insert(p_Fault.kind == FaultKind::noiseBefore ? 0 : 1, noise);
        return;
    }
    default:
        break;
    }
    if (m_Made.empty() || m_Made.front().length == 0) {
        return;
    }
    WireFrame& first = m_Made.front();
    switch (p_Fault.kind) {
    case FaultKind::silence:
        m_Made.clear();
        break;
    case FaultKind::late:
        for (WireFrame& frame : m_Made) {
            frame.time += p_Fault.argument * microsecondsPerMillisecond;
        }
        break;
    case FaultKind::truncate:
        first.length = std::min(first.length, nArgument);
        break;
    case FaultKind::split: {
        const std::size_t nHead = std::min(first.length, nArgument);
        WireFrame rest;
        rest.assign(first.bytes().subspan(nHead));
        rest.time = first.time + p_Fault.extra * microsecondsPerMillisecond;
        first.length = nHead;
        for (std::size_t i = 1; i < m_Made.size(); ++i) {
            m_Made[i].time = std::max(m_Made[i].time, rest.time);
        }
        insert(1, rest);
        break;
    }
    case FaultKind::merge:
        m_Held.insert(m_Held.end(), m_Made.begin(), m_Made.end());
        m_Made.clear();
        break;
    case FaultKind::flip: {
        const std::size_t nByte =
            p_Fault.argument < 0 ? m_Faults.random() % first.length : std::min(nArgument, first.length - 1);
        const unsigned nBit = p_Fault.extra < 0 ? m_Faults.random() % 8U : static_cast<unsigned>(p_Fault.extra) % 8U;
        first.buffer[nByte] = static_cast<std::uint8_t>(first.buffer[nByte] ^ 1U << nBit);
        break;
    }
    case FaultKind::duplicate: {
        const WireFrame copy = first;
        insert(1, copy);
        break;
    }
    case FaultKind::checksum: {
        std::uint8_t& nCheck = first.buffer[std::min(m_Block.checkByteIndex(first.bytes()), first.length - 1)];
        nCheck = static_cast<std::uint8_t>(nCheck + 1U);
        break;
    }
    default:
        break;
    }
}

void Line::schedule() {
    const auto add = [this](const WireFrame& frame) {
        const auto it = std::upper_bound(m_Pending.begin(), m_Pending.end(), frame.time,
                                         [](std::int64_t nTime, const WireFrame& other) { return nTime < other.time; });
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

void Line::sendPending(std::int64_t p_nNow) {
    auto it = m_Pending.begin();
    for (; it != m_Pending.end() && it->time <= p_nNow; ++it) {
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
