#pragma once

#include <cstddef>
#include <cstdint>

namespace sensorcontrol {

/// When a value is sent; otherwise setting it succeeds and sends nothing.
struct Condition {
    enum Kind : std::uint8_t { Always, WhileStored, UnlessStored, WithoutInfrared };

    Kind kind = Always;
    std::int16_t storedId = 0;      ///< this parameter ...
    std::uint32_t storedValues = 0; ///< ... must hold, or must not hold, one of these values, a bit each

    constexpr bool readsStored() const { return kind == WhileStored || kind == UnlessStored; }
    constexpr bool isMetBy(int stored) const {
        const bool isAmong = stored >= 0 && stored <= 31 && (storedValues >> stored & 1U) != 0;
        return isAmong == (kind == WhileStored);
    }
};

/// Only while another parameter holds one of these values (0 to 31). Fails if that parameter has no value.
template <class... Values>
constexpr Condition whileStored(int id, Values... values) {
    return {Condition::WhileStored, static_cast<std::int16_t>(id), ((1U << values) | ...)};
}

/// Only while another parameter holds none of these values (0 to 31). Fails if that parameter has no value.
template <class... Values>
constexpr Condition unlessStored(int id, Values... values) {
    return {Condition::UnlessStored, static_cast<std::int16_t>(id), ((1U << values) | ...)};
}

/// Only on a device without infrared board.
inline constexpr Condition WithoutInfrared{Condition::WithoutInfrared, 0, 0};

/// All of up to three conditions.
class Conditions {
public:
    enum Order : std::uint8_t { RangeFirst, ConditionFirst, RangeAlone };

    constexpr Conditions() = default;
    constexpr Conditions(const Condition& one) : m_Conditions{one} {} // NOLINT(google-explicit-constructor)
    constexpr Conditions(Order order, const Condition& one, const Condition& two = {}, const Condition& three = {})
        : m_Conditions{one, two, three}, m_Order(order) {}

    constexpr const Condition* begin() const { return m_Conditions; }
    constexpr const Condition* end() const { return m_Conditions + Most; }
    /// Whether a value that does not count now is refused for its range all the same.
    constexpr bool isRangeFirst() const { return m_Order != ConditionFirst; }
    /// Whether it is refused even if the other parameter has no value.
    constexpr bool isRangeAlone() const { return m_Order == RangeAlone; }

private:
    static constexpr std::size_t Most = 3;

    Condition m_Conditions[Most]{};
    Order m_Order = RangeFirst;
};

/// All of these, tested after the range.
constexpr Conditions all(const Condition& one, const Condition& two, const Condition& three = {}) {
    return {Conditions::RangeFirst, one, two, three};
}

/// All of these, tested before the range: a value out of range is no fault while it does not count.
constexpr Conditions beforeRange(const Condition& one, const Condition& two = {}, const Condition& three = {}) {
    return {Conditions::ConditionFirst, one, two, three};
}

/// All of these, read only for a value in range.
constexpr Conditions afterRange(const Condition& one, const Condition& two = {}, const Condition& three = {}) {
    return {Conditions::RangeAlone, one, two, three};
}

} // namespace sensorcontrol
