#include "support/OnChipBench.h"

#include <climits>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;

class OnChipController : public OnChipBench {};

TEST_F(OnChipController, StartsFromItsModuleKeys) {
    for (const auto& [detail, parameters, log] :
         {std::tuple{"isInfrared", "", "parse detail"},
          {"autoIris=0;GPIO=0,1,1", "", "get isInfrared from detail"},
          {"isInfrared=0;GPIO=0,1,1", "bad", "get autoIris from detail"},
          {"isInfrared=0;autoIris=0;GPIO=0,1,1", "=", "parse senseParameter"},
          {"isInfrared=0;autoIris=0", "GPIO=0,1,1", "get GPIO from detail"},
          {"isInfrared=0;autoIris=0;GPIO=0,1", "", "parse GPIO param failed,nRet=2"},
          {"isInfrared=0;autoIris=0;GPIO=pin", "", "parse GPIO param failed,nRet=0"}}) {
        EXPECT_EQ(bringUp(detail, 1, parameters), 0) << detail;
        const std::string text = std::string(log) + (std::strchr(log, ',') != nullptr ? "" : " failed");
        EXPECT_EQ(takeErrors(), "objISPParamParse.parse failed | " + text + " | initController failed");
    }

    testing::internal::CaptureStdout();
    EXPECT_EQ(bringUp("isInfrared=2;autoIris=2;GPIO=3,12,0"), 1);
    const std::string console = testing::internal::GetCapturedStdout();
    for (const char* key : {"isNewInfrared", "GPIOInfraredLight", "GPIODNLevel", "TNF", "HDR"})
        EXPECT_THAT(console, HasSubstr(std::string("get ") + key + " from detail failed\n"));
    const auto first = m_pGpio->getHistory().at(0);
    EXPECT_EQ(std::tuple(first.group, first.pin, first.value), std::tuple(3, 12, 0)) << "the filter's day level";
    for (const auto& [id, value] : {std::pair{18, 0}, {32, 0}, {37, 0}, {62, 1}})
        EXPECT_EQ(fromSensor(id), value) << id << ": without the key the filter counts as not there";

    EXPECT_EQ(bringUp("isInfrared=1;isNewInfrared=1;autoIris=1;GPIO=0,12,1;GPIOInfraredLight=1,2,0;GPIODNLevel=1,5,1;"
                      "TNF=1;HDR=2"),
              1);
    for (const auto& [id, value] : {std::pair{18, 1}, {32, -999}, {62, 0}})
        EXPECT_EQ(fromSensor(id), value) << id << ": an ability without a known answer gives none";
    EXPECT_EQ(m_pGpio->getLevel(1, 2), 0) << "the lights are out by day";
    m_pClock->advance(2);
    EXPECT_EQ(m_pGpio->getLevel(1, 2), 1) << "the light sensor reads dark";
}

TEST_F(OnChipController, TellsTheVideoSystemAndWaits) {
    ASSERT_EQ(bringUp(), 1);
    for (const auto& [videoSystem, told, frequency] :
         {std::tuple{1, "VideoSystem=0 DRV_displaySetMode=1", 0}, {0, "VideoSystem=1 DRV_displaySetMode=0", 1}}) {
        this->told();
        const double before = m_pClock->now();
        EXPECT_EQ(controller().setSensorVideoSystem(videoSystem, VideoResolution(1, 1)), 1);
        EXPECT_GE(m_pClock->now(), before + 3);
        EXPECT_THAT(this->told(), HasSubstr(told));
        EXPECT_EQ(fromSensor(23), frequency);
    }
    takeErrors();
    EXPECT_EQ(controller().setSensorVideoSystem(2, VideoResolution(1, 1)), 0);
    EXPECT_EQ(takeErrors(), "BreltoISPSenseController::setSensorVideoSystem Failed, VideoSystem = 2");
    EXPECT_EQ(told(), "");
    EXPECT_EQ(controller().setParameterToSensor(23, 7), 1);
    EXPECT_EQ(told(), "VideoSystem=7") << "the display knows two";
}

