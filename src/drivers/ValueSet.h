#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace sensorcontrol {

/// The values that a parameter accepts: up to three ranges, ascending, every value, or every one but those.
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

    constexpr ValueSet(const ValueSet& low, const ValueSet& high) {
        for (const ValueSet* values : {&low, &high})
            for (const Range& range : *values)
                m_Ranges[m_nCount++] = range;
    }

    static constexpr ValueSet unchecked() {
        ValueSet values;
        values.m_bUnchecked = true;
        return values;
    }

    static constexpr ValueSet allBut(int value) {
        ValueSet values({{static_cast<std::int16_t>(value), static_cast<std::int16_t>(value)}});
        values.m_bOthers = true;
        return values;
    }

    constexpr bool takesAll() const { return m_nCount == 0; }
    /// Takes all on purpose: the manual tells no range.
    constexpr bool isUnchecked() const { return m_bUnchecked; }

    constexpr bool contains(int value) const {
        for (const Range& range : *this)
            if (value >= range.low && value <= range.high)
                return !m_bOthers;
        return takesAll() || m_bOthers;
    }

    constexpr const Range* begin() const { return m_Ranges.data(); }
    constexpr const Range* end() const { return m_Ranges.data() + m_nCount; }

private:
    static constexpr std::size_t MostRanges = 3;

    std::array<Range, MostRanges> m_Ranges{};
    std::uint8_t m_nCount = 0;
    bool m_bUnchecked = false;
    bool m_bOthers = false; ///< the ranges are what is left out
};

/// Every value, and the module gets what fits into its frame.
inline constexpr ValueSet AnyValue = ValueSet::unchecked();

/// low to high, both included.
constexpr ValueSet range(int low, int high) {
    return ValueSet({{static_cast<std::int16_t>(low), static_cast<std::int16_t>(high)}});
}

/// The values of two sets, the lower ones first.
constexpr ValueSet operator|(const ValueSet& low, const ValueSet& high) { return ValueSet(low, high); }

/// Every value but this one: for steps, whose row tells what is accepted.
constexpr ValueSet anyBut(int value) { return ValueSet::allBut(value); }

/// These values alone.
template <class... Values>
constexpr ValueSet oneOf(Values... values) {
    const ValueSet::Range ranges[] = {{static_cast<std::int16_t>(values), static_cast<std::int16_t>(values)}...};
    return ValueSet(ranges);
}

} // namespace sensorcontrol
