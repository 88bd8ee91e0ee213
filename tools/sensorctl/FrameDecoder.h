#pragma once

#include "simulator/CameraBlock.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace sensorctl {

/// Tells what the bytes on a line mean, as the simulated block knows it. A reply is read in the light of what was sent
/// last, so calls come in the order of the wire.
class FrameDecoder {
public:
    /// The block, and what stands at the module's second port, or null.
    FrameDecoder(std::unique_ptr<camerasim::CameraBlock> block, std::unique_ptr<camerasim::CameraBlock> companion)
        : m_pBlock(std::move(block)), m_pCompanion(std::move(companion)) {}

    /// What the host sent; one text for all frames in it.
    std::string sent(std::span<const std::uint8_t> bytes);
    /// What the block sent; also parts of frames, stray bytes and several frames at once.
    std::string received(std::span<const std::uint8_t> bytes) const;
    /// Whether plain bytes of unknown origin look like the block's.
    bool isReply(std::span<const std::uint8_t> bytes) const { return m_pBlock->isReply(bytes); }

private:
    const camerasim::CameraBlock& receiver(std::span<const std::uint8_t> bytes) const;

    std::unique_ptr<camerasim::CameraBlock> m_pBlock;
    std::unique_ptr<camerasim::CameraBlock> m_pCompanion;
    std::vector<std::uint8_t> m_LastSent;
};

/// The decoder of a module's protocol; null if none is known.
std::unique_ptr<FrameDecoder> makeDecoder(int moduleId);

} // namespace sensorctl
