#include "drivers/QuietCmd8100.h"
#include "support/ScriptedPort.h"

#include <vector>

namespace {

constexpr std::uint32_t VideoSystem = 0x2472;
constexpr std::uint32_t VideoSystemInForce = 0x12472;

class Cmd8100Operations : public QuietCmd8100 {
protected:
    Outcome setVideoSystem(int videoSystem) {
        return outcome([&] { return controller().setSensorVideoSystem(videoSystem, VideoResolution(1920, 1080)); });
    }
    Outcome status(int& value) {
        return outcome([&] { return controller().getDNStatusFromSensor(value); });
    }
    void hold(std::uint32_t address, std::uint32_t value) {
        m_pPort->line().withBlock(
            [&](camerasim::CameraBlock& block, std::int64_t) { block.setRegister(address, value); });
    }
};

TEST_F(Cmd8100Operations, StatusIsDayOrNightOrRefused) {
    start(1);
    const std::string inquiry = "81 09 04 01 FF";
    const std::string refusal = "get daynight value out of range value = ";
    int value = 77;
    hold(0x01, 2);
    EXPECT_EQ(status(value), (Outcome{1, inquiry, ""}));
    EXPECT_EQ(value, 0);
    hold(0x01, 3);
    EXPECT_EQ(status(value), (Outcome{1, inquiry, ""}));
    EXPECT_EQ(value, 1);
    value = 77;
    for (const std::uint32_t bad : {0U, 1U, 4U, 0x82U, 0xffU}) {
        hold(0x01, bad);
        EXPECT_EQ(status(value), (Outcome{0, inquiry, refusal + std::to_string(bad)}));
    }
    m_pPort->addFault("silence@every");
    const Outcome silent = status(value);
    EXPECT_EQ(silent.result, 0);
    EXPECT_EQ(silent.frames, times(3, inquiry));
    EXPECT_TRUE(silent.log.ends_with(" | get dn failed ")) << silent;
    EXPECT_EQ(value, 77);
}

TEST_F(Cmd8100Operations, VideoSystemIsWrittenOnlyWhenItDiffersAndCostsARestart) {
    start();
    const std::string inquiry = "81 09 04 24 72 FF";
    const std::string restart = "FE 05 03 01 01 0A FF";
    ASSERT_EQ(m_pPort->registerValue(VideoSystemInForce), 6U) << "the start has set NTSC";
    Outcome made = setVideoSystem(0);
    EXPECT_EQ(made, (Outcome{1, inquiry, ""}));
    EXPECT_NEAR(made.seconds, 0.0001, 1e-6);

    static constexpr struct {
        int videoSystem;
        std::uint32_t value;
        const char* write;
    } Changes[] = {{1, 8, "81 01 04 24 72 00 08 FF"},
                   {0, 6, "81 01 04 24 72 00 06 FF"},
                   {2, 0, "81 01 04 24 72 00 00 FF"},
                   {-1, 0, nullptr},
                   {0, 6, "81 01 04 24 72 00 06 FF"}};
    for (const auto& change : Changes) {
        made = setVideoSystem(change.videoSystem);
        EXPECT_EQ(
            made,
            (Outcome{1, change.write == nullptr ? inquiry : inquiry + " | " + change.write + " | " + restart, ""}));
        EXPECT_NEAR(made.seconds, change.write == nullptr ? 0.0001 : 20.1001, 1e-6) << "20 s and one empty drain";
        EXPECT_EQ(m_pPort->registerValue(VideoSystemInForce), change.value);
    }

    m_pPort->addFault("silence@1-3");
    made = setVideoSystem(1);
    EXPECT_EQ(made.result, 0);
    EXPECT_EQ(made.frames, times(3, inquiry));
    EXPECT_TRUE(made.log.ends_with(" | get sensor video system failed")) << made;

    m_pPort->addFault("refuse@2-4");
    made = setVideoSystem(1);
    EXPECT_EQ(made.result, 0);
    EXPECT_EQ(made.frames, inquiry + " | " + times(3, "81 01 04 24 72 00 08 FF")) << "no restart for nothing";
    EXPECT_EQ(m_pPort->registerValue(VideoSystem), 6U);

    m_pPort->addFault("short-write@3");
    made = setVideoSystem(1);
    EXPECT_EQ(made, (Outcome{0, inquiry + " | 81 01 04 24 72 00 08 FF | " + restart, ""}));
    EXPECT_NEAR(made.seconds, 1.0001, 1e-6);
    EXPECT_EQ(m_pPort->registerValue(VideoSystemInForce), 6U) << "written, but the block did not restart";
}

TEST_F(Cmd8100Operations, NotificationIsSentRawAndItsReplyCostsTheNextSettingATry) {
    start();
    const auto notify = [&] { return controller().NotifySensorInitComplate(); };
    EXPECT_EQ(outcome(notify), (Outcome{1, "81 09 04 22 FF", ""}));
    EXPECT_EQ(set(6, 3).frames, times(2, "81 01 04 A2 03 FF"));
    m_pPort->addFault("short-write@1,short-write:0@2");
    const Outcome failed = outcome(notify);
    EXPECT_EQ(failed, (Outcome{0, "81 09 04 22 FF", "send @NotifySensorInitComplate failed,nRet=4"}));
    EXPECT_NEAR(failed.seconds, 1, 1e-6);
    EXPECT_EQ(outcome(notify).log, "send @NotifySensorInitComplate failed,nRet=0");
}

TEST_F(Cmd8100Operations, ARefusedBrightnessSwitchDoesNotEndTheStart) {
    start();
    m_pPort->addFault("refuse@every");
    const Outcome begun = outcome([&] {
        return controller().initController(
            0, ModuleConfigure(16, "RS485=ttyS1;isInfrared=0;generation=3", "RS485=9600,8,1,0"));
    });
    EXPECT_EQ(begun.result, 1);
    EXPECT_EQ(begun.frames, times(3, "81 01 04 3E 02 FF"));
    EXPECT_TRUE(begun.log.ends_with(" | Brightness on Failed.")) << begun;
}

/// Starts against a port that answers nothing unless the test says so.
class Cmd8100Start : public QuietCmd8100 {
protected:
    int startOn(const std::string& detail, const std::string& parameters) {
        create().setOperator(m_pScript, m_pGpio);
        m_pScript->takeCalls();
        forgetLog();
        return controller().init(0, ModuleConfigure(16, detail, parameters), VideoResolution(1920, 1080));
    }

