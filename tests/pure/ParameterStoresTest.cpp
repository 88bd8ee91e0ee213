#include "params/IdManager.h"
#include "params/SensorCache.h"
#include "params/SensorConfigFile.h"
#include "support/TempRoot.h"

#include <climits>
#include <csignal>
#include <filesystem>

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

TEST(SensorCacheTest, ValuesTextsAndSelections) {
    SensorCache cache;
    std::string text = "old";
    EXPECT_EQ(cache.getAllSensorValues(text), 1);
    EXPECT_EQ(text, "");
    EXPECT_EQ(cache.setSensorValues("(7,-1)(2,3)(7,-2)"), 1);
    EXPECT_EQ(cache.setSensorValues(""), 1);
    EXPECT_EQ(cache.setSensorValue(500, INT_MIN), 1);
    cache.getAllSensorValues(text);
    EXPECT_EQ(text, "(2,3)(7,-2)(500,-2147483648)");
    for (const char* broken : {"(2,4", "(2,4) ", "(2)", "x", "(2,4)(,1)", "(2,99999999999)", "(-2,4)", "( 2,4)"})
        EXPECT_EQ(cache.setSensorValues(broken), 0) << broken;
    EXPECT_EQ(cache.isEqualToCache(2, 3), 1);
    EXPECT_EQ(cache.isEqualToCache(2, 4), 0);
    EXPECT_EQ(cache.isEqualToCache(9, 0), 0);
    int value = 77;
    EXPECT_EQ(cache.getSensorValue(9, value), 0);
    EXPECT_EQ(value, 77);

    text = "old";
    EXPECT_EQ(cache.getSensorValues(std::set<int>{2, 9}, text), 0);
    EXPECT_EQ(cache.getSensorValues("(2)(9)", text), 0);
    EXPECT_EQ(cache.getSensorValues("(2)(7", text), 0);
    EXPECT_EQ(text, "old");
    EXPECT_EQ(cache.getSensorValues("(7)(2)(7)", text), 1);
    EXPECT_EQ(text, "(2,3)(7,-2)");
    EXPECT_EQ(cache.getSensorValues(std::set<int>{}, text), 1);
    EXPECT_EQ(text, "");
    cache.clear();
    EXPECT_EQ(cache.getSensorValue(2, value), 0);
}

TEST(SensorCacheTest, IterationAscendsAndLeavesArgumentsAloneAtTheEnd) {
    SensorCache cache;
    int id = 77;
    int value = 78;
    EXPECT_EQ(cache.getFirstIdValue(id, value), 0);
    EXPECT_EQ(id, 77);
    cache.setSensorValues("(504,1)(1,9)(500,2)");
    std::vector<int> ids;
    for (int more = cache.getFirstIdValue(id, value); more; more = cache.getNextIdValue(id, value)) {
        ids.push_back(id);
        cache.setSensorValue(id, value + 1); // a setter may write a derived value while the engine walks
    }
    EXPECT_THAT(ids, ElementsAre(1, 500, 504));
    EXPECT_EQ(id, 504);
    EXPECT_EQ(value, 1);
}

class SensorConfigFileTest : public testing::Test {
protected:
    std::string content() const { return m_Root.read(Path); }
    void start(const std::string& text) const { m_Root.write(Path, text); }

    static constexpr const char* Path = "/mnt/mtd/code/config_file/x.cfg";
    TempRoot m_Root;
    SensorConfigFile m_File{Path};
};

