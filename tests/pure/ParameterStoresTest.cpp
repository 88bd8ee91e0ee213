#include "host/SensorParameterParser.h"
#include "params/IdManager.h"
#include "params/SensorCache.h"
#include "params/SensorConfigFile.h"
#include "support/TempRoot.h"

#include <climits>
#include <csignal>
#include <filesystem>
#include <random>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

using testing::ElementsAre;
using testing::IsEmpty;

TEST(IdManagerTest, KindsRangesAndPrecedence) {
    IdManager ids;
    ids.addParameterId(1, 5, 7);
    ids.addParameterId(1, 1, 0);
    ids.addParameterId(0, 90, 95);
    ids.addParameterId(5, 90);
    ids.addParameterId(3, 6);
    ids.addParameterId(2, INT_MAX - 1, INT_MAX);
    std::set<int> list{99};
    EXPECT_EQ(ids.getCommonIdList(list), 1);
    EXPECT_THAT(list, ElementsAre(5, 6, 7));
    EXPECT_EQ(ids.getEspecialIdList(list), 1);
    EXPECT_THAT(list, ElementsAre(INT_MAX - 1, INT_MAX));
    EXPECT_EQ(ids.getKeepDefaultValueList(list), 1);
    EXPECT_THAT(list, IsEmpty());

    EXPECT_EQ(ids.isIdExist(90), 0);
    EXPECT_EQ(ids.getIdType(90), 0);
    for (const int kind : {3, 2, 1, 4}) { // each one goes before the ones tried so far
        ids.addParameterId(kind, 200);
        EXPECT_EQ(ids.getIdType(200), kind);
    }
    EXPECT_EQ(ids.isIdExist(200), 1);
    EXPECT_EQ(IdManager::isIdExistInSet(3, {1, 3}), 1);
    EXPECT_EQ(IdManager::isIdExistInSet(2, {1, 3}), 0);
}

// The cache keeps its values in an array: few strays are moved into place, many are sorted.
TEST(SensorCacheTest, AgreesWithAnOrdinaryMapInAnyOrder) {
    std::mt19937 random(7);
    for (const int count : {10, 300, 3000}) {
        SensorCache cache;
        std::map<int, int> expected;
        for (int round = 0; round < 3; ++round) {
            std::string text;
            for (int i = 0; i < count; ++i) {
                const int id = static_cast<int>(random() % static_cast<unsigned>(2 * count));
                text += "(" + std::to_string(id) + "," + std::to_string(i) + ")";
                expected[id] = i;
            }
            ASSERT_EQ(cache.setSensorValues(text), 1);
            ASSERT_EQ(cache.setSensorValues("(1,-1)" + text + "(2"), 0);
            ASSERT_EQ(cache.getAllSensorValues(text), 1);
            ASSERT_EQ(text, SensorParameterParser::createSensorParameterString(expected));
        }
    }
}

TEST(SensorCacheTest, ValuesTextsAndSelections) {
    SensorCache cache;
    std::string text = "old";
    EXPECT_EQ(cache.getAllSensorValues(text), 1);
    EXPECT_EQ(text, "");
    for (const auto& [values, result] : {std::pair{"(7,-1)(2,3)(7,-2)", 1}, {"", 1}, {"(2,4)(,1)", 0}})
        EXPECT_EQ(cache.setSensorValues(values), result);
    EXPECT_EQ(cache.setSensorValue(500, INT_MIN), 1);
    cache.getAllSensorValues(text);
    EXPECT_EQ(text, "(2,3)(7,-2)(500,-2147483648)");
    for (const auto& [id, equal, result] : {std::tuple{2, 3, 1}, {2, 4, 0}, {9, 0, 0}})
        EXPECT_EQ(cache.isEqualToCache(id, equal), result);
    int value = 77;
    EXPECT_EQ(cache.getSensorValue(9, value), 0);
    EXPECT_EQ(value, 77);

    text = "old";
    EXPECT_EQ(cache.getSensorValues(std::set<int>{2, 9}, text), 0);
    for (const auto& [ids, result, values] :
         {std::tuple{"(2)(9)", 0, "old"}, {"(2)(7", 0, "old"}, {"(7)(2)(7)", 1, "(2,3)(7,-2)"}}) {
        EXPECT_EQ(cache.getSensorValues(ids, text), result);
        EXPECT_EQ(text, values);
    }
    EXPECT_EQ(cache.getSensorValues(std::set<int>{}, text), 1);
    EXPECT_EQ(text, "");
    cache.clear();
    EXPECT_EQ(cache.getSensorValue(2, value), 0);
}

