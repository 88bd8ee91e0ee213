#pragma once

#include "simulator/CameraBlock.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace camerasim {

/// The IT1 camera block (module 2): registers of 8 and 16 bits, addressed by page and number (page * 100 + number,
/// hex).
///
/// The host moves the filter, and switches the picture by bit 6 of register 0101; the block does so itself while one
/// of its thresholds (1411, 1412) is not 0. Register 3D0B tells the light: 80 (hex) in full light, doubled with each
/// halving of it.
class It1Block : public CameraBlock {
public:
    using CameraBlock::registerValue;

    explicit It1Block(const BlockSettings& settings = {});

    std::string_view modelName() const override { return "it1"; }
    std::size_t checkByteIndex(std::span<const std::uint8_t> reply) const override {
        return reply.empty() ? 0 : reply.size() - 1;
    }
    std::optional<std::uint32_t> registerValue(std::uint32_t address) const override;
    bool setRegister(std::uint32_t address, std::uint32_t value) override;
    std::vector<RegisterState> registers() const override;

    Picture picture() const override;
    bool decidesDayNight() const override;
    bool movesFilter() const override { return false; }

    std::string describeReply(std::span<const std::uint8_t> reply,
                              std::span<const std::uint8_t> command) const override;
    std::size_t replyLength(std::span<const std::uint8_t> bytes) const override;
    bool isReply(std::span<const std::uint8_t> bytes) const override;

protected:
    Cut cut(std::span<const std::uint8_t> bytes) const override;
    void executeFrame(std::span<const std::uint8_t> frame, std::int64_t now) override;
    void refuseFrame(std::span<const std::uint8_t> frame) override;
    std::string describeFrame(std::span<const std::uint8_t> frame) const override;
    void resetRegisters(bool loseState) override;
    void lightChanged() override;

private:
    std::size_t indexOf(std::uint32_t address) const;
    /// The register that a byte of the map belongs to.
    std::size_t indexOfByte(std::uint32_t address) const;
    void read(std::uint32_t address, std::uint8_t count);
    void write(std::uint32_t address, std::span<const std::uint8_t> bytes);
    /// Sends a body between its length and its sum.
    void send(std::span<const std::uint8_t> body);
    std::string describeRegister(std::uint32_t address, std::size_t count) const;

    std::vector<std::uint32_t> m_Values;
};

} // namespace camerasim
