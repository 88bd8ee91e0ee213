// The daily spans: how they are edited, and which scheme the clock and the host put in force: whole days minute by
// minute, against a plain account of what should be.

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

    int schemeInFile() {
        int scheme = -1;
        c().getParamSchemeFromFile(scheme);
        return scheme;
    }
    std::string record(int scheme) const {
        int flag = 0;
        int begin = 0;
        int end = 0;
        const ParamScheme& one = *m_pController->m_ParamSchemes.at(static_cast<std::size_t>(scheme));
        one.getEnableFlag(flag);
        one.getStartTime(begin);
        one.getEndTime(end);
        return std::to_string(flag) + " " + std::to_string(begin) + "-" + std::to_string(end);
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
    int scheme = 77;
    std::string text;
    EXPECT_EQ(c().readCurrentParam(scheme, text), 0);
    EXPECT_EQ(scheme, -1);
    EXPECT_EQ(text, file("sensor_Factory.cfg"));
    EXPECT_EQ(c().paramSchemeSwitchBody(), -1);
    EXPECT_EQ(values("(500)(501)(502)(503)(504)"), groups(schemes[0]));
    EXPECT_EQ(c().flush(), 1);
    EXPECT_THAT(file("sensor1.cfg"), HasSubstr(groups(schemes[0])));
    EXPECT_TRUE(passesAt(840)); // nobody covers the second's time
    EXPECT_THAT(values("(1)"), "(1,101)");
    EXPECT_TRUE(hasLogged("SensorError Auto switch  Scheme to:1\n"));
    writeFile("sensor2.cfg", "(1,5)"); // a scheme in force is not applied again
    m_pClock->advance(3);
    EXPECT_EQ(values("(1)"), "(1,101)");
}

TEST_F(SchemeDay, SpanSettersCheckOnlyWhileRunning) {
    using Setter = int (ISensorController::*)(int);
    constexpr Setter StartHour = &ISensorController::setParamStartTime_H;
    constexpr Setter StartTens = &ISensorController::setParamStartTime_M;
    constexpr Setter EndHour = &ISensorController::setParamEndTime_H;
    constexpr Setter EndTens = &ISensorController::setParamEndTime_M;
    struct Case {
        int begin, end;
        Setter set;
        int argument;
        int result; ///< the new time, 0 for a refusal
        const char* refusal;
        bool isCrossCheck;
    };
    start({{1, 0, Day}}, 720);
    for (const Case& one : std::initializer_list<Case>{
             {830, 1200, StartHour, 11, 1130, "", false},
             {830, 1230, StartHour, 12, 1230, "", false},
             {830, 1220, StartHour, 12, 0, "failed:startTime(1230) > endTime(1220)\n", true},
             {800, 2330, StartHour, 24, 0, "failed:startTime(2400) > endTime(2330)\n", true},
             {830, 10000, StartHour, 24, 0, "setParamStartTime_H failed:startTime > 24H,m_nParamSchemeStartTime=830\n",
              false},
             {800, 2400, StartHour, 24, 2400, "", false},
             {830, 900, StartTens, 5, 850, "", false},
             {800, 820, StartTens, 2, 820, "", false},
             {800, 820, StartTens, 3, 0, "failed:startTime(830) > endTime(820)\n", true},
             {2400, 10000, StartTens, 0, 2400, "", false},
             {2400, 10000, StartTens, 1, 0,
              "setParamStartTime_M failed:startTime > 24H,m_nParamSchemeStartTime=2400,p_nParamTime_M=1\n", false},
             {830, 10000, EndHour, 8, 800, "", false}, // the minute is still to come
             {830, 10000, EndHour, 7, 0, "failed:startTime(830) > endTime(700)\n", true},
             {830, 1230, EndHour, 8, 830, "", false},
             {830, 1220, EndHour, 8, 0, "failed:startTime(830) > endTime(820)\n", true},
             {830, 1200, EndHour, 24, 2400, "", false},
             {830, 1210, EndHour, 24, 0, "failed:endTime > 24H, m_nParamSchemeEndTime=1210\n", false},
             {830, 800, EndTens, 4, 840, "", false},
             {830, 800, EndTens, 3, 0, "failed:startTime(830) > endTime(830)\n", true},
             {830, 2400, EndTens, 0, 2400, "", false},
             {830, 2400, EndTens, 1, 0, "failed:endTime > 24H,m_nParamSchemeEndTime=2400,p_nParamTime_M=1\n", false}}) {
        SCOPED_TRACE(testing::Message() << one.begin << "-" << one.end << " takes " << one.argument << one.refusal);
        for (const bool isChecked : {true, false}) {
            c().m_bisReset = !isChecked;
            c().m_nParamSchemeStartTime = one.begin;
            c().m_nParamSchemeEndTime = one.end;
            c().setParamSchemeStartTime(0, one.begin);
            c().setParamSchemeEndTime(0, one.end);
            m_Root.remove("/mnt/mtd/log/SensorError.log");
            const bool isRefused = *one.refusal != '\0' && (isChecked || !one.isCrossCheck);
            EXPECT_EQ((c().*one.set)(one.argument), isRefused ? 0 : 1);
            EXPECT_EQ(hasLogged(std::string("SensorError ") + one.refusal), isRefused);
            const bool isStart = one.set == StartHour || one.set == StartTens;
            if (isRefused) {
                EXPECT_EQ(c().m_nParamSchemeStartTime, one.begin);
                EXPECT_EQ(c().m_nParamSchemeEndTime, one.end);
            } else if (one.result != 0) {
                EXPECT_EQ(isStart ? c().m_nParamSchemeStartTime : c().m_nParamSchemeEndTime, one.result);
                EXPECT_THAT(record(0), HasSubstr(std::to_string(one.result)));
            }
        }
    }
    c().m_bisReset = false;
    c().m_nParamSchemeStartTime = 830;
    c().m_nParamSchemeEndTime = 900;
    EXPECT_EQ(c().setParameters("(501,23)"), 0);
    EXPECT_TRUE(hasLogged("SensorError setParamStartTime_H failed\n"));
}

