#include "host/BRDeviceTime.h"
#include "host/imaging/ImagingStandIn.h"
#include "host/linux/HostSettings.h"
#include "host/linux/SimulatedClock.h"
#include "imaging/ISPParamParse.h"
#include "support/BareController.h"
#include "support/TempRoot.h"

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using sensorhost::ImagingStandIn;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Calls = std::vector<std::pair<std::string, int>>;

const Calls CloseFilter = {{"DRV_SetKTNFWorkMode", 0}};

Calls openFilter(int a0, int tm) {
    return {
        {"DRV_SetKTNFWorkMode", 1}, {"DRV_SetKTNF_TYPE", 1}, {"DRV_SetKTNF_TNF_A0", a0}, {"DRV_SetKTNF_TNF_TM", tm}};
}

Calls operator+(Calls left, const Calls& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

std::string item(const std::string& name, int value) {
    return "<item name=\"" + name + "\" value=\"" + std::to_string(value) + "\"/>";
}

/// A unit of the file for the keys [min, max).
std::string unit(const std::string& name, int min, int max, const std::string& items) {
    return "<" + name + " min=\"" + std::to_string(min) + "\" max=\"" + std::to_string(max) + "\">" + items + "</" +
           name + ">";
}

std::string type(const std::string& name, const std::string& units, bool enable = true) {
    return "<" + name + " enable=\"" + (enable ? "1" : "0") + "\">" + units + "</" + name + ">";
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

    void writeFile(const std::string& text) { m_Root.write(ISPParamParse::FilePath, text); }

    /// Writes a tuning file and has the controller load it.
    void load(const std::string& types, const std::string& settings = "time=\"2\"") {
        writeFile("<root><config " + settings + ">" + types + "</config></root>");
        EXPECT_EQ(m_pController->ISPParamThreadInit(), 1);
    }

    /// What the pipeline was told since the last time of asking.
    Calls told() {
        Calls calls;
        for (const ImagingStandIn::Call& call : m_Pipeline.calls())
            calls.emplace_back(call.function, call.value);
        m_Pipeline.setRecording(true);
        return calls;
    }

    /// One pass of the thread: what it told the pipeline.
    Calls pass() {
        const double start = BRDeviceTime::getSeconds();
        EXPECT_EQ(m_pController->ISPParamBody(), 0);
        m_dPassTime = BRDeviceTime::getSeconds() - start;
        return told();
    }

    /// The same for what the console shows.
    std::string consoleOfPass() {
        testing::internal::CaptureStdout();
        pass();
        return testing::internal::GetCapturedStdout();
    }

    ImagingStandIn& m_Pipeline = ImagingStandIn::getInstance();
    TempRoot m_Root;
    std::unique_ptr<BareController> m_pController;
    double m_dPassTime = 0; ///< seconds that the last pass took
};

TEST_F(IspTuning, APassSendsWhatChangedInOrder) {
    load(type("DN", unit("night", 0, 1, item("A0", 10) + item("TM", 20) + item("DC", -5) + item("EE", 25)) +
                        unit("day", 1, 2, item("A0", 10) + item("TM", 21) + item("DC", 65535) + item("EE", -2))));
    m_pController->m_nDNState = 0;

    testing::internal::CaptureStdout();
    EXPECT_EQ(pass(), (Calls{{"DRV_ipipeSetEdgeEnhance", 0}, {"DRV_isifSetDcSub", -5}} + openFilter(10, -100) +
                       openFilter(10, 20)));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "set ee=25\nset DC=-5\nset A0=10,TM=-100\nset TM=20,A0=10\n");
    EXPECT_EQ(m_Pipeline.getEdgeWords()[13], 17);
    EXPECT_EQ(m_Pipeline.getEdgeCurve()[64], 63);
    EXPECT_EQ(m_pController->m_nISPDNState, 0);
    EXPECT_DOUBLE_EQ(m_dPassTime, 2);

    EXPECT_EQ(consoleOfPass(), "") << "a steady scene is left alone";
    EXPECT_THAT(pass(), IsEmpty());

    m_pController->m_nDNState = 1;
    EXPECT_EQ(pass(), (Calls{{"DRV_ipipeSetEEEnable", 1}, {"DRV_isifSetDcSub", -1}} + openFilter(10, 21)))
        << "an offset is cut to 16 bits";
    EXPECT_EQ(m_pController->m_nISPDNState, 1);

    m_pController->m_nDNState = -1;
    EXPECT_THAT(pass(), IsEmpty()) << "no unit for a status that is not judged yet";
}

