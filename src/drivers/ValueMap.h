#pragma once

#include <cstdint>
#include <span>

namespace sensorcontrol {

/// How a parameter's value becomes the number on the wire: value * multiplier / divisor + offset in whole numbers, or
/// a look-up.
struct ValueMap {
    std::int16_t multiplier = 1;
    std::int16_t divisor = 1;
    std::int16_t offset = 0;
    /// Wire numbers of the values 0, 1, 2 and so on; takes the place of the arithmetic if there are any.
    std::span<const std::uint8_t> table{};

    constexpr int operator()(int value) const {
        if (!table.empty())
            return table[static_cast<std::size_t>(value)];
        return value * multiplier / divisor + offset;
    }
};

constexpr ValueMap scaled(int multiplier, int divisor, int offset = 0) {
    return {static_cast<std::int16_t>(multiplier),
            static_cast<std::int16_t>(divisor),
            static_cast<std::int16_t>(offset),
            {}};
}

constexpr ValueMap shifted(int offset) { return scaled(1, 1, offset); }

constexpr ValueMap lookedUp(std::span<const std::uint8_t> table) { return {1, 1, 0, table}; }

} // namespace sensorcontrol
