// From construction over the start, with every file missing, old, broken or read-only, to the end.

#include "controller/SensorControllerManager.h"
#include "host/BRRuntimeError.h"
#include "host/GlobalEnv.h"
#include "support/Cmd8100Bench.h"
#include "support/PlainBench.h"
#include "support/ScriptedPort.h"

#include <filesystem>

#include <gmock/gmock.h>

using sensorhost::ImagingStandIn;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

class LifeCycle : public PlainBench {
protected:
    static std::vector<std::string> platformCalls() {
        std::vector<std::string> names;
        for (const ImagingStandIn::Call& call : ImagingStandIn::getInstance().calls())
            names.emplace_back(call.function);
        return names;
    }
};

TEST_F(LifeCycle, RefusesUntilInitAndKnowsTheSpansFactoryValues) {
    EXPECT_EQ(c().getSensorStatus(), 1);
    EXPECT_EQ(c().m_nDNState, -1);
    int value = 0;
    EXPECT_EQ(c().getParameterFromSensor(500, value), 0);
    for (const int id : {499, 505})
        EXPECT_EQ(c().ISensorController::setParameterToSensor(id, 1), -1);
    EXPECT_EQ(c().ISensorController::getParameterFromSensor(505, value), 0);
    for (const auto& [id, factory] : std::map<int, int>{{500, 1}, {501, 0}, {502, 0}, {503, 24}, {504, 0}}) {
        EXPECT_EQ(c().ISensorController::getParameterFromSensor(id, value), 1);
        EXPECT_EQ(value, factory) << id;
    }
}

TEST_F(LifeCycle, FirstStartRunsTheStepsInOrderAndMakesTheFiles) {
    c().m_nInfrared = 2;
    ASSERT_EQ(init(), 1);
    EXPECT_THAT(c().takeCalls(),
                ElementsAre("initController", "setSensorVideoSystem", "picture day", "initFactorySetting", "set 1=11",
                            "set 2=12", "set 3=13", "set 10=110", "set 30=130", "NotifySensorInitComplate"));
    EXPECT_EQ(c().m_nInfrared, 1);
    EXPECT_EQ(c().m_BaseSensorStatus, 2);
    EXPECT_EQ(file("sensor_Factory.cfg"), FactoryText + "(10000,4)(10001,2)");
    EXPECT_EQ(file("sensor1.cfg"), file("sensor_Factory.cfg"));
    EXPECT_EQ(file("sensor2.cfg"), "(1,11)(2,12)(3,13)(10,110)(30,130)(500,0)(501,0)(502,0)(503,24)(504,0)");
    EXPECT_EQ(file("sensor_Especial.cfg"), "<none>");
    int number = 77;
    EXPECT_EQ(c().getParamSchemeFromFile(number), 1);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(c().getParamSchemeModeFromFile(number), 1);
    EXPECT_EQ(number, 1);
    EXPECT_TRUE(hasLogged("SensorError ISensorController::initSensor  success"));

    create(17); // the module whose parameters nobody may touch
    ASSERT_EQ(init(), 1);
    EXPECT_EQ(c().getSensorStatus(), 1);
    EXPECT_EQ(c().m_BaseSensorStatus, 2);
    EXPECT_TRUE(c().m_bisInited);
}

TEST_F(LifeCycle, LaterFailuresAreLoggedAndTheCameraComesUp) {
    c().m_FailingCalls = {"setSensorVideoSystem", "initFactorySetting", "NotifySensorInitComplate", "picture day"};
    ASSERT_EQ(init(), 1);
    EXPECT_EQ(c().getSensorStatus(), 2);
    EXPECT_EQ(c().m_nDNState, -1);
    for (const char* text : {"SensorInit init setSensorVideoSystem failed", "SensorError initFactorySetting failed",
                             "SensorInit initConfigFile failed", "SensorInit NotifySensorInitComplate failed"})
        EXPECT_TRUE(hasLogged(text)) << text;
    EXPECT_EQ(file("sensor_Factory.cfg"), "<none>");

    create().m_FailingIds = {2};
    ASSERT_EQ(init(), 1);
    EXPECT_TRUE(hasLogged("getParameterFromSensor (2) failed"));
    EXPECT_TRUE(hasLogged("1getParametersFromSensor() failed"));

    create();
    ASSERT_EQ(init(), 1);
    create().m_FailingIds = {2};
    ASSERT_EQ(init(), 1);
    EXPECT_TRUE(hasLogged("2getParametersFromSensor() failed"));
    EXPECT_TRUE(hasLogged("setParameter (2,12) failed"));
    EXPECT_TRUE(hasLogged("SensorInit setParameters failed"));
    EXPECT_EQ(values("(1)(3)"), "(1,11)(3,13)");
}

