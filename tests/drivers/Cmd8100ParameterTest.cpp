#include "drivers/QuietCmd8100.h"

#include <algorithm>
#include <climits>

namespace {

class Cmd8100Parameters : public QuietCmd8100 {};

TEST_F(Cmd8100Parameters, APairStopsAtTheCommandThatFails) {
    start();
    const std::string first = "81 01 04 61 02 FF";
    for (const char* fault : {"refuse@1-3", "refuse@2-4"}) {
        const bool isFirst = fault[7] == '1';
        m_pPort->addFault(fault);
        EXPECT_EQ(set(4, 1).frames, isFirst ? times(3, first) : first + " | " + times(3, "81 01 04 66 03 FF"));
        m_pPort->addFault(fault);
        const Outcome failed = set(15, 1);
        EXPECT_EQ(failed.result, 0);
        EXPECT_EQ(failed.frames,
                  isFirst ? times(3, "81 01 04 38 02 FF") : "81 01 04 38 02 FF | " + times(3, "81 01 04 57 00 FF"));
        EXPECT_TRUE(failed.log.ends_with(" | setFocusMode error,value is 1")) << failed;
    }
}

TEST_F(Cmd8100Parameters, SwitchTimesAndDayNightModeSendNothing) {
    start(); // 18:00 to night, 6:00 to day
    const Outcome done{1, "", ""};
    const auto refused = [](int value, const std::string& setter) {
        return Outcome{0, "",
                       "failed:DTNTIME == NTDTIME,value = " + std::to_string(value) + " | " + setter + " failed"};
    };
    EXPECT_EQ(set(60, 6), refused(600, "setDTNTime_H"));
    EXPECT_EQ(set(62, 18), refused(1800, "setNTDTime_H"));
    EXPECT_EQ(set(61, 3), done);
    EXPECT_EQ(set(62, 18), done) << "18:30 and 18:00";
    EXPECT_EQ(set(61, 0), refused(1800, "setDTNTime_M"));
    EXPECT_EQ(set(63, 3), refused(1830, "setNTDTime_M"));
    for (const int mode : {3, 1, 7, -1})
        EXPECT_EQ(set(12, mode), done) << mode;

    // 0 and 4 both hand the choice to the block: it is told once, and asked from then on.
    for (const int mode : {0, 4}) {
        quieten();
        EXPECT_EQ(controller().setParameterToSensor(12, mode), 1);
        m_pClock->advance(1.2);
        const std::vector<std::string> sent = m_pPort->takeSent();
        EXPECT_EQ(std::ranges::count(sent, "81 01 04 51 02 FF"), 1) << mode;
        EXPECT_GE(std::ranges::count(sent, "81 09 04 01 FF"), 1) << mode;
    }
    quieten();
    EXPECT_EQ(controller().setParameterToSensor(12, 2), 1);
    m_pClock->advance(1.2);
    EXPECT_EQ(m_pPort->takeSent(), (std::vector<std::string>{"81 01 04 51 03 FF", "81 01 04 01 02 FF"}));
}

TEST_F(Cmd8100Parameters, EveryServedIdWaitsAndNoOther) {
    start();
    for (const int id : {8, 18, 21, 51, 75, 499, 505, -1, INT_MIN, INT_MAX}) {
        const Outcome refused = set(id, 1);
        EXPECT_EQ(refused, (Outcome{-1, "", ""})) << id;
        EXPECT_EQ(refused.seconds, 0);
    }
    for (const int id : {1, 15, 58, 60}) {
        int value = 0;
        EXPECT_NEAR(set(id, 7).seconds, 0.03, 1e-6) << id;
        EXPECT_NEAR(outcome([&] { return controller().getParameterFromSensor(id, value); }).seconds, 0.03, 1e-6);
    }
    EXPECT_EQ(set(1, 101).seconds, 0);
}

} // namespace
