#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace sensorcontrol {

/// The values that a parameter accepts: up to three ranges, ascending, or every value.
class ValueSet {
public:
    struct Range {
        std::int16_t low;
        std::int16_t high;
    };

    /// Every value.
    constexpr ValueSet() = default;

    template <std::size_t Count>
    explicit constexpr ValueSet(const Range (&ranges)[Count]) : m_nCount(Count) {
        static_assert(Count <= MostRanges);
        for (std::size_t i = 0; i < Count; ++i)
            m_Ranges[i] = ranges[i];
    }

    constexpr bool takesAll() const { return m_nCount == 0; }

    constexpr bool contains(int value) const {
        for (const Range& range : *this)
            if (value >= range.low && value <= range.high)
                return true;
        return takesAll();
    }

    constexpr const Range* begin() const { return m_Ranges.data(); }
    constexpr const Range* end() const { return m_Ranges.data() + m_nCount; }

private:
    static constexpr std::size_t MostRanges = 3;

    std::array<Range, MostRanges> m_Ranges{};
    std::uint8_t m_nCount = 0;
};

/// low to high, both included.
constexpr ValueSet range(int low, int high) {
    return ValueSet({{static_cast<std::int16_t>(low), static_cast<std::int16_t>(high)}});
}

/// These values alone.
template <class... Values>
constexpr ValueSet oneOf(Values... values) {
    const ValueSet::Range ranges[] = {{static_cast<std::int16_t>(values), static_cast<std::int16_t>(values)}...};
    return ValueSet(ranges);
}

} // namespace sensorcontrol
