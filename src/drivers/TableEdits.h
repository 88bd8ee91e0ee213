#pragma once

#include "drivers/ParameterRow.h"

#include <algorithm>
#include <array>
#include <initializer_list>

/// Tables by difference. What they make is sorted, and proved where it is used.
namespace sensorcontrol {

template <std::size_t Count>
using Table = std::array<ParameterRow, Count>;

/// The row of an id. One that the table has not is an error.
template <std::size_t Count>
consteval const ParameterRow& rowOf(const Table<Count>& rows, int id) {
    return *std::ranges::find(rows, id, &ParameterRow::id);
}

// A row with one thing changed.

constexpr ParameterRow withFactory(ParameterRow row, int value) {
    row.factory = value;
    return row;
}
/// Read from the module instead of a fixed factory value.
constexpr ParameterRow readBy(ParameterRow row, GotBy get) {
    row.factory = {};
    row.get = get;
    return row;
}
constexpr ParameterRow accepting(ParameterRow row, const ValueSet& values, int factory) {
    row.accepts = values;
    row.factory = factory;
    return row;
}
constexpr ParameterRow mapping(ParameterRow row, const ValueMap& value) {
    row.value = value;
    return row;
}

/// The rows of two tables in id order.
template <std::size_t First, std::size_t Second>
constexpr Table<First + Second> joined(const Table<First>& first, const Table<Second>& second) {
    Table<First + Second> rows{};
    std::ranges::merge(first, second, rows.begin(), {}, &ParameterRow::id, &ParameterRow::id);
    return rows;
}

/// The table with the rows of the ids of `changes` as they stand there. An id that the table has not is an error.
template <std::size_t Count, std::size_t Changes>
consteval Table<Count> replaced(Table<Count> rows, const Table<Changes>& changes) {
    for (const ParameterRow& change : changes) {
        ParameterRow* row = std::ranges::find(rows, change.id, &ParameterRow::id);
        *row = change; // beyond the end no constant comes about
    }
    return rows;
}

/// The table without the rows of these ids. An id that it has not is an error.
template <int... Ids, std::size_t Count>
consteval Table<Count - sizeof...(Ids)> without(const Table<Count>& rows) {
    Table<Count - sizeof...(Ids)> rest{};
    std::size_t kept = 0;
    for (const ParameterRow& row : rows)
        if (((row.id != Ids) && ...))
            rest.at(kept++) = row;
    if (kept != rest.size())
        throw "an id that the table has not";
    return rest;
}

/// The table with the rows of these ids registered as another kind.
template <std::size_t Count>
consteval Table<Count> withKind(Table<Count> rows, std::initializer_list<int> ids, IdManager::Kind kind) {
    for (const int id : ids) {
        ParameterRow* row = std::ranges::find(rows, id, &ParameterRow::id);
        row->kind = kind;
    }
    return rows;
}

/// The table under other ids, which stand in the rows' order.
template <std::size_t Count>
consteval Table<Count> renumbered(Table<Count> rows, const int (&ids)[Count]) {
    for (std::size_t i = 0; i < Count; ++i)
        rows[i].id = ids[i];
    return rows;
}

/// Steps and one more at their end.
template <std::size_t Count>
consteval std::array<Step, Count + 1> followedBy(const std::array<Step, Count>& steps, const Step& last) {
    std::array<Step, Count + 1> all{};
    std::ranges::copy(steps, all.begin());
    all.back() = last;
    return all;
}

/// The table with none of its rows registered: its ids are served, but never remembered or saved.
template <std::size_t Count>
consteval Table<Count> unregistered(Table<Count> rows) {
    for (ParameterRow& row : rows)
        row.kind = IdManager::Unknown;
    return rows;
}

} // namespace sensorcontrol