TEST_F(OnChipController, EverySettingReachesTheLibrary) {
    ASSERT_EQ(bringUp(), 1);
    controller().setDayNightMode(1);
    // Id, value, what the library is told, what reading gives then.
    std::istringstream settings(
        "1 70 Brtness=70 70      2 -3 SatDgr=-3 -3         3 30 Contrast=30 30         4 1 GainCtrlMode=1 1 "
        "5 9 MaxGain4Auto=9 9    6 8 FixGain4Manu=8 8      7 1 ShutrCtrlMode=1 1       8 5 MaxShutr4Auto=5 5 "
        "9 6 FixShutr4Manu=6 6   13 44 Sharpness=44 44     15 2 NightColorMode=1,2 2     16 4 IncreaseValue=4 16 "
        "18 0 IrisCtrlMod=0 1    24 1 HlcCtrl=1 1          25 3 AeCtrlMode=3 3         30 0 MirrorFlipMode=0 0 "
        "30 1 MirrorFlipMode=2 0 30 2 MirrorFlipMode=1 0   30 3 MirrorFlipMode=3 0     32 1 HdrMode=1 2 "
        "33 1 HdrMode=17 1       37 0 DRV_SetKTNFWorkMode=0 50                         39 0 braewb_ioctrlParam=0,0,0 1 "
        "62 1 DRV_SetKTNFWorkMode=0 0 10 1 - 0  34 5 - 0  57 9 - 5  58 7 - 18  59 3 - 0  60 8 - 6  61 3 - 0");
    const std::map<int, std::string> failures = {
        {1, "setBrightness failed"},
        {4, "BrAewb_UiSetGainCtrlMode(1) failed | setGainMode failed "},
        {5, "BrAewb_UiSetMaxGain4Auto failed Gain=9 | setMaxGain failed "},
        {6, "BrAewb_UiSetFixGain4Manu failed ,Gain=8 | setFixedGain failed "},
        {7, "BrAewb_UiSetShutrCtrlMode(1) failed | setShutterMode failed "},
        {8, "BrAewb_UiSetMaxShutr4Auto failed MaxShutterTime = 5 | setMaxShutterMode failed "},
        {9, "BrAewb_UiSetFixShutr4Manu failed FixedShutterTime = 6 | setFixedShutterMode failed "},
        {39, "setDoorMode error! | setDoorMode failed"}};
    std::string expected;
    for (int id = 0, value = 0, read = 0; settings >> id >> value >> expected >> read;) {
        SCOPED_TRACE(id);
        told();
        EXPECT_EQ(controller().setParameterToSensor(id, value), 1);
        const auto calls = m_Pipeline.calls();
        EXPECT_EQ(told(), expected == "-" ? "" : expected);
        EXPECT_EQ(fromSensor(id), read);
        if (calls.empty())
            continue;
        takeErrors();
        m_Pipeline.setFailing(calls.front().function, true);
        EXPECT_EQ(controller().setParameterToSensor(id, value), failures.contains(id) ? 0 : 1);
        EXPECT_EQ(takeErrors(), failures.contains(id) ? failures.at(id) : "");
        m_Pipeline.setFailing(calls.front().function, false);
    }

    for (const auto& [id, value, log] : {std::tuple{4, 2, "no such gain mode value(2) | setGainMode failed "},
                                         {7, -1, "set shutter mode(-1) failed | setShutterMode failed "},
                                         {26, 2, "p_nWBmode is out of range | setWBmode failed"},
                                         {27, 6, "p_nWBmanual is out of range | setWBmanual failed"},
                                         {28, 101, "p_nRedGain is out of range | setRedGain failed"},
                                         {29, -1, "p_nBlueGain is out of range | setBlueGain failed"},
                                         {30, 4, "CommonOperator.setMirrorMode Error: value(4) | setMirrorMode failed"},
                                         {32, 4, "setHDRMode out of range,setHDRMode=4 | setHDRMode failed"},
                                         {33, 2, "setHDRMode out of range,setHDRMode=2 | setHDRRunMode failed"},
                                         {39, 2, "setDoorMode out of range,p_nMode=2 | setDoorMode failed"},
                                         {58, 8, "failed:DTNTIME == NTDTIME,value = 830 | setDTNTime_H failed"}}) {
        told();
        takeErrors();
        EXPECT_EQ(controller().setParameterToSensor(id, value), 0) << id;
        EXPECT_EQ(takeErrors(), log);
        EXPECT_EQ(told(), "");
    }
    EXPECT_EQ(controller().setParameterToSensor(14, 0), -1);
    EXPECT_EQ(fromSensor(14), 0);
    EXPECT_EQ(fromSensor(17), -1000);
    EXPECT_EQ(takeErrors(), "paramid=14 error  | paramid=17 error ");

    m_Pipeline.setValue("BrAewb_UiGetGainCtrlMode", 2);
    m_Pipeline.setValue("BrAewb_UiGetShutrCtrlMode", -1);
    EXPECT_EQ(fromSensor(4) + fromSensor(7), -2000);
    EXPECT_EQ(takeErrors(), "getGainModeFailed mode=2 | getGainMode failed  | get shutter mode failed mode=-1 | "
                            "getShutterMode failed ");
    int mirror = 5;
    EXPECT_EQ(controller().getMirrorValue(mirror), 0);
    EXPECT_EQ(mirror, 5);
}

