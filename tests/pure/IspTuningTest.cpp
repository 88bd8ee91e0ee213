#include "host/BRDeviceTime.h"
#include "host/imaging/ImagingStandIn.h"
#include "host/linux/HostSettings.h"
#include "host/linux/SimulatedClock.h"
#include "imaging/ISPParamParse.h"
#include "support/BareController.h"
#include "support/TempRoot.h"

#include <atomic>
#include <memory>
#include <regex>
#include <string>
#include <thread>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using sensorhost::ImagingStandIn;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr const char* CloseFilter = "SetKTNFWorkMode=0 ";

std::string openFilter(int a0, int tm) {
    return "SetKTNFWorkMode=1 SetKTNF_TYPE=1 SetKTNF_TNF_A0=" + std::to_string(a0) +
           " SetKTNF_TNF_TM=" + std::to_string(tm) + " ";
}

/// "DN[night(0,1){EE=25 TM=20} day(1,2){EE=3}] !GAIN[any(0,9){DC=2}]" as nodes of the file: types, disabled after '!',
/// in them units for the keys from the first number to below the second, in them items. XML stays as it is.
std::string nodes(std::string text) {
    for (const auto& [pattern, xml] : {std::pair{R"((\w+)=(-?\w+))", R"(<item name="$1" value="$2"/>)"},
                                       {R"((\w+)\((-?\d+),(-?\d+)\)\{([^}]*)\})", R"(<$1 min="$2" max="$3">$4</$1>)"},
                                       {R"(!(\w+)\[([^\]]*)\])", R"(<$1 enable="0">$2</$1>)"},
                                       {R"((\w+)\[([^\]]*)\])", R"(<$1 enable="1">$2</$1>)"}})
        text = std::regex_replace(text, std::regex(pattern), xml);
    return text;
}

class IspTuning : public testing::Test {
protected:
    IspTuning() {
        sensorhost::installClock(std::make_shared<sensorhost::SimulatedClock>());
        makeController(0);
    }

    ~IspTuning() override {
        endController();
        sensorhost::installClock(nullptr);
    }

    /// Leaves the pipeline switched off and forgetful.
    void endController() {
        m_pController.reset();
        EXPECT_THAT(m_Pipeline.misuses(), IsEmpty());
        m_Pipeline.reset();
    }

    /// In place of the present one.
    void makeController(int sensorType) {
        endController();
        DRV_init();
        ALG_sysInit();
        brewfi_init();
        m_pController = std::make_unique<BareController>(sensorType);
        m_pController->m_nTNFMode = 0;
        m_Pipeline.setRecording(true);
    }

    void writeFile(const std::string& content, const std::string& settings = "time=\"2\"") {
        m_Root.write(ISPParamParse::FilePath, "<root><config " + settings + ">" + nodes(content) + "</config></root>");
    }

    /// Writes a tuning file and has the controller load it.
    void load(const std::string& content, const std::string& settings = "time=\"2\"") {
        writeFile(content, settings);
        EXPECT_EQ(m_pController->ISPParamThreadInit(), 1);
    }

    /// What the pipeline was told since the last time of asking, "isifSetDcSub=1 ", without the names' common head.
    std::string told() {
        std::string calls;
        for (const ImagingStandIn::Call& call : m_Pipeline.calls())
            calls += std::string(call.function).substr(4) + "=" +
                     std::to_string(call.arguments.empty() ? call.result : call.arguments.back()) + " ";
        m_Pipeline.setRecording(true);
        return calls;
    }

    /// One pass of the thread: what it told the pipeline.
    std::string pass() {
        const double start = BRDeviceTime::getSeconds();
        testing::internal::CaptureStdout();
        EXPECT_EQ(m_pController->ISPParamBody(), 0);
        m_strConsole = testing::internal::GetCapturedStdout();
        m_dPassTime = BRDeviceTime::getSeconds() - start;
        return told();
    }
    std::string passAt(int status) {
        m_pController->m_nDNState = status;
        return pass();
    }

    ImagingStandIn& m_Pipeline = ImagingStandIn::getInstance();
    TempRoot m_Root;
    std::unique_ptr<BareController> m_pController;
    std::string m_strConsole; ///< what the last pass showed there
    double m_dPassTime = 0;   ///< seconds that it took
};

