// Configuration folders: what the web interface gets, and modules that are brought up from them.

#include "tool/ToolProcess.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include <gmock/gmock.h>

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using Json = nlohmann::json;
using Words = std::vector<std::string>;

const std::string Source = SENSORCONTROL_SOURCE_DIR;

class UiTest : public ::testing::Test {
protected:
    UiTest() {
        std::filesystem::copy(Source + "/docs/samples/moduleConfig", m_Folder.path() + "/config",
                              std::filesystem::copy_options::recursive);
    }

    ToolProcess::Result run(const std::string& command, const Words& more) const {
        Words words = {command, "--config", m_Folder.path() + "/config"};
        words.insert(words.end(), more.begin(), more.end());
        return ToolProcess::run(m_Folder.path(), words);
    }

    TempFolder m_Folder;
};

TEST_F(UiTest, printsOneTextAsItIs) {
    const ToolProcess::Result german = run("ui", {"--language", "2", "--print", "language"});
    EXPECT_EQ(german.code, 0);
    EXPECT_THAT(german.err, IsEmpty());
    EXPECT_EQ(german.out, m_Folder.read("config/sensorConfig/language/german/cameraLang.xml"));

    m_Folder.write("config/sensorConfig/cameraGui.xml", "");
    EXPECT_EQ(run("ui", {"--print", "gui"}).out, "");
    m_Folder.write("config/sensorConfig/cameraGui.xml", "\xc4\n\n-");
    EXPECT_EQ(run("ui", {"--print", "gui"}).out, "\xc4\n\n-");
    const ToolProcess::Result json = run("ui", {"--print", "gui", "--json"});
    EXPECT_EQ(json.code, 4);
    EXPECT_THAT(json.err, HasSubstr("text gui is no UTF-8, which JSON cannot hold"));
}

TEST_F(UiTest, saysThatLanguage1Answers) {
    const ToolProcess::Result result = run("ui", {"--language", "99", "--print", "common", "--json"});
    EXPECT_EQ(result.err, "warning: text common 99 is missing: that of language 1 stands for it\n");
    const Json object = Json::parse(result.out);
    EXPECT_EQ(object.at("language"), 99);
    EXPECT_EQ(object.at("served"), 1);
    EXPECT_THAT(run("ui", {"--language", "99"}).out, HasSubstr("==> common 99 (language 1) <==\n"));
    std::filesystem::remove_all(m_Folder.path() + "/config/sensorConfig/common");
    EXPECT_THAT(run("ui", {"--language", "99"}).err, HasSubstr("warning: text common 99 is missing or empty\n"));
}

TEST_F(UiTest, explainsModuleAndMergeFromWhatTheLibraryDid) {
    const ToolProcess::Result result = run("ui", {"--product", "dome", "--json", "--explain"});
    EXPECT_EQ(result.code, 0) << result.err;
    std::vector<std::string> applied;
    std::vector<bool> chosen;
    int texts = 0;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);) {
        const Json object = Json::parse(line);
        if (object.contains("record"))
            chosen.push_back(object.at("chosen"));
        if (object.contains("block") && object.at("applies").get<bool>()) {
            applied.push_back(object.at("name"));
            EXPECT_EQ(object.at("conditions").at(0),
                      Json({{"key", "generation"}, {"accepted", "3,4"}, {"found", "3"}, {"holds", true}}));
            EXPECT_EQ(object.at("edits").at(1),
                      Json({{"edit", "add-before"}, {"key", 15}, {"anchor", 7}, {"tabs", 1}, {"done", true}}));
        }
        texts += object.contains("text") ? 1 : 0;
    }
    EXPECT_THAT(chosen, ElementsAre(false, true));
    EXPECT_THAT(applied, ElementsAre("threeLights"));
    EXPECT_EQ(texts, 4);

    const std::string text = run("ui", {"--product", "box", "--explain"}).out;
    EXPECT_THAT(text, StartsWith("record 1 module 6 "));
    EXPECT_THAT(text, HasSubstr("chosen, the last that fits; detail isInfrared=0;autoIris=1;"));
    EXPECT_THAT(text, HasSubstr("block 2 generation is missing, wanted \"1,2,3\"\n"));
    EXPECT_THAT(text, HasSubstr("block 4 add tab 21 after tab 1\nblock 4 add tab 3 after tab 21\n"));
    EXPECT_THAT(text, HasSubstr("block 6 HDR=0 is none of \"1,2,3\"\n"));
    EXPECT_THAT(text, HasSubstr("==> common 1 <==\n<?xml"));
}