    SafePointer<ScriptedPort> m_pScript{new ScriptedPort};
};

TEST_F(Cmd8100Start, EveryFailureSaysWhatIsMissing) {
    const std::string good = "RS485=ttyS1;isInfrared=0;generation=3";
    const std::string line = "RS485=9600,8,1,0";
    const std::string withoutTuningFile = "objISPParamParse.parse failed | ";
    const struct {
        std::string detail;
        std::string parameters;
        std::string log;
        int openResult = 3;
        int lineResult = 1;
    } starts[] = {
        {"RS485", line, "parse detail failed | "},
        {"isInfrared=0;generation=3", line, "get RS232DeviceName from detail failed | "},
        {"", line, "get RS232DeviceName from detail failed | "},
        {"RS485=ttyS1;generation=3", line, "get isInfrared from detail failed | "},
        {good, "=", "parse senseParameter failed | "},
        {good, "", "get RS232Parameter from senseParameter failed | "},
        {"RS485=ttyS1;isInfrared=0", "",
         "get generation from detail failed | get RS232Parameter from senseParameter failed | "},
        {good, "RS485=9600,8,1", "parse RS485 param failed,nRet=3 | "},
        {good, "RS485=9600;8,1,0", "parse senseParameter failed | "},
        {good, "RS485=x", "parse RS485 param failed,nRet=0 | "},
        {good, line, "open uart (ttyS1) failed | ", -1},
        {good, line, "", 3, 0},
    };
    for (const auto& start : starts) {
        m_pScript->m_nOpenResult = start.openResult;
        m_pScript->m_nLineResult = start.lineResult;
        EXPECT_EQ(startOn(start.detail, start.parameters), 0);
        EXPECT_EQ(logLines(), withoutTuningFile + start.log + "initController failed");
        EXPECT_EQ(controller().setParameterToSensor(1, 50), 0);
        const std::vector<std::string> calls = m_pScript->takeCalls();
        EXPECT_EQ(calls.size(), start.lineResult == 0 ? 2U : start.openResult < 0 ? 1U : 0U) << start.log;
    }
}

TEST_F(Cmd8100Start, OrderOnThePortAndABlockThatSaysNothing) {
    ASSERT_EQ(startOn("RS485=ttyS1;isInfrared=0", "RS485=1,2,3,4"), 1);
    std::string calls;
    for (const std::string& call : m_pScript->takeCalls())
        calls += call + ", ";
    const std::string brightness = "drain, send 81 01 04 3E 02 FF, recv 3/4, ";
    EXPECT_TRUE(calls.starts_with("open ttyS1, line 1 2 4 3, " + brightness + brightness + brightness +
                                  "drain, send 4D 45 4E 55 4F 4E, send 81 09 04 24 72 FF, recv 5/4, "))
        << calls;
    EXPECT_NE(initLog().find("init setSensorVideoSystem failed"), std::string::npos);
    EXPECT_NE(errorLog().find("ISensorController::initSensor  success"), std::string::npos);
    std::string known;
    EXPECT_EQ(controller().getParameters("(1)", known), 0) << "nothing that the block did not confirm";
}

} // namespace
