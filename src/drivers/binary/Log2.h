#pragma once

#include <bit>
#include <cstdint>

namespace sensorcontrol::binary {

/// The binary logarithm of x (above 0) times 2 to the power of `bits`, cut to a whole number. In whole numbers all the
/// way: the math libraries of two machines may differ in the last place, and a register must not.
constexpr int scaledLog2(std::uint32_t x, int bits) {
    constexpr int Point = 31; // binary places of the fraction
    int result = 31 - std::countl_zero(x);
    std::uint64_t fraction = std::uint64_t{x} << (Point - result); // 1 to below 2
    for (int i = 0; i < bits; ++i) {
        fraction = fraction * fraction >> Point; // its logarithm doubles: the place before the point is the next bit
        const int bit = static_cast<int>(fraction >> (Point + 1));
        fraction >>= bit;
        result = 2 * result + bit;
    }
    return result;
}

} // namespace sensorcontrol::binary
