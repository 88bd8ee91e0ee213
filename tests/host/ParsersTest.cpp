#include "host/ModuleParameterParser.h"
#include "host/SensorParameterParser.h"

#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using sensorhost::ParameterMap;

std::map<int, int> toMap(const ParameterMap& values) {
    std::map<int, int> map;
    for (const auto& entry : values)
        map[entry.id] = entry.value;
    EXPECT_EQ(map.size(), values.size());
    return map;
}

/// Parses into both kinds of map, which must agree.
bool parse(const std::string& text, std::map<int, int>& result) {
    ParameterMap fast;
    for (const auto& [id, value] : result)
        fast.set(id, value);
    const int done = SensorParameterParser::parseSensorParameter(text, result);
    EXPECT_EQ(SensorParameterParser::parseSensorParameter(text, fast), done) << text;
    EXPECT_EQ(toMap(fast), result) << text;
    return done != 0;
}

TEST(ParameterString, readsGroups) {
    using Map = std::map<int, int>;
    const std::vector<std::pair<std::string, Map>> cases{
        {"", {}},
        {"(1,50)", {{1, 50}}},
        {"(1,50)(2,-3)(500,0)", {{1, 50}, {2, -3}, {500, 0}}},
        {"(9,1)(3,2)(5,3)(3,4)(1,5)", {{1, 5}, {3, 4}, {5, 3}, {9, 1}}},
        {"(2147483647,-2147483648)(0,2147483647)", {{2147483647, -2147483647 - 1}, {0, 2147483647}}},
        {"(007,-0)", {{7, 0}}},
    };
    for (const auto& [text, expected] : cases) {
        Map map;
        EXPECT_TRUE(parse(text, map)) << text;
        EXPECT_EQ(map, expected) << text;
    }
    Map added{{1, 1}, {2, 2}};
    EXPECT_TRUE(parse("(2,20)(3,30)", added));
    EXPECT_EQ(added, (Map{{1, 1}, {2, 20}, {3, 30}}));
}

TEST(ParameterString, refusesEverythingElseAndLeavesTheMap) {
    std::istringstream texts(
        "(|)|1,2|(1,2|(1,2)(|(1)|(1,)|(,2)|(1,2,3)|(1;2)|((1,2))|(1,2)x|x(1,2)| (1,2)|(1,2) |(1, 2)|( 1,2)|(1 ,2)|(1,2 "
        ")|(1,2)\n|(-1,2)|(+1,2)|(1,+2)|(1,--2)|(1,-)|(1,0x10)|(1,2.5)|(a,b)|(2147483648,1)|(1,2147483648)|(1,-"
        "2147483649)|(1,99999999999999999999)|(5,6)(7,)|(1,2)(3,4");
    for (std::string text; std::getline(texts, text, '|');) {
        std::map<int, int> map{{5, 50}};
        EXPECT_FALSE(parse(text, map)) << text;
        EXPECT_EQ(map, (std::map<int, int>{{5, 50}})) << text;
    }
    std::map<int, int> map{{5, 50}};
    EXPECT_FALSE(parse(std::string("(1,2)\0", 6), map));
    EXPECT_FALSE(parse(std::string("(1,\0002)", 6), map));
    EXPECT_EQ(map.size(), 1U);
}

TEST(ParameterString, isWrittenAscending) {
    const std::map<int, int> map{{500, 0}, {1, 50}, {2, -2147483647 - 1}};
    EXPECT_EQ(SensorParameterParser::createSensorParameterString(map), "(1,50)(2,-2147483648)(500,0)");
    ParameterMap fast;
    for (const auto& [id, value] : map)
        fast.set(id, value);
    std::string text = "old";
    SensorParameterParser::createSensorParameterString(fast, text);
    EXPECT_EQ(text, "(1,50)(2,-2147483648)(500,0)");
    SensorParameterParser::appendGroup(2147483647, -1, text);
    EXPECT_EQ(text.substr(text.size() - 15), "(2147483647,-1)");
}

