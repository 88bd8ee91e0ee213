// The day/night decision by delay, clock and mode, and the order of lights, filter and picture behind it.

#include "support/PlainBench.h"

#include <cmath>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using Strings = std::vector<std::string>;

class DayNight : public PlainBench {
protected:
    DayNight() {
        c().m_nFilterGPIOPin = 1;
        c().m_nInfraredGPIOPin = 2;
        c().m_nDNLevelGPIOPin = 3;
        c().m_nFilterGPIOLevel = 1;
        c().m_nInfraredGPIOLevel = 0;
        c().m_nDNLevelGPIOLevel = 1;
    }
    /// A start after which the test runs the passes itself.
    void start() {
        c().m_nDNState = 1;
        c().m_nLastDayNightMode = c().m_nDayNightMode.load();
        c().m_SensorStatus = 2;
    }
    /// Picture commands of one decision.
    Strings pass() {
        c().DNSwitchHandle();
        Strings calls = c().takeCalls();
        std::erase_if(calls, [](const std::string& call) { return call.starts_with("2A"); });
        return calls;
    }
    /// Pin writes since the last call, "pin=value@milliseconds" from the first.
    Strings takeWrites() {
        Strings writes;
        double first = -1;
        for (const auto& write : m_pGpio->getHistory()) {
            if (first < 0)
                first = write.seconds;
            writes.push_back(std::to_string(write.pin) + "=" + std::to_string(write.value) + "@" +
                             std::to_string(std::lround((write.seconds - first) * 1000)));
        }
        m_pGpio->clearHistory();
        return writes;
    }
};

TEST_F(DayNight, NightActsAtOnceAndDayHasToLast) {
    start();
    c().m_bisZoomModule = true;
    c().setDNSwitchDelay(10);
    EXPECT_THAT(pass(), IsEmpty()); // day is measured from here
    m_pClock->advance(20);
    c().m_nStatus = 0;
    EXPECT_THAT(pass(), ElementsAre("picture night"));
    c().m_nStatus = 1;
    EXPECT_THAT(pass(), IsEmpty());
    m_pClock->advance(9);
    EXPECT_THAT(pass(), IsEmpty());
    c().m_nStatus = 0; // a flicker begins the measuring anew
    EXPECT_THAT(pass(), IsEmpty());
    c().m_nStatus = 1;
    EXPECT_THAT(pass(), IsEmpty());
    m_pClock->advance(9.9);
    EXPECT_THAT(pass(), IsEmpty());
    m_pClock->advance(0.1);
    EXPECT_THAT(pass(), ElementsAre("picture day"));
    EXPECT_EQ(c().m_nDNState, 1);
    EXPECT_THAT(pass(), IsEmpty());
    c().setDNSwitchDelay(0);
    c().m_nStatus = 0;
    pass();
    c().m_nStatus = 1;
    EXPECT_THAT(pass(), ElementsAre("picture day"));
    c().setDNSwitchDelay(1000); // a turn to night that failed waits for no delay
    c().m_FailingCalls = {"picture night"};
    c().m_nStatus = 0;
    EXPECT_EQ(c().DNSwitchHandle(), 0);
    c().m_FailingCalls.clear();
    c().takeCalls();
    EXPECT_THAT(pass(), ElementsAre("picture night"));
    c().m_nInfrared = 1; // an old infrared board has its own delay; a new one, none
    c().setDNSwitchDelay(1000);
    c().m_nStatus = 0;
    pass();
    c().m_nStatus = 1;
    EXPECT_THAT(pass(), ElementsAre("picture day"));
}

TEST_F(DayNight, ModesAndWhatEachPassCompletes) {
    start();
    c().m_bisZoomModule = true;
    EXPECT_EQ(c().setDayNightMode(1), 1);
    EXPECT_THAT(pass(), ElementsAre("manual", "picture day")); // once more for the new mode
    EXPECT_THAT(pass(), IsEmpty());
    EXPECT_EQ(c().setDayNightMode(2), 1);
    c().m_FailingCalls = {"picture night"};
    EXPECT_EQ(c().DNSwitchHandle(), 0);
    EXPECT_EQ(c().m_nLastDayNightMode, 1);
    EXPECT_EQ(c().m_nDNState, 1);
    EXPECT_THAT(c().takeCalls(), ElementsAre("manual", "2A 0", "picture night"));
    c().m_FailingCalls.clear();
    EXPECT_THAT(pass(), ElementsAre("picture night"));

    EXPECT_EQ(c().setDayNightMode(4), 1);
    EXPECT_THAT(pass(), ElementsAre("enterAutoMode"));
    EXPECT_EQ(c().m_nDNState, 1); // follows the module without switching
    c().m_nStatus = 0;
    EXPECT_THAT(pass(), IsEmpty());
    EXPECT_EQ(c().m_nDNState, 0);

    c().setDayNightMode(0);
    c().m_FailingCalls = {"getDNStatusFromSensor"};
    c().m_nStatus = -1;
    EXPECT_THAT(pass(), ElementsAre("auto", "getDNStatusFromSensor"));
    EXPECT_EQ(c().m_nLastDayNightMode, 0); // nothing to do counts as completed
    c().m_FailingCalls.clear();
    testing::internal::CaptureStdout();
    EXPECT_EQ(c().DNSwitchHandle(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "=====error!=====nCurrentDNStatus out of range,nCurrentDNStatus=-1\n");
    c().takeCalls();

    c().m_nHDRMode = 3;
    c().setDayNightMode(1);
    EXPECT_THAT(pass(), ElementsAre("manual", "HDR 1", "picture day"));
    c().setDayNightMode(2);
    EXPECT_THAT(pass(), ElementsAre("manual", "HDR 2", "picture night"));
    c().setDayNightMode(5);
    testing::internal::CaptureStdout();
    EXPECT_THAT(pass(), IsEmpty());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "====error=====,m_nDayNightMode out of range\n");
    EXPECT_EQ(c().m_nLastDayNightMode, 5);
}