TEST_F(IspTuning, DayNightAndGainShareTheLastValues) {
    load(type("DN", unit("all", -1, 2, item("DC", 1))) +
         type("GAIN", unit("low", 0, 100, item("DC", 2)) + unit("high", 100, 200, item("DC", 3))));
    m_pController->m_Gain = 99;
    const Calls both = {{"DRV_isifSetDcSub", 1}, {"DRV_isifSetDcSub", 2}};
    EXPECT_EQ(pass(), both);
    EXPECT_EQ(pass(), both);

    m_pController->m_Gain = 100;
    EXPECT_EQ(pass(), (Calls{{"DRV_isifSetDcSub", 1}, {"DRV_isifSetDcSub", 3}}));
    m_pController->m_Gain = 200;
    EXPECT_EQ(pass(), (Calls{{"DRV_isifSetDcSub", 1}})) << "a gain that no unit covers changes nothing";
    EXPECT_THAT(pass(), IsEmpty());
    EXPECT_DOUBLE_EQ(m_dPassTime, 2);
}

TEST_F(IspTuning, AFailedGainReadingCannotMakeTheThreadSpin) {
    const std::string gain = unit("any", -1000, 1000, item("DC", 2));
    load(type("GAIN", gain) + type("DN", unit("all", -1, 2, item("DC", 1))));
    EXPECT_EQ(pass(), (Calls{{"DRV_isifSetDcSub", 1}}));
    EXPECT_DOUBLE_EQ(m_dPassTime, 2);
    EXPECT_EQ(consoleOfPass(), "get current gain failed\n\n");

    load(type("GAIN", gain, false));
    EXPECT_EQ(consoleOfPass(), "") << "a disabled type is not asked for";
}

TEST_F(IspTuning, FilterValuesOfTheTableCanCloseTheFilter) {
    load(type("DN", unit("night", 0, 1, item("A0", -1) + item("TM", -1)) +
                        unit("day", 1, 2, item("A0", 7) + item("TM", 8)) + unit("half", 2, 3, item("A0", -1)) +
                        unit("rest", 3, 4, item("TM", 9))));
    m_pController->m_nDNState = 0;
    testing::internal::CaptureStdout();
    EXPECT_EQ(pass(), CloseFilter + CloseFilter);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "close TNF\nclose TNF\n");
    EXPECT_THAT(pass(), IsEmpty());

    m_pController->m_nDNState = 1;
    EXPECT_EQ(pass(), CloseFilter + openFilter(7, 8)) << "the old TM still keeps the filter closed in the first step";
    m_pController->m_nDNState = 2;
    EXPECT_EQ(pass(), CloseFilter) << "each value is asked for on its own";
    m_pController->m_nDNState = 3;
    EXPECT_EQ(pass(), CloseFilter) << "and either keeps the filter closed";
}

TEST_F(IspTuning, ModesTakeTheFilterFromTheTableAndGiveItBack) {
    load(type("DN", unit("all", -1, 2, item("A0", 7) + item("TM", 8) + item("DC", 1))));
    EXPECT_EQ(m_pController->setTNFMode(1), 1);
    EXPECT_EQ(told(), CloseFilter);
    EXPECT_EQ(pass(), (Calls{{"DRV_isifSetDcSub", 1}})) << "the mode concerns the filter alone";

    m_pController->setTNFMode(2);
    EXPECT_EQ(told(), CloseFilter) << "no strength of the user's yet";
    m_pController->setTNF(50);
    told();
    m_pController->setTNFMode(2);
    EXPECT_EQ(told(), (Calls{{"DRV_SetKTNFWorkMode", 1}, {"DRV_SetKTNF_TYPE", 1}, {"DRV_SetKTNF_TNF_A0", 129}}));
    EXPECT_THAT(pass(), IsEmpty());

    m_pController->setTNFMode(0);
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_EQ(pass(), CloseFilter + openFilter(7, 8)) << "mode 1 had left both values as closed";
}

