#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace sensorctl {

/// Tells what the bytes on a line mean. A reply is read in the light of what was sent last, so calls come in the order
/// of the wire. One class per family of protocols.
class FrameDecoder {
public:
    virtual ~FrameDecoder() = default;

    /// What the host sent; one text for all frames in it.
    virtual std::string sent(std::span<const std::uint8_t> bytes) = 0;
    /// What the block sent; also parts of frames, stray bytes and several frames at once.
    virtual std::string received(std::span<const std::uint8_t> bytes) = 0;
    /// Whether plain bytes of unknown origin look like the block's.
    virtual bool isReply(std::span<const std::uint8_t> bytes) const = 0;
};

/// The decoder of a module's protocol; null if none is known.
std::unique_ptr<FrameDecoder> makeDecoder(int moduleId);

} // namespace sensorctl
