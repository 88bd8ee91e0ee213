// What the golden texts of the EH blocks do not say: the start, the video system with its restart, gain, waits, and the
// exchanges that the EH6300 has of its own.

#include "drivers/visca/SONYEH4300SenseController.h"
#include "drivers/visca/SONYEH6300SenseController.h"
#include "support/ScriptedBlock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::ElementsAre;
using Calls = std::vector<std::string>;

const std::string Acknowledged = "90 41 FF";
const std::string AskSync = "send 81 09 04 24 56 FF";
const std::string AskVideo = "send 81 09 04 24 72 FF";
const std::string SendRestart = "send 81 01 04 19 03 FF";

template <class Block>
using SonyEH = ScriptedBlock<Block>;
using EH4300 = SonyEH<SONYEH4300SenseController>;
using EH6300 = SonyEH<SONYEH6300SenseController>;

TEST_F(EH4300, InterSyncIsOpenedWhereItIsOffAndNeedsARestart) {
    EXPECT_EQ(start({"90 50 00 01 FF"}), 1);
    EXPECT_THAT(m_Calls, ElementsAre("open a", "line 9600 8 0 1", "drain", AskSync, "recv 5/4"));
    EXPECT_EQ(video(1, {"90 50 00 08 FF"}), 1);
    EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4"));
    EXPECT_NEAR(m_nSeconds, 0.0001, 1e-6);

    // An inquiry that fails counts as off.
    EXPECT_EQ(start({"", "", "", Acknowledged}), 1);
    EXPECT_EQ(m_Calls.at(m_Calls.size() - 2), "send 81 01 04 24 56 00 01 FF");
    EXPECT_EQ(video(1, {"90 50 00 08 FF", "90 42 FF"}), 1);
    EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4", SendRestart, "recv 6/5", "drain"));
    EXPECT_NEAR(m_nSeconds, 20.0001, 1e-6);
    // What needed the restart is not forgotten by it.
    EXPECT_EQ(video(1, {"90 50 00 08 FF", Acknowledged}), 1);
    EXPECT_NEAR(m_nSeconds, 20.0001, 1e-6);

    EXPECT_EQ(start({"90 50 00 00 FF", "90 60 FF", "90 60 FF", "90 60 FF"}), 0);
}

TEST_F(EH4300, ADifferentVideoSystemIsWrittenAndCostsARestart) {
    start({"90 50 00 01 FF"});
    EXPECT_EQ(video(0, {"90 50 00 08 FF", Acknowledged, Acknowledged}), 1);
    EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4", "send 81 01 04 24 72 00 06 FF", "recv 3/4", SendRestart,
                                     "recv 6/5", "drain"));
    // No such system: nothing is written, but 00 is wanted and the block restarts.
    EXPECT_EQ(video(3, {"90 50 00 08 FF", Acknowledged}), 1);
    EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4", SendRestart, "recv 6/5", "drain"));

    // The restart's answer is waited for twice.
    EXPECT_EQ(video(3, {"90 50 00 08 FF", "", Acknowledged}), 1);
    EXPECT_EQ(video(3, {"90 50 00 08 FF", "", ""}), 0);
    EXPECT_EQ(m_strLog, "recv time out in restart sensor");
    EXPECT_EQ(m_Calls.size(), 5U) << "nothing is drained, nobody waits";
    EXPECT_EQ(video(3, {"90 50 00 08 FF", "90 51 FF"}), 0);
    EXPECT_EQ(m_strLog, "restart sensor recv failed | recv:0x90,0x51,0xff");
    EXPECT_EQ(video(3, {"90 50 00 08 FF", "90"}), 0);
    EXPECT_EQ(m_strLog, "restart sensor recv failed | recv:0x90,0x0,0x0");
    m_pPort->m_SendResults = {6, 5};
    EXPECT_EQ(video(3, {"90 50 00 08 FF"}), 0);
    EXPECT_EQ(m_strLog, "");
    EXPECT_NEAR(m_nSeconds, 1.0001, 1e-6);
}

TEST_F(EH4300, GainIsTakenFromARightReplyAlone) {
    start({"90 50 00 01 FF"});
    int gain = -7;
    const auto ask = [&gain](ISensorController& block) { return block.getCurrentGain(gain); };
    EXPECT_EQ(run({"90 50 00 00 01 02 FF"}, ask), 1);
    EXPECT_EQ(gain, 34);
    EXPECT_EQ(run({"90 50 00 00 F0 F0 FF"}, ask), 1);
    EXPECT_EQ(gain, -2);
    gain = -7;
    for (const char* bad : {"91 50 00 00 01 02 FF", "90 51 00 00 01 02 FF", "90 50 01 00 01 02 FF",
                            "90 50 00 01 01 02 FF", "90 50 00 00 01 02 FE"}) {
        EXPECT_EQ(run({bad}, ask), 0) << bad;
        EXPECT_EQ(m_strLog, bad[1] == '1' ? "get currentGain failed | 0x91" : "get currentGain failed | 0x90");
    }
    EXPECT_EQ(run({}, ask), 0);
    EXPECT_TRUE(m_strLog.ends_with(" | get currentGain failed,nRet=0")) << m_strLog;
    EXPECT_EQ(gain, -7);
}