// A setter stores derived values below and above the id that the engine's walk has reached.
TEST(SensorCacheTest, WalkGoesOnWithTheNextHigherIdAndLeavesArgumentsAloneAtTheEnd) {
    SensorCache cache;
    int id = 77;
    int value = 78;
    EXPECT_EQ(cache.getFirstIdValue(id, value), 0);
    EXPECT_EQ(id, 77);
    cache.setSensorValues("(504,1)(1,9)(500,2)");
    std::vector<int> ids;
    for (int more = cache.getFirstIdValue(id, value); more; more = cache.getNextIdValue(id, value)) {
        ids.push_back(id);
        for (const int derived : {0, id - 1, 502})
            cache.setSensorValue(derived, value);
    }
    EXPECT_THAT(ids, ElementsAre(1, 500, 502, 504));
    EXPECT_EQ(id, 504);
    EXPECT_EQ(value, 1);
}

class SensorConfigFileTest : public testing::Test {
protected:
    std::string content() const { return m_Root.read(Path); }
    void start(const std::string& text) const { m_Root.write(Path, text); }
    /// A call's result and what it left in the file.
    std::string after(int result) const { return std::to_string(result) + " " + content(); }
    /// Whether version 1 is 4, version 1 is 5, version 2 is 3 in a file of this text.
    std::string compared(const std::string& text) {
        start(text);
        return std::to_string(m_File.isVersionEqual(4)) + std::to_string(m_File.isVersionEqual(5)) +
               std::to_string(m_File.isVersion2Equal(3));
    }

    static constexpr const char* Path = "/mnt/mtd/code/config_file/x.cfg";
    TempRoot m_Root;
    SensorConfigFile m_File{Path};
};

TEST_F(SensorConfigFileTest, TrailerFollowsTheVersionsAndTheText) {
    constexpr int None = -10000;
    for (const auto& [version, version2, text, stored] :
         {std::tuple{None, None, "(2,1)(1,2)", "(2,1)(1,2)"},
          {4, 2, "(2,1)(1,2)", "(2,1)(1,2)(10000,4)(10001,2)"},
          {4, None, "(1,2)", "(1,2)(10000,4)"},
          {None, 2, "(1,2)", "(1,2)(10001,2)"},
          {4, 2, "", "(10000,4)(10001,2)"},
          {4, 2, "(10001,9)(1,2)", "(1,2)(10001,2)"},
          {4, 2, "(10000,9)(20000,1)(1,2)", "(1,2)(10000,4)(20000,1)"},
          {None, None, "(1,2)(10000,4)(10001,2)", "(1,2)(10000,-10000)(10001,-10000)"}}) {
        m_File.setVersion(version);
        m_File.setVersion2(version2);
        EXPECT_EQ(after(m_File.saveParametersToFile(text)), std::string("1 ") + stored);
    }
}

