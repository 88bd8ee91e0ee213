// The host's way in: the module record and the texts of its web interface, from the samples and from broken folders.

#include "uiconfig/SensorFile.h"

#include "controller/ModelCatalogue.h"
#include "support/TempRoot.h"
#include "uiconfig/MergeReport.h"
#include "uiconfig/SensorUIConfigFile.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gmock/gmock.h>
#include <tinyxml.h>

namespace {

using ::testing::IsEmpty;
using ::testing::StartsWith;

const std::string Source = SENSORCONTROL_SOURCE_DIR;
const std::string Folder = "/hd1/moduleConfig/sensorConfig/";
const std::string Success = "SensorFile::init  successs !!!!\n";

class SensorFileTest : public ::testing::Test {
protected:
    int init(SensorFile& file, const std::string& first = "", const std::string& second = "") {
        ::testing::internal::CaptureStdout();
        const int result = file.init(first, second);
        m_strConsole = ::testing::internal::GetCapturedStdout();
        return result;
    }
    /// The result, in front of what the console shows.
    std::string told(SensorFile& file) {
        const int result = init(file);
        return std::to_string(result) + ' ' + m_strConsole;
    }

    void write(const std::string& name, const std::string& text) const { m_Root.write(Folder + name, text); }

    /// A small installation without variations, in the device's default place, with a module for each id.
    void install(const std::vector<int>& ids = {5},
                 const std::string& parameters = "GUIConfig=gui.xml;Prefix=p") const {
        std::string modules;
        for (const int id : ids)
            modules += "<module id='" + std::to_string(id) + "' detail='n=" + std::to_string(id) + "' parameters='" +
                       parameters + "'/>";
        m_Root.write("/hd1/moduleConfig/moduleConfig.xml", "<m>" + modules + "</m>");
        write("gui.xml", "gui");
        write("SensorLanguageConfig.xml", "<l><language id='1' folder='en'/><language id='2' folder='de'/>"
                                          "<language id='3' folder='none'/><language id='2' folder='en'/></l>");
        write("style/pStyle.xml", "base, as it is");
        write("common/en/SensorCommon.xml", "common en");
        write("common/de/SensorCommon.xml", "common de");
        write("language/en/pLang.xml", "lang en");
    }

    TempRoot m_Root;
    std::string m_strConsole;
};

class SampleTest : public SensorFileTest {
protected:
    SampleTest() {
        std::filesystem::create_directories(m_Root.path() + "/hd1");
        std::filesystem::copy(Source + "/docs/samples/moduleConfig", m_Root.path() + "/hd1/moduleConfig",
                              std::filesystem::copy_options::recursive);
    }

    /// Every parameter is the model's and takes the values that are offered; whatever has a text has it in `texts`.
    static void check(const TiXmlElement& element, const sensorcontrol::ModelInfo& model, const std::string& texts) {
        const char* const text = element.Attribute("text");
        EXPECT_TRUE(text == nullptr || texts.find('"' + std::string(text) + '"') != std::string::npos) << text;
        int id = 0;
        // From 500 on they are the schemes', which every model has.
        if (element.Attribute("param", &id) != nullptr && id < 500) {
            const auto found = std::find_if(model.parameters.begin(), model.parameters.end(),
                                            [&](const auto& parameter) { return parameter.id == id; });
            ASSERT_NE(found, model.parameters.end()) << model.moduleId << " has no parameter " << id;
            EXPECT_EQ(element.Attribute("name"), found->name);
            for (const char* const attribute : {"values", "min", "max"}) {
                std::istringstream values(element.Attribute(attribute) != nullptr ? element.Attribute(attribute) : "");
                for (int value = 0; !found->accepts.empty() && values >> value; values.ignore())
                    EXPECT_TRUE(
                        std::any_of(found->accepts.begin(), found->accepts.end(),
                                    [&](const auto& range) { return range.low <= value && value <= range.high; }))
                        << model.moduleId << ' ' << found->name << " does not take " << value;
            }
        }
        for (const TiXmlElement* child = element.FirstChildElement(); child != nullptr;
             child = child->NextSiblingElement())
            check(*child, model, texts);
    }