TEST_F(IspTuning, APassSendsWhatChangedInOrder) {
    load("DN[night(0,1){A0=10 TM=20 DC=-5 EE=25} day(1,2){A0=10 TM=21 DC=65535 EE=-2}]");
    EXPECT_EQ(passAt(0), "ipipeSetEdgeEnhance=24 isifSetDcSub=-5 " + openFilter(10, -100) + openFilter(10, 20));
    EXPECT_EQ(m_strConsole, "set ee=25\nset DC=-5\nset A0=10,TM=-100\nset TM=20,A0=10\n");
    EXPECT_EQ(m_Pipeline.getEdgeWords()[13], 17);
    EXPECT_EQ(m_Pipeline.getEdgeCurve()[64], 63);
    EXPECT_EQ(m_pController->m_nISPDNState, 0);
    EXPECT_DOUBLE_EQ(m_dPassTime, 2);
    EXPECT_EQ(pass() + m_strConsole, "") << "a steady scene is left alone";

    EXPECT_EQ(passAt(1), "ipipeSetEEEnable=1 isifSetDcSub=-1 " + openFilter(10, 21)) << "an offset is cut to 16 bits";
    EXPECT_EQ(m_pController->m_nISPDNState, 1);
    EXPECT_EQ(passAt(-1), "") << "no unit for a status that is not judged yet";
}

TEST_F(IspTuning, DayNightAndGainShareTheLastValues) {
    load("DN[all(-1,2){DC=1}] GAIN[low(0,100){DC=2} high(100,200){DC=3}]");
    m_pController->m_Gain = 99;
    EXPECT_EQ(pass(), "isifSetDcSub=1 isifSetDcSub=2 ");
    EXPECT_EQ(pass(), "isifSetDcSub=1 isifSetDcSub=2 ");
    m_pController->m_Gain = 100;
    EXPECT_EQ(pass(), "isifSetDcSub=1 isifSetDcSub=3 ");
    m_pController->m_Gain = 200;
    EXPECT_EQ(pass(), "isifSetDcSub=1 ") << "a gain that no unit covers changes nothing";
    EXPECT_EQ(pass(), "");
    EXPECT_DOUBLE_EQ(m_dPassTime, 2);
}

TEST_F(IspTuning, AFailedGainReadingCannotMakeTheThreadSpin) {
    load("GAIN[any(-1000,1000){DC=2}] DN[all(-1,2){DC=1}]");
    EXPECT_EQ(pass(), "isifSetDcSub=1 ");
    EXPECT_DOUBLE_EQ(m_dPassTime, 2);
    pass();
    EXPECT_EQ(m_strConsole, "get current gain failed\n\n");
    load("!GAIN[any(-1000,1000){DC=2}]");
    pass();
    EXPECT_EQ(m_strConsole, "") << "a disabled type is not asked for";
}

TEST_F(IspTuning, FilterValuesOfTheTableCanCloseTheFilter) {
    load("DN[night(0,1){A0=-1 TM=-1} day(1,2){A0=7 TM=8} half(2,3){A0=-1} rest(3,4){TM=9}]");
    EXPECT_EQ(passAt(0), "SetKTNFWorkMode=0 SetKTNFWorkMode=0 ");
    EXPECT_EQ(m_strConsole, "close TNF\nclose TNF\n");
    EXPECT_EQ(pass(), "");
    EXPECT_EQ(passAt(1), CloseFilter + openFilter(7, 8))
        << "the old TM still keeps the filter closed in the first step";
    EXPECT_EQ(passAt(2), CloseFilter) << "each value is asked for on its own";
    EXPECT_EQ(passAt(3), CloseFilter) << "and either keeps the filter closed";
}

TEST_F(IspTuning, ModesTakeTheFilterFromTheTableAndGiveItBack) {
    load("DN[all(-1,2){A0=7 TM=8 DC=1}]");
    EXPECT_EQ(m_pController->setTNFMode(1), 1);
    EXPECT_EQ(told(), CloseFilter);
    EXPECT_EQ(pass(), "isifSetDcSub=1 ") << "the mode concerns the filter alone";

    m_pController->setTNFMode(2);
    EXPECT_EQ(told(), CloseFilter) << "no strength of the user's yet";
    m_pController->setTNF(50);
    told();
    m_pController->setTNFMode(2);
    EXPECT_EQ(told(), "SetKTNFWorkMode=1 SetKTNF_TYPE=1 SetKTNF_TNF_A0=129 ");
    EXPECT_EQ(pass(), "");

    m_pController->setTNFMode(0);
    EXPECT_EQ(told(), "");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(pass(), CloseFilter + openFilter(7, 8)) << "mode 1 had left both values as closed";
        m_pController->setTNFMode(1);
        m_pController->setTNFMode(0);
        told();
    }
}

