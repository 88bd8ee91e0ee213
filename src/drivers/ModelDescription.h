#pragma once

#include "drivers/ParameterRow.h"

#include <span>
#include <string_view>

namespace sensorcontrol {

/// What tells one model from another on its way through the gate.
struct ModelDescription {
    const char* className;
    std::span<const ParameterRow> rows; ///< ascending by id
    bool hasPort = true;                ///< a camera block on a serial port
    int waitMicroseconds = 30000;       ///< after every parameter that was served
    int unservedSetResult = -1;
    const char* unservedText = nullptr; ///< logged for an id that is not served; with at most one %d, the id
    bool isReadFromZero = true;         ///< a read that writes nothing gives 0; else what the caller passed
    /// Behind "set" or "get" and the row's name; with at most one %d. Null: a failure logs nothing.
    const char* failureText = " error,value is %d";
    /// Sends the frame of a row.
    int (*transmit)(ISensorController&, const char* frame, int length) = [](ISensorController& controller,
                                                                            const char* frame, int length) {
        return controller.setParameterValue(frame, length);
    };
};

namespace detail {

/// The texts go through printf with one int.
consteval bool isTextSafe(const char* text) {
    if (text == nullptr)
        return true;
    int numbers = 0;
    const std::string_view view(text);
    for (std::size_t i = 0; i < view.size(); ++i) {
        if (view[i] != '%')
            continue;
        if (i + 1 == view.size() || view[i + 1] != 'd')
            return false;
        ++numbers;
    }
    return numbers <= 1;
}

consteval bool fitsFrame(const ParameterRow& row) {
    if (row.send.empty() && row.value.table.empty())
        return true;
    if (row.accepts.takesAll())
        return false;
    for (const ValueSet::Range& range : row.accepts)
        for (int value = range.low; value <= range.high; ++value)
            if ((!row.value.table.empty() && static_cast<std::size_t>(value) >= row.value.table.size()) ||
                (!row.send.empty() && !row.send.holds(row.value(value))))
                return false;
    return true;
}

/// Whether a row may do with so many ways to set it.
consteval bool isSettable(const ParameterRow& row, int ways) {
    const bool isReadOnly = row.kind == IdManager::Unknown && (row.factory.isKnown || row.get != nullptr);
    return ways == 1 || (ways == 0 && isReadOnly);
}

consteval bool isRangeOrdered(const ValueSet& values) {
    bool isFirst = true;
    int last = 0;
    for (const ValueSet::Range& range : values) {
        if (range.low > range.high || (!isFirst && range.low <= last))
            return false;
        last = range.high;
        isFirst = false;
    }
    return true;
}

} // namespace detail

/// Proves a table: ids ascend, every row says how it is set in one way, every accepted value fits its frame and its
/// look-up, the factory value is accepted, a refusal has something to refuse, the texts are safe to print.
consteval bool isWellFormed(std::span<const ParameterRow> rows) {
    int lastId = -1;
    for (const ParameterRow& row : rows) {
        const int ways = (row.send.empty() ? 0 : 1) + (row.set != nullptr ? 1 : 0) + (row.command != nullptr ? 1 : 0);
        if (row.id <= lastId || row.name == nullptr || !detail::isSettable(row, ways))
            return false;
        if (!detail::isRangeOrdered(row.accepts) || !detail::fitsFrame(row))
            return false;
        if (row.accepts.takesAll() && row.refusal != nullptr)
            return false;
        if (row.factory.isKnown && (row.get != nullptr || !row.accepts.contains(row.factory.value)))
            return false;
        if (!detail::isTextSafe(row.refusal) || !detail::isTextSafe(row.setFailure) ||
            !detail::isTextSafe(row.getFailure))
            return false;
        lastId = row.id;
    }
    return true;
}

} // namespace sensorcontrol
