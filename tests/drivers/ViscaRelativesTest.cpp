// What the golden texts of the VISCA relatives do not say: starts, video systems, live values, point-light focus, and
// the module whose thread is all that it does.

#include "drivers/visca/CMD7300SenseController.h"
#include "drivers/visca/CMD8100_OldSenseController.h"
#include "drivers/visca/CMD8300SenseController.h"
#include "drivers/visca/NoSensorUIController.h"
#include "drivers/visca/SONYCH3310SenseController.h"
#include "drivers/visca/SONYCV7500SenseController.h"
#include "host/linux/HostRecords.h"
#include "support/ScriptedBlock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::ElementsAre;

const std::string Acknowledged = "90 41 FF";
const std::string AskVideo = "send 81 09 04 24 72 FF";
const std::string PrivateRestart = "send FE 05 03 01 01 0A FF";
const std::string Refused = "90 60 FF";

using Cmd7300 = ScriptedBlock<CMD7300SenseController>;
using Cmd8100Old = ScriptedBlock<CMD8100_OldSenseController>;
using Cmd8300 = ScriptedBlock<CMD8300SenseController>;
using Ch3310 = ScriptedBlock<SONYCH3310SenseController>;
using Cv7500 = ScriptedBlock<SONYCV7500SenseController>;
using NoUi = ScriptedBlock<NoSensorUIController>;

TEST_F(Cmd7300, VideoSystemGainAndStatusAreItsOwn) {
    EXPECT_EQ(start({Acknowledged}, "RS485=a;isInfrared=0;generation=4"), 1);
    EXPECT_EQ(start({Refused, Refused, Refused}, "RS485=a;isInfrared=0;generation=4"), 0);
    EXPECT_EQ(m_strLog.find("Brightness"), std::string::npos) << "it ends the start without a word";

    EXPECT_EQ(video(1, {"90 50 01 01 FF"}), 1);
    EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4"));
    EXPECT_NEAR(m_nSeconds, 0, 1e-9);
    EXPECT_EQ(video(1, {"90 50 00 0E FF", Acknowledged}), 1);
    EXPECT_THAT(m_Calls,
                ElementsAre(AskVideo, "recv 5/4", "send 81 01 04 24 72 01 01 FF", "recv 3/4", PrivateRestart, "drain"));
    EXPECT_NEAR(m_nSeconds, 20, 1e-6);
    EXPECT_EQ(video(7, {"90 50 01 01 FF", Acknowledged}), 1);
    EXPECT_EQ(m_Calls.at(2), "send 81 01 04 24 72 00 0E FF");

    int gain = -1;
    const auto ask = [&gain](ISensorController& block) { return block.getCurrentGain(gain); };
    EXPECT_EQ(run({"90 50 00 00 13 02 FF"}, ask), 1);
    EXPECT_EQ(gain, 0x32);
    EXPECT_EQ(run({}, ask), 1);
    EXPECT_EQ(gain, 0);
    EXPECT_NEAR(m_nSeconds, 3, 1e-6);
    EXPECT_TRUE(m_strLog.ends_with(" | get AGC failed ")) << m_strLog;

    int status = 5;
    const auto look = [&status](ISensorController& block) { return block.getDNStatusFromSensor(status); };
    EXPECT_EQ(run({"90 50 04 FF"}, look), 0);
    EXPECT_EQ(m_strLog, "get daynight value out of range:0x90,0x50,0x4,0xff");
    EXPECT_EQ(status, 5);
}

TEST_F(Cmd8100Old, ARestartThatDidNotComeIsMadeUpForAndThenForgotten) {
    EXPECT_EQ(start({Acknowledged}), 1);
    m_pPort->m_SendResults = {6, 8, 3};
    EXPECT_EQ(video(0, {"90 50 00 08 FF", Acknowledged}), 0) << "the restart did not go out";
    EXPECT_NEAR(m_nSeconds, 1.0001, 1e-6);
    EXPECT_EQ(video(0, {"90 50 00 06 FF"}), 1);
    EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4", PrivateRestart, "drain"));
    EXPECT_EQ(video(0, {"90 50 00 06 FF"}), 1);
    EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4"));
    // What is written does not matter: the restart follows.
    EXPECT_EQ(video(1, {"90 50 00 06 FF", Refused, Refused, Refused}), 1);
    EXPECT_EQ(m_Calls.at(m_Calls.size() - 2), PrivateRestart);
    EXPECT_EQ(video(5, {"90 50 00 06 FF"}), 1);
    EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4", PrivateRestart, "drain"));
    EXPECT_EQ(video(0, {}), 0);
    EXPECT_TRUE(m_strLog.ends_with(" | get sensor video system failed")) << m_strLog;
}

