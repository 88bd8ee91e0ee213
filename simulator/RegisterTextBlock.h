#pragma once

#include "simulator/CameraBlock.h"
#include "simulator/ValueWord.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace camerasim {

/// One register of a model of the register-text family.
struct TextRegister {
    std::uint32_t address = 0;
    std::string_view name = {};
    /// Hex digits of the value in a frame: 2 (":W", ":R...00") or 4 (":w", ":R...0000").
    unsigned digits = 2;
    std::uint32_t factory = 0;
    std::span<const ValueWord> words = {};
    /// A report of the block's: answers reads only, and is not stored.
    bool readOnly = false;
};

/// A model of the family.
struct RegisterTextModel {
    std::string_view name = {};
    std::span<const TextRegister> registers = {};
    /// Register whose words are the video systems, and the silence in microseconds after it was changed; at most the
    /// boot time of the block's settings. Address 0 for none.
    std::uint32_t videoSystem = 0;
    std::int64_t videoRestart = 0;
};

/// A block that is configured by short texts, made from its model's table.
///
/// A register stands at its address, what of it is stored at 20000 + address, the video system in force at 10000 +
/// address (hex). A restart brings back what was stored last. Setting what is stored sets the register with it.
class RegisterTextBlock : public CameraBlock {
public:
    using CameraBlock::registerValue;

    /// The model must outlive the block.
    RegisterTextBlock(const RegisterTextModel& model, const BlockSettings& settings);

    std::string_view modelName() const override { return m_Model.name; }
    std::size_t checkByteIndex(std::span<const std::uint8_t> reply) const override;
    std::optional<std::uint32_t> registerValue(std::uint32_t address) const override;
    bool setRegister(std::uint32_t address, std::uint32_t value) override;
    std::vector<RegisterState> registers() const override;
    std::string videoSystem() const override;
    bool setVideoSystem(std::string_view text) override;
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

    /// Called when registers have changed, for those that follow others. The factory values must fit without it.
    virtual void registersChanged() {}
    /// A register of the table, for registersChanged and the scene.
    std::uint32_t at(std::uint32_t address) const { return m_Values[indexOf(address)]; }
    void put(std::uint32_t address, std::uint32_t value) { m_Values[indexOf(address)] = value; }

private:
    struct Text;

    std::size_t indexOf(std::uint32_t address) const;
    std::optional<Text> parse(std::span<const std::uint8_t> frame) const;
    std::size_t frameSize(std::span<const std::uint8_t> bytes) const;
    std::string valueText(std::size_t index, std::uint32_t value) const;
    void write(std::size_t index, std::uint32_t value, std::int64_t now);

    const RegisterTextModel& m_Model;
    std::vector<std::uint32_t> m_Values;
    std::vector<std::uint32_t> m_Stored;
    std::uint32_t m_nVideoSystem = 0;
};

} // namespace camerasim