TEST_F(UiTest, saysWhyAStyleCannotBeMade) {
    m_Folder.write("config/sensorConfig/styleDiversity/cameraStyleDiversity.xml",
                   "<first isInfrared='0,1'><Delete><t id='4'/></Delete></first>"
                   "<second isInfrared='0,1'><AddAfter><t id='4'><n id='9'/></t></AddAfter></second>");
    const ToolProcess::Result result = run("ui", {"--explain"});
    EXPECT_EQ(result.code, 4);
    EXPECT_THAT(result.out, HasSubstr("block 1 delete tab 4\n"));
    EXPECT_THAT(result.out, HasSubstr("block 2 add after tab 4: failed, there is no such tab\n"));
    EXPECT_THAT(result.out, Not(HasSubstr("==>")));
    EXPECT_THAT(result.err, HasSubstr("reason: can't find tab by key(4)\n"));

    const std::string style = m_Folder.path() + "/config/sensorConfig/style/cameraStyle.xml";
    m_Folder.write("config/sensorConfig/style/cameraStyle.xml", "<style><tab id='1'>");
    EXPECT_THAT(run("ui", {}).err, HasSubstr("reason: " + style + ": is no sound XML"));
    std::filesystem::remove(style);
    EXPECT_THAT(run("ui", {}).err, HasSubstr("reason: " + style + ": cannot be read\n"));

    m_Folder.write("config/moduleConfig.xml", "<moduleConfig><module id='100'/></moduleConfig>");
    EXPECT_THAT(run("ui", {}).err, HasSubstr("no module has an id from 1 to 99"));
    m_Folder.write("config/moduleConfig.xml", "<moduleConfig>");
    EXPECT_THAT(run("ui", {}).err, HasSubstr("cannot be read as a list of modules"));
    EXPECT_EQ(run("get", {"-s"}).code, 4);
}

TEST_F(UiTest, saysThatAnUnsoundDetailDecidesNothing) {
    m_Folder.write("config/moduleConfig.xml", "<moduleConfig><module id='4' detail='broken' "
                                              "parameters='GUIConfig=cameraGui.xml;Prefix=camera'/></moduleConfig>");
    const ToolProcess::Result result = run("ui", {"--explain"});
    EXPECT_THAT(result.out, HasSubstr("block 1 noInfrared is not decided: the module's detail cannot be parsed\n"));
    EXPECT_THAT(result.out, Not(HasSubstr("no condition")));
    EXPECT_THAT(result.err, HasSubstr("reason: parse detail failed\n"));
}

TEST_F(UiTest, tellsWhatIsMissingAndGoesOn) {
    m_Folder.write("config/sensorConfig/styleDiversity/cameraStyleDiversity.xml", "<first isInfrared='5'>");
    std::filesystem::remove_all(m_Folder.path() + "/config/sensorConfig/language/german");
    const ToolProcess::Result result = run("ui", {"--language", "2", "--print", "language"});
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.err, HasSubstr("warning: getLanguageFile failed , path="));
    EXPECT_THAT(result.err, HasSubstr("cameraStyleDiversity.xml: is no sound XML"));
    EXPECT_THAT(result.out, HasSubstr(">Exposure<"));
}

TEST_F(UiTest, bringsTheChosenModuleUp) {
    m_Folder.write("config/moduleConfig.xml",
                   "<moduleConfig><module id='16' product='dome' detail='RS485=/dev/ttyNone;isInfrared=1;generation=4' "
                   "parameters='RS485=19200,8,1,0;Prefix=none'/></moduleConfig>");
    ToolProcess::Result result = run("get", {"--product", "dome", "--simulated", "--trace", "-", "PowerMode"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, "56 PowerMode 0\n");
    EXPECT_THAT(result.err, HasSubstr("FE 01 1E 02")) << "the infrared board of its detail is there";

    result = run("get", {"Brightness"});
    EXPECT_EQ(result.code, 4);
    EXPECT_THAT(result.err, HasSubstr("bring-up of module 16 on /dev/ttyNone: No such file"));
    EXPECT_THAT(run("list", {}).out, HasSubstr("Brightness"));
}

TEST_F(UiTest, bringsAModuleWithoutAPortUp) {
    const ToolProcess::Result result = run("get", {"--product", "bullet", "--gpio", "memory", "Brightness"});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, "1 Brightness 50\n");
}

} // namespace
