#pragma once

#include "drivers/FramePattern.h"

/// The writes of the register-text family, as they stand on the wire.
namespace sensorcontrol::regtext {

/// Asks whether it is day (1) or night (0).
inline constexpr const char* StatusRead = ":RFFE700";

namespace detail {

constexpr char digit(int address, int shift) { return "0123456789ABCDEF"[address >> shift & 0x0f]; }

template <class... Items>
constexpr FramePattern writeOf(int address, Items... value) {
    return FramePattern(":W", digit(address, 12), digit(address, 8), digit(address, 4), digit(address, 0), value...);
}

} // namespace detail

/// ":W", the four digits of a register's address, and the value in two.
constexpr FramePattern write(int address) { return detail::writeOf(address, HEX); }

/// The same with a fixed value.
constexpr FramePattern write(int address, int value) {
    return detail::writeOf(address, detail::digit(value, 4), detail::digit(value, 0));
}

/// ":w", the address, and the value of a 16-bit register in four digits.
constexpr FramePattern writeWord(int address) {
    return FramePattern(":w", detail::digit(address, 12), detail::digit(address, 8), detail::digit(address, 4),
                        detail::digit(address, 0), HEX4);
}

} // namespace sensorcontrol::regtext