TEST_F(DayNight, ClockRuleAndItsSetters) {
    struct Case {
        int toNight, toDay, hour, minute, status;
    };
    for (const Case& one : std::initializer_list<Case>{{18, 6, 17, 59, 1},
                                                       {18, 6, 18, 0, 0},
                                                       {18, 6, 5, 59, 0},
                                                       {18, 6, 6, 0, 1},
                                                       {6, 18, 5, 59, 1},
                                                       {6, 18, 6, 0, 0},
                                                       {6, 18, 17, 59, 0},
                                                       {6, 18, 18, 0, 1}}) {
        create();
        c().setDTNTime_H(one.toNight);
        c().setDTNTime_M(0);
        c().setNTDTime_H(one.toDay);
        c().setNTDTime_M(0);
        m_pClock->setTimeOfDay(one.hour, one.minute);
        int status = 77;
        EXPECT_EQ(c().DNSwitchByTime(status), 1);
        EXPECT_EQ(status, one.status) << one.toNight << " " << one.hour << ":" << one.minute;
    }
    int value = 0;
    EXPECT_EQ(c().getDTNTime_H(value), 1);
    EXPECT_EQ(value, 18); // the factory value, not the one in force

    // Times may be equal while the values come one by one, during the start and a reset only.
    EXPECT_EQ(c().setDTNTime_H(18), 1);
    int status = 77;
    EXPECT_EQ(c().DNSwitchByTime(status), 0);
    EXPECT_EQ(status, 77);
    c().setDTNTime_H(6);
    ASSERT_EQ(init(), 1);
    EXPECT_EQ(c().setDTNTime_H(18), 0);
    EXPECT_EQ(c().setNTDTime_H(6), 0);
    EXPECT_TRUE(hasLogged("SensorError failed:DTNTIME == NTDTIME,value = 1800\n"));
    EXPECT_TRUE(hasLogged("SensorError failed:DTNTIME == NTDTIME,value = 600\n"));
    EXPECT_EQ(c().setNTDTime_M(3), 1);
    EXPECT_EQ(c().setDTNTime_H(18), 1);
    EXPECT_EQ(c().setDTNTime_M(3), 0);
    c().m_bisReset = true;
    EXPECT_EQ(c().setDTNTime_M(3), 1);
}

TEST_F(DayNight, WholeDayByTheClock) {
    c().m_bNotes = false;
    c().m_nISPDelayTime = 20; // between two passes: a second would make the day twenty times as long
    c().m_bNewInfrared = true;
    c().setDTNTime_H(18);
    c().setDTNTime_M(3);
    c().setNTDTime_H(5);
    c().setNTDTime_M(0);
    c().m_nDayNightMode = 3;
    m_pClock->setTimeOfDay(12, 0);
    ASSERT_EQ(init(), 1);
    m_pClock->setTimeOfDay(12, 0);
    const double noon = m_pClock->now();
    m_pClock->advance(24 * 60 * 60);
    Strings moves;
    for (const auto& write : m_pGpio->getHistory()) {
        const int minute = 12 * 60 + static_cast<int>((write.seconds - noon) / 60);
        if (write.seconds > noon + 60)
            moves.push_back(std::to_string(minute / 60 % 24) + ":" + std::to_string(minute % 60) + " " +
                            std::to_string(write.pin) + "=" + std::to_string(write.value));
    }
    EXPECT_THAT(moves, ElementsAre("18:30 1=0", "18:30 2=1", "5:0 2=0", "5:0 1=1"));
}