TEST_F(LifeCycle, PlatformFailuresEndTheStartWhereTheyHappen) {
    ImagingStandIn& platform = ImagingStandIn::getInstance();
    struct Case {
        const char* failing;
        std::vector<std::string> calls;
        std::string text;
    };
    for (const Case& one : std::initializer_list<Case>{
             {"DRV_init", {"DRV_init"}, "DRV_init Failed!\n"},
             {"ALG_sysInit", {"DRV_init", "ALG_sysInit", "DRV_exit"}, "ALG_sysInit Failed!\n"},
             {"brewfi_init", {"DRV_init", "ALG_sysInit", "brewfi_init"}, "brewfi_init Failed!\n"}}) {
        create();
        platform.reset();
        platform.setRecording(true);
        platform.setFailing(one.failing, true);
        testing::internal::CaptureStdout();
        EXPECT_EQ(init(), 0);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), one.text);
        EXPECT_EQ(platformCalls(), one.calls);
        EXPECT_THAT(c().takeCalls(), ElementsAre());
        EXPECT_EQ(m_Root.read("/mnt/mtd/log/SensorError.log"), "<none>");
    }
    create().m_FailingCalls = {"initController"};
    platform.reset();
    EXPECT_EQ(init(), 0);
    EXPECT_EQ(c().getSensorStatus(), 1);
    EXPECT_TRUE(hasLogged("SensorError initController failed"));

    platform.setFailing("brewfi_exit", true);
    platform.setRecording(true);
    m_pController = SafePointer<PlainController>();
    EXPECT_THAT(platformCalls(), ElementsAre("brewfi_exit"));
    EXPECT_TRUE(hasLogged("brewfi_exit Failed!"));
}

TEST_F(LifeCycle, VersionsDecideWhichFilesAreMadeAnew) {
    const std::string old = "(1,91)(2,92)(3,93)(10,910)(30,930)(500,1)(501,0)(502,0)(503,24)(504,0)";
    struct Case {
        const char* trailer; ///< of the old factory file, null for none
        bool isFactoryKept;
        bool isOldFileKept; ///< it becomes the first scheme's
    };
    for (const Case& one : std::initializer_list<Case>{{"(10000,4)(10001,2)", true, true},
                                                       {"(10000,999)(10001,999)", true, true},
                                                       {"(10000,999)(10001,3)", false, true},
                                                       {"(10000,4)(10001,3)", false, true},
                                                       {"(10000,4)", false, true},
                                                       {"(10000,5)(10001,2)", false, false},
                                                       {"(10000,1000)(10001,2)", false, false},
                                                       {"", false, false},
                                                       {"(1", false, false},
                                                       {nullptr, false, false}}) {
        SCOPED_TRACE(one.trailer != nullptr ? one.trailer : "no factory file");
        create();
        m_Root.remove(FolderName);
        if (one.trailer != nullptr)
            writeFile("sensor_Factory.cfg", old + one.trailer);
        writeFile("sensor.cfg", "(1,81)(77,7)");
        writeFile("sensor2.cfg", "(1,71)(500,1)(503,1)(77,7)");
        ASSERT_EQ(init(), 1);
        EXPECT_EQ(file("sensor_Factory.cfg"), (one.isFactoryKept ? old : FactoryText) + "(10000,4)(10001,2)");
        EXPECT_EQ(file("sensor.cfg"), "<none>");
        EXPECT_EQ(file("sensor1.cfg"),
                  one.isOldFileKept ? "(1,81)(2,12)(3,13)(10,110)(30,130)" + Span : FactoryText + "(10000,4)(10001,2)");
        // Scheme files outlive every change of version: old values win, new ids come, gone ones go.
        EXPECT_EQ(file("sensor2.cfg"), "(1,71)(2,12)(3,13)(10,110)(30,130)(500,1)(501,0)(502,0)(503,1)(504,0)");
    }
}

