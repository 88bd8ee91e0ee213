#pragma once

#include "drivers/ParameterRow.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace sensorcontrol {

namespace detail {

/// The texts go through printf with one int.
consteval bool isTextSafe(const char* text) {
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

/// Calls for every value of a set until one says no.
template <class Holds>
consteval bool holdsForEach(const ValueSet& values, Holds holds) {
    for (const ValueSet::Range& range : values)
        for (int value = range.low; value <= range.high; ++value)
            if (!holds(value))
                return false;
    return true;
}

/// Whether every value that goes into the frame is looked up and fits. Beside a field the shadow's bits go with it.
consteval bool fits(const ParameterRow& row, const ValueSet& when, const FramePattern& frame, const ValueMap& map,
                    const BitField& field) {
    if (row.accepts.takesAll())
        return row.accepts.isUnchecked() ? map.table.empty() : frame.empty() && map.table.empty();
    return holdsForEach(row.accepts, [&](int value) {
        if (!when.contains(value))
            return true;
        if (!map.maps(value))
            return false;
        const int number = map(value);
        return frame.empty() ||
               (field.isWhole() ? frame.holds(number)
                                : number >= 0 && number >> field.width == 0 && field.first + field.width <= 8);
    });
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

consteval bool hasRow(std::span<const ParameterRow> rows, int id) {
    return std::ranges::any_of(rows, [id](const ParameterRow& row) { return row.id == id; });
}

/// Whether all that a row says of other parameters names parameters of the table.
consteval bool namesOnly(std::span<const ParameterRow> rows, const ParameterRow& row) {
    for (const Condition& condition : row.onlyWhile)
        if (condition.readsStored() && !hasRow(rows, condition.storedId))
            return false;
    for (const std::int16_t id : row.send.storedIds())
        if (!hasRow(rows, id))
            return false;
    for (const Resend& resend : row.then)
        for (const std::int16_t id : resend.ids)
            if (id != 0 && !hasRow(rows, id))
                return false;
    return row.remember.id == 0 || hasRow(rows, row.remember.id);
}

/// Whether each accepted value sends something, and each frame fits.
consteval bool areStepsSound(std::span<const ParameterRow> rows, const ParameterRow& row) {
    if (row.steps.size() > Step::Most)
        return false;
    for (const Step& step : row.steps) {
        const bool isOwn = step.of == 0;
        if ((!isOwn && !hasRow(rows, step.of)) ||
            (step.onlyWhile.readsStored() && !hasRow(rows, step.onlyWhile.storedId)))
            return false;
        const ParameterRow& source =
            isOwn ? row : *std::ranges::find(rows, static_cast<int>(step.of), &ParameterRow::id);
        if (step.frame.empty() || !step.frame.storedIds().empty() || !isRangeOrdered(step.when) ||
            !fits(source, isOwn ? step.when : ValueSet(), step.frame, step.value, step.field) ||
            !isTextSafe(step.failure.text))
            return false;
    }
    return row.steps.empty() || holdsForEach(row.accepts, [&](int value) {
               return std::ranges::any_of(row.steps, [value](const Step& step) { return step.when.contains(value); });
           });
}

/// Whether a row is set and read in no more than one way each, and says how.
consteval bool isOfOneWay(const ParameterRow& row) {
    const int waysToSet = (row.send.empty() ? 0 : 1) + (row.steps.empty() ? 0 : 1) + (row.set.isThere() ? 1 : 0);
    const int waysToGet =
        (row.factory.isKnown ? 1 : 0) + (row.get.isThere() ? 1 : 0) + (row.read.inquiry.empty() ? 0 : 1);
    // A fixed factory value beside an inquiry wins.
    const bool isReadOnce = waysToGet <= 1 || (row.factory.isKnown && !row.get.isThere());
    const bool isReadOnly = row.kind == IdManager::Unknown && waysToGet > 0;
    return isReadOnce && (waysToSet == 1 || (waysToSet == 0 && isReadOnly));
}

} // namespace detail

/// Proves a table: ids ascend, every row says how it is set in one way, every accepted value fits its frames and its
/// look-ups, the factory value is accepted, a refusal has something to refuse, other parameters that are named are
/// there, the texts are safe to print.
consteval bool isWellFormed(std::span<const ParameterRow> rows) {
    int lastId = -1;
    for (const ParameterRow& row : rows) {
        if (row.id <= lastId || row.name == nullptr || !detail::isOfOneWay(row))
            return false;
        if (!detail::isRangeOrdered(row.accepts) || !detail::fits(row, {}, row.send, row.value, row.field) ||
            !detail::areStepsSound(rows, row) || !detail::namesOnly(rows, row))
            return false;
        if (row.accepts.takesAll() && !row.refusal.isRegular())
            return false;
        if (row.factory.isKnown && (!row.accepts.contains(row.factory.value)))
            return false;
        if (!detail::isTextSafe(row.refusal.text) || !detail::isTextSafe(row.setFailure.text) ||
            !detail::isTextSafe(row.getFailure.text) || !detail::isTextSafe(row.keptText.text) ||
            !detail::isTextSafe(row.notice.text))
            return false;
        lastId = row.id;
    }
    return true;
}

} // namespace sensorcontrol
