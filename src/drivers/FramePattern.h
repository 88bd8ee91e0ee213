#pragma once

#include "drivers/Place.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

namespace sensorcontrol {

/// A command on the wire, with places for one value and for stored ones. Built where it is used, never on the heap.
class FramePattern {
public:
    static constexpr std::size_t MostBytes = 13;
    static constexpr std::size_t MostStored = 4;

    constexpr FramePattern() = default;

    /// Bytes, texts and places, in wire order.
    template <class... Items>
    explicit constexpr FramePattern(const Items&... items) {
        (append(items), ...);
    }

    constexpr std::size_t size() const { return m_nLength; }
    constexpr bool empty() const { return m_nLength == 0; }

    /// The parameters whose stored values stand in the frame.
    constexpr std::span<const std::int16_t> storedIds() const { return {m_StoredIds.data(), m_nStored}; }

    using Frame = std::array<char, MostBytes>;

    /// The frame with the value in its places and the stored values, in the order of storedIds(), in theirs; its first
    /// size() bytes count.
    constexpr Frame build(int value, std::span<const int> storedValues = {}) const {
        Frame frame{};
        unsigned int sum = 0;
        for (std::size_t i = 0; i < m_nLength; ++i) {
            std::uint8_t byte = m_Bytes[i];
            if (isPlace(i)) {
                const std::size_t of = m_Bytes[i] >> PlaceBits;
                byte = fill(placeAt(i), of == 0 ? value : storedValues[of - 1], sum);
            }
            sum += byte;
            frame[i] = static_cast<char>(byte);
        }
        return frame;
    }

    /// Whether the value goes into the places without losing a bit.
    constexpr bool holds(int value) const {
        unsigned int places = 0;
        for (std::size_t i = 0; i < m_nLength; ++i)
            if (isPlace(i) && m_Bytes[i] >> PlaceBits == 0)
                places |= 1U << static_cast<unsigned int>(placeAt(i));
        const auto has = [places](Place place) { return (places >> static_cast<unsigned int>(place) & 1U) != 0; };
        if ((has(Place::Value) && has(Place::Second)) || has(Place::HexTop))
            return value >= 0 && value <= 0xffff;
        if (has(Place::Value) || (has(Place::High) && has(Place::Low)) || (has(Place::HexHigh) && has(Place::HexLow)))
            return value >= 0 && value <= 0xff;
        if (has(Place::Low))
            return value >= 0 && value <= 0x0f;
        return places == 0;
    }

private:
    static constexpr unsigned int PlaceBits = 4; ///< above them: 0 the value, n the n-th stored one

    constexpr bool isPlace(std::size_t index) const { return (m_nPlaces >> index & 1U) != 0; }
    constexpr Place placeAt(std::size_t index) const {
        return static_cast<Place>(m_Bytes[index] & ((1U << PlaceBits) - 1));
    }

    constexpr void append(Place place) { appendPlace(place, 0); }
    constexpr void append(HexDigits) {
        appendPlace(Place::HexHigh, 0);
        appendPlace(Place::HexLow, 0);
    }
    constexpr void append(HexWord) {
        appendPlace(Place::HexTop, 0);
        appendPlace(Place::HexNext, 0);
        append(HEX);
    }
    constexpr void append(const StoredPlace& place) { appendPlace(place.place, 1 + slotOf(place.id)); }
    template <std::size_t Length>
    constexpr void append(const char (&text)[Length]) {
        for (std::size_t i = 0; i + 1 < Length; ++i)
            append(text[i]);
    }
    template <class Byte>
    requires std::is_integral_v<Byte>
    constexpr void append(Byte byte) { m_Bytes[m_nLength++] = static_cast<std::uint8_t>(byte); }

    constexpr void appendPlace(Place place, std::size_t of) {
        m_nPlaces = static_cast<std::uint16_t>(m_nPlaces | 1U << m_nLength);
        append(static_cast<unsigned int>(place) | static_cast<unsigned int>(of << PlaceBits));
    }

    constexpr std::size_t slotOf(int id) {
        for (std::size_t slot = 0; slot < m_nStored; ++slot)
            if (m_StoredIds[slot] == id)
                return slot;
        m_StoredIds[m_nStored] = static_cast<std::int16_t>(id);
        return m_nStored++;
    }

    static constexpr std::uint8_t fill(Place place, int value, unsigned int sum) {
        const unsigned int bits = static_cast<unsigned int>(value);
        const unsigned int high = bits >> 4 & 0x0fU;
        const unsigned int low = bits & 0x0fU;
        const auto digit = [](unsigned int number) {
            const unsigned int nibble = number & 0x0fU;
            return static_cast<std::uint8_t>(nibble < 10 ? '0' + nibble : 'A' + (nibble - 10));
        };
        switch (place) {
        case Place::Second:
            return static_cast<std::uint8_t>(bits >> 8 & 0xffU);
        case Place::High:
            return static_cast<std::uint8_t>(high);
        case Place::Low:
            return static_cast<std::uint8_t>(low);
        case Place::HexTop:
            return digit(bits >> 12);
        case Place::HexNext:
            return digit(bits >> 8);
        case Place::HexHigh:
            return digit(high);
        case Place::HexLow:
            return digit(low);
        case Place::Sum:
            return static_cast<std::uint8_t>(sum & 0xffU);
        default:
            return static_cast<std::uint8_t>(bits & 0xffU);
        }
    }

    // An item too many writes beyond these, which no constant may do.
    std::array<std::uint8_t, MostBytes> m_Bytes{};
    std::uint8_t m_nLength = 0;
    std::uint16_t m_nPlaces = 0;
    std::array<std::int16_t, MostStored> m_StoredIds{};
    std::uint8_t m_nStored = 0;
};

} // namespace sensorcontrol