TEST(ParameterString, idLists) {
    std::set<int> ids{9};
    std::vector<int> list{9};
    const auto readsAs = [&](const std::string& text, const std::vector<int>& expected) {
        EXPECT_NE(SensorParameterParser::parseParameterIdList(text, ids), 0) << text;
        EXPECT_NE(SensorParameterParser::parseParameterIdList(text, list), 0) << text;
        EXPECT_EQ(list, expected) << text;
        EXPECT_EQ(std::vector<int>(ids.begin(), ids.end()), expected) << text;
    };
    readsAs("", {});
    readsAs("(1)(2)(500)", {1, 2, 500});
    readsAs("(500)(2)(500)(1)", {1, 2, 500});
    for (const char* text : {"(", "()", "(1", "1", "(1,2)", "(-1)", "( 1)", "(1)(2147483648)", "(1) (2)", "(1)x"}) {
        ids = {7};
        list = {7};
        EXPECT_EQ(SensorParameterParser::parseParameterIdList(text, ids), 0) << text;
        EXPECT_EQ(SensorParameterParser::parseParameterIdList(text, list), 0) << text;
        EXPECT_EQ(ids, std::set<int>{7}) << text;
        EXPECT_TRUE(list.empty()) << text;
    }
}

TEST(ParameterMap, agreesWithAnOrdinaryMapInAnyOrder) {
    std::mt19937 random(7);
    for (const int count : {10, 300, 3000, 60'000}) {
        std::map<int, int> expected;
        ParameterMap values;
        for (int round = 0; round < 3; ++round)
            values.append([&](std::vector<sensorhost::ParameterValue>& added) {
                for (int i = 0; i < count; ++i) {
                    const int id = static_cast<int>(random() % static_cast<unsigned>(2 * count));
                    added.push_back({id, i});
                    expected[id] = i;
                }
                return true;
            });
        ASSERT_EQ(toMap(values), expected);
        for (int id = 0; id < 2 * count; ++id) {
            const auto found = values.find(id);
            ASSERT_EQ(found != values.end(), expected.contains(id));
            if (found != values.end()) {
                ASSERT_EQ(found->value, expected[id]);
            }
        }
        EXPECT_FALSE(values.append([](std::vector<sensorhost::ParameterValue>& added) {
            added.push_back({-1, 0});
            return false;
        }));
        ASSERT_EQ(toMap(values), expected);
        values.set(count, -5);
        EXPECT_EQ(values.find(count)->value, -5);
    }
}

TEST(ModuleParameters, readsPairs) {
    ModuleParameterParser parser;
    ASSERT_NE(parser.parse(" isInfrared =1;GPIO=0,12,1; RS485= /dev/ttyS1 ;empty=;a=b=c;GPIO=1,2,3;"), 0);
    const std::map<std::string, std::string> expected{
        {"isInfrared", "1"}, {"GPIO", "1,2,3"}, {"RS485", " /dev/ttyS1 "}, {"empty", ""}, {"a", "b=c"}};
    for (const auto& [key, value] : expected) {
        std::string read = "?";
        EXPECT_NE(parser.getValue(key, read), 0) << key;
        EXPECT_EQ(read, value) << key;
    }
    std::string untouched = "?";
    EXPECT_EQ(parser.getValue("gpio", untouched), 0);
    EXPECT_EQ(parser.getValue("", untouched), 0);
    EXPECT_EQ(untouched, "?");
    EXPECT_NE(parser.parse(""), 0);
    EXPECT_EQ(parser.getValue("GPIO", untouched), 0);
}

TEST(ModuleParameters, refusesBrokenPairs) {
    for (const char* text : {"novalue", "a=1;novalue", "=1", " =1", "a=1;=2;b=3"}) {
        ModuleParameterParser parser;
        std::string value;
        EXPECT_EQ(parser.parse(text), 0) << text;
        EXPECT_EQ(parser.getValue("a", value), 0) << text;
    }
}

} // namespace