TEST_F(IspTuning, APassUnderWayDoesNotReopenWhatTheUserCloses) {
    load("GAIN[low(0,1){A0=7 TM=8} high(1,2){A0=9 TM=10}]");
    std::atomic<bool> isOver = false;
    testing::internal::CaptureStdout();
    std::thread passes([&] {
        for (int gain = 0; !isOver; gain = 1 - gain)
            m_pController->set3DNRParam("GAIN", gain);
    });
    int reopened = 0;
    for (int i = 0; i < 3000; ++i) {
        m_pController->setTNFMode(1);
        for (int look = 0; look < 3; ++look) {
            std::this_thread::yield();
            reopened += m_Pipeline.getValue("DRV_SetKTNFWorkMode");
        }
        m_pController->setTNFMode(0);
    }
    isOver = true;
    passes.join();
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(reopened, 0);
}

TEST_F(IspTuning, StrengthsOfTheUserRunBackwards) {
    for (const auto& [strength, a0] : {std::pair{1, 255}, {2, 253}, {50, 129}, {99, 3}, {100, 0}}) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(m_pController->setTNF(strength), 1);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "setTNF=" + std::to_string(a0) + "\n");
        EXPECT_EQ(m_Pipeline.getValue("DRV_SetKTNF_TNF_A0"), a0);
        EXPECT_EQ(m_pController->m_nTNFValue, strength);
    }
    told();
    m_pController->setTNF(0);
    EXPECT_EQ(told(), CloseFilter);
    EXPECT_EQ(m_pController->m_nTNFValue, 0);
}

TEST_F(IspTuning, EdgeEnhancementHasSwitchesAndStrengths) {
    load("DN[off(0,1){EE=-1} on(1,2){EE=-2} zero(2,3){EE=0} none(3,4){DC=1}]");
    EXPECT_EQ(passAt(0) + m_strConsole, "ipipeSetEEEnable=0 close EE\n");
    EXPECT_EQ(pass() + m_strConsole, "");
    EXPECT_EQ(passAt(1) + m_strConsole, "ipipeSetEEEnable=1 open EE\n");
    EXPECT_THAT(m_Pipeline.getEdgeWords(), IsEmpty()) << "the switch leaves the tables alone";
    EXPECT_EQ(passAt(2) + m_strConsole, "ipipeSetEdgeEnhance=24 set ee=0\n");
    EXPECT_EQ(m_Pipeline.getValue("DRV_ipipeSetEEEnable"), 1);
    EXPECT_THAT(m_Pipeline.getEdgeWords(),
                ElementsAre(0, 0, 1, 4, 8, -2, 0, -2, 0, 0, 0, 0, 0, 31, 30, 312, 24, 45, 24));
    EXPECT_EQ(passAt(3) + m_strConsole, "isifSetDcSub=1 set DC=1\n");
}

TEST_F(IspTuning, SomeModulesKeepTheirEdgeEnhancement) {
    for (const int sensorType : {4, 5, 6}) {
        makeController(sensorType);
        load("DN[all(-1,2){EE=30 DC=1}]");
        EXPECT_EQ(pass(), "isifSetDcSub=1 ") << sensorType;
    }
    makeController(21);
    m_pController->setTNFMode(1);
    told();
    load("DN[all(-1,2){EE=30 DC=1}]");
    EXPECT_EQ(pass(), "ipipeSetEEEnable=0 isifSetDcSub=1 ") << "closed with the filter";
    EXPECT_EQ(pass(), "");
    m_pController->setTNFMode(0);
    EXPECT_EQ(pass(), "ipipeSetEdgeEnhance=24 ");
}

TEST_F(IspTuning, FactoryDefaultsOfTheFilter) {
    for (const auto& [sensorType, factoryMode] :
         {std::pair{0, 0}, {4, 0}, {11, 1}, {16, 1}, {19, 1}, {21, 0}, {24, 1}}) {
        SCOPED_TRACE(sensorType);
        makeController(sensorType);
        m_pController->setTNF(77);
        for (const int enable : {1, 0}) {
            m_pController->m_nTNFEnable = enable;
            int value = -1;
            int mode = -1;
            EXPECT_EQ(m_pController->getTNF(value) & m_pController->getTNFMode(mode), 1);
            EXPECT_EQ(value, enable * 50) << "not the value in force";
            EXPECT_EQ(mode, enable == 1 ? factoryMode : 1);
        }
    }
}