TEST_F(OnChipController, FieldsShareTheirWord) {
    ASSERT_EQ(bringUp(), 1);
    const auto set = [this](int id, int value) {
        told();
        EXPECT_EQ(controller().setParameterToSensor(id, value), 1);
        return told();
    };
    set(26, 0), set(27, 0), set(28, 0), set(29, 0);
    EXPECT_EQ(set(29, 7), "WbCtrlMode=" + std::to_string(7 << 16));
    EXPECT_EQ(set(28, 100), "WbCtrlMode=" + std::to_string(7 << 16 | 100 << 8));
    EXPECT_EQ(set(26, 1), "WbCtrlMode=" + std::to_string(7 << 16 | 100 << 8 | 1));
    m_Pipeline.setValue("BrAewb_UiGetWbCtrlMode", INT_MIN | 33 << 8);
    EXPECT_EQ(fromSensor(28), 33);
    EXPECT_EQ(fromSensor(29), 0x8000) << "without sign";
    EXPECT_EQ(set(27, 5), "WbCtrlMode=" + std::to_string(INT_MIN | 33 << 8 | 5 << 4)) << "a read replaces the word";

    set(36, 0), set(34, 0);
    testing::internal::CaptureStdout();
    EXPECT_EQ(set(35, 300), "NrCtrl=" + std::to_string(300 << 8)) << "300 runs over into the next field";
    EXPECT_EQ(fromSensor(35), 300 - 256);
    EXPECT_EQ(fromSensor(36), 1);
    EXPECT_EQ(set(36, 2), "NrCtrl=" + std::to_string(2 << 16 | 44 << 8));
    EXPECT_EQ(set(34, 2), "NrCtrl=" + std::to_string(2 << 16 | 44 << 8 | 1) + " NrCtrl=" + std::to_string(2 << 16 | 1));
    int control = 0;
    EXPECT_EQ(controller().getNRControl(control), 1);
    EXPECT_EQ(control, 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "set kongyu=300,m_nNR=76800\nget nrman = 76800\nget nrauto = 76800\nset max=2,m_nNR=142336\n"
              "set nrcontrol=1,m_nNR=142337\nset kongyu=0,m_nNR=131073\nget nrcontrol = 131073\n");
    controller().setParameters("(35,12)");
    EXPECT_EQ(set(34, 1),
              "NrCtrl=" + std::to_string(2 << 16 | 12 << 8 | 1) + " NrCtrl=" + std::to_string(2 << 16 | 12 << 8 | 1));

    int word = 0x5a5a5a5a;
    int value = 0;
    EXPECT_EQ(controller().modifyAppointValue(word, 3, 7, 4), 1);
    EXPECT_EQ(word, 0x5a5a5a3a);
    EXPECT_EQ(controller().modifyAppointValue(word, -1, 31, 0), 1);
    for (const auto& [first, expected] : {std::pair{0, -1}, {31, 1}}) {
        EXPECT_EQ(controller().getAppointValue(word, value, first, 31), 1);
        EXPECT_EQ(value, expected);
    }
    takeErrors();
    for (const auto& [first, last] : {std::pair{-1, 3}, {3, 32}, {INT_MIN, INT_MAX}}) {
        EXPECT_EQ(controller().modifyAppointValue(word, 0, first, last), 0);
        EXPECT_EQ(controller().getAppointValue(word, value, last, first), 0);
        EXPECT_EQ(takeErrors(), "modifyAppointValue() parameter error | getAppointValue() parameter error");
    }
    EXPECT_EQ(word, -1);
}