TEST_F(LifeCycle, BrokenFilesAreToldAndHealed) {
    ASSERT_EQ(init(), 1);
    for (const std::string& garbage : {std::string("(1,5)(2,"), std::string(200, '\xff'), std::string("\0\0", 2)}) {
        create();
        for (const char* name : {"sensor_Factory.cfg", "sensor1.cfg", "sensor2.cfg", "sensor_Especial.cfg"})
            writeFile(name, garbage);
        m_Root.remove("/mnt/mtd/log");
        ASSERT_EQ(init(), 1);
        EXPECT_EQ(c().getSensorStatus(), 2);
        EXPECT_EQ(file("sensor_Factory.cfg"), FactoryText + "(10000,4)(10001,2)");
        EXPECT_TRUE(hasLogged("sensor_Factory.cfg was " + std::string(garbage.front() != '\0' ? "broken" : "empty") +
                              ", made anew"));
        EXPECT_TRUE(hasLogged(garbage.front() != '\0' ? "sensor1.cfg was broken, left alone"
                                                      : "sensor1.cfg was empty, filled with factory values"));
        EXPECT_EQ(values("(1)(2)(3)(503)"), "(1,11)(2,12)(3,13)(503,24)");
        EXPECT_EQ(c().setParameters("(1,6)"), 1);
        EXPECT_EQ(c().flush(), 1);
        EXPECT_EQ(file("sensor1.cfg"), "(1,6)(2,12)(3,13)" + Span + "(10,110)");
        EXPECT_EQ(file("sensor_Especial.cfg"), "(10,110)(10000,4)(10001,2)");
        EXPECT_EQ(c().resetParameters(), 1);
        EXPECT_THAT(file("sensor2.cfg"), HasSubstr("(500,0)"));
    }
    struct Choice {
        const char* xml;
        const char* said;
        int modeResult; ///< of a change of mode afterwards
    };
    for (const Choice& one : std::initializer_list<Choice>{
             {"<sensor><paramScheme><item name=\"SchemeIn", "sensor.xml is broken, made anew", 1},
             {"\xff\xfe", "sensor.xml is broken, made anew", 1},
             {"", "", 1}, // cut off in the moment of its creation
             {"<sensor/>", "sensor.xml lacks SchemeIndex", 0},
             {"<sensor><paramScheme><item name=\"SchemeIndex\" value=\"7\"/></paramScheme></sensor>",
              "sensor.xml: no parameter scheme 7", 0}}) {
        SCOPED_TRACE(one.xml);
        create();
        writeFile("sensor.xml", one.xml);
        m_Root.remove("/mnt/mtd/log");
        ASSERT_EQ(init(), 1);
        EXPECT_TRUE(hasLogged(one.said));
        EXPECT_EQ(c().m_nParamMode, 1);
        m_pClock->advance(1.5);
        EXPECT_EQ(c().m_nParamScheme, 0);
        EXPECT_EQ(c().setParamMode(0), one.modeResult);
        EXPECT_EQ(hasLogged("setParamSchemeModeToFile @setParamMode failed"), one.modeResult == 0);
        EXPECT_EQ(c().m_nParamMode, 1 - one.modeResult);
    }
}

TEST_F(LifeCycle, ComesUpWithoutAPlaceForItsFiles) {
    m_Root.write(FolderName, "a file where the folder should be");
    m_Root.write("/mnt/mtd/log/SensorInit.log", "");
    ASSERT_EQ(init(), 1);
    EXPECT_EQ(c().getSensorStatus(), 2);
    EXPECT_TRUE(hasLogged("SensorInit create(/mnt/mtd/code/config_file/sensor_Factory.cfg) failed"));
    EXPECT_EQ(c().flush(), 0);
    EXPECT_TRUE(hasLogged("getCommonIdValues from Last Cache failed"));
    EXPECT_EQ(c().setParameters(FactoryText), 1);
    EXPECT_EQ(c().flush(), 0);
    EXPECT_TRUE(hasLogged("flush failed: /mnt/mtd/code/config_file/sensor_Factory.cfg"));
    EXPECT_EQ(c().resetParameters(), 0);
    EXPECT_TRUE(hasLogged("read factory setting failed"));

    // With the folder back, the next start makes everything.
    create();
    m_Root.remove(FolderName);
    ASSERT_EQ(init(), 1);
    EXPECT_EQ(c().flush(), 1);
}