TEST_F(Cmd8300, AnnouncesEachTryAndRestartsByTheFamilysFrame) {
    EXPECT_EQ(start({}, "RS485=a;isInfrared=0;generation=4"), 1);
    EXPECT_THAT(m_Calls, ElementsAre("open a", "line 9600 8 0 1", "drain"));
    const std::string announced = "setParameterValue send: | 0x81,0x1,0x4,0x18,0x1,0xff";
    EXPECT_EQ(run({Refused, Acknowledged}, [](CMD8300SenseController& block) { return block.OnePushTrigger(); }), 1);
    EXPECT_EQ(m_strLog, "===~~~~~~~~~~~~~~~~~~send(1 times) " + announced +
                            " | ===send: | 0x81,0x1,0x4,0x18,0x1,0xff | ===setParameterValue(1 times) recv "
                            "error,recv:0x90,0x60,0xff | ===~~~~~~~~~~~~~~~~~~send(2 times) " +
                            announced);

    EXPECT_EQ(video(1, {"90 50 00 06 FF", Acknowledged}), 1);
    EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4", "send 81 01 04 24 72 00 08 FF", "recv 3/4",
                                     "send 81 01 04 19 03 FF", "drain"));
    EXPECT_NEAR(m_nSeconds, 21.0001, 1e-6);

    sensorhost::recordCommands(true);
    for (const int system : {1, 0, 2})
        EXPECT_EQ(m_pBlock->updateSensorVideoSystem(system, VideoResolution(1920, 1080)), 1);
    std::vector<std::string> lines;
    for (const sensorhost::CommandRecord& command : sensorhost::getCommands())
        lines.push_back(command.line);
    sensorhost::recordCommands(false);
    const std::string script = "/mnt/mtd/hd1/system/modules/sensor/cmd8300/cmd8300_";
    EXPECT_THAT(lines, ElementsAre("cp " + script + "PAL.sh /mnt/mtd/code/config_file/sensorInit.sh -rf",
                                   "cp " + script + "NTSC.sh /mnt/mtd/code/config_file/sensorInit.sh -rf"));
}

TEST_F(Cmd8300, TheSensitivitiesKeepTheirDistanceToWhatWasTaken) {
    start({}, "RS485=a;isInfrared=0;generation=3");
    const auto night = [](int value) {
        return [value](CMD8300SenseController& block) { return block.setDtoNSensitivity(value); };
    };
    const auto day = [](int value) {
        return [value](CMD8300SenseController& block) { return block.setNtoDSensitivity(value); };
    };
    EXPECT_EQ(run({Acknowledged}, night(30)), 1);
    EXPECT_EQ(run({Refused, Refused, Refused}, day(20)), 0) << "not taken: the member stays at 5";
    EXPECT_EQ(run({Acknowledged}, night(15)), 1);
    EXPECT_EQ(run({}, day(6)), 0);
    EXPECT_EQ(m_strLog, "m_nDtoNSensitivity(15) - p_nNtoDSensitivity(6) < 10");
    EXPECT_TRUE(m_Calls.empty());
}

