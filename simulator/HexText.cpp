#include "simulator/HexText.h"

#include <array>
#include <cstdio>

namespace camerasim {

std::string hexNumber(std::uint32_t value, int digits) {
    std::array<char, 12> text{};
    std::snprintf(text.data(), text.size(), "%0*X", digits, value);
    return text.data();
}

std::string hexBytes(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += (text.empty() ? "" : " ") + hexNumber(byte);
    }
    return text;
}

} // namespace camerasim
