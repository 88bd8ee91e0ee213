#pragma once

#include "controller/ISensorController.h"

#include <cstdint>

namespace sensorcontrol {

using Setter = int (*)(ISensorController&, int value);
using Command = int (*)(ISensorController&);
using Getter = int (*)(ISensorController&, int& value);

// What a pointer to a function points to is told beside it: not every compiler compares one with null in a constant.

/// How a value is set by a function: with the value, or as a command that ignores it.
class SetBy {
public:
    constexpr SetBy() = default;
    constexpr SetBy(Setter setter) : m_Kind(OfValue), m_pSetter(setter) {}       // NOLINT(google-explicit-constructor)
    constexpr SetBy(Command command) : m_Kind(AsCommand), m_pCommand(command) {} // NOLINT(google-explicit-constructor)

    constexpr bool isThere() const { return m_Kind != None; }
    constexpr bool isCommand() const { return m_Kind == AsCommand; }
    int operator()(ISensorController& controller, int value) const {
        return isCommand() ? m_pCommand(controller) : m_pSetter(controller, value);
    }

private:
    enum : std::uint8_t { None, OfValue, AsCommand } m_Kind = None;
    union {
        Setter m_pSetter = nullptr;
        Command m_pCommand;
    };
};

/// How a value is read by a function.
class GotBy {
public:
    constexpr GotBy() = default;
    constexpr GotBy(Getter getter) : m_bThere(true), m_pGetter(getter) {} // NOLINT(google-explicit-constructor)

    constexpr bool isThere() const { return m_bThere; }
    int operator()(ISensorController& controller, int& value) const { return m_pGetter(controller, value); }

private:
    bool m_bThere = false;
    Getter m_pGetter = nullptr;
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

} // namespace sensorcontrol
