#pragma once

#include "drivers/BitField.h"
#include "drivers/Condition.h"
#include "drivers/FramePattern.h"
#include "drivers/Message.h"
#include "drivers/RowFunctions.h"
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

/// One frame of a setting.
struct Step {
    static constexpr std::size_t Most = 32; ///< of one setting

    ValueSet when{};       ///< goes out for these values alone
    Condition onlyWhile{}; ///< and while this holds, as it was decided before the first frame went out
    std::int16_t of = 0;   ///< the parameter whose stored value it sends, read when its turn comes; 0: the row's own
    FramePattern frame;    ///< with that value in its places, as `value` and `field` make it
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
    Message keptText = Silent; ///< said when a condition keeps the value from being sent
    Message notice = Silent;   ///< said before the value is sent

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
    /// Done whatever the value, and has no state that could be read.
    constexpr bool isCommand() const { return set.isCommand() || (hasFrames() && !isReadable()); }
    constexpr bool isCheckedByGate() const { return hasFrames() || !refusal.isRegular(); }
};

} // namespace sensorcontrol