TEST_F(Ch3310, StartAndVideoSystemAskTwice) {
    const std::string askSync = "send 81 09 04 24 56 FF";
    EXPECT_EQ(start({"", "", "", "90 50 00 01 FF"}), 1);
    EXPECT_EQ(std::ranges::count(m_Calls, askSync), 4);
    EXPECT_EQ(video(1, {"90 50 01 01 FF"}), 1) << "17 is 17";
    EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4"));
    EXPECT_EQ(start({"90 50 00 02 FF"}), 0);
    EXPECT_EQ(m_strLog, "get sync error!");
    EXPECT_EQ(start({}), 0);
    EXPECT_TRUE(m_strLog.ends_with(" | get sync failed")) << m_strLog;

    EXPECT_EQ(start({"90 50 00 00 FF", Acknowledged}), 1);
    EXPECT_EQ(video(0, {"90 50 00 0E FF", Acknowledged}), 1) << "inter-sync was opened";
    EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4", "send 81 01 04 19 03 FF", "recv 6/5", "drain"));
    EXPECT_EQ(video(1, {"90 50 00 0E FF", Acknowledged, "", ""}), 0);
    EXPECT_EQ(m_Calls.at(2), "send 81 01 04 24 72 01 01 FF");
    EXPECT_EQ(m_strLog, "restart sensor recv time out");
    EXPECT_EQ(video(1, {}), 0);
    EXPECT_TRUE(m_strLog.ends_with(" | get videosystem failed")) << m_strLog;
    EXPECT_EQ(std::ranges::count(m_Calls, AskVideo), 6);

    int status = 5;
    const auto look = [&status](ISensorController& block) { return block.getDNStatusFromSensor(status); };
    EXPECT_EQ(run({"", "", "", "90 50 02 FF"}, look), 1);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(run({"90 50 07 FF"}, look), 0);
    EXPECT_EQ(m_strLog, "get daynight value out of range value = 7");
    EXPECT_NEAR(m_nSeconds, 3, 1e-6);
    EXPECT_EQ(run({}, look), 0);
    EXPECT_TRUE(m_strLog.ends_with(" | get dn failed")) << m_strLog;
}

TEST_F(Ch3310, LiveValuesAreTheBlocks) {
    start({"90 50 00 01 FF"});
    SONYCH3310SenseController& block = *m_pBlock;
    int value = 7;
    EXPECT_EQ(run({}, [&](SONYCH3310SenseController&) { return block.getExposalMode(value); }), 1);
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(m_Calls.empty()) << "nothing is asked before the start is over";
    EXPECT_EQ(run({}, [&](SONYCH3310SenseController&) { return block.getShutter(value); }), 0);
    EXPECT_TRUE(m_strLog.ends_with(" | getShutter failed")) << m_strLog;
    EXPECT_EQ(run({}, [&](SONYCH3310SenseController&) { return block.getIris(value); }), 0);
    EXPECT_TRUE(m_strLog.ends_with(" | getIri failed")) << m_strLog;
    EXPECT_EQ(run({}, [&](SONYCH3310SenseController&) { return block.getGain(value); }), 0);
    EXPECT_TRUE(m_strLog.ends_with("===recv(0):")) << m_strLog;
}

TEST_F(Cv7500, VideoSystemGoesByTheResolutionToo) {
    EXPECT_EQ(start({}), 1);
    struct Wanted {
        int width;
        int height;
        std::vector<int> bySystem; ///< 0 to 5
    };
    for (const auto& [width, height, bySystem] :
         {Wanted{1920, 1080, {0x06, 0x08, 0, 0x13, 0x14, 0}}, Wanted{1280, 720, {0x0e, 0x11, 0, 0x09, 0x0c, 0}},
          Wanted{704, 576, {0, 0, 0, 0, 0, 0}}})
        for (int system = 0; system < 6; ++system) {
            const char byte = static_cast<char>(bySystem[static_cast<std::size_t>(system)]);
            EXPECT_EQ(video(system, {"90 50 00 " + toHex(&byte, 1) + " FF"}, VideoResolution(width, height)), 1);
            EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4")) << width << ' ' << system;
        }
    // What is written knows nothing of the resolution.
    EXPECT_EQ(video(1, {"90 50 00 0E FF", Acknowledged, Acknowledged}, VideoResolution(1280, 720)), 1);
    EXPECT_EQ(m_Calls.at(2), "send 81 01 04 24 72 00 08 FF");
    EXPECT_EQ(video(3, {"90 50 00 06 FF", "", ""}), 0);
    EXPECT_THAT(m_Calls, ElementsAre(AskVideo, "recv 5/4", "send 81 01 04 19 03 FF", "recv 6/5", "recv 6/5"));
    EXPECT_EQ(m_strLog, "recv time out in reset sensor");

    int gain = 0;
    const auto ask = [&gain](ISensorController& block) { return block.getCurrentGain(gain); };
    EXPECT_EQ(run({}, ask), 0);
    EXPECT_TRUE(m_strLog.ends_with(" | get currentGain failed")) << m_strLog;
    EXPECT_EQ(run({"91 50 00 00 01 02 FF"}, ask), 0);
    EXPECT_EQ(m_strLog, "get currentGain failed | 0x91 | 0x50 | 0x0 | 0x0 | 0x1 | 0x2 | 0xff");
}

