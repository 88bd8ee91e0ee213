#include "FrameDecoder.h"

#include "simulator/BlockRegistry.h"

namespace sensorctl {

namespace {

void append(std::string& text, const std::string& part) { text += (text.empty() ? "" : "; ") + part; }

} // namespace

const camerasim::CameraBlock& FrameDecoder::receiver(std::span<const std::uint8_t> bytes) const {
    const bool isCompanions =
        m_pCompanion != nullptr && !m_pBlock->startsWithFrame(bytes) && m_pCompanion->startsWithFrame(bytes);
    return isCompanions ? *m_pCompanion : *m_pBlock;
}

std::string FrameDecoder::sent(std::span<const std::uint8_t> bytes) {
    std::string text;
    while (!bytes.empty()) {
        const camerasim::CameraBlock& block = receiver(bytes);
        const auto frame = bytes.first(block.frameLength(bytes));
        m_LastSent.assign(frame.begin(), frame.end());
        append(text, block.describe(frame));
        bytes = bytes.subspan(frame.size());
    }
    return text;
}

std::string FrameDecoder::received(std::span<const std::uint8_t> bytes) const {
    std::string text;
    while (!bytes.empty()) {
        const auto frame = bytes.first(m_pBlock->replyLength(bytes));
        append(text, m_pBlock->describeReply(frame, m_LastSent));
        bytes = bytes.subspan(frame.size());
    }
    return text;
}

std::unique_ptr<FrameDecoder> makeDecoder(int moduleId) {
    std::unique_ptr<camerasim::CameraBlock> block = camerasim::makeBlock(moduleId);
    return block != nullptr ? std::make_unique<FrameDecoder>(std::move(block), camerasim::makeCompanion(moduleId))
                            : nullptr;
}

} // namespace sensorctl
