#pragma once

#include "controller/ISensorController.h"
#include "drivers/FramePattern.h"
#include "drivers/ValueMap.h"
#include "drivers/ValueSet.h"

#include <array>
#include <cstdint>

namespace sensorcontrol {

/// When a value is sent; otherwise setting it succeeds and sends nothing.
struct Condition {
    enum Kind : std::uint8_t { Always, WhileStored, WithoutInfrared };

    Kind kind = Always;
    std::int16_t storedId = 0;      ///< WhileStored: this parameter ...
    std::uint32_t storedValues = 0; ///< ... must hold one of these values, a bit each
};

/// Only while another parameter holds one of these values (0 to 31). Fails if that parameter has no value.
template <class... Values>
constexpr Condition whileStored(int id, Values... values) {
    return {Condition::WhileStored, static_cast<std::int16_t>(id), ((1U << values) | ...)};
}

/// Only on a device without infrared board.
inline constexpr Condition WithoutInfrared{Condition::WithoutInfrared, 0, 0};

/// A factory value, if the row has one.
struct FactoryValue {
    constexpr FactoryValue() = default;
    constexpr FactoryValue(int number) : isKnown(true), value(number) {} // NOLINT(google-explicit-constructor)

    bool isKnown = false;
    int value = 0;
};

using Setter = int (*)(ISensorController&, int value);
using Getter = int (*)(ISensorController&, int& value);
using Command = int (*)(ISensorController&);

/// No failure text of its own.
inline constexpr const char* Silent = "";

/// Everything about one parameter of one model. A row has one of `send`, `set` and `command`; only one that is not
/// registered may have none, and then serves reads alone. Of a row with `send` or `refusal` the gate refuses what
/// `accepts` leaves out; any other `set` operation refuses by itself, and its row's `accepts` tells what.
struct ParameterRow {
    int id;
    const char* name;                         ///< "Brightness" of setBrightness; of a command its whole name
    IdManager::Kind kind = IdManager::Common; ///< Unknown: served, but not registered

    ValueSet accepts{};
    const char* refusal = nullptr; ///< with at most one %d; null: `send` refuses without a text

    Condition onlyWhile{};

    FramePattern send{};
    ValueMap value{}; ///< what `send` and `set` get
    Setter set = nullptr;
    Command command = nullptr;
    const char* setFailure = nullptr; ///< in place of the model's regular text

    FactoryValue factory{};           ///< what reading gives
    Getter get = nullptr;             ///< or how it is read from the module
    const char* getFailure = nullptr; ///< in place of the model's regular text
};

namespace detail {

template <class>
struct MemberOf;

template <class Class, class... Arguments>
struct MemberOf<int (Class::*)(Arguments...)> {
    using type = Class;
};

} // namespace detail

/// A member operation as the setter of a row, virtual ones by the object's own type.
template <auto Member>
int call(ISensorController& controller, int value) {
    return (static_cast<typename detail::MemberOf<decltype(Member)>::type&>(controller).*Member)(value);
}

/// A member operation that reads as the getter of a row.
template <auto Member>
int ask(ISensorController& controller, int& value) {
    return (static_cast<typename detail::MemberOf<decltype(Member)>::type&>(controller).*Member)(value);
}

/// A member operation without argument as the command of a row.
template <auto Member>
int run(ISensorController& controller) {
    return (static_cast<typename detail::MemberOf<decltype(Member)>::type&>(controller).*Member)();
}

/// Rows of several tables, one behind the other.
template <std::size_t First, std::size_t Second>
consteval std::array<ParameterRow, First + Second> joined(const std::array<ParameterRow, First>& first,
                                                          const std::array<ParameterRow, Second>& second) {
    std::array<ParameterRow, First + Second> rows{};
    for (std::size_t i = 0; i < First; ++i)
        rows[i] = first[i];
    for (std::size_t i = 0; i < Second; ++i)
        rows[First + i] = second[i];
    return rows;
}

} // namespace sensorcontrol