TEST_F(IspTuning, APassUnderWayDoesNotReopenWhatTheUserCloses) {
    load(type("GAIN",
              unit("low", 0, 1, item("A0", 7) + item("TM", 8)) + unit("high", 1, 2, item("A0", 9) + item("TM", 10))));
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
    load(type("DN", unit("off", 0, 1, item("EE", -1)) + unit("on", 1, 2, item("EE", -2)) +
                        unit("zero", 2, 3, item("EE", 0)) + unit("none", 3, 4, item("DC", 1))));
    m_pController->m_nDNState = 0;
    EXPECT_EQ(consoleOfPass(), "close EE\n");
    EXPECT_EQ(m_Pipeline.getValue("DRV_ipipeSetEEEnable"), 0);
    EXPECT_EQ(consoleOfPass(), "");
    m_pController->m_nDNState = 1;
    EXPECT_EQ(consoleOfPass(), "open EE\n");
    EXPECT_EQ(m_Pipeline.getValue("DRV_ipipeSetEEEnable"), 1);
    EXPECT_THAT(m_Pipeline.getEdgeWords(), IsEmpty()) << "the switch leaves the tables alone";

    m_pController->m_nDNState = 2;
    EXPECT_EQ(consoleOfPass(), "set ee=0\n");
    EXPECT_EQ(m_Pipeline.getValue("DRV_ipipeSetEEEnable"), 1);
    EXPECT_THAT(m_Pipeline.getEdgeWords(),
                ElementsAre(0, 0, 1, 4, 8, -2, 0, -2, 0, 0, 0, 0, 0, 31, 30, 312, 24, 45, 24));
    m_pController->m_nDNState = 3;
    EXPECT_EQ(consoleOfPass(), "set DC=1\n");
}

TEST_F(IspTuning, SomeModulesKeepTheirEdgeEnhancement) {
    const std::string table = type("DN", unit("all", -1, 2, item("EE", 30) + item("DC", 1)));
    for (const int sensorType : {4, 5, 6}) {
        makeController(sensorType);
        load(table);
        EXPECT_EQ(pass(), (Calls{{"DRV_isifSetDcSub", 1}})) << sensorType;
    }

    makeController(21);
    m_pController->setTNFMode(1);
    told();
    load(table);
    EXPECT_EQ(pass(), (Calls{{"DRV_ipipeSetEEEnable", 0}, {"DRV_isifSetDcSub", 1}})) << "closed with the filter";
    EXPECT_THAT(pass(), IsEmpty());
    m_pController->setTNFMode(0);
    EXPECT_EQ(pass(), (Calls{{"DRV_ipipeSetEdgeEnhance", 0}}));
}

TEST_F(IspTuning, FactoryDefaultsOfTheFilter) {
    for (const int sensorType : {0, 4, 11, 16, 19, 21, 24}) {
        SCOPED_TRACE(sensorType);
        makeController(sensorType);
        m_pController->setTNF(77);
        int value = -1;
        int mode = -1;
        EXPECT_EQ(m_pController->getTNF(value) & m_pController->getTNFMode(mode), 1);
        EXPECT_EQ(value, 50) << "not the value in force";
        EXPECT_EQ(mode, sensorType == 11 || sensorType == 16 || sensorType == 19 || sensorType == 24 ? 1 : 0);

        m_pController->m_nTNFEnable = 0;
        m_pController->getTNF(value);
        m_pController->getTNFMode(mode);
        EXPECT_EQ(value, 0);
        EXPECT_EQ(mode, 1);
    }
}

