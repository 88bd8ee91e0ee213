#pragma once

#include <cstdint>

namespace sensorcontrol {

/// A place in a frame that a value fills.
enum class Place : std::uint8_t {
    Value,   ///< its low 8 bits
    Second,  ///< bits 8 to 15
    High,    ///< bits 4 to 7 as a byte of their own
    Low,     ///< bits 0 to 3 as a byte of their own
    HexTop,  ///< bits 12 to 15 as an upper-case hexadecimal digit
    HexNext, ///< bits 8 to 11 as an upper-case hexadecimal digit
    HexHigh, ///< bits 4 to 7 as an upper-case hexadecimal digit
    HexLow,  ///< bits 0 to 3 as an upper-case hexadecimal digit
    Sum,     ///< the low 8 bits of the sum of all bytes before it
};

inline constexpr Place V = Place::Value;
inline constexpr Place HI = Place::High;
inline constexpr Place LO = Place::Low;
inline constexpr Place SUM = Place::Sum;

/// Two places, the value in upper-case hexadecimal digits.
struct HexDigits {};
inline constexpr HexDigits HEX;

/// Four places, the value in upper-case hexadecimal digits.
struct HexWord {};
inline constexpr HexWord HEX4;

/// A place that another parameter's stored value fills.
struct StoredPlace {
    int id;
    Place place = Place::Value;
};

constexpr StoredPlace stored(int id) { return {id}; }
constexpr StoredPlace storedHigh(int id) { return {id, Place::High}; }
constexpr StoredPlace storedLow(int id) { return {id, Place::Low}; }

} // namespace sensorcontrol
