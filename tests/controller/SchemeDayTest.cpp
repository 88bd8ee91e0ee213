// Whole days of schemes by the clock, minute by minute, against a plain account of what should be in force.

#include "host/SensorParameterParser.h"
#include "support/PlainBench.h"

#include <climits>
#include <random>

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;

namespace {

struct Scheme {
    int flag;
    int start; ///< minutes of the day, in steps of ten
    int end;   ///< included
};

constexpr int Day = 24 * 60;

/// Which scheme is in force, told anew from the list each minute.
int dueScheme(const std::vector<Scheme>& schemes, int minute, int inForce) {
    for (std::size_t i = 0; i < schemes.size(); ++i)
        if (schemes[i].flag != 0 && schemes[i].start <= minute && minute <= schemes[i].end)
            return static_cast<int>(i);
    return inForce;
}

std::string groups(const Scheme& scheme) {
    const auto id = [](int number, int value) {
        return "(" + std::to_string(number) + "," + std::to_string(value) + ")";
    };
    return id(500, scheme.flag) + id(501, scheme.start / 60) + id(502, scheme.start % 60 / 10) +
           id(503, scheme.end / 60) + id(504, scheme.end % 60 / 10);
}

} // namespace

class SchemeDay : public PlainBench {
protected:
    void start(const std::vector<Scheme>& schemes, int minute) {
        m_Schemes = schemes;
        m_Root.writeSchemeCount(static_cast<int>(schemes.size()));
        for (std::size_t i = 0; i < schemes.size(); ++i)
            writeFile("sensor" + std::to_string(i + 1) + ".cfg", value(static_cast<int>(i)) + groups(schemes[i]));
        m_pClock->setTimeOfDay(minute / 60, minute % 60);
        c().m_bNotes = false;
        ASSERT_EQ(init(), 1);
        m_pClock->advance(1.5);
        m_nInForce = dueScheme(schemes, minute, 0);
    }
    static std::string value(int scheme) { return "(1," + std::to_string(100 + scheme) + ")"; }
    /// One pass at that minute; false with the difference told.
    testing::AssertionResult passesAt(int minute) {
        m_pClock->setTimeOfDay(minute / 60, minute % 60, 1);
        m_pClock->advance(1);
        const int before = m_nInForce;
        m_nInForce = dueScheme(m_Schemes, minute, before);
        std::string saved = std::to_string(m_nInForce);
        if (before != m_nInForce || minute % 60 == 0)
            c().getValueFromParamSchemeNode("SchemeIndex", saved);
        const bool isRight = c().m_nParamScheme == m_nInForce && saved == std::to_string(m_nInForce);
        // Until the first switch a start in a gap leaves the factory's values in force.
        m_bSwitched = m_bSwitched || before != m_nInForce;
        const std::string held = values("(1)(500)(501)(502)(503)(504)");
        const std::string& span = groups(m_Schemes[static_cast<std::size_t>(m_nInForce)]);
        if (isRight && held.ends_with(span) && (!m_bSwitched || held == value(m_nInForce) + span))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << minute / 60 << ":" << minute % 60 << " wants " << m_nInForce << ", has "
                                           << c().m_nParamScheme << ", saved " << saved << ", values " << held;
    }

    std::vector<Scheme> m_Schemes;
    int m_nInForce = 0;
    bool m_bSwitched = false;
};