TEST_F(LifeCycle, SchemeCountRules) {
    struct Case {
        const char* xml; ///< null: no file
        int result;
        std::size_t schemes;
    };
    const std::string many = "<a><n><item value=\"101\"/></n></a>";
    for (const Case& one : std::initializer_list<Case>{{"<a><n><item value=\"100\"/></n></a>", 1, 100},
                                                       {many.c_str(), 0, 100},
                                                       {"<a><n><item value=\"0\"/></n></a>", 1, 0},
                                                       {"<a><n><item value=\"-3\"/></n></a>", 1, 0},
                                                       {"<a><n><item value=\"2\"/><item value=\"9\"/></n>"
                                                        "<m><item value=\"8\"/></m></a>",
                                                        1, 2},
                                                       {"<a><n><item value=\"x\"/></n></a>", 0, 0},
                                                       {"<a><n/></a>", 0, 0},
                                                       {"<a/>", 0, 0},
                                                       {"<a", 0, 0},
                                                       {nullptr, 0, 0}}) {
        m_Root.remove("/hd1/moduleConfig/sensorAbility.xml");
        if (one.xml != nullptr)
            m_Root.write("/hd1/moduleConfig/sensorAbility.xml", one.xml);
        create();
        EXPECT_EQ(c().initParamSchemeList(), one.result);
        EXPECT_EQ(c().m_ParamSchemes.size(), one.schemes);
    }
    // Without schemes the factory values are in force, and nothing can be saved.
    ASSERT_EQ(init(), 1);
    EXPECT_TRUE(hasLogged("SensorInit initConfigFile failed"));
    EXPECT_EQ(values("(1)(500)(503)"), "(1,11)(500,1)(503,24)");
    const std::string factory = file("sensor_Factory.cfg");
    EXPECT_EQ(c().flush(), 0);
    EXPECT_TRUE(hasLogged("flush failed: no parameter scheme 0"));
    EXPECT_EQ(c().resetToLastParameters(), 0);
    EXPECT_EQ(c().setParamScheme(0), 0);
    EXPECT_EQ(c().resetParameters(), 1);
    EXPECT_EQ(file("sensor_Factory.cfg"), factory);
    EXPECT_EQ(file("sensor1.cfg") + file("sensor_Especial.cfg"), "<none><none>");
}

TEST_F(LifeCycle, ServicesForDrivers) {
    char frame[] = {1, 2, 3, 4, 5, static_cast<char>(250), 99, 7};
    c().computeSum(frame, 8);
    EXPECT_THAT(frame, ElementsAre(1, 2, 3, 4, 5, static_cast<char>(250), 8, 7));
    c().computeSum(frame, 3);
    c().computeSum(frame, 1);
    EXPECT_EQ(frame[1], 0);
    EXPECT_EQ(c().checkUARTRecv("\x90\x41", 2, "\x01\x90\x41\xff", 4), 1);
    EXPECT_EQ(c().checkUARTRecv("\x90\x41", 2, "\x90\xff\x41", 3), 0);
    EXPECT_EQ(c().checkUARTRecv("\x90\x41", 2, "\x90", 1), 0);
    EXPECT_EQ(c().checkUARTRecv("", 0, "\x90", 1) + c().checkUARTRecv("\x90", 1, "", 0), 0);

    SafePointer<ScriptedPort> port(new ScriptedPort);
    c().setOperator(port, m_pGpio);
    EXPECT_EQ(c().stopPTZ(), 1);
    EXPECT_TRUE(port->takeCalls().empty());
    c().m_bisZoomModule = true;
    ASSERT_EQ(init(), 1);
    port->m_SendResults = {5};
    std::string text = "old";
    EXPECT_EQ(c().getAllParameters(text), 0);
    EXPECT_EQ(text, "old");
    EXPECT_TRUE(hasLogged("stop PTZ @getAllParameters failed"));
    port->m_DrainResults.assign(1000, 20);
    port->takeCalls();
    c().clearUartBuffer();
    EXPECT_EQ(port->takeCalls(), std::vector<std::string>(256, "drain"));
    c().recodeArray("\x99", 0);
    EXPECT_FALSE(hasLogged("0x99"));
    c().recodeArray(std::string(200, '\xab').c_str(), 200);
    c().ErrorPrintf("%s", std::string(500, 'x').c_str());
    EXPECT_TRUE(hasLogged("SensorError " + std::string(99, 'x') + "\n"));
}

