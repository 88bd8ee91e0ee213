#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace sensorcontrol {

/// A place in a frame that the value fills.
enum class Place : std::uint8_t {
    Value, ///< its low 8 bits
    High,  ///< bits 4 to 7 as a byte of their own
    Low,   ///< bits 0 to 3 as a byte of their own
};

inline constexpr Place V = Place::Value;
inline constexpr Place HI = Place::High;
inline constexpr Place LO = Place::Low;

/// A command on the wire, with places for one value. Built where it is used, never on the heap.
class FramePattern {
public:
    static constexpr std::size_t MostBytes = 13;

    constexpr FramePattern() = default;

    /// Bytes and places, in wire order.
    template <class... Items>
    explicit constexpr FramePattern(Items... items) {
        static_assert(sizeof...(items) <= MostBytes);
        (append(items), ...);
    }

    constexpr std::size_t size() const { return m_nLength; }
    constexpr bool empty() const { return m_nLength == 0; }

    using Frame = std::array<char, MostBytes>;

    /// The frame with the value in its places; its first size() bytes count.
    constexpr Frame build(int value) const {
        Frame frame{};
        for (std::size_t i = 0; i < m_nLength; ++i)
            frame[i] = static_cast<char>(isPlace(i) ? fill(static_cast<Place>(m_Bytes[i]), value) : m_Bytes[i]);
        return frame;
    }

    /// Whether the value goes into the places without losing a bit.
    constexpr bool holds(int value) const {
        bool hasByte = false;
        bool hasHigh = false;
        bool hasLow = false;
        for (std::size_t i = 0; i < m_nLength; ++i) {
            if (!isPlace(i))
                continue;
            const Place place = static_cast<Place>(m_Bytes[i]);
            hasByte = hasByte || place == Place::Value;
            hasHigh = hasHigh || place == Place::High;
            hasLow = hasLow || place == Place::Low;
        }
        if (hasByte || (hasHigh && hasLow))
            return value >= 0 && value <= 0xff;
        return hasLow && value >= 0 && value <= 0x0f;
    }

private:
    template <class Item>
    constexpr void append(Item item) {
        if constexpr (std::is_same_v<Item, Place>)
            m_nPlaces = static_cast<std::uint16_t>(m_nPlaces | 1U << m_nLength);
        m_Bytes[m_nLength++] = static_cast<std::uint8_t>(item);
    }

    constexpr bool isPlace(std::size_t index) const { return (m_nPlaces >> index & 1U) != 0; }

    static constexpr std::uint8_t fill(Place place, int value) {
        const unsigned int bits = static_cast<unsigned int>(value);
        switch (place) {
        case Place::High:
            return static_cast<std::uint8_t>(bits >> 4 & 0x0fU);
        case Place::Low:
            return static_cast<std::uint8_t>(bits & 0x0fU);
        default:
            return static_cast<std::uint8_t>(bits & 0xffU);
        }
    }

    std::array<std::uint8_t, MostBytes> m_Bytes{};
    std::uint8_t m_nLength = 0;
    std::uint16_t m_nPlaces = 0;
};

} // namespace sensorcontrol