TEST_F(SchemeDay, EveryMinuteOfManyDays) {
    std::mt19937 random(7);
    const auto number = [&random](int most) { return static_cast<int>(random() % static_cast<unsigned>(most + 1)); };
    std::vector<std::vector<Scheme>> lists{
        {{1, 0, Day}},
        {{1, 8 * 60, 18 * 60}},
        {{0, 0, Day}},
        {{1, 0, 360}, {1, 360, 720}, {1, 720, Day}},    // touching
        {{1, 600, 660}, {1, 540, 720}, {1, 480, 780}},  // one within the other
        {{0, 0, Day}, {1, 1200, Day}, {1, 0, 300}},     // over midnight, the first disabled
        {{1, 500, 490}, {1, 700, 710}, {1, 710, 1430}}, // none, eleven minutes, to the last ten
    };
    for (const int count : {3, 100}) {
        std::vector<Scheme> list;
        for (int i = 0; i < count; ++i) {
            const int begin = number(143) * 10;
            const int length = 1 + number(count == 3 ? 60 : 9);
            list.push_back({number(3) == 0 ? 0 : 1, begin, std::min(begin + length * 10, Day)});
        }
        lists.push_back(list);
    }
    for (const std::vector<Scheme>& list : lists) {
        SCOPED_TRACE(testing::Message() << list.size() << " schemes, the first " << groups(list.front()));
        create();
        m_Root.remove(FolderName);
        m_bSwitched = false;
        const int first = number(Day - 1);
        start(list, first);
        for (int i = 1; i <= Day + 60; ++i)
            ASSERT_TRUE(passesAt((first + i) % Day));
        for (int i = 0; i < 50; ++i) // somebody sets the clock
            ASSERT_TRUE(passesAt(number(Day - 1)));
        // By an hour and by a year, to and fro: the time of day decides.
        for (const long long jump : {3600LL, 365LL * 86400, -366LL * 86400 / 2, -3600LL}) {
            m_pClock->setTimeOfDay(4, 30);
            m_pClock->shiftLocalTime(jump);
            const BRDeviceTime now = BRDeviceTime::getCurrentTime();
            ASSERT_TRUE(passesAt(now.getHour() * 60 + now.getMinute()));
        }
    }
}

TEST_F(SchemeDay, AStartInAGapLeavesEverySpanAlone) {
    const std::vector<Scheme> schemes{{1, 480, 720}, {1, 840, 1080}};
    start(schemes, 780);
    EXPECT_EQ(values("(1)"), "(1,11)"); // the factory's
    EXPECT_EQ(values("(500)(501)(502)(503)(504)"), groups(schemes[0]));
    EXPECT_EQ(c().flush(), 1);
    EXPECT_THAT(file("sensor1.cfg"), HasSubstr(groups(schemes[0])));
    EXPECT_TRUE(passesAt(840)); // nobody covers the second's time
    EXPECT_THAT(values("(1)"), "(1,101)");
}

TEST_F(SchemeDay, ABrokenFileOfTheChoiceShadowsNoOtherScheme) {
    start({{1, 480, 720}, {0, 0, 10}, {1, 1140, 1380}}, 600);
    for (const char* broken : {"(1,5", "(500,1)(501,2147483647)(503,2147483647)"}) {
        create();
        writeFile("sensor1.cfg", broken);
        m_pClock->setTimeOfDay(20, 0);
        ASSERT_EQ(init(), 1);
        m_pClock->advance(1.5);
        EXPECT_EQ(c().m_nParamScheme, 2);
        EXPECT_EQ(values("(1)"), value(2));
        c().m_nParamScheme = 0;
        c().setParamSchemeToFile(0);
    }
}

TEST_F(SchemeDay, AfterAResetTheFirstSchemeHasTheWholeDay) {
    start({{1, 480, 720}, {1, 730, 800}}, 600);
    ASSERT_EQ(c().resetParameters(), 1);
    m_pClock->setTimeOfDay(3, 0);
    int scheme = -1;
    std::string text;
    EXPECT_EQ(c().readCurrentParam(scheme, text), 1);
    EXPECT_EQ(scheme, 0);
}

TEST_F(SchemeDay, AManualChoiceKeepsItsSpanOverAStart) {
    const std::vector<Scheme> schemes{{1, 0, Day}, {0, 60, 120}};
    start(schemes, 780);
    ASSERT_EQ(c().setParamMode(0), 1);
    ASSERT_EQ(c().setParamScheme(1), 1);
    create();
    ASSERT_EQ(init(), 1);
    m_pClock->advance(1.5);
    EXPECT_TRUE(hasLogged("parameter scheme 1 is chosen, the clock applies 0"));
    EXPECT_EQ(values("(1)(500)(501)(502)(503)(504)"), value(0) + groups(schemes[1]));
    EXPECT_EQ(c().setParamScheme(1), 1); // the host's way to its values
    EXPECT_EQ(c().flush(), 1);
    EXPECT_THAT(file("sensor2.cfg"), HasSubstr(value(1)));
    EXPECT_THAT(file("sensor2.cfg"), HasSubstr(groups(schemes[1])));
}

