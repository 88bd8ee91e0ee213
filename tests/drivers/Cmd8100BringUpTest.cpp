#include "support/Cmd8100Bench.h"

TEST_F(Cmd8100Bench, FirstStartMakesTheFilesAndComesUpInAutomaticScheme) {
    m_Root.writeSchemeCount(2);
    ASSERT_EQ(bringUp(), 1);
    EXPECT_EQ(controller().getSensorStatus(), 2);
    EXPECT_EQ(m_pPort->m_strDeviceName, "ttyS1");
    EXPECT_EQ(m_pPort->m_LineSettings, (std::vector<int>{9600, 8, 0, 1}));

    const std::string factory = m_Root.read(FactoryFile);
    EXPECT_NE(factory.find("(1,50)(2,40)(3,90)"), std::string::npos) << factory;
    EXPECT_TRUE(factory.ends_with("(10000,4)(10001,3)")) << factory;
    EXPECT_EQ(m_Root.read(FirstSchemeFile), factory);
    EXPECT_NE(m_Root.read(SecondSchemeFile).find("(500,0)"), std::string::npos);
    int mode = 0;
    EXPECT_EQ(controller().getParamSchemeModeFromFile(mode), 1);
    EXPECT_EQ(mode, 1);
    EXPECT_NE(errorLog().find("ISensorController::initSensor  success"), std::string::npos);
}