TEST_F(EH4300, WaitsBetweenTheFramesOfATurnAndOfTheBrightnessMode) {
    start({"90 50 00 01 FF"});
    EXPECT_EQ(run({Acknowledged, Acknowledged}, [](ISensorController& block) { return block.turnPictureToDay(); }), 1);
    EXPECT_NEAR(m_nSeconds, 1, 1e-6);
    EXPECT_EQ(
        run({"90 60 FF", "90 60 FF", "90 60 FF"}, [](ISensorController& block) { return block.turnPictureToNight(); }),
        0);
    EXPECT_NEAR(m_nSeconds, 0, 1e-6);
    EXPECT_EQ(m_Calls.size(), 9U) << "the second frame stays at home";

    const auto mode = [](int value) {
        return [value](SONYEH4300SenseController& block) {
            (block.*Peek::CurrentCache)->setSensorValues("(10,0)(11,5)(12,17)(13,0)(14,1)");
            return block.setExposalMode(value);
        };
    };
    EXPECT_EQ(run({Acknowledged}, mode(1)), 1);
    EXPECT_EQ(run({Acknowledged, Acknowledged}, mode(4)), 1);
    EXPECT_NEAR(m_nSeconds, 0.1, 1e-6);
    EXPECT_EQ(run({Acknowledged}, mode(1)), 1);
    EXPECT_EQ(run({}, mode(4)), 0);
    EXPECT_TRUE(m_strLog.ends_with(" | setExposalMode failed")) << m_strLog;
    EXPECT_EQ(run({Acknowledged}, mode(7)), 0);
    EXPECT_TRUE(m_Calls.empty());
}

TEST_F(EH4300, ItsStatusIsToldWhenAReadIsRefused) {
    int value = 5;
    EXPECT_EQ(run({}, [&value](ISensorController& block) { return block.getParameterFromSensor(1, value); }), 0);
    EXPECT_EQ(m_strLog, "m_SensorStatus != ISensorController::InitSuccess!");
    EXPECT_EQ(run({}, [](ISensorController& block) { return block.setParameterToSensor(1, 5); }), 0);
    EXPECT_EQ(m_strLog, "");
    m_pBlock->setDayNightMode(3);
    EXPECT_EQ(m_pBlock->getDayNightMode(value), 1);
    EXPECT_EQ(value, 1);
}

TEST_F(EH6300, ASettingIsTriedOnceAndWantsAnExactAcknowledgement) {
    start({"90 50 00 01 FF"});
    static constexpr char Frame[] = {'\x81', 0x01, 0x04, 0x11, 0x01, '\xff'};
    const auto set = [](ISensorController& block) { return block.setParameterValue(Frame, sizeof Frame); };
    const std::string sent = "send 81 01 04 11 01 FF";
    for (const char* good : {"90 41 FF", "90 42 FF"}) {
        EXPECT_EQ(run({good}, set), 1) << good;
        EXPECT_THAT(m_Calls, ElementsAre(sent, "recv 3/5"));
    }
    EXPECT_EQ(run({"", "90 42 FF"}, set), 1);
    EXPECT_THAT(m_Calls, ElementsAre(sent, "recv 3/5", "recv 3/5"));
    EXPECT_EQ(m_strLog, "");

    EXPECT_EQ(run({"90 51 FF"}, set), 0);
    EXPECT_THAT(m_Calls, ElementsAre(sent, "recv 3/5", "drain"));
    EXPECT_EQ(m_strLog, "setParameterValue recv error,recv:0x90,0x51,0xff");
    EXPECT_EQ(run({"", "90 41"}, set), 0);
    EXPECT_EQ(m_strLog, "setParameterValue failed: | 0x90  | 0x41 ");
    EXPECT_EQ(run({"", ""}, set), 0);
    EXPECT_EQ(m_strLog, "setParameterValue failed:");
    EXPECT_THAT(m_Calls, ElementsAre(sent, "recv 3/5", "recv 3/5", "drain"));
    m_pPort->m_SendResults = {2};
    EXPECT_EQ(run({}, set), 0);
    EXPECT_THAT(m_Calls, ElementsAre(sent));
    EXPECT_EQ(m_strLog, "sendData !! send data failed , sendcommand=\x81\x01\x04\x11\x01\xff  ,nRet=2");
    EXPECT_EQ(run({}, [](ISensorController& block) { return block.setParameterValue(Frame, -1); }), 0);
    EXPECT_TRUE(m_Calls.empty());
}

TEST_F(EH6300, AnInquiryHandsOverWhatTheBufferHolds) {
    start({"90 50 00 01 FF"});
    static constexpr char Frame[] = {'\x81', 0x09, 0x04, 0x01, '\xff'};
    char reply[4] = {};
    const auto ask = [&reply](ISensorController& block) {
        return block.getParameterValue(Frame, sizeof Frame, reply, sizeof reply);
    };
    EXPECT_EQ(run({"", "90 50 03 FF"}, ask), 1);
    EXPECT_EQ(reply[2], 3);
    EXPECT_EQ(run({"91 60"}, ask), 0);
    EXPECT_EQ(std::string(reply, 4), "\x91\x60\x03\xff") << "the tail of the reply before";
    EXPECT_EQ(m_strLog, "0x91  | 0x60 ");
    EXPECT_THAT(m_Calls, ElementsAre("send 81 09 04 01 FF", "recv 4/5", "drain"));
    m_pPort->m_SendResults = {0};
    EXPECT_EQ(run({}, ask), 0);
    EXPECT_THAT(m_Calls, ElementsAre("send 81 09 04 01 FF"));
    EXPECT_EQ(m_strLog, "send @getParameterValue failed, sendcommand=\x81\x09\x04\x01\xff  ,nRet=0");
}

TEST_F(EH6300, ARestartThatIsNotAnsweredIsAWrongAnswer) {
    start({"90 50 00 01 FF"});
    EXPECT_EQ(video(3, {"90 50 00 08 FF", "", ""}), 0);
    EXPECT_EQ(m_strLog, "restart sensor recv failed | recv:0x0,0x0,0x0");
    EXPECT_EQ(video(1, {"90 50 00 06 FF", "90 42 FF", "90 42 FF"}), 1);
    EXPECT_NEAR(m_nSeconds, 20.0001, 1e-6);
}

} // namespace