TEST_F(IspTuning, RealTimeUpdateFollowsTheFile) {
    const std::string settings = R"(realTimeUpdate="true" time="3")";
    load("DN[all(-1,2){DC=1}]", settings);
    EXPECT_EQ(pass(), "isifSetDcSub=1 ");
    writeFile("DN[all(-1,2){DC=2}]", settings);
    EXPECT_EQ(pass(), "isifSetDcSub=2 ");

    m_Root.write(ISPParamParse::FilePath, "<root><config " + settings + "><DN enable=\"1\">");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(pass(), "") << "half a file";
        EXPECT_EQ(m_strConsole,
                  std::string("open ") + ISPParamParse::FilePath + " failed\nobjISPParamParse.parse failed\n");
        EXPECT_DOUBLE_EQ(m_dPassTime, 3) << "the settings stay as they were";
    }

    load("DN[all(-1,2){DC=4}]", R"(realTimeUpdate="false" time="3")");
    EXPECT_EQ(pass(), "isifSetDcSub=4 ");
    writeFile("DN[all(-1,2){DC=5}]", settings);
    EXPECT_EQ(pass(), "") << "no longer asked for";
}

TEST_F(IspTuning, BrokenFilesLeaveAnEmptyTable) {
    load("DN[all(-1,2){DC=1}]");
    for (const char* text : {"", "no XML", "<root><config><DN enable=\"1\"></config></root>", "<root/>",
                             "<root><other><DN enable=\"1\"/></other></root>"}) {
        SCOPED_TRACE(text);
        m_Root.write(ISPParamParse::FilePath, text);
        testing::internal::CaptureStdout();
        EXPECT_EQ(m_pController->ISPParamThreadInit(), 0);
        EXPECT_THAT(testing::internal::GetCapturedStdout(), HasSubstr("objISPParamParse.parse failed\n"));
        EXPECT_EQ(pass(), "");
        EXPECT_DOUBLE_EQ(m_dPassTime, 2);
    }
    m_Root.remove(ISPParamParse::FilePath);
    EXPECT_EQ(m_pController->ISPParamThreadInit(), 0);
}

TEST_F(IspTuning, IncompleteNodesAreSkipped) {
    load(R"(<DN enable="1"><nomin max="2"><item name="DC" value="1"/></nomin>
                <nomax min="-1"><item name="DC" value="2"/></nomax>
                <text min="-1" max="two"><item name="DC" value="3"/></text>
                <good min="-1" max="2"><item name="DC"/><item value="4"/><item name="TM" value="x"/>
                    <item name="A0" value="5"/><item name="DC" value="6"/><sub><item name="DC" value="7"/></sub>
                </good></DN>
            <DN><good min="-1" max="2"><item name="DC" value="8"/></good></DN>
            <GAIN><any min="-1" max="2"><item name="DC" value="9"/></any></GAIN>)",
         "");
    m_pController->m_Gain = 0;
    EXPECT_EQ(pass(), "isifSetDcSub=6 " + openFilter(5, -100));
    EXPECT_DOUBLE_EQ(m_dPassTime, 1) << "one second unless the file says";
    EXPECT_FALSE(m_pController->m_bISPRealTimeUpdate);
}

TEST_F(IspTuning, NodesOfOneTypeMergeAndTheLastFlagStands) {
    load("!DN[u(-1,1){DC=1} u(1,2){DC=2}] DN[v(1,2){DC=3}]");
    EXPECT_EQ(passAt(0), "isifSetDcSub=2 ");
    EXPECT_EQ(passAt(1), "isifSetDcSub=3 ");
    load("DN[u(-1,2){DC=4}] !DN[]");
    EXPECT_EQ(pass(), "") << "a type without units still sets its flag";
}

TEST_F(IspTuning, AbsurdPassTimesNeitherSpinNorHang) {
    for (const auto& [time, seconds] :
         {std::pair{"0", 1}, {"-5", 1}, {"-2147483648", 1}, {"60", 60}, {"2147483647", 3600}}) {
        load("", std::string("time=\"") + time + "\"");
        pass();
        EXPECT_DOUBLE_EQ(m_dPassTime, seconds) << time;
    }
}

} // namespace
