// The path of a value between host, module, caches and files.

#include "support/PlainBench.h"

#include <filesystem>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

class ParameterEngine : public PlainBench {
protected:
    ParameterEngine() {
        init();
        c().takeCalls();
    }
    int at(int id) {
        int value = -77;
        c().getParameter(id, value);
        return value;
    }
};

TEST_F(ParameterEngine, OnlyDifferencesReachTheModuleInAscendingOrder) {
    EXPECT_EQ(c().setParameters(FactoryText + "(10000,4)(10001,2)"), 1);
    EXPECT_EQ(c().setParameters(""), 1);
    EXPECT_THAT(c().takeCalls(), IsEmpty());
    EXPECT_EQ(c().setParameters("(3,-3)(1,11)(2,5)(3,7)(10000,8)"), 1);
    EXPECT_THAT(c().takeCalls(), ElementsAre("set 2=5", "set 3=7"));
    EXPECT_EQ(values("(3)(1)(2)"), "(1,11)(2,5)(3,7)");
    EXPECT_EQ(c().setParameter(10001, 9), 1);
    EXPECT_EQ(c().setParameters("(1,99)(2"), 1);
    EXPECT_TRUE(hasLogged("setParameters: no parameter string: (1,99)(2"));
    EXPECT_THAT(c().takeCalls(), IsEmpty());
    EXPECT_EQ(values("(1)"), "(1,11)");
}

TEST_F(ParameterEngine, KindsDecideWhatIsRemembered) {
    for (const char* text : {"(20,1)(30,131)", "(20,1)(30,131)"})
        EXPECT_EQ(c().setParameters(text), 1);
    EXPECT_EQ(c().setParameters("(30,130)"), 1);
    EXPECT_THAT(c().takeCalls(), ElementsAre("set 20=1", "set 30=131", "set 20=1", "set 30=131"));
    EXPECT_EQ(values("(30)"), "(30,130)");
    EXPECT_EQ(values("(20)"), "<refused>");
    EXPECT_EQ(values("(1)(20)"), "<refused>");

    EXPECT_EQ(c().setParameters("(1,5)(40,1)"), 0);
    EXPECT_THAT(c().takeCalls(), ElementsAre("set 1=5", "set 40=1"));
    EXPECT_TRUE(hasLogged("SensorError id type is unknow\n"));
    EXPECT_TRUE(hasLogged("SensorError setParameter (40,1) failed\n"));
    EXPECT_EQ(values("(1)"), "(1,5)");
}

TEST_F(ParameterEngine, ARefusedIdKeepsItsOldValueAndStopsNoOther) {
    c().m_FailingIds = {2};
    EXPECT_EQ(c().setParameters("(1,5)(2,6)(3,7)"), 0);
    EXPECT_TRUE(hasLogged("setParameterToSensor (2,6) failed\n"));
    EXPECT_TRUE(hasLogged("setParameter (2,6) failed\n"));
    EXPECT_EQ(values("(1)(2)(3)"), "(1,5)(2,12)(3,7)");
    EXPECT_EQ(at(2), 6); // what was asked for last
    EXPECT_EQ(c().setParameters("(3,8)"), 1);
    EXPECT_EQ(at(2), 12);
    EXPECT_EQ(at(20), -77);
}

TEST_F(ParameterEngine, FlushSavesTheSchemeInForceAndTheEspecialValues) {
    EXPECT_EQ(c().setParameters("(1,5)(10,111)(20,1)(30,131)"), 1);
    EXPECT_EQ(c().flush(), 1);
    EXPECT_EQ(file("sensor1.cfg"), "(1,5)(2,12)(3,13)" + Span + "(10,111)");
    EXPECT_EQ(file("sensor_Especial.cfg"), "(10,111)(10000,4)(10001,2)");
    EXPECT_EQ(file("sensor_Factory.cfg"), "(1,11)(2,12)(3,13)(10,111)(30,130)" + Span + "(10000,4)(10001,2)");

    // The keep-default value is back after the next start; the saved values are in force.
    create();
    ASSERT_EQ(init(), 1);
    EXPECT_EQ(values("(1)(2)(10)(30)"), "(1,5)(2,12)(10,111)(30,130)");

    const std::string before = file("sensor1.cfg") + file("sensor_Factory.cfg") + file("sensor_Especial.cfg");
    c().m_pIdManager->addParameterId(1, 4);
    EXPECT_EQ(c().setParameters("(1,6)(10,112)"), 1);
    EXPECT_EQ(c().flush(), 0);
    EXPECT_TRUE(hasLogged("getCommonIdValues from Last Cache failed"));
    c().setParameter(4, 4);
    c().m_pIdManager->addParameterId(2, 11);
    EXPECT_EQ(c().flush(), 0);
    EXPECT_TRUE(hasLogged("getEspecialIdValues from Last Cache failed"));
    EXPECT_TRUE(hasLogged("parameter 11 has no value"));
    EXPECT_EQ(file("sensor1.cfg") + file("sensor_Factory.cfg") + file("sensor_Especial.cfg"), before);
}