TEST_F(SensorConfigFileTest, ReadingTakesTheTextUpToAZeroByte) {
    std::string text = "old";
    std::map<int, int> values;
    EXPECT_EQ(m_File.isExist(), 0);
    EXPECT_EQ(m_File.readParametersFromFile(text), 0);
    EXPECT_EQ(text, "old");
    start(std::string("(1,2)\0(3,4)", 11));
    EXPECT_EQ(m_File.readParametersFromFile(values), 1);
    EXPECT_THAT(values, ElementsAre(std::pair(1, 2)));
    start("");
    EXPECT_EQ(m_File.readParametersFromFile(text), 1);
    EXPECT_EQ(text, "");
    start("(1,2)(3,");
    EXPECT_EQ(m_File.readParametersFromFile(text), 1);
    EXPECT_EQ(m_File.readParametersFromFile(values), 0);
    start(std::string(3 << 20, '('));
    EXPECT_EQ(m_File.readParametersFromFile(text), 0);
    m_Root.remove(Path);
    std::filesystem::create_directories(m_Root.path() + Path);
    EXPECT_EQ(m_File.readParametersFromFile(text), 0);
    EXPECT_EQ(m_File.saveParametersToFile("(1,2)"), 0);
}

TEST_F(SensorConfigFileTest, ModifyingKeepsAlignsAndIgnores) {
    m_File.setVersion(4);
    start("(1,5)(3,7)(10000,9)");
    EXPECT_EQ(after(m_File.modifyParameters("(2,1)(3,8)(10000,1)(10001,1)")), "1 (1,5)(3,8)(10000,4)");
    EXPECT_EQ(m_File.modifyParameter(9, 1), 1);
    EXPECT_EQ(after(m_File.modifyParameter(1, -6)), "1 (1,-6)(3,8)(10000,4)");
    EXPECT_EQ(after(m_File.modifyIdUnEqualParameters("(4,40)(3,30)(10001,7)")), "1 (3,8)(4,40)(10000,4)");
    int value = 77;
    EXPECT_EQ(m_File.readParameterById(1, value), 0);
    EXPECT_EQ(value, 77);
    EXPECT_EQ(m_File.readParameterById(4, value), 1);
    EXPECT_EQ(value, 40);

    EXPECT_EQ(m_File.modifyParameters("(3,1") + m_File.modifyIdUnEqualParameters("3"), 0);
    EXPECT_EQ(after(m_File.saveParametersToFile("(3,1")), "0 (3,8)(4,40)(10000,4)");
    start("(3,8)(4");
    EXPECT_EQ(m_File.modifyParameters("(3,1)") + m_File.modifyIdUnEqualParameters("(3,1)"), 0);
    EXPECT_EQ(after(m_File.modifyParameter(3, 1)), "0 (3,8)(4");
    start("(3,8)");
    EXPECT_EQ(after(SensorConfigFile(Path).modifyIdUnEqualParameters("")), "1 ");
    EXPECT_EQ(m_File.isExist(), 1);
}

TEST_F(SensorConfigFileTest, VersionsCompareWithWildcard) {
    EXPECT_EQ(m_File.isVersionEqual(4), 0);
    EXPECT_EQ(compared("(1,2)"), "000");
    EXPECT_EQ(compared("(1,2)(10000,4)(10001,999)"), "101");
    EXPECT_EQ(compared("(10000,1000)(10001,3)"), "001");
    EXPECT_EQ(compared("(10000,4)x"), "000");
}

// A limit on the size of files stands for the full disk: it holds for root too.
TEST_F(SensorConfigFileTest, FullDiskKeepsTheOldText) {
    start("(1,5)");
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    const rlimit small{8, old.rlim_max};
    const auto signalBefore = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const int saved = m_File.saveParametersToFile("(1,6)(2,7)(3,8)");
    const int savedShort = SensorConfigFile("/mnt/y.cfg").saveParametersToFile("(1,6)(2,7)(3,8)");
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, signalBefore);
    EXPECT_EQ(after(saved + savedShort), "0 (1,5)");
    EXPECT_EQ(m_Root.read("/mnt/y.cfg"), "<none>");
    EXPECT_EQ(m_File.saveParametersToFile("(1,6)(2,7)(3,8)"), 1);
}