TEST_F(SchemeDay, AFailedOrBrokenSwitchLosesNoSetting) {
    const std::vector<Scheme> schemes{{1, 0, 720}, {1, 730, Day}};
    start(schemes, 600);
    const std::string before = values("(500)(501)(502)(503)(504)");
    const auto isUntouched = [&] {
        EXPECT_EQ(values("(500)(501)(502)(503)(504)"), before);
        EXPECT_EQ(c().flush(), 1);
        EXPECT_THAT(file("sensor1.cfg"), HasSubstr(groups(schemes[0])));
    };
    const std::string second = file("sensor2.cfg");
    c().m_FailingIds = {2};
    writeFile("sensor2.cfg", "(1,101)(2,55)" + groups(schemes[1]));
    EXPECT_EQ(c().setParamScheme(1), 0);
    isUntouched();
    m_pClock->setTimeOfDay(13, 0);
    EXPECT_EQ(c().paramSchemeSwitchBody(), -1);
    isUntouched();
    c().m_FailingIds.clear();
    for (const char* broken : {"", "(1,101)(2", "\xff"}) {
        writeFile("sensor2.cfg", broken);
        EXPECT_EQ(c().setParamScheme(1), 0);
        EXPECT_TRUE(hasLogged("switchParam failed: the file of parameter scheme 1 is broken"));
        EXPECT_EQ(c().paramSchemeSwitchBody(), -1);
        isUntouched();
    }
    // A span of a single minute, as some hour setters allow it, is refused in the midst of the switch.
    writeFile("sensor2.cfg", value(1) + groups({1, 740, 740}));
    EXPECT_EQ(c().setParamScheme(1), 0);
    EXPECT_EQ(c().paramSchemeSwitchBody(), -1);
    EXPECT_EQ(values("(1)"), value(1)); // what was applied stays
    isUntouched();
    writeFile("sensor2.cfg", second);
    EXPECT_EQ(c().paramSchemeSwitchBody(), 0);
    EXPECT_EQ(values("(1)"), value(1));
    m_Root.remove(Folder + "sensor.xml"); // the choice can not be saved: in force it is all the same
    EXPECT_EQ(c().setParamScheme(0), 1);
    EXPECT_EQ(c().m_nParamScheme, 0);
    EXPECT_TRUE(hasLogged("the choice of parameter scheme 0 is not saved"));
    c().setParameters("(2,9)");
    c().m_FailingIds = {2};
    EXPECT_EQ(c().resetParameters(), 0);
    c().m_bisReset = false;
    isUntouched();
    for (const int huge : {INT_MAX, INT_MIN})
        for (const int id : {501, 502, 503, 504})
            c().setParameters("(" + std::to_string(id) + "," + std::to_string(huge) + ")");
}

namespace {

struct Saver {
    ISensorController& controller;
    int pass() {
        controller.flush();
        BreltoTime::wait(BreltoTime(0, 7000));
        return 0;
    }
};

} // namespace

TEST_F(SchemeDay, FlushNeverSavesHalfASwitch) {
    start({{1, 0, Day}, {0, 60, 120}}, 600);
    const std::string first = file("sensor1.cfg");
    const std::string second = file("sensor2.cfg");
    ASSERT_EQ(c().setParamMode(0), 1);
    c().m_nSettingTime = 30000; // as a block on a wire takes: others come in between
    Saver saver{c()};
    GThread other(bind(&saver, &Saver::pass), "other", GThread::emptyFun, GThread::emptyFun);
    ASSERT_TRUE(other.start());
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(c().setParamScheme(1 - i % 2), 1);
    m_pClock->advance(1);
    other.stop();
    for (const auto& [name, was] : {std::pair{"sensor1.cfg", first}, std::pair{"sensor2.cfg", second}}) {
        std::map<int, int> now;
        std::map<int, int> then;
        ASSERT_TRUE(SensorParameterParser::parseSensorParameter(file(name), now));
        ASSERT_TRUE(SensorParameterParser::parseSensorParameter(was, then));
        for (const int id : {1, 500, 501, 502, 503, 504})
            EXPECT_EQ(now[id], then[id]) << name << " " << id;
    }
}
