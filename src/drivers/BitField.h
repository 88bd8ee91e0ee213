#pragma once

#include <cstdint>

class ISensorController;

namespace sensorcontrol {

/// `value` in the `width` bits of a word from bit `first` on. Bits of the value beyond the field are cut off.
constexpr int replaceBits(int word, int value, int first, int width) {
    const std::uint32_t mask = (width >= 32 ? ~0U : (1U << width) - 1) << first;
    return static_cast<int>((static_cast<std::uint32_t>(word) & ~mask) |
                            (static_cast<std::uint32_t>(value) << first & mask));
}

/// The `width` bits of a word from bit `first` on, without sign.
constexpr int extractBits(int word, int first, int width) {
    const std::uint32_t mask = width >= 32 ? ~0U : (1U << width) - 1;
    return static_cast<int>(static_cast<std::uint32_t>(word) >> first & mask);
}

class ShadowRegister;

/// Bits of a register that several settings share. What the register holds beside them is kept in a shadow, which a
/// write changes and a read refills.
struct BitField {
    ShadowRegister& (*shadow)(ISensorController&) = nullptr;
    std::uint8_t first = 0;
    std::uint8_t width = 0; ///< 0: the whole register, no shadow

    constexpr bool isWhole() const { return width == 0; }
};

} // namespace sensorcontrol
