#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace sensorcontrol {

/// How a parameter's value becomes the number on the wire, or the other way round: value * multiplier / divisor +
/// offset in whole numbers, or a look-up.
struct ValueMap {
    std::int16_t multiplier = 1;
    std::int16_t divisor = 1;
    std::int16_t offset = 0;
    /// Numbers of the values `first`, `first` + 1 and so on; takes the place of the arithmetic if there are any.
    std::int16_t first = 0;
    std::span<const std::uint8_t> table{};

    constexpr bool maps(int value) const {
        return table.empty() || (value >= first && static_cast<std::size_t>(value - first) < table.size());
    }

    constexpr int operator()(int value) const {
        if (!table.empty())
            return table[static_cast<std::size_t>(value - first)];
        // Values that no range has tested may be any.
        return static_cast<int>(static_cast<std::int64_t>(value) * multiplier / divisor + offset);
    }
};

constexpr ValueMap scaled(int multiplier, int divisor, int offset = 0) {
    return {.multiplier = static_cast<std::int16_t>(multiplier),
            .divisor = static_cast<std::int16_t>(divisor),
            .offset = static_cast<std::int16_t>(offset)};
}

constexpr ValueMap shifted(int offset) { return scaled(1, 1, offset); }

constexpr ValueMap lookedUp(std::span<const std::uint8_t> table) { return {.table = table}; }

constexpr ValueMap lookedUp(int first, std::span<const std::uint8_t> table) {
    return {.first = static_cast<std::int16_t>(first), .table = table};
}

} // namespace sensorcontrol