TEST_F(OnChipController, TheThresholdsKeepTheirBand) {
    ASSERT_EQ(bringUp(), 1);
    ASSERT_EQ(controller().setParameters("(12,100)"), 1);
    ASSERT_EQ(controller().setParameters("(11,200)"), 1);
    takeErrors();
    EXPECT_EQ(controller().setParameterToSensor(11, 100), 0);
    EXPECT_EQ(controller().setParameterToSensor(12, 200), 0);
    EXPECT_EQ(takeErrors(), "ntd=100,dtn=100 | dtn=200,ntd=200");
    EXPECT_EQ(controller().setParameters("(11,101)(12,100)"), 1);
    EXPECT_EQ(m_Pipeline.getValue("BrAewb_UiGetDayToNightTransition"), 101);

    for (const auto& [gain, status] : {std::pair{101, 0}, {100, 1}, {INT_MAX, 0}, {INT_MIN, 1}}) {
        int judged = -1;
        m_Pipeline.setValue("BrAewb_UiGetGain", gain);
        EXPECT_EQ(controller().getDNStatusFromSensor(judged), 1);
        EXPECT_EQ(judged, status);
    }
    ASSERT_EQ(controller().setParameters("(11,300)"), 1);
    int judged = 7;
    m_Pipeline.setValue("BrAewb_UiGetGain", 200);
    EXPECT_EQ(controller().getDNStatusFromSensor(judged), 1);
    EXPECT_EQ(judged, 7);

    for (const auto& [iso, expected] : {std::pair{INT_MIN, -52428800}, {-41, -1}}) {
        m_Pipeline.setValue("BrAewb_UiGetIso", iso);
        EXPECT_EQ(controller().getCurrentGain(judged), 1);
        EXPECT_EQ(judged, expected) << "towards zero";
    }
}

TEST_F(OnChipController, HdrFollowsDayAndNight) {
    create();
    EXPECT_EQ(controller().setHDRMode(3), 0) << "neither day nor night yet";
    EXPECT_EQ(controller().setHDRMode(-1), 0);
    ASSERT_EQ(bringUp(), 1);
    EXPECT_EQ(controller().setParameters("(32,0)(33,1)"), 1);
    EXPECT_EQ(controller().setParameters("(32,3)"), 1);
    EXPECT_EQ(m_Pipeline.getValue("BrAewb_UiGetHdrMode"), 0x11);
    m_Pipeline.setScene(0.2);
    m_pClock->advance(3);
    EXPECT_EQ(m_Pipeline.getValue("BrAewb_UiGetHdrMode"), 0x12);
    EXPECT_EQ(controller().setParameters("(32,1)(33,0)"), 1);
    EXPECT_EQ(controller().setParameters("(32,3)"), 1) << "and by night";
    EXPECT_EQ(m_Pipeline.getValue("BrAewb_UiGetHdrMode"), 0x02);
    m_Pipeline.setScene(5000);
    m_pClock->advance(10);
    EXPECT_EQ(m_Pipeline.getValue("BrAewb_UiGetHdrMode"), 0x01);
}