TEST_F(DayNight, PinsMoveInOrderWithAGap) {
    struct Case {
        int infrared;
        bool isNew, isZoom;
        Strings day, night;
    };
    const Strings none;
    const Strings filterOnlyDay{"1=1@0"};
    const Strings filterOnlyNight{"1=0@0"};
    const Strings bothDay{"2=0@0", "1=1@100"};
    const Strings bothNight{"1=0@0", "2=1@100"};
    for (const Case& one : std::initializer_list<Case>{{0, false, false, filterOnlyDay, filterOnlyNight},
                                                       {0, true, false, bothDay, bothNight},
                                                       {1, false, false, none, none},
                                                       {1, true, false, bothDay, bothNight},
                                                       {2, false, false, filterOnlyDay, filterOnlyNight},
                                                       {2, true, false, filterOnlyDay, filterOnlyNight},
                                                       {0, true, true, none, none}}) {
        SCOPED_TRACE(testing::Message() << one.infrared << one.isNew << one.isZoom);
        c().m_nInfrared = one.infrared;
        c().m_bNewInfrared = one.isNew;
        c().m_bisZoomModule = one.isZoom;
        c().m_nDNState = -1;
        const double before = m_pClock->now();
        EXPECT_EQ(c().enterDayMode(), 1);
        EXPECT_EQ(takeWrites(), one.day);
        EXPECT_NEAR(m_pClock->now() - before, one.isZoom ? 0 : 0.1, 1e-6);
        EXPECT_EQ(c().enterNightMode(), 1);
        EXPECT_EQ(takeWrites(), one.night);
        EXPECT_NEAR(m_pClock->now() - before, one.isZoom ? 0 : 0.2, 1e-6);
        EXPECT_THAT(c().takeCalls(), ElementsAre("picture day", "picture night"));
        c().m_nLastDayNightMode = c().m_nDayNightMode.load();
        EXPECT_EQ(c().enterNightMode(), 1);
        EXPECT_THAT(c().takeCalls(), IsEmpty());
        c().m_nLastDayNightMode = -1;
    }
}

TEST_F(DayNight, AFailedPinEndsTheSequenceAfterASecond) {
    c().m_bNewInfrared = true;
    struct Case {
        int pin;
        bool isDay;
        Strings writes, calls;
        const char* text;
        double seconds;
    };
    for (const Case& one :
         std::initializer_list<Case>{{2, true, {}, {}, "gpio set infrared failed", 1},
                                     {1, true, {"2=0@0"}, {}, "gpio set filter failed", 1.1},
                                     {1, false, {}, {"picture night"}, "gpio set filter failed", 1},
                                     {2, false, {"1=0@0"}, {"picture night"}, "gpio set infrared failed", 1.1}}) {
        m_pGpio->setFailing(1, 0, false);
        m_pGpio->setFailing(0, one.pin, true);
        c().m_nDNState = one.isDay ? 0 : 1;
        const double before = m_pClock->now();
        testing::internal::CaptureStdout();
        EXPECT_EQ(one.isDay ? c().enterDayMode() : c().enterNightMode(), 0);
        EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::HasSubstr(one.text));
        EXPECT_NEAR(m_pClock->now() - before, one.seconds, 1e-6);
        EXPECT_EQ(takeWrites(), one.writes);
        EXPECT_EQ(c().takeCalls(), one.calls);
        EXPECT_EQ(c().m_nDNState, one.isDay ? 0 : 1);
        m_pGpio->setFailing(0, one.pin, false);
    }
}

TEST_F(DayNight, StatusComesFromTheRightSource) {
    struct Case {
        int infrared;
        bool isNew, isZoom;
        int status; ///< -1: fails
    };
    m_pGpio->setLevel(0, 1, 1); // the old board says day, the resistor night, the module what it is asked
    m_pGpio->setLevel(0, 3, 0);
    c().m_nStatus = 7;
    for (const Case& one : std::initializer_list<Case>{{0, false, false, 7},
                                                       {0, true, false, 7},
                                                       {1, true, true, 7},
                                                       {1, false, false, 1},
                                                       {1, true, false, 0},
                                                       {2, true, false, 0},
                                                       {2, false, false, -1}}) {
        c().m_nInfrared = one.infrared;
        c().m_bNewInfrared = one.isNew;
        c().m_bisZoomModule = one.isZoom;
        int status = -1;
        EXPECT_EQ(c().getCurrentDNStatus(status), one.status == -1 ? 0 : 1);
        EXPECT_EQ(status, one.status) << one.infrared << one.isNew;
    }
    m_pGpio->setFailing(0, 1, true);
    m_pGpio->setFailing(0, 3, true);
    c().m_bisZoomModule = false;
    for (const bool isNew : {false, true}) {
        c().m_nInfrared = 1;
        c().m_bNewInfrared = isNew;
        int status = -1;
        testing::internal::CaptureStdout();
        EXPECT_EQ(c().getCurrentDNStatus(status), 0);
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  isNew ? "GPIO(3) get DNLevel failed value = -1\ngetDNStatusFromLDR failed\n"
                        : "GPIO(1) get DNLevel failed value = -1\n");
    }
}