    /// The keys of the tabs of a module's style, which is checked.
    std::string keysFor(const std::string& product, const std::string& board) {
        SensorFile file;
        EXPECT_EQ(init(file, product, board), 1);
        EXPECT_EQ(m_strConsole, Success);
        const auto model = sensorcontrol::describeModel(file.getModuleConfigure().getModuleId());
        TiXmlDocument style;
        style.Parse(file.getUIStyleConfig().c_str());
        for (const int language : {1, 2})
            check(*style.RootElement(), model.value(),
                  file.getUICommonConfig(language) + file.getUILanguageConfig(language));
        std::string keys;
        for (const TiXmlElement* tab = style.RootElement()->FirstChildElement(); tab != nullptr;
             tab = tab->NextSiblingElement())
            keys += std::string(tab->Attribute("id")) + ' ';
        return keys;
    }
};

TEST_F(SampleTest, TheStyleOfEachModelFitsItsParameters) {
    EXPECT_EQ(keysFor("dome", "A1"), "1 2 3 4 5 13 7 8 9 10 11 12 ");
    EXPECT_EQ(keysFor("dome", "A2"), "1 2 3 4 5 6 14 15 7 8 9 10 11 12 ");
    EXPECT_EQ(keysFor("bullet", ""), "1 21 24 3 4 5 8 9 23 10 22 12 ");
    EXPECT_EQ(keysFor("box", ""), "1 21 25 3 4 5 8 9 10 22 12 ");

    SensorFile file;
    init(file, "bullet");
    std::ifstream golden(Source + "/tests/uiconfig/golden/bulletStyle.xml", std::ios::binary);
    EXPECT_EQ(file.getUIStyleConfig(), std::string(std::istreambuf_iterator<char>(golden), {}));
}

TEST_F(SensorFileTest, TheLastUsableRecordIsTheModule) {
    SensorFile last;
    for (const auto& [ids, detail] : std::vector<std::pair<std::vector<int>, const char*>>{
             {{0, 7, 120, 12}, "n=12"}, {{0, 120}, ""}, {{1, 0}, "n=1"}, {{99, 100, -3}, "n=99"}}) {
        install(ids);
        SensorFile file;
        init(file);
        EXPECT_EQ(file.getModuleConfigure().getDetail(), detail);
    }
    EXPECT_EQ(init(last), 1);
    m_Root.write("/hd1/moduleConfig/moduleConfig.xml", "broken");
    init(last);
    EXPECT_EQ(last.getModuleConfigure().getModuleId(), 0);
    EXPECT_EQ(last.getModuleConfigure().getDetail(), "n=99") << "only the id is taken back";
}

TEST_F(SensorFileTest, WhatParametersLack) {
    SensorFile file;
    install({5}, "GUIConfig=none.xml;Prefix=p");
    EXPECT_THAT(told(file), StartsWith("1 ISensorController::initUIInitConfigString error\ninitUIConfigString from " +
                                       Folder + "none.xml failed\n"));
    EXPECT_THAT(file.getUISensorConfig_V1(), IsEmpty());
    install({5}, "Prefix=p");
    EXPECT_THAT(told(file), StartsWith("1 get GUIConfigName from senseParameter failed\n"));

    SensorFile second;
    install({5}, "GUIConfig=gui.xml");
    EXPECT_EQ(told(second), "0 getPrefix failed \n");
    EXPECT_EQ(second.getModuleConfigure().getModuleId(), 5);
    EXPECT_EQ(second.getUISensorConfig_V1(), "gui");
    EXPECT_EQ(second.getUIStyleConfig() + second.getUICommonConfig(1) + second.getUILanguageConfig(1), "");
    install({5}, "Prefix");
    EXPECT_EQ(told(second), "0 parse senseParameter failed\n");
}

TEST_F(SensorFileTest, TheGuiDescriptionIsReadWholeOrNotAtAll) {
    SensorFile file;
    m_Root.write("/gui", std::string("a\0b", 3));
    EXPECT_EQ(file.initUIInitConfigString("/gui"), 1);
    m_Root.write("/gui", std::string(4UL * 1024 * 1024 + 1, 'x'));
    EXPECT_EQ(file.initUIInitConfigString("/gui"), 0);
    EXPECT_EQ(file.getUISensorConfig_V1(), std::string("a\0b", 3));
    m_Root.write("/gui", "");
    EXPECT_EQ(file.initUIInitConfigString("/gui"), 1);
    EXPECT_THAT(file.getUISensorConfig_V1(), IsEmpty());
}

TEST_F(SensorFileTest, LanguagesFallBackEachTextForItself) {
    install();
    SensorFile file;
    EXPECT_EQ(told(file), "1 getLanguageFile failed , path=" + Folder + "language/de/pLang.xml\n" +
                              "getCommonFile failed , path=" + Folder + "common/none/SensorCommon.xml\n" + Success);
    EXPECT_EQ(file.getUIStyleConfig(), "base, as it is");
    EXPECT_EQ(file.getUICommonConfig(2), "common de") << "the first record of an id stands";
    EXPECT_EQ(file.getUILanguageConfig(2), "lang en");
    EXPECT_EQ(file.getUICommonConfig(3), "common en");

    write("common/en/SensorCommon.xml", "new");
    write("style/pStyle.xml", "new");
    EXPECT_EQ(init(file), 1);
    EXPECT_EQ(file.getUICommonConfig(1), "common en") << "a second start adds languages only";
    EXPECT_EQ(file.getUIStyleConfig(), "new");
}

TEST_F(SensorFileTest, AStyleThatFailsLeavesTheOneBefore) {
    const std::string variations = "styleDiversity/pStyleDiversity.xml";
    const std::string tail = "m_pSensorUIConfigFile  init  failed\n";
    install();
    write(variations, "<b n='5'/>");
    write("style/pStyle.xml", "<s/>");
    SensorFile file;
    sensorcontrol::MergeReport report;
    file.setMergeReport(&report);
    for (int start = 0; start < 2; ++start) {
        EXPECT_EQ(init(file), 1);
        EXPECT_EQ(report.blocks.size(), 1U) << "every start has a report of its own";
        EXPECT_EQ(report.documents.size(), 2U);
    }
    write(variations, "<b n='5'><AddBefore><a k='1'/></AddBefore></b>");
    EXPECT_EQ(told(file), "0 can't find tab by key(1)\nmergeStyleXml failed\n"
                          "objMergedXml.getStyleMergedString(n=5) failed\n" +
                              tail);
    EXPECT_EQ(file.getUIStyleConfig(), "<s />\n");

    m_Root.remove(Folder + variations);
    m_Root.remove(Folder + "style/pStyle.xml");
    EXPECT_EQ(told(file), "0 getStyleFileText failed , path=" + Folder + "style/pStyle.xml \n" + tail);
    EXPECT_TRUE(report.documents.empty()) << "nothing was merged";
    m_Root.remove(Folder + "SensorLanguageConfig.xml");
    EXPECT_EQ(told(file), "0 parse SensorLanguageConfig.xml failed \n" + tail);
}

TEST_F(SensorFileTest, AnEmptyPrefixAndAFolderOfItsOwn) {
    m_Root.write("/ui/SensorLanguageConfig.xml", "<l><language id='4' folder='x'/></l>");
    for (const char* const name : {"style/Style", "common/x/SensorCommon", "language/x/Lang"})
        m_Root.write(std::string("/ui/") + name + ".xml", name);
    SensorUIConfigFile files;
    files.setUIConfigPath("/ui");
    EXPECT_EQ(files.init(""), 1);
    EXPECT_EQ(files.getUIStyleConfigString(), "style/Style");
    EXPECT_EQ(files.getUICommonConfigString(4), "common/x/SensorCommon");
    EXPECT_EQ(files.getUILanguageConfigString(4), "language/x/Lang");
    EXPECT_EQ(files.getUILanguageConfigString(5), "") << "language 1 is not there either";
}

TEST_F(SensorFileTest, TheTextsOfAllLanguagesHaveALimitThatCountsEachOnce) {
    for (const int step : {0, 1}) {
        install();
        std::string list;
        for (int i = 0; i < 20; ++i)
            list += "<language id='" + std::to_string(1 + i * step) + "' folder='en'/>";
        write("SensorLanguageConfig.xml", "<l>" + list + "</l>");
        write("common/en/SensorCommon.xml", std::string(3UL * 1024 * 1024, 'x'));
        SensorFile file;
        for (int start = 0; start < 2; ++start) {
            EXPECT_EQ(told(file) == "1 " + Success, step == 0);
            EXPECT_EQ(file.getUICommonConfig(2).size(), 3UL * 1024 * 1024);
            EXPECT_EQ(m_strConsole.find("exceed 33554432 bytes\n") != std::string::npos, step == 1);
        }
    }
}

} // namespace
