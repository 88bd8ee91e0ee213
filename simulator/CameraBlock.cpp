#include "simulator/CameraBlock.h"

#include <algorithm>

namespace camerasim {

namespace {

constexpr std::size_t loggedFrames = 4096;

} // namespace

CameraBlock::CameraBlock(const BlockSettings& p_Settings) : m_Settings(p_Settings) {}

std::size_t CameraBlock::feed(std::span<const std::uint8_t> p_Bytes, std::int64_t p_nNow) {
    if (!isUp(p_nNow)) {
        dropHead(m_Input.length);
        m_nDropped += p_Bytes.size();
        return p_Bytes.size();
    }
    if (m_Input.length > 0 && p_nNow - m_nLastByte > m_Settings.interByteTimeout) {
        dropHead(m_Input.length);
    }
    m_nLastByte = p_nNow;
    const std::size_t nTaken = std::min(p_Bytes.size(), WireFrame::capacity - m_Input.length);
    std::copy_n(p_Bytes.begin(), nTaken, m_Input.buffer.begin() + static_cast<std::ptrdiff_t>(m_Input.length));
    m_Input.length += nTaken;
    return nTaken;
}

bool CameraBlock::nextFrame(std::int64_t p_nNow) {
    while (m_Input.length > 0) {
        const WireFrame& input = m_Input;
        Cut found = cut(input.bytes());
        if (found.kind == Cut::Kind::unfinished) {
            if (m_Input.length < WireFrame::capacity) {
                return false;
            }
            found = {Cut::Kind::garbage, 1};
        }
        const std::size_t nLength = std::clamp<std::size_t>(found.length, 1, m_Input.length);
        if (found.kind == Cut::Kind::garbage) {
            dropHead(nLength);
            continue;
        }
        m_Frame.assign(input.bytes().first(nLength));
        m_Frame.time = p_nNow;
        dropHead(nLength);
        m_nDropped -= nLength;
        if (m_Log.size() < loggedFrames) {
            m_Log.push_back(m_Frame);
        } else {
            m_Log[m_nReceived % loggedFrames] = m_Frame;
        }
        ++m_nReceived;
        return true;
    }
    return false;
}

void CameraBlock::execute(std::int64_t p_nNow, std::vector<WireFrame>& p_Replies) {
    m_pReplies = &p_Replies;
    m_nReplyBase = p_nNow;
    const WireFrame& command = m_Frame;
    executeFrame(command.bytes(), p_nNow);
    m_pReplies = nullptr;
}

void CameraBlock::refuse(std::int64_t p_nNow, std::vector<WireFrame>& p_Replies) {
    m_pReplies = &p_Replies;
    m_nReplyBase = p_nNow;
    const WireFrame& command = m_Frame;
    refuseFrame(command.bytes());
    m_pReplies = nullptr;
}

std::vector<WireFrame> CameraBlock::exchange(std::span<const std::uint8_t> p_Bytes, std::int64_t p_nNow) {
    std::vector<WireFrame> replies;
    while (!p_Bytes.empty()) {
        p_Bytes = p_Bytes.subspan(feed(p_Bytes, p_nNow));
        while (nextFrame(p_nNow)) {
            execute(p_nNow, replies);
        }
    }
    return replies;
}

std::optional<std::uint32_t> CameraBlock::registerValue(std::string_view p_strName) const {
    for (const RegisterState& state : registers()) {
        if (state.name == p_strName) {
            return state.value;
        }
    }
    return std::nullopt;
}

void CameraBlock::setAmbient(Ambient p_Ambient) {
    if (m_Ambient != p_Ambient) {
        m_Ambient = p_Ambient;
        ambientChanged();
    }
}

void CameraBlock::reboot(std::int64_t p_nNow, bool p_bLoseState) {
    m_bPower = true;
    resetRegisters(p_bLoseState);
    startBoot(p_nNow);
}

void CameraBlock::pressPowerButton(std::int64_t p_nNow) {
    if (m_bPower) {
        m_bPower = false;
        dropHead(m_Input.length);
        ++m_nPowerChanges;
    } else {
        reboot(p_nNow, false);
    }
}

std::vector<WireFrame> CameraBlock::receivedFrames() const {
    std::vector<WireFrame> frames;
    frames.reserve(m_Log.size());
    const std::size_t nOldest = m_nReceived > m_Log.size() ? m_nReceived % loggedFrames : 0;
    for (std::size_t i = 0; i < m_Log.size(); ++i) {
        frames.push_back(m_Log[(nOldest + i) % m_Log.size()]);
    }
    return frames;
}

void CameraBlock::clearReceived() {
    m_Log.clear();
    m_nReceived = 0;
    m_nDropped = 0;
}

void CameraBlock::reply(std::span<const std::uint8_t> p_Bytes, std::int64_t p_nExtraDelay) {
    if (m_pReplies != nullptr) {
        WireFrame& made = m_pReplies->emplace_back();
        made.time = m_nReplyBase + m_Settings.reactionTime + p_nExtraDelay;
        made.assign(p_Bytes);
    }
}

void CameraBlock::dropHead(std::size_t p_nCount) {
    const auto itHead = m_Input.buffer.begin();
    std::copy(itHead + static_cast<std::ptrdiff_t>(p_nCount), itHead + static_cast<std::ptrdiff_t>(m_Input.length),
              itHead);
    m_Input.length -= p_nCount;
    m_nDropped += p_nCount;
}

void CameraBlock::startBoot(std::int64_t p_nNow) {
    dropHead(m_Input.length);
    m_nUpAt = p_nNow + m_Settings.bootTime;
    ++m_nPowerChanges;
}

} // namespace camerasim