/// The point-light registers: number, closed and open value.
struct Register {
    const char* number;
    const char* closed;
    const char* open;
};
const Register Registers[] = {
    {"04 09", "0F 00", "03 00"}, {"04 0B", "0F 00", "03 00"}, {"04 0C", "0F 0F", "03 05"},
    {"04 0D", "0F 0F", "00 05"}, {"04 08", "00 00", "00 01"}, {"0F 06", "0E 00", "0A 00"},
    {"0F 07", "0D 00", "09 08"}, {"0F 08", "0F 0F", "0E 00"}, {"0F 09", "00 00", "00 02"},
};

class PointLight : public Cv7500 {
protected:
    void SetUp() override {
        sensorhost::setRebootHandler(
            [](const char* reason, void* context) {
                static_cast<PointLight*>(context)->m_Reasons.emplace_back(reason);
                return 1;
            },
            this);
        start({});
    }
    void TearDown() override { sensorhost::setRebootHandler(nullptr, nullptr); }

    /// Answers to the writes, then to the reads of a block in that state.
    static std::deque<std::string> answers(int writes, bool isOpen) {
        std::deque<std::string> all(static_cast<std::size_t>(writes), Acknowledged);
        for (const Register& one : Registers)
            all.push_back(std::string("90 50 00 00 ") + (isOpen ? one.open : one.closed) + " FF");
        return all;
    }
    static int open(SONYCV7500SenseController& block) { return block.OpenPointLightFocus(); }
    static int close(SONYCV7500SenseController& block) { return block.ClosePointLightFocus(); }

    std::vector<std::string> m_Reasons;
};

TEST_F(PointLight, WritesReadsBackAndRestartsTheDevice) {
    for (const bool isOpen : {true, false}) {
        m_pBlock = SafePointer<SONYCV7500SenseController>(new SONYCV7500SenseController);
        m_pBlock->setOperator(m_pPort, SafePointer<IGPIO>(new sensorhost::MemoryGpio));
        EXPECT_EQ(run(answers(11, isOpen), isOpen ? open : close), 1);
        std::vector<std::string> sent{"send 81 01 7F 01 7F FF", "send 81 01 7F 7F 02 00 00 01 00 01 FF"};
        for (const Register& one : Registers)
            sent.push_back(std::string("send 81 01 7F 7F 02 0B ") + one.number + ' ' +
                           (isOpen ? one.open : one.closed) + " FF");
        for (const Register& one : Registers)
            sent.push_back(std::string("send 81 09 7F 7F 01 0B ") + one.number + " FF");
        std::erase_if(m_Calls, [](const std::string& call) { return call.starts_with("recv"); });
        EXPECT_EQ(m_Calls, sent);
        EXPECT_NEAR(m_nSeconds, isOpen ? 0.06 : 0.33, 1e-6);
        EXPECT_EQ(m_Reasons.back(),
                  isOpen ? "SensorController OpenPointLightFocus mode" : "SensorController ClosePointLightFocus mode");
        EXPECT_EQ(run({}, open), 1) << "the device goes down: nothing more is done";
        EXPECT_TRUE(m_Calls.empty());
    }
}