TEST_F(LifeCycle, DebugMarkerTurnsDebugOutputOn) {
    const auto debugOutput = [this] {
        create();
        testing::internal::CaptureStdout();
        c().Debug_Printf("%s", std::string(70, 'x').c_str());
        return testing::internal::GetCapturedStdout();
    };
    EXPECT_EQ(debugOutput(), "");
    m_Root.write("/factory_setting/SensorControlDebug", "");
    EXPECT_EQ(debugOutput(), std::string(49, 'x') + "\n");
}

TEST_F(LifeCycle, EndIsPromptWhileTheThreadSleeps) {
    c().m_bNotes = false;
    ASSERT_EQ(init(), 1);
    m_pClock->advance(10.5);
    const double before = m_pClock->now();
    m_pController = SafePointer<PlainController>();
    EXPECT_LT(m_pClock->now() - before, 0.001);
    EXPECT_FALSE(ImagingStandIn::getInstance().isStarted());
}

class Manager : public Cmd8100Bench {
protected:
    Manager() {
        ImagingStandIn::getInstance().reset();
        m_Manager.setUARTController(m_pPort);
        m_Manager.setGPIO(m_pGpio);
    }
    std::string init(int moduleId, const std::string& detail = "RS485=ttyS1;isInfrared=0;generation=3") {
        testing::internal::CaptureStdout();
        m_Manager.init(0, VideoResolution(1920, 1080), ModuleConfigure(moduleId, detail, "RS485=9600,8,1,0"));
        return testing::internal::GetCapturedStdout();
    }

    SensorControllerManager m_Manager;
};

TEST_F(Manager, WithoutAControllerItRefusesOrThrows) {
    int value = 77;
    testing::internal::CaptureStdout();
    EXPECT_EQ(m_Manager.getStillImageValue(value), 0);
    EXPECT_EQ(m_Manager.getMirrorValue(value), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "SensorControllerManager::getStillImageValue:m_pSensorController is NULL\n"
              "SensorControllerManager::getMirrorValue:m_pSensorController is NULL\n");
    EXPECT_TRUE(m_Manager.getSensorController().isNull());
    EXPECT_THROW(m_Manager.updateSensorVideoSystem(0, VideoResolution(1920, 1080)), BRRuntimeError);
    GlobalEnv::getInstance()->setPrintFlag(0);
    testing::internal::CaptureStdout();
    m_Manager.getMirrorValue(value);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    GlobalEnv::getInstance()->setPrintFlag(1);
}

TEST_F(Manager, ModuleIdsWithoutAModuleGiveARefusingController) {
    EXPECT_EQ(init(0), "");
    for (const int id : {3, 20, 26, -1})
        EXPECT_THAT(init(id), EndsWith("initController failed\nSensorControllerManager::initController error\n"));
    const SafePointer<ISensorController> null = m_Manager.getSensorController();
    EXPECT_EQ(null->getSensorStatus(), 1);
    EXPECT_EQ(null->getSensorType(), 0);
    int value = 0;
    EXPECT_EQ(null->getParameterFromSensor(500, value), 0);
    EXPECT_EQ(null->setParameterToSensor(500, 1), 0);
    EXPECT_EQ(m_Manager.getMirrorValue(value), 0);
    EXPECT_EQ(m_Manager.updateSensorVideoSystem(0, VideoResolution(1920, 1080)), 1);
}

TEST_F(Manager, BringsAModuleUpKeepsAFailedOneAndReplacesBoth) {
    for (int round = 0; round < 2; ++round) {
        EXPECT_THAT(init(16), EndsWith("!!!!!!!!!!!!!!!!!!SensorControllerManager::init successs\n"));
        EXPECT_EQ(m_Manager.getSensorController()->getSensorStatus(), 2);
        int value = 77;
        EXPECT_EQ(m_Manager.getMirrorValue(value), 1);
        EXPECT_EQ(value, 0);
        EXPECT_THAT(init(16, "RS485=ttyS1"), EndsWith("SensorControllerManager::initController error\n"));
        EXPECT_EQ(m_Manager.getSensorController()->getSensorStatus(), 1);
    }
}
