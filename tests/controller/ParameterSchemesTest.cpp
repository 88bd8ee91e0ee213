// The daily spans: how they are edited, and which scheme the clock and the host put in force.

#include "support/PlainBench.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ParameterSchemes : public PlainBench {
protected:
    /// Files for so many schemes, each with value 100 * (n + 1) for id 1 and its span; then a start at noon.
    void start(const std::vector<std::string>& spans) {
        m_Root.writeSchemeCount(static_cast<int>(spans.size()));
        for (std::size_t i = 0; i < spans.size(); ++i)
            writeFile("sensor" + std::to_string(i + 1) + ".cfg",
                      "(1," + std::to_string(100 * (i + 1)) + ")" + spans[i]);
        ASSERT_EQ(init(), 1);
        m_pClock->advance(0.5); // between two passes of the thread
    }
    static std::string span(int flag, int startHour, int startTens, int endHour, int endTens) {
        return "(500," + std::to_string(flag) + ")(501," + std::to_string(startHour) + ")(502," +
               std::to_string(startTens) + ")(503," + std::to_string(endHour) + ")(504," + std::to_string(endTens) +
               ")";
    }
    void setTime(int hour, int minute) {
        m_pClock->setTimeOfDay(hour, minute);
        m_pClock->advance(1);
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
};

TEST_F(ParameterSchemes, SpanSettersCheckOnlyWhileRunning) {
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
    start({span(1, 0, 0, 24, 0)});
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

TEST_F(ParameterSchemes, TheClockPicksTheLowestOpenSpan) {
    start({span(1, 6, 0, 8, 3), span(1, 8, 0, 18, 0), span(0, 0, 0, 24, 0), span(1, 18, 0, 24, 0)});
    // The text in force at the start is the clock's; the index follows with the first pass.
    EXPECT_EQ(values("(1)"), "(1,200)");
    EXPECT_EQ(schemeInFile(), 1);
    EXPECT_TRUE(hasLogged("SensorError Auto switch  Scheme to:1\n"));
    struct Case {
        int hour, minute, scheme;
    };
    for (const Case& one : std::initializer_list<Case>{{8, 30, 0},
                                                       {8, 31, 1},
                                                       {18, 0, 1}, // the end is included
                                                       {18, 1, 3},
                                                       {23, 59, 3},
                                                       {0, 0, 3}, // no span is open: the last one stays
                                                       {5, 59, 3},
                                                       {6, 0, 0}}) {
        setTime(one.hour, one.minute);
        EXPECT_EQ(c().m_nParamScheme, one.scheme) << one.hour << ":" << one.minute;
        EXPECT_EQ(values("(1)"), "(1," + std::to_string(100 * (one.scheme + 1)) + ")");
        EXPECT_EQ(schemeInFile(), one.scheme);
    }
    EXPECT_EQ(values("(500)(501)(502)(503)(504)"), span(1, 6, 0, 8, 3));
    EXPECT_EQ(record(0), "1 600-830");
    EXPECT_EQ(record(2), "0 0-2400");

    int scheme = 77;
    std::string text;
    m_pClock->setTimeOfDay(3, 0);
    EXPECT_EQ(c().readCurrentParam(scheme, text), 0);
    EXPECT_EQ(scheme, -1);
    EXPECT_EQ(text, file("sensor_Factory.cfg"));
    EXPECT_EQ(c().paramSchemeSwitchBody(), -1);
    // A scheme in force is not applied again.
    setTime(7, 0);
    writeFile("sensor1.cfg", "(1,5)");
    m_pClock->advance(3);
    EXPECT_EQ(values("(1)"), "(1,100)");
}

TEST_F(ParameterSchemes, AFailedSwitchIsTriedAgain) {
    start({span(1, 0, 0, 12, 0), span(1, 12, 1, 24, 0)});
    c().m_FailingIds = {1};
    setTime(12, 10);
    EXPECT_EQ(c().m_nParamScheme, 0);
    EXPECT_TRUE(hasLogged("setParameters failed @paramSchemeSwitchBody"));
    EXPECT_EQ(schemeInFile(), 0);
    EXPECT_EQ(c().paramSchemeSwitchBody(), -1);
    c().m_FailingIds.clear();
    m_pClock->advance(1);
    EXPECT_EQ(c().m_nParamScheme, 1);
    EXPECT_EQ(values("(1)"), "(1,200)");
}

TEST_F(ParameterSchemes, TheHostsChoice) {
    start({span(1, 0, 0, 24, 0), span(0, 1, 1, 2, 2)});
    EXPECT_EQ(c().setParamMode(0), 1);
    EXPECT_EQ(c().setParamScheme(1), 1);
    m_pClock->advance(3);
    int scheme = 0;
    EXPECT_EQ(c().getParamScheme(scheme), 1);
    EXPECT_EQ(scheme, 1);
    EXPECT_EQ(schemeInFile(), 1);
    EXPECT_EQ(values("(1)(500)(503)"), "(1,200)(500,0)(503,2)");
    EXPECT_EQ(record(0), "1 0-2400");
    EXPECT_EQ(record(1), "0 110-220");

    // Refused: no such scheme, a file that is gone, a value that the module refuses. The span in force stays.
    c().takeCalls();
    for (const int wrong : {-1, 2, 1000000})
        EXPECT_EQ(c().setParamScheme(wrong), 0);
    EXPECT_TRUE(hasLogged("switchParam failed: no parameter scheme -1"));
    const std::string first = file("sensor1.cfg");
    m_Root.remove(Folder + "sensor1.cfg");
    EXPECT_EQ(c().setParamScheme(0), 0);
    EXPECT_TRUE(hasLogged("switchParam failed: parameter scheme 0 can not be read"));
    EXPECT_THAT(c().takeCalls(), IsEmpty());
    EXPECT_EQ(values("(501)(502)(503)(504)"), "(501,1)(502,1)(503,2)(504,2)");
    EXPECT_EQ(c().m_nParamSchemeEndTime, 220);
    writeFile("sensor1.cfg", first);
    c().m_FailingIds = {1};
    EXPECT_EQ(c().setParamScheme(0), 0);
    EXPECT_TRUE(hasLogged("setParameters @switchParam failed"));
    EXPECT_EQ(c().m_nParamScheme, 1);
    EXPECT_EQ(schemeInFile(), 1);
    c().m_FailingIds.clear();

    // Both choices outlive a restart; in manual mode the clock does not undo them.
    create();
    ASSERT_EQ(init(), 1);
    m_pClock->advance(3);
    EXPECT_EQ(c().m_nParamScheme, 1);
    EXPECT_EQ(c().m_nParamMode, 0);
    EXPECT_EQ(c().setParamMode(7), 1);
    m_pClock->advance(1);
    EXPECT_EQ(c().m_nParamScheme, 0);
    EXPECT_THAT(m_Root.read(Folder + "sensor.xml"), HasSubstr("\"7\""));
}

TEST_F(ParameterSchemes, ChoiceFileKeepsWhatItDoesNotKnow) {
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
