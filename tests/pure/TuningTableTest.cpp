#include "imaging/ISPParam.h"

#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace {

/// A table of rows "type unit first end item value"; a span ends before its end.
ISPParam tableOf(const std::string& text) {
    ISPParam table;
    std::istringstream rows(text);
    std::string type, unit, item;
    for (int first = 0, end = 0, value = 0; rows >> type >> unit >> first >> end >> item >> value;)
        EXPECT_EQ(table.setParam(type, unit, first, end, item, value), 1);
    return table;
}

/// What the table gives; "-" where it leaves the target alone.
std::string lookUp(const ISPParam& table, const std::string& type, const std::string& name, int key) {
    constexpr int Untouched = -4711;
    int value = Untouched;
    const bool found = table.getParam(type, name, key, value);
    EXPECT_EQ(found, value != Untouched);
    return found ? std::to_string(value) : "-";
}

TEST(TuningTable, SpansAreHalfOpen) {
    const ISPParam table = tableOf("DN night 0 1 EE 10  DN day 1 2 EE 20  GAIN empty 5 5 EE 1  GAIN reversed 9 3 EE 2 "
                                   "GAIN low -2147483648 -10 EE 3  GAIN high 10 2147483647 EE 4");
    std::istringstream rows("DN 0 10  DN 1 20  DN 2 -  DN -1 -  GAIN 5 -  GAIN -2147483648 3  GAIN -10 - "
                            "GAIN 2147483646 4  GAIN 2147483647 -  gain 10 -");
    std::string type, value;
    for (int key = 0; rows >> type >> key >> value;)
        EXPECT_EQ(lookUp(table, type, "EE", key), value) << type << " " << key;
}

TEST(TuningTable, FirstCoveringUnitDecidesAlone) {
    const ISPParam table = tableOf("GAIN b 0 100 DC 1  GAIN a 50 200 DC 2  GAIN a 50 200 EE 3");
    EXPECT_EQ(lookUp(table, "GAIN", "DC", 60), "1") << "file order, not the order of the names";
    EXPECT_EQ(lookUp(table, "GAIN", "EE", 60), "-") << "no later unit fills a gap of the first";
    EXPECT_EQ(lookUp(table, "GAIN", "EE", 100), "3");
}

TEST(TuningTable, ItemsOfOneUnitMerge) {
    const ISPParam table = tableOf("DN unit 0 10 A0 1  DN other 20 30 A0 2  DN unit 20 40 A0 3  DN unit 20 40 TM 4 "
                                   "GAIN unit 20 40 A0 5");
    EXPECT_EQ(lookUp(table, "DN", "A0", 9), "3") << "the later value stands";
    EXPECT_EQ(lookUp(table, "DN", "TM", 9), "4");
    EXPECT_EQ(lookUp(table, "DN", "A0", 20), "2") << "the span of the first node stands";
    EXPECT_EQ(lookUp(table, "DN", "A0", 35), "-");
    EXPECT_EQ(lookUp(table, "GAIN", "A0", 35), "5") << "units belong to their type";
}

} // namespace
