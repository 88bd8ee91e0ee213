#pragma once

#include "controller/ISensorController.h"
#include "drivers/BitField.h"
#include "drivers/Condition.h"
#include "drivers/FramePattern.h"
#include "drivers/Message.h"
#include "drivers/ValueMap.h"
#include "drivers/ValueSet.h"

#include <cstdint>
#include <span>

namespace sensorcontrol {

/// A factory value, if the row has one.
struct FactoryValue {
    constexpr FactoryValue() = default;
    constexpr FactoryValue(int number) : isKnown(true), value(number) {} // NOLINT(google-explicit-constructor)

    bool isKnown = false;
    int value = 0;
};

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

/// One frame of a setting.
struct Step {
    ValueSet when{};    ///< goes out for these values alone
    FramePattern frame; ///< with the row's value in its places, as `value` and `field` make it
    ValueMap value{};
    BitField field{};
    Message failure = Silent; ///< said when the module did not take it; with at most one %d, the row's value
    int pause = 0;            ///< microseconds to wait once it was taken
};

/// Which parameters are sent again after which values of another one. All are read first, then sent in this order;
/// the first failure ends it.
struct Resend {
    static constexpr std::size_t Most = 5;

    ValueSet when{};
    std::int16_t ids[Most]{}; ///< unused places hold 0
};

/// How a value is read from the module.
struct Reading {
    FramePattern inquiry{};
    ValueMap value{};
    BitField field{};
};

/// A value that follows from another one, kept in both caches once the module took that.
struct Derived {
    std::int16_t id = 0;
    ValueMap value{};
};

/// The wait that the model's description tells.
inline constexpr int ModelsWait = -1;

/// Everything about one parameter of one model. What is set goes out as `send`, as `steps` or through `set`, one of
/// them; only a row that is not registered may have none, and then serves reads alone. The gate refuses what `accepts`
/// leaves out for a row with frames or a `refusal`; any other `set` operation refuses by itself, and its row's
/// `accepts` tells what.
struct ParameterRow {
    int id;
    const char* name;                         ///< "Brightness" of setBrightness; of a command its whole name
    IdManager::Kind kind = IdManager::Common; ///< Unknown: served, but not registered

    ValueSet accepts{};
    Message refusal{}; ///< regular: the model's refusal text, if it has one

    Conditions onlyWhile{};

    FramePattern send{};
    ValueMap value{}; ///< what `send` and `set` get
    BitField field{}; ///< of `send`
    std::span<const Step> steps{};
    SetBy set{};
    std::span<const Resend> then{};
    Derived remember{};
    Message setFailure{}; ///< regular: the model's text with the row's name

    FactoryValue factory{}; ///< what reading gives
    GotBy get{};            ///< or how it is read from the module
    Reading read{};         ///< or what is asked
    Message getFailure{};   ///< regular: the model's text with the row's name

    int wait = ModelsWait; ///< microseconds, once it was served

    constexpr bool hasFrames() const { return !send.empty() || !steps.empty(); }
    constexpr bool isSettable() const { return hasFrames() || set.isThere(); }
    constexpr bool isReadable() const { return factory.isKnown || get.isThere() || !read.inquiry.empty(); }
    constexpr bool isCheckedByGate() const { return hasFrames() || !refusal.isRegular(); }
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
