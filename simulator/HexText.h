#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace camerasim {

/// Upper-case digits, at least so many.
std::string hexNumber(std::uint32_t value, int digits = 2);
/// "90 41 FF".
std::string hexBytes(std::span<const std::uint8_t> bytes);

} // namespace camerasim
