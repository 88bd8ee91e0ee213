#include "host/IRPowerParamV2.h"
#include "imaging/IRPowerDefaultConfig.h"
#include "support/TempRoot.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace {

constexpr const char* Path = "/mnt/mtd/code/IRPower.xml";

class IRPower : public testing::Test {
protected:
    int loadText(const std::string& text) {
        m_Root.write(Path, text);
        return IRPowerDefaultConfig().load(1, Path, m_Param);
    }
    int versionOf(const std::string& text, int& version) {
        m_Root.write(Path, text);
        return IRPowerDefaultConfig().getVersion(1, Path, version);
    }
    /// As the file has it, -1 where it has none.
    int fileVersion() {
        int version = -1;
        IRPowerDefaultConfig().getVersion(1, Path, version);
        return version;
    }

    TempRoot m_Root;
    IRPowerParamV2 m_Param;
};

TEST_F(IRPower, ReadsTheSample) {
    std::ostringstream sample;
    sample << std::ifstream(SENSORCONTROL_SOURCE_DIR "/docs/samples/IRPower.xml").rdbuf();
    int version = 0;
    EXPECT_EQ(versionOf(sample.str(), version), 0);
    EXPECT_EQ(version, 3);
    EXPECT_EQ(loadText(sample.str()), 0);
    std::string table;
    for (const IRPowerItem& item : m_Param.getIrPower())
        table += std::to_string(item.getZoomUp()) + ':' + std::to_string(item.getFarPower()) + ',' +
                 std::to_string(item.getMidPower()) + ',' + std::to_string(item.getNearPower()) + ' ';
    EXPECT_EQ(table, "4:0,20,80 12:30,70,40 36:100,40,0 ");
}

TEST_F(IRPower, BrokenFilesSayWhatIsMissing) {
    const std::string whole = "<IRConfig><IRPower><item zoomup='1' far='2' mid='3' near='4'/>";
    ASSERT_EQ(loadText(whole + "</IRPower></IRConfig>"), 0);
    for (const auto& [text, result] :
         {std::pair<std::string, int>{"", -4},
          {whole, -4},
          {"<IRConfig/>", -1},
          {whole + "<item zoomup='1' far='2' mid='3'/></IRPower></IRConfig>", -3},
          {whole + "<item zoomup='99999999999' far='2' mid='3' near='4'/></IRPower></IRConfig>", -3}}) {
        EXPECT_EQ(loadText(text), result) << text;
        EXPECT_EQ(m_Param.getIrPower().size(), 1U) << "a failure leaves the table alone";
    }
    EXPECT_EQ(loadText("<IRConfig><IRPower/></IRConfig>"), 0);
    EXPECT_TRUE(m_Param.getIrPower().empty());

    int version = 17;
    for (const auto& [text, result] : {std::pair{"no XML", -4},
                                       {"<IRConfig/>", -1},
                                       {"<IRConfig><version/></IRConfig>", -2},
                                       {"<IRConfig><version><item version='new'/></version></IRConfig>", -3}})
        EXPECT_EQ(versionOf(text, version), result) << text;
    EXPECT_EQ(version, 17);
    m_Root.remove(Path);
    IRPowerDefaultConfig config;
    EXPECT_EQ(config.load(1, Path, m_Param), -4);
    EXPECT_EQ(config.getVersion(1, Path, version), -4);
    EXPECT_EQ(config.open(1, Path, 1), 0);
    EXPECT_EQ(m_Root.read(Path), "<none>") << "reading makes no file";
}

TEST_F(IRPower, KeepsTheVersionBesideTheTable) {
    IRPowerDefaultConfig first;
    EXPECT_EQ(first.setVersion(1, Path, 5), 0);
    EXPECT_EQ(fileVersion(), 5);
    m_Root.remove(Path);
    EXPECT_EQ(first.setVersion(1, Path, 5), 0);
    EXPECT_EQ(m_Root.read(Path), "<none>") << "what the file is known to have is not written again";
    EXPECT_EQ(first.open(1, Path, 2), 1);
    first.close();
    EXPECT_EQ(fileVersion(), 5) << "a new file gets the version known";

    ASSERT_EQ(loadText("<IRConfig><version><item version='1'/></version><IRPower>"
                       "<item zoomup='1' far='2' mid='3' near='4'/></IRPower>"
                       "<version><item version='2'/></version></IRConfig>"),
              0);
    IRPowerDefaultConfig config;
    EXPECT_EQ(config.setVersion(1, Path, 9), 0);
    EXPECT_EQ(config.load(1, Path, m_Param), 0);
    EXPECT_EQ(m_Param.getIrPower().size(), 1U);
    EXPECT_EQ(fileVersion(), 9);

    IRPowerDefaultConfig reused; // its read leaves the file open, with a root of another name
    ASSERT_NE(loadText("<other/>"), 0);
    EXPECT_EQ(reused.load(1, Path, m_Param), -1);
    m_Root.remove(Path);
    EXPECT_EQ(reused.setVersion(1, Path, 4), 0);
    EXPECT_NE(m_Root.read(Path).find("<IRConfig>"), std::string::npos);
}

TEST_F(IRPower, AFileThatCannotBeWrittenIsNotTakenForDone) {
    std::filesystem::create_directories(m_Root.path() + "/dev");
    std::filesystem::create_symlink("/dev/full", m_Root.path() + "/dev/full.xml");
    IRPowerDefaultConfig config;
    for (int i = 0; i < 2; ++i)
        EXPECT_NE(config.setVersion(1, "/dev/full.xml", 2), 0) << "and is tried again";
    EXPECT_EQ(config.setVersion(1, Path, 2), 0);
    EXPECT_EQ(fileVersion(), 2);
}

} // namespace