TEST_F(SensorConfigFileTest, TrailerFollowsTheVersionsAndTheText) {
    struct Case {
        int version, version2;
        const char *text, *stored;
    };
    constexpr int None = -10000;
    for (const Case& c : std::initializer_list<Case>{
             {None, None, "(2,1)(1,2)", "(2,1)(1,2)"},
             {4, 2, "(2,1)(1,2)", "(2,1)(1,2)(10000,4)(10001,2)"},
             {4, None, "(1,2)", "(1,2)(10000,4)"},
             {None, 2, "(1,2)", "(1,2)(10001,2)"},
             {4, 2, "", "(10000,4)(10001,2)"},
             {4, 2, "(10001,9)(1,2)", "(1,2)(10001,2)"},
             {4, 2, "(10000,9)(20000,1)(1,2)", "(1,2)(10000,4)(20000,1)"},
             {None, None, "(1,2)(10000,4)(10001,2)", "(1,2)(10000,-10000)(10001,-10000)"},
         }) {
        m_File.setVersion(c.version);
        m_File.setVersion2(c.version2);
        EXPECT_EQ(m_File.saveParametersToFile(c.text), 1);
        EXPECT_EQ(content(), c.stored);
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
    EXPECT_EQ(m_File.modifyParameters("(2,1)(3,8)(10000,1)(10001,1)"), 1);
    EXPECT_EQ(content(), "(1,5)(3,8)(10000,4)");
    EXPECT_EQ(m_File.modifyParameter(9, 1), 1);
    EXPECT_EQ(m_File.modifyParameter(1, -6), 1);
    EXPECT_EQ(content(), "(1,-6)(3,8)(10000,4)");
    EXPECT_EQ(m_File.modifyIdUnEqualParameters("(4,40)(3,30)(10001,7)"), 1);
    EXPECT_EQ(content(), "(3,8)(4,40)(10000,4)");
    int value = 77;
    EXPECT_EQ(m_File.readParameterById(1, value), 0);
    EXPECT_EQ(value, 77);
    EXPECT_EQ(m_File.readParameterById(4, value), 1);
    EXPECT_EQ(value, 40);

    EXPECT_EQ(m_File.modifyParameters("(3,1"), 0);
    EXPECT_EQ(m_File.modifyIdUnEqualParameters("3"), 0);
    EXPECT_EQ(m_File.saveParametersToFile("(3,1"), 0);
    EXPECT_EQ(content(), "(3,8)(4,40)(10000,4)");
    start("(3,8)(4");
    EXPECT_EQ(m_File.modifyParameters("(3,1)"), 0);
    EXPECT_EQ(m_File.modifyIdUnEqualParameters("(3,1)"), 0);
    EXPECT_EQ(m_File.modifyParameter(3, 1), 0);
    EXPECT_EQ(content(), "(3,8)(4");
    SensorConfigFile plain(Path);
    start("(3,8)");
    EXPECT_EQ(plain.modifyIdUnEqualParameters(""), 1);
    EXPECT_EQ(content(), "");
    EXPECT_EQ(m_File.isExist(), 1);
}

TEST_F(SensorConfigFileTest, VersionsCompareWithWildcard) {
    EXPECT_EQ(m_File.isVersionEqual(4), 0);
    start("(1,2)");
    EXPECT_EQ(m_File.isVersionEqual(4) + m_File.isVersion2Equal(2), 0);
    start("(1,2)(10000,4)(10001,999)");
    EXPECT_EQ(m_File.isVersionEqual(4), 1);
    EXPECT_EQ(m_File.isVersionEqual(5), 0);
    EXPECT_EQ(m_File.isVersion2Equal(5), 1);
    start("(10000,1000)(10001,3)");
    EXPECT_EQ(m_File.isVersionEqual(4), 0);
    EXPECT_EQ(m_File.isVersion2Equal(3), 1);
    start("(10000,4)x");
    EXPECT_EQ(m_File.isVersionEqual(4), 0);
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
    EXPECT_EQ(saved, 0);
    EXPECT_EQ(content(), "(1,5)");
    EXPECT_EQ(savedShort, 0);
    EXPECT_EQ(m_Root.read("/mnt/y.cfg"), "<none>");
    EXPECT_EQ(m_File.saveParametersToFile("(1,6)(2,7)(3,8)"), 1);
}