TEST_F(SchemeDay, TheHostsChoice) {
    const std::vector<Scheme> schemes{{1, 0, Day}, {0, 70, 140}};
    start(schemes, 720);
    c().m_bNotes = true;
    EXPECT_EQ(c().setParamMode(0), 1);
    EXPECT_EQ(c().setParamScheme(1), 1);
    m_pClock->advance(3);
    int scheme = 0;
    EXPECT_EQ(c().getParamScheme(scheme), 1);
    EXPECT_EQ(scheme, 1);
    EXPECT_EQ(schemeInFile(), 1);
    EXPECT_EQ(values("(1)(500)(503)"), "(1,101)(500,0)(503,2)");
    EXPECT_EQ(record(0), "1 0-2400");
    EXPECT_EQ(record(1), "0 110-220");

    // Refused: no such scheme, a file that is gone. The span in force stays.
    c().takeCalls();
    for (const int wrong : {-1, 2, 1000000})
        EXPECT_EQ(c().setParamScheme(wrong), 0);
    EXPECT_TRUE(hasLogged("switchParam failed: no parameter scheme -1"));
    const std::string first = file("sensor1.cfg");
    m_Root.remove(Folder + "sensor1.cfg");
    EXPECT_EQ(c().setParamScheme(0), 0);
    EXPECT_TRUE(hasLogged("switchParam failed: parameter scheme 0 can not be read"));
    EXPECT_TRUE(c().takeCalls().empty());
    EXPECT_EQ(values("(501)(502)(503)(504)"), "(501,1)(502,1)(503,2)(504,2)");
    EXPECT_EQ(c().m_nParamSchemeEndTime, 220);
    writeFile("sensor1.cfg", first);

    // Both choices outlive a restart; in manual mode the clock does not undo them.
    create();
    ASSERT_EQ(init(), 1);
    m_pClock->advance(3);
    EXPECT_EQ(c().m_nParamScheme, 1);
    EXPECT_EQ(c().m_nParamMode, 0);
    EXPECT_TRUE(hasLogged("parameter scheme 1 is chosen, the clock applies 0"));
    EXPECT_EQ(values("(1)(500)(501)(502)(503)(504)"), value(0) + groups(schemes[1]));
    EXPECT_EQ(c().setParamScheme(1), 1); // the host's way to its values
    EXPECT_EQ(c().flush(), 1);
    EXPECT_THAT(file("sensor2.cfg"), HasSubstr(value(1)));
    EXPECT_THAT(file("sensor2.cfg"), HasSubstr(groups(schemes[1])));
    EXPECT_EQ(c().setParamMode(7), 1);
    m_pClock->advance(1);
    EXPECT_EQ(c().m_nParamScheme, 0);
    EXPECT_THAT(file("sensor.xml"), HasSubstr("\"7\""));
}

TEST_F(SchemeDay, ChoiceFileKeepsWhatItDoesNotKnow) {
    writeFile("sensor.xml", "<sensor note=\"x\"><other/><paramScheme><item name=\"Mine\" value=\"m\"/>"
                            "<item name=\"SchemeIndex\" value=\"1\"/><item name=\"SchemeIndex\" value=\"9\"/>"
                            "</paramScheme></sensor>");
    int number = 77;
    EXPECT_EQ(c().getParamSchemeFromFile(number), 1);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(c().getParamSchemeModeFromFile(number), 0);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(c().setParamSchemeModeToFile(3), 0);
    EXPECT_EQ(c().setParamSchemeToFile(-4), 1);
    EXPECT_EQ(c().getParamSchemeFromFile(number), 1);
    EXPECT_EQ(number, -4);
    EXPECT_EQ(c().setValueToParamSchemeNode("Mine", "a<\"&"), 1);
    std::string text;
    EXPECT_EQ(c().getValueFromParamSchemeNode("Mine", text), 1);
    EXPECT_EQ(text, "a<\"&");
    EXPECT_THAT(file("sensor.xml"), HasSubstr("<other"));
    EXPECT_EQ(c().createSensorXML(), 1);
    EXPECT_THAT(file("sensor.xml"), Not(HasSubstr("SchemeMode")));

    // An index outside the list: the camera comes up, and says that it can not save.
    ASSERT_EQ(init(), 1);
    c().m_nParamMode = 0;
    c().m_nParamScheme = -4;
    EXPECT_EQ(c().setParameters("(500,0)(501,1)"), 1);
    EXPECT_EQ(c().flush(), 0);
    EXPECT_TRUE(hasLogged("flush failed: no parameter scheme -4"));
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
    EXPECT_TRUE(hasLogged("setParameters @switchParam failed"));
    isUntouched();
    m_pClock->setTimeOfDay(13, 0);
    EXPECT_EQ(c().paramSchemeSwitchBody(), -1);
    EXPECT_TRUE(hasLogged("setParameters failed @paramSchemeSwitchBody"));
    EXPECT_EQ(schemeInFile(), 0);
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
