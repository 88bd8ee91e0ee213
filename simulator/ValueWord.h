#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace camerasim {

/// A word for one value of a register, for decoding.
struct ValueWord {
    std::uint32_t value;
    std::string_view text;
};

/// The word for the value; empty if it has none.
constexpr std::string_view wordOf(std::span<const ValueWord> words, std::uint32_t value) {
    for (const ValueWord& word : words) {
        if (word.value == value) {
            return word.text;
        }
    }
    return {};
}

} // namespace camerasim
