#pragma once

#include "FrameDecoder.h"
#include "simulator/CameraBlock.h"

#include <memory>
#include <vector>

namespace sensorctl {

/// The VISCA family with its mask unit, infrared board and the words MENUON. The names of registers and values are the
/// simulated block's.
class ViscaDecoder final : public FrameDecoder {
public:
    explicit ViscaDecoder(std::unique_ptr<camerasim::CameraBlock> block) : m_pBlock(std::move(block)) {}

    std::string sent(std::span<const std::uint8_t> bytes) override;
    std::string received(std::span<const std::uint8_t> bytes) override;
    bool isReply(std::span<const std::uint8_t> bytes) const override;

private:
    std::string reply(std::span<const std::uint8_t> frame) const;
    std::string answer(std::span<const std::uint8_t> values) const;

    std::unique_ptr<camerasim::CameraBlock> m_pBlock;
    std::vector<std::uint8_t> m_LastSent;
};

} // namespace sensorctl
