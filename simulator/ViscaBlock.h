#pragma once

#include "simulator/CameraBlock.h"
#include "simulator/MaskUnit.h"
#include "simulator/ViscaModel.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace camerasim {

/// A block of the VISCA family, made from its model's tables. Addresses of its registers are their codes; field n of a
/// register is 20000 + 10 * code + n (hex); mask region r is A100 + r (see MaskUnit::packed), the chosen region A100.
class ViscaBlock : public CameraBlock {
public:
    using CameraBlock::registerValue;

    /// The model must outlive the block.
    ViscaBlock(const ViscaModel& model, const BlockSettings& settings);

    std::string_view modelName() const override { return m_Model.name; }
    std::size_t checkByteIndex(std::span<const std::uint8_t> reply) const override;
    std::optional<std::uint32_t> registerValue(std::uint32_t address) const override;
    bool setRegister(std::uint32_t address, std::uint32_t value) override;
    std::vector<RegisterState> registers() const override;
    Picture picture() const override;
    bool decidesDayNight() const override;
    std::optional<int> lamps() const override;
    std::string videoSystem() const override;
    bool setVideoSystem(std::string_view text) override;

    std::string describeReply(std::span<const std::uint8_t> reply,
                              std::span<const std::uint8_t> command) const override;
    std::size_t replyLength(std::span<const std::uint8_t> bytes) const override;
    bool isReply(std::span<const std::uint8_t> bytes) const override;

    const MaskUnit& masks() const { return m_Masks; }

protected:
    Cut cut(std::span<const std::uint8_t> bytes) const override;
    void executeFrame(std::span<const std::uint8_t> frame, std::int64_t now) override;
    void refuseFrame(std::span<const std::uint8_t> frame) override;
    std::string describeFrame(std::span<const std::uint8_t> frame) const override;
    void resetRegisters(bool loseState) override;
    void ambientChanged() override;

private:
    static constexpr std::uint32_t FieldsPerRegister = 0x10;

    enum class Outcome { Done, SyntaxError, NotExecutable };
    /// The picture that the host asked for.
    enum class Wanted { Day, Night, BySensor };

    std::size_t indexOf(std::uint32_t code) const;
    std::size_t indexOfCommand(std::span<const std::uint8_t> payload, std::size_t& codeLength) const;
    std::uint32_t inForce(std::size_t index) const;
    std::uint32_t metered(std::size_t index) const;
    /// Whether an inquiry gives the value in force rather than the one that was written.
    static bool isLive(const ViscaRegister& row);
    bool hasInForce(std::size_t index) const;
    Wanted wanted() const;
    const ViscaField* fieldAt(std::uint32_t address, std::size_t& index) const;
    static std::string valueText(const ViscaRegister& row, std::uint32_t value);
    std::string describePrivate(std::span<const std::uint8_t> frame) const;
    std::string describePage(std::span<const std::uint8_t> frame) const;
    std::string describeAnswer(std::span<const std::uint8_t> values, std::span<const std::uint8_t> inquiry) const;
    void executeCommand(std::span<const std::uint8_t> frame, std::int64_t now);
    Outcome command(std::span<const std::uint8_t> payload);
    Outcome setValue(std::size_t index, std::span<const std::uint8_t> payload);
    void inquire(std::span<const std::uint8_t> payload);
    void inquirePage(std::span<const std::uint8_t> frame);
    bool privateCommand(std::span<const std::uint8_t> frame);
    void store(std::size_t index, std::uint32_t value);
    void send(std::span<const std::uint8_t> bytes, std::int64_t extraDelay = 0);
    void acknowledge();
    void answer(Outcome outcome);

    const ViscaModel& m_Model;
    std::vector<std::uint32_t> m_Values;
    std::vector<std::uint32_t> m_InForce;
    MaskUnit m_Masks;
};

} // namespace camerasim
