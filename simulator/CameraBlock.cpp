#include "simulator/CameraBlock.h"

#include <algorithm>

namespace camerasim {

namespace {

constexpr std::size_t LoggedFrames = 4096;

/// Bytes and text alike, as far as both reach.
bool startsLike(std::span<const std::uint8_t> bytes, std::string_view text) {
    const std::size_t common = std::min(bytes.size(), text.size());
    return std::equal(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(common), bytes.begin());
}

} // namespace

CameraBlock::CameraBlock(const BlockSettings& settings) : m_Settings(settings) {}

std::size_t CameraBlock::feed(std::span<const std::uint8_t> bytes, std::int64_t now) {
    if (!isUp(now)) {
        dropHead(m_Input.length);
        m_nDropped += bytes.size();
        return bytes.size();
    }
    if (m_Input.length > 0 && now - m_nLastByte > m_Settings.interByteTimeout) {
        dropHead(m_Input.length);
    }
    m_nLastByte = now;
    const std::size_t taken = std::min(bytes.size(), WireFrame::Capacity - m_Input.length);
    std::copy_n(bytes.begin(), taken, m_Input.buffer.begin() + static_cast<std::ptrdiff_t>(m_Input.length));
    m_Input.length += taken;
    return taken;
}

bool CameraBlock::nextFrame(std::int64_t now) {
    while (m_Input.length > 0) {
        const WireFrame& input = m_Input;
        Cut found = judge(input.bytes());
        if (found.kind == Cut::Kind::Unfinished) {
            if (m_Input.length < WireFrame::Capacity) {
                return false;
            }
            found = {Cut::Kind::Garbage, 1};
        }
        const std::size_t length = std::clamp<std::size_t>(found.length, 1, m_Input.length);
        if (found.kind == Cut::Kind::Garbage) {
            dropHead(length);
            continue;
        }
        m_Frame.assign(input.bytes().first(length));
        m_Frame.time = now;
        dropHead(length);
        m_nDropped -= length;
        if (m_Log.size() < LoggedFrames) {
            m_Log.push_back(m_Frame);
        } else {
            m_Log[m_nReceived % LoggedFrames] = m_Frame;
        }
        ++m_nReceived;
        return true;
    }
    return false;
}

CameraBlock::Cut CameraBlock::judge(std::span<const std::uint8_t> bytes) const {
    if (!startsLike(bytes, PanTiltStop)) {
        return cut(bytes);
    }
    return bytes.size() < PanTiltStop.size() ? Cut{Cut::Kind::Unfinished, 0}
                                             : Cut{Cut::Kind::Frame, PanTiltStop.size()};
}

std::string CameraBlock::describe(std::span<const std::uint8_t> frame) const {
    return frame.size() == PanTiltStop.size() && startsLike(frame, PanTiltStop) ? "pan/tilt stop"
                                                                                : describeFrame(frame);
}

void CameraBlock::execute(std::int64_t now, std::vector<WireFrame>& replies) {
    m_pReplies = &replies;
    m_nReplyBase = now;
    const WireFrame& command = m_Frame;
    if (!startsLike(command.bytes(), PanTiltStop)) {
        executeFrame(command.bytes(), now);
    }
    m_pReplies = nullptr;
}

void CameraBlock::refuse(std::int64_t now, std::vector<WireFrame>& replies) {
    m_pReplies = &replies;
    m_nReplyBase = now;
    const WireFrame& command = m_Frame;
    if (!startsLike(command.bytes(), PanTiltStop)) {
        refuseFrame(command.bytes());
    }
    m_pReplies = nullptr;
}

std::vector<WireFrame> CameraBlock::exchange(std::span<const std::uint8_t> bytes, std::int64_t now) {
    std::vector<WireFrame> replies;
    while (!bytes.empty()) {
        bytes = bytes.subspan(feed(bytes, now));
        while (nextFrame(now)) {
            execute(now, replies);
        }
    }
    return replies;
}

std::optional<std::uint32_t> CameraBlock::registerValue(std::string_view name) const {
    for (const RegisterState& state : registers()) {
        if (state.name == name) {
            return state.value;
        }
    }
    return std::nullopt;
}

void CameraBlock::reboot(std::int64_t now, bool loseState) {
    m_bPower = true;
    resetRegisters(loseState);
    goSilent(now, m_Settings.bootTime);
}

void CameraBlock::pressPowerButton(std::int64_t now) {
    if (m_bPower) {
        m_bPower = false;
        dropHead(m_Input.length);
        ++m_nPowerChanges;
    } else {
        reboot(now, false);
    }
}

std::vector<WireFrame> CameraBlock::receivedFrames() const {
    std::vector<WireFrame> frames;
    frames.reserve(m_Log.size());
    const std::size_t oldest = m_nReceived > m_Log.size() ? m_nReceived % LoggedFrames : 0;
    for (std::size_t i = 0; i < m_Log.size(); ++i) {
        frames.push_back(m_Log[(oldest + i) % m_Log.size()]);
    }
    return frames;
}

void CameraBlock::clearReceived() {
    m_Log.clear();
    m_nReceived = 0;
    m_nDropped = 0;
}

std::size_t CameraBlock::frameLength(std::span<const std::uint8_t> bytes) const {
    std::size_t garbage = 0;
    while (garbage < bytes.size()) {
        const Cut found = judge(bytes.subspan(garbage));
        if (found.kind != Cut::Kind::Garbage && garbage > 0) {
            return garbage;
        }
        if (found.kind == Cut::Kind::Frame) {
            return found.length;
        }
        if (found.kind == Cut::Kind::Unfinished) {
            break;
        }
        garbage += std::clamp<std::size_t>(found.length, 1, bytes.size() - garbage);
    }
    return bytes.size();
}

bool CameraBlock::startsWithFrame(std::span<const std::uint8_t> bytes) const {
    return !bytes.empty() && judge(bytes).kind == Cut::Kind::Frame;
}

void CameraBlock::reply(std::span<const std::uint8_t> bytes, std::int64_t extraDelay) {
    if (m_pReplies != nullptr) {
        WireFrame& made = m_pReplies->emplace_back();
        made.time = m_nReplyBase + m_Settings.reactionTime + extraDelay;
        made.assign(bytes);
    }
}

void CameraBlock::dropHead(std::size_t count) {
    const auto head = m_Input.buffer.begin();
    std::copy(head + static_cast<std::ptrdiff_t>(count), head + static_cast<std::ptrdiff_t>(m_Input.length), head);
    m_Input.length -= count;
    m_nDropped += count;
}

void CameraBlock::goSilent(std::int64_t now, std::int64_t duration) {
    dropHead(m_Input.length);
    m_nUpAt = now + duration;
    ++m_nPowerChanges;
}

} // namespace camerasim
