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
constexpr const char* List = "moduleConfig.xml";
constexpr const char* Style = "sensorConfig/style/cameraStyle.xml";
constexpr const char* Variations = "sensorConfig/styleDiversity/cameraStyleDiversity.xml";

class UiTest : public ToolTest {
protected:
    UiTest() {
        std::filesystem::copy(Source + "/docs/samples/moduleConfig", m_Folder.path() + "/config",
                              std::filesystem::copy_options::recursive);
    }

    ToolProcess::Result run(const std::string& command, const Words& more) const {
        Words words = {command, "--config", m_Folder.path() + "/config"};
        words.insert(words.end(), more.begin(), more.end());
        return ToolTest::run(words);
    }
};

TEST_F(UiTest, PrintsOneTextAsItIs) {
    const ToolProcess::Result german = run("ui", {"--language", "2", "--print", "language"});
    EXPECT_EQ(german.code, 0);
    EXPECT_THAT(german.err, IsEmpty());
    EXPECT_EQ(german.out, m_Folder.read("config/sensorConfig/language/german/cameraLang.xml"));

    const Json object = Json::parse(run("ui", {"--language", "99", "--print", "common", "--json"}).out);
    EXPECT_EQ(object.at("language"), 99);
    EXPECT_EQ(object.at("served"), 1);
    EXPECT_THAT(run("ui", {"--language", "99"}).out, HasSubstr("==> common 99 (language 1) <==\n"));

    m_Folder.write("config/sensorConfig/cameraGui.xml", "");
    EXPECT_EQ(run("ui", {"--print", "gui"}).out, "");
    m_Folder.write("config/sensorConfig/cameraGui.xml", "\xc4\n\n-");
    EXPECT_EQ(run("ui", {"--print", "gui"}).out, "\xc4\n\n-");
    const ToolProcess::Result json = run("ui", {"--print", "gui", "--json"});
    EXPECT_EQ(json.code, 4);
    EXPECT_THAT(json.err, HasSubstr("text gui is no UTF-8, which JSON cannot hold"));
}

TEST_F(UiTest, ExplainsModuleAndMergeFromWhatTheLibraryDid) {
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

TEST_F(UiTest, SaysWhatIsDamagedAndWhy) {
    const std::string list = m_Folder.read("config/moduleConfig.xml");
    m_Folder.write("config/moduleConfig.xml", "<moduleConfig><module id='4' detail='broken' "
                                              "parameters='GUIConfig=cameraGui.xml;Prefix=camera'/></moduleConfig>");
    const ToolProcess::Result unsound = run("ui", {"--explain"});
    EXPECT_THAT(unsound.out, HasSubstr("block 1 noInfrared is not decided: the module's detail cannot be parsed\n"));
    EXPECT_THAT(unsound.out, Not(HasSubstr("no condition")));
    EXPECT_THAT(unsound.err, HasSubstr("reason: parse detail failed\n"));
    m_Folder.write("config/moduleConfig.xml", list);

    const struct {
        int code;
        const char* file;
        const char* text; ///< null: the file or folder goes
        Words says;
    } cases[] = {
        {4,
         Variations,
         "<first isInfrared='0,1'><Delete><t id='4'/></Delete></first><second isInfrared='0,1'>"
         "<AddAfter><t id='4'><n id='9'/></t></AddAfter></second>",
         {"block 1 delete tab 4\n", "block 2 add after tab 4: failed, there is no such tab\n",
          "reason: can't find tab by key(4)\n"}},
        {0, Variations, "<first isInfrared='5'>", {"cameraStyleDiversity.xml: is no sound XML"}},
        {0, "sensorConfig/language/german", nullptr, {"warning: getLanguageFile failed , path=", ">Exposure<"}},
        {0, "sensorConfig/common", nullptr, {"warning: text common 2 is missing or empty\n"}},
        {0, Style, "<style><tab id='1'>", {"cameraStyle.xml: is no sound XML"}},
        {4, Style, nullptr, {"cameraStyle.xml: cannot be read\n"}},
        {4, List, "<moduleConfig><module id='100'/></moduleConfig>", {"no module has an id from 1 to 99"}},
        {4, List, "<moduleConfig>", {"cannot be read as a list of modules"}},
    };
    for (const auto& damage : cases) {
        damage.text != nullptr ? m_Folder.write(std::string("config/") + damage.file, damage.text)
                               : void(std::filesystem::remove_all(m_Folder.path() + "/config/" + damage.file));
        const ToolProcess::Result result = run("ui", {"--explain", "--language", "2"});
        EXPECT_EQ(result.code, damage.code) << damage.says[0];
        for (const std::string& said : damage.says)
            EXPECT_THAT(result.out + result.err, HasSubstr(said));
        EXPECT_TRUE(damage.code == 0 || result.out.find("==>") == std::string::npos) << damage.says[0];
    }
    EXPECT_EQ(run("get", {"-s"}).code, 4);
}

TEST_F(UiTest, BringsTheChosenModuleUp) {
    m_Folder.write("config/moduleConfig.xml",
                   "<moduleConfig><module id='16' product='dome' detail='RS485=/dev/ttyNone;isInfrared=1;generation=4' "
                   "parameters='RS485=19200,8,1,0;Prefix=none'/></moduleConfig>");
    ToolProcess::Result result = run("trace", {"--product", "dome", "--simulated", "Brightness=60", "Iris=4"});
    EXPECT_EQ(result.code, 2) << "4 is no iris";
    for (const char* const line :
         {"FE 01 1E 02", "tx 81 09 04 24 72 FF # inquiry video system\n",
          "tx 81 01 04 4E 00 00 00 08 FF # brightness 08\n", "rx 90 50 00 08 FF # answer: video system PAL\n"})
        EXPECT_THAT(result.out, HasSubstr(line)) << "the infrared board of the module's detail is there too";
    EXPECT_EQ(ToolTest::run({"decode"}, result.out).out, result.out);

    result = run("get", {"Brightness"});
    EXPECT_EQ(result.code, 4);
    EXPECT_THAT(result.err, HasSubstr("bring-up of module 16 on /dev/ttyNone: "));
    EXPECT_THAT(result.err, HasSubstr("No such file"));
    EXPECT_THAT(run("list", {}).out, HasSubstr("Brightness"));
}

} // namespace