TEST_F(IspTuning, RealTimeUpdateFollowsTheFile) {
    const std::string settings = R"(realTimeUpdate="true" time="3")";
    load(type("DN", unit("all", -1, 2, item("DC", 1))), settings);
    EXPECT_EQ(pass(), (Calls{{"DRV_isifSetDcSub", 1}}));

    writeFile("<root><config " + settings + ">" + type("DN", unit("all", -1, 2, item("DC", 2))) + "</config></root>");
    EXPECT_EQ(pass(), (Calls{{"DRV_isifSetDcSub", 2}}));

    writeFile("<root><config " + settings + "><DN enable=\"1\">");
    const std::string failure =
        std::string("open ") + ISPParamParse::FilePath + " failed\nobjISPParamParse.parse failed\n";
    EXPECT_EQ(consoleOfPass(), failure) << "half a file";
    EXPECT_EQ(consoleOfPass(), failure) << "and again on the next pass";
    EXPECT_DOUBLE_EQ(m_dPassTime, 3) << "the settings stay as they were";

    load(type("DN", unit("all", -1, 2, item("DC", 4))), "realTimeUpdate=\"false\" time=\"3\"");
    EXPECT_EQ(pass(), (Calls{{"DRV_isifSetDcSub", 4}}));
    writeFile("<root><config " + settings + ">" + type("DN", unit("all", -1, 2, item("DC", 5))) + "</config></root>");
    EXPECT_THAT(pass(), IsEmpty()) << "no longer asked for";
}

TEST_F(IspTuning, BrokenFilesLeaveAnEmptyTable) {
    load(type("DN", unit("all", -1, 2, item("DC", 1))));
    for (const char* text : {"", "no XML", "<root><config><DN enable=\"1\"></config></root>", "<root/>",
                             "<root><other><DN enable=\"1\"/></other></root>"}) {
        SCOPED_TRACE(text);
        writeFile(text);
        testing::internal::CaptureStdout();
        EXPECT_EQ(m_pController->ISPParamThreadInit(), 0);
        EXPECT_THAT(testing::internal::GetCapturedStdout(), HasSubstr("objISPParamParse.parse failed\n"));
        EXPECT_THAT(pass(), IsEmpty());
        EXPECT_DOUBLE_EQ(m_dPassTime, 2);
    }
    m_Root.remove(ISPParamParse::FilePath);
    EXPECT_EQ(m_pController->ISPParamThreadInit(), 0);
}

TEST_F(IspTuning, IncompleteNodesAreSkipped) {
    load(type("DN", R"(<nomin max="2"><item name="DC" value="1"/></nomin>
                       <nomax min="-1"><item name="DC" value="2"/></nomax>
                       <text min="-1" max="two"><item name="DC" value="3"/></text>
                       <good min="-1" max="2"><item name="DC"/><item value="4"/><item name="TM" value="x"/>
                           <item name="A0" value="5"/><item name="DC" value="6"/><sub><item name="DC" value="7"/></sub>
                       </good>)") +
             R"(<DN><good min="-1" max="2"><item name="DC" value="8"/></good></DN>
                <GAIN><any min="-1" max="2"><item name="DC" value="9"/></any></GAIN>)",
         "");
    m_pController->m_Gain = 0;
    EXPECT_EQ(pass(), (Calls{{"DRV_isifSetDcSub", 6}} + openFilter(5, -100)));
    EXPECT_DOUBLE_EQ(m_dPassTime, 1) << "one second unless the file says";
    EXPECT_FALSE(m_pController->m_bISPRealTimeUpdate);
}

TEST_F(IspTuning, NodesOfOneTypeMergeAndTheLastFlagStands) {
    load(type("DN", unit("u", -1, 1, item("DC", 1)) + unit("u", 1, 2, item("DC", 2)), false) +
         type("DN", unit("v", 1, 2, item("DC", 3)), true));
    m_pController->m_nDNState = 0;
    EXPECT_EQ(pass(), (Calls{{"DRV_isifSetDcSub", 2}}));
    m_pController->m_nDNState = 1;
    EXPECT_EQ(pass(), (Calls{{"DRV_isifSetDcSub", 3}}));

    load(type("DN", unit("u", -1, 2, item("DC", 4))) + type("DN", "", false));
    EXPECT_THAT(pass(), IsEmpty()) << "a type without units still sets its flag";
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
