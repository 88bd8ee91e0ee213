#include "host/ModuleParameterParser.h"
#include "host/SensorParameterParser.h"

#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Map = std::map<int, int>;

TEST(ParameterString, ReadsGroupsIntoTheMap) {
    const std::vector<std::pair<std::string, Map>> cases{
        {"", {{5, 50}}},
        {"(1,50)(2,-3)(5,0)", {{1, 50}, {2, -3}, {5, 0}}},
        {"(9,1)(3,2)(3,4)(1,5)", {{1, 5}, {3, 4}, {5, 50}, {9, 1}}},
        {"(2147483647,-2147483648)(0,2147483647)", {{2147483647, -2147483647 - 1}, {0, 2147483647}, {5, 50}}},
        {"(007,-0)", {{5, 50}, {7, 0}}},
    };
    for (const auto& [text, expected] : cases) {
        Map map{{5, 50}};
        EXPECT_EQ(SensorParameterParser::parseSensorParameter(text, map), 1) << text;
        EXPECT_EQ(map, expected) << text;
        const std::string written = SensorParameterParser::createSensorParameterString(expected);
        Map again;
        EXPECT_EQ(SensorParameterParser::parseSensorParameter(written, again), 1) << written;
        EXPECT_EQ(again, expected) << written;
    }
    EXPECT_EQ(SensorParameterParser::createSensorParameterString({{500, 0}, {2, -2147483647 - 1}}),
              "(2,-2147483648)(500,0)");
}

TEST(ParameterString, RefusesEverythingElseAndLeavesTheMap) {
    std::vector<std::string> cases{std::string("(1,2)\0", 6), std::string("(1,\0002)", 6)};
    std::istringstream texts(
        "(|)|1,2|(1,2|(1,2)(|(1)|(1,)|(,2)|(1,2,3)|(1;2)|((1,2))|(1,2)x|x(1,2)| (1,2)|(1,2) |(1, 2)|( 1,2)|(1 ,2)|(1,2 "
        ")|(1,2)\n|(-1,2)|(+1,2)|(1,+2)|(1,--2)|(1,-)|(1,0x10)|(1,2.5)|(a,b)|(2147483648,1)|(1,2147483648)|(1,-"
        "2147483649)|(1,99999999999999999999)|(5,6)(7,)|(1,2)(3,4");
    for (std::string text; std::getline(texts, text, '|');)
        cases.push_back(text);
    for (const std::string& text : cases) {
        Map map{{5, 50}};
        EXPECT_EQ(SensorParameterParser::parseSensorParameter(text, map), 0) << text;
        EXPECT_EQ(map, (Map{{5, 50}})) << text;
    }
}

TEST(ParameterString, IdLists) {
    std::set<int> ids{7};
    for (const char* text : {"(", "()", "(1", "1", "(1,2)", "(-1)", "( 1)", "(1)(2147483648)", "(1) (2)", "(1)x"})
        EXPECT_EQ(SensorParameterParser::parseParameterIdList(text, ids), 0) << text;
    EXPECT_EQ(ids, std::set<int>{7});
    EXPECT_EQ(SensorParameterParser::parseParameterIdList("(500)(2)(500)(1)", ids), 1);
    EXPECT_EQ(ids, (std::set<int>{1, 2, 500}));
    EXPECT_EQ(SensorParameterParser::parseParameterIdList("", ids), 1);
    EXPECT_TRUE(ids.empty());
}

TEST(ModuleParameters, ReadsPairs) {
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

TEST(ModuleParameters, RefusesBrokenPairs) {
    for (const char* text : {"novalue", "a=1;novalue", "=1", " =1", "a=1;=2;b=3"}) {
        ModuleParameterParser parser;
        std::string value;
        EXPECT_EQ(parser.parse(text), 0) << text;
        EXPECT_EQ(parser.getValue("a", value), 0) << text;
    }
}

} // namespace
