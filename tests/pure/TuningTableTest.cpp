#include "imaging/ISPParam.h"

#include <climits>
#include <optional>

#include <gtest/gtest.h>

namespace {

/// What the table gives, and that it leaves the target alone where it gives nothing.
std::optional<int> lookUp(const ISPParam& table, const std::string& type, const std::string& name, int key) {
    constexpr int untouched = -4711;
    int value = untouched;
    if (table.getParam(type, name, key, value))
        return value;
    EXPECT_EQ(value, untouched);
    return std::nullopt;
}

TEST(TuningTable, SpansAreHalfOpen) {
    ISPParam table;
    EXPECT_EQ(table.setParam("DN", "night", 0, 1, "EE", 10), 1);
    table.setParam("DN", "day", 1, 2, "EE", 20);
    table.setParam("GAIN", "empty", 5, 5, "EE", 1);
    table.setParam("GAIN", "reversed", 9, 3, "EE", 2);
    table.setParam("GAIN", "low", INT_MIN, -10, "EE", 3);
    table.setParam("GAIN", "high", 10, INT_MAX, "EE", 4);

    EXPECT_EQ(lookUp(table, "DN", "EE", 0), 10);
    EXPECT_EQ(lookUp(table, "DN", "EE", 1), 20);
    EXPECT_EQ(lookUp(table, "DN", "EE", 2), std::nullopt);
    EXPECT_EQ(lookUp(table, "DN", "EE", -1), std::nullopt);
    EXPECT_EQ(lookUp(table, "GAIN", "EE", 5), std::nullopt);
    EXPECT_EQ(lookUp(table, "GAIN", "EE", INT_MIN), 3);
    EXPECT_EQ(lookUp(table, "GAIN", "EE", -10), std::nullopt);
    EXPECT_EQ(lookUp(table, "GAIN", "EE", INT_MAX - 1), 4);
    EXPECT_EQ(lookUp(table, "GAIN", "EE", INT_MAX), std::nullopt);
    EXPECT_EQ(lookUp(table, "gain", "EE", 10), std::nullopt);
}

TEST(TuningTable, FirstCoveringUnitDecidesAlone) {
    ISPParam table;
    table.setParam("GAIN", "b", 0, 100, "DC", 1);
    table.setParam("GAIN", "a", 50, 200, "DC", 2);
    table.setParam("GAIN", "a", 50, 200, "EE", 3);

    EXPECT_EQ(lookUp(table, "GAIN", "DC", 60), 1) << "file order, not the order of the names";
    EXPECT_EQ(lookUp(table, "GAIN", "EE", 60), std::nullopt) << "no later unit fills a gap of the first";
    EXPECT_EQ(lookUp(table, "GAIN", "EE", 100), 3);
}

TEST(TuningTable, ItemsOfOneUnitMerge) {
    ISPParam table;
    table.setParam("DN", "unit", 0, 10, "A0", 1);
    table.setParam("DN", "other", 20, 30, "A0", 2);
    table.setParam("DN", "unit", 20, 40, "A0", 3);
    table.setParam("DN", "unit", 20, 40, "TM", 4);
    table.setParam("GAIN", "unit", 20, 40, "A0", 5);

    EXPECT_EQ(lookUp(table, "DN", "A0", 9), 3) << "the later value stands";
    EXPECT_EQ(lookUp(table, "DN", "TM", 9), 4);
    EXPECT_EQ(lookUp(table, "DN", "A0", 20), 2) << "the span of the first node stands";
    EXPECT_EQ(lookUp(table, "DN", "A0", 35), std::nullopt);
    EXPECT_EQ(lookUp(table, "GAIN", "A0", 35), 5) << "units belong to their type";
}

} // namespace