TEST_F(PointLight, AFailureAtAnyFrameLeavesItFreeForAnother) {
    for (int good = 0; good < 11; ++good) {
        EXPECT_EQ(run(std::deque<std::string>(static_cast<std::size_t>(good), Acknowledged), open), 0) << good;
        EXPECT_TRUE(m_strLog.ends_with(good == 0 ? " | set OpenPointLightFocus 1 falied"
                                                 : " | set OpenPointLightFocus 2 falied"))
            << m_strLog;
    }
    EXPECT_EQ(run({Acknowledged}, close), 0);
    EXPECT_TRUE(m_strLog.ends_with(" | set ClosePointLightFocus 2 falied")) << m_strLog;
    EXPECT_EQ(run(answers(11, false), open), 0);
    EXPECT_EQ(m_strLog, "checkPointLightFocusMode value(0) @openPointLightFocusMode failed");
    EXPECT_EQ(run(answers(11, true), close), 0);
    EXPECT_EQ(m_strLog, "checkPointLightFocusMode value(1) @closePointLightFocusMode failed");
    EXPECT_EQ(run(std::deque<std::string>(11, Acknowledged), close), 0);
    EXPECT_TRUE(m_strLog.ends_with(" | recv[0]: | 0x0,0x0,0x0,0x0,0x0,0x0,0x0 | checkPointLightFocusMode "
                                   "@closePointLightFocusMode failed"))
        << m_strLog;
    EXPECT_TRUE(m_Reasons.empty());
}

TEST_F(PointLight, TheCheckWantsEveryRegisterButTheSecond) {
    for (const bool isOpen : {true, false})
        for (std::size_t wrong = 0; wrong < std::size(Registers); ++wrong) {
            std::deque<std::string> replies = answers(0, isOpen);
            replies[wrong] = "90 50 00 00 07 07 FF";
            int mode = 9;
            const auto check = [&mode](SONYCV7500SenseController& block) {
                return block.checkPointLightFocusMode(mode);
            };
            EXPECT_EQ(run(replies, check), wrong == 1 ? 1 : 0) << wrong;
            EXPECT_EQ(mode, wrong == 1 ? (isOpen ? 1 : 0) : 9);
            EXPECT_EQ(m_Calls.size(), 2 * (wrong == 1 ? 9 : wrong + 1)) << "it ends where it is wrong";
        }
}

TEST_F(NoUi, TakesEveryParameterAndKeepsTheStatus) {
    for (const char* detail : {"", "isInfrared=0", "RS485"})
        EXPECT_EQ(start({}, detail), 0) << detail;
    EXPECT_EQ(m_strLog, "");
    int value = 77;
    EXPECT_EQ(run({}, [](ISensorController& block) { return block.setParameterToSensor(12, 3); }), 1);
    EXPECT_EQ(run({}, [&value](ISensorController& block) { return block.getParameterFromSensor(12, value); }), 1);
    EXPECT_EQ(value, 77);
    EXPECT_TRUE(m_Calls.empty());

    NoSensorUIController& block = *m_pBlock;
    struct Poll {
        std::string reply;
        int status; ///< afterwards
        double seconds;
    };
    for (const auto& [reply, status, seconds] :
         {Poll{"90 50 03 FF", 1, 1}, Poll{"90 50 04 FF", 1, 3}, Poll{"90 50 02 FF", 0, 1}, Poll{"90 50 03", 0, 3},
          Poll{"", 0, 3}, Poll{"90 50 03 FF", 1, 1}}) {
        EXPECT_EQ(run({reply}, [](NoSensorUIController& one) { return one.getDNbody(); }), 0);
        EXPECT_THAT(m_Calls, ElementsAre("send 81 09 04 01 FF", "recv 4/3")) << "nothing is drained";
        EXPECT_EQ(static_cast<int>(block.*Peek::DayNight), status) << reply;
        EXPECT_NEAR(m_nSeconds, seconds, 1e-6) << reply;
    }
    m_pPort->m_SendResults = {4};
    EXPECT_EQ(run({}, [](NoSensorUIController& one) { return one.getDNbody(); }), 0);
    EXPECT_THAT(m_Calls, ElementsAre("send 81 09 04 01 FF"));
    EXPECT_NEAR(m_nSeconds, 3, 1e-6);
}

} // namespace