/// A day under the sample tuning file: the light alone drives gain, day/night and tuning.
TEST_F(OnChipController, TheSceneDrivesDayNightAndTuning) {
    std::ostringstream sample;
    sample << std::ifstream(SENSORCONTROL_SOURCE_DIR "/docs/samples/ISPParam.xml").rdbuf();
    m_Root.write("/hd1/program/config/ISPParam.xml", sample.str());
    m_Pipeline.setScene(2000);
    ASSERT_EQ(bringUp(), 1);
    ASSERT_EQ(controller().setParameters("(57,5)"), 1);

    // The light, seconds under it; then the status told, filter mode and strength, offset, level of the filter's pin.
    for (const auto& [light, seconds, expected] :
         {std::tuple{2000.0, 10, "0 0 129 -32 1"},
          {10, 2, "0 1 8 -32 1"},   // gain 2.5
          {1, 2, "0 1 24 -32 1"},   // gain 25: within the band
          {0.5, 2, "1 1 40 -64 0"}, // gain 50: the filter is out of the way
          {1, 600, "1 1 24 -64 0"}, // the band holds the night as it held the day
          {100, 4, "1 0 24 -64 0"}, // light must last
          {100, 10, "0 0 24 -32 1"}}) {
        m_Pipeline.setScene(light);
        m_pClock->advance(seconds);
        std::string seen;
        for (const char* function :
             {"BrAewb_UiSetDayNightStat", "DRV_SetKTNFWorkMode", "DRV_SetKTNF_TNF_A0", "DRV_isifSetDcSub"})
            seen += std::to_string(m_Pipeline.getValue(function)) + " ";
        EXPECT_EQ(seen + std::to_string(m_pGpio->getLevel(0, 12)), expected) << light;
        if (light == 10) {
            EXPECT_EQ(m_Pipeline.getExposure().shutter, 40000);
            EXPECT_EQ(m_Pipeline.getExposure().gain, 10240);
        }
        if (light == 0.5) {
            told();
            m_pClock->advance(600);
            EXPECT_EQ(told(), "") << "a steady scene costs no write";
        }
    }
}

/// The level of the HDR word is the background thread's, the run mode the host's. Shows its worth under the thread
/// sanitizer.
TEST_F(OnChipController, ThreadsLoseNoFieldOfASharedWord) {
    ASSERT_EQ(bringUp(), 1);
    controller().setDayNightMode(1);
    m_pClock->advance(2);
    constexpr int Rounds = 2000;
    int lost = 0;
    testing::internal::CaptureStdout();
    {
        const sensorhost::SimulatedClock::Absence absence(*m_pClock);
        const std::jthread levels([this] {
            for (int i = 0; i < Rounds; ++i)
                controller().updateHDRMode(1 + i % 2);
        });
        const std::jthread modes([this, &lost] {
            for (int i = 0; i < Rounds; ++i) {
                int value = -1;
                controller().setParameterToSensor(33, i % 2);
                controller().getParameterFromSensor(33, value);
                lost += value == i % 2 ? 0 : 1;
            }
        });
        const std::jthread others([this] {
            int value = 0;
            for (int i = 0; i < Rounds / 10; ++i) {
                controller().setParameterToSensor(32, i % 4);
                controller().setParameterToSensor(62, i % 3);
                controller().getParameterFromSensor(23, value);
                controller().getCurrentGain(value);
            }
        });
    }
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(m_Pipeline.getValue("BrAewb_UiGetHdrMode") >> 4, (Rounds - 1) % 2);
}

} // namespace