TEST_F(ParameterEngine, FlushStopsAtTheFirstFileThatFails) {
    c().setParameters("(1,5)(10,111)");
    m_Root.remove(Folder + "sensor1.cfg");
    m_Root.write(Folder + "sensor1.cfg/in the way", "");
    EXPECT_EQ(c().flush(), 0);
    EXPECT_TRUE(hasLogged("flush failed: /mnt/mtd/code/config_file/sensor1.cfg"));
    EXPECT_EQ(file("sensor_Especial.cfg"), "<none>");
    EXPECT_THAT(file("sensor_Factory.cfg"), testing::HasSubstr("(10,111)"));
    m_Root.remove(Folder + "sensor1.cfg");
    EXPECT_EQ(c().flush(), 1);
    m_Root.remove(Folder + "sensor_Factory.cfg");
    EXPECT_EQ(c().flush(), 0);
    EXPECT_TRUE(hasLogged("flush failed: /mnt/mtd/code/config_file/sensor_Factory.cfg"));
}

TEST_F(ParameterEngine, GetAllParametersFoldsTheModulesOwnChangesIn) {
    std::string text;
    EXPECT_EQ(c().getAllParameters(text), 1);
    EXPECT_EQ(text, FactoryText);
    EXPECT_EQ(file("sensor_Especial.cfg"), "<none>");
    c().m_nUpdatedId = 2;
    c().m_nUpdatedValue = -5;
    EXPECT_EQ(c().getAllParameters(text), 1);
    EXPECT_EQ(text, "(1,11)(2,-5)(3,13)(10,110)(30,130)" + Span);
    EXPECT_EQ(values("(2)"), "(2,-5)");
    EXPECT_EQ(file("sensor1.cfg"), "(1,11)(2,-5)(3,13)" + Span + "(10,110)");
    EXPECT_THAT(c().takeCalls(), IsEmpty());

    text = "(1,2)(12,3)(3,4)";
    c().UpdateParametersIdValue(text, 12, 33333);
    c().UpdateParametersIdValue(text, 1, 7);
    c().UpdateParametersIdValue(text, 99, 7);
    EXPECT_EQ(text, "(1,7)(12,33333)(3,4)");
}

TEST_F(ParameterEngine, ResetGoesBackToFactoryValuesInEveryScheme) {
    ASSERT_EQ(c().setParamScheme(1), 1);
    c().setParameters("(1,5)(10,111)(501,6)(503,7)(504,3)");
    ASSERT_EQ(c().flush(), 1);
    c().takeCalls();
    EXPECT_EQ(c().resetParameters(), 1);
    EXPECT_THAT(c().takeCalls(), ElementsAre("set 1=11")); // the especial value outlives it
    EXPECT_FALSE(c().m_bisReset);
    EXPECT_EQ(c().m_nParamScheme, 1);
    EXPECT_EQ(values("(1)(10)(500)(501)(503)(504)"), "(1,11)(10,111)(500,0)(501,0)(503,24)(504,0)");
    const std::string saved = "(1,11)(2,12)(3,13)(10,111)(30,130)";
    const std::string versions = "(10000,-10000)(10001,-10000)";
    EXPECT_EQ(file("sensor1.cfg"), saved + Span + versions);
    EXPECT_EQ(file("sensor2.cfg"), saved + "(500,0)(501,0)(502,0)(503,24)(504,0)" + versions);

    c().setParameters("(1,5)");
    c().m_FailingIds = {1};
    EXPECT_EQ(c().resetParameters(), 0);
    EXPECT_TRUE(hasLogged("setParameters @resetParameters failed"));
    EXPECT_TRUE(c().m_bisReset); // the cross-checks stay off until a reset succeeds
    EXPECT_EQ(c().setParamEndTime_M(0), 1);
    c().m_FailingIds.clear();
    for (const char* broken : {"", "(1,5", "<none>"}) {
        if (broken[0] != '<')
            writeFile("sensor_Factory.cfg", broken);
        else
            m_Root.remove(Folder + "sensor_Factory.cfg");
        m_Root.remove("/mnt/mtd/log");
        std::filesystem::create_directories(m_Root.path() + "/mnt/mtd/log");
        EXPECT_EQ(c().resetParameters(), 0);
        EXPECT_TRUE(hasLogged("read factory setting failed"));
        EXPECT_EQ(file("sensor1.cfg"), saved + Span + versions);
    }
}

TEST_F(ParameterEngine, ResetToLastGoesBackToWhatWasSaved) {
    c().setParameters("(1,5)");
    ASSERT_EQ(c().flush(), 1);
    c().setParameters("(1,6)(2,7)");
    c().takeCalls();
    EXPECT_EQ(c().resetToLastParameters(), 1);
    EXPECT_THAT(c().takeCalls(), ElementsAre("set 1=5", "set 2=12"));
    EXPECT_FALSE(c().m_bisReset);

    c().setParameters("(1,6)");
    c().m_FailingIds = {1};
    EXPECT_EQ(c().resetToLastParameters(), 0);
    EXPECT_TRUE(hasLogged("setParameters @resetToLastParameters failed"));
    EXPECT_TRUE(c().m_bisReset);
    c().m_FailingIds.clear();
    m_Root.remove(Folder + "sensor_Factory.cfg");
    EXPECT_EQ(c().resetToLastParameters(), 0);
    EXPECT_TRUE(hasLogged("flush @resetToLastParameters false"));
    m_Root.remove(Folder + "sensor1.cfg");
    EXPECT_EQ(c().resetToLastParameters(), 0);
    EXPECT_TRUE(hasLogged("read user setting failed"));
}
