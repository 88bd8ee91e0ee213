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
constexpr const char* Success = "SensorFile::init  successs !!!!\n";
constexpr const char* AllKeys = "GUIConfig=gui.xml;Prefix=p";

std::string modulesOf(const std::vector<int>& ids, const std::string& parameters) {
    std::string text = "<m>";
    for (const int id : ids)
        text += "<module id='" + std::to_string(id) + "' detail='n=" + std::to_string(id) + "' parameters='" +
                parameters + "'/>";
    return text + "</m>";
}

class SensorFileTest : public ::testing::Test {
protected:
    int init(SensorFile& file, const std::string& first = "", const std::string& second = "") {
        ::testing::internal::CaptureStdout();
        const int result = file.init(first, second);
        m_strConsole = ::testing::internal::GetCapturedStdout();
        return result;
    }

    /// A small installation without variations, in the device's default place.
    void install(const std::string& modules) const {
        m_Root.write("/hd1/moduleConfig/moduleConfig.xml", modules);
        m_Root.write(Folder + "gui.xml", "gui");
        m_Root.write(Folder + "SensorLanguageConfig.xml",
                     "<l><language id='1' folder='en'/><language id='2' folder='de'/>"
                     "<language id='3' folder='none'/><language id='2' folder='en'/></l>");
        m_Root.write(Folder + "style/pStyle.xml", "base, as it is");
        m_Root.write(Folder + "common/en/SensorCommon.xml", "common en");
        m_Root.write(Folder + "common/de/SensorCommon.xml", "common de");
        m_Root.write(Folder + "language/en/pLang.xml", "lang en");
    }

    /// One folder under so many ids, counted from the first in steps.
    void installLanguages(int count, int step) const {
        install(modulesOf({5}, AllKeys));
        std::string list = "<l>";
        for (int i = 0; i < count; ++i)
            list += "<language id='" + std::to_string(1 + i * step) + "' folder='en'/>";
        m_Root.write(Folder + "SensorLanguageConfig.xml", list + "</l>");
        m_Root.write(Folder + "common/en/SensorCommon.xml", std::string(3UL * 1024 * 1024, 'x'));
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
            std::string offered;
            for (const char* const attribute : {"values", "min", "max"})
                offered +=
                    element.Attribute(attribute) != nullptr ? ',' + std::string(element.Attribute(attribute)) : "";
            std::replace(offered.begin(), offered.end(), ',', ' ');
            std::istringstream values(offered);
            for (int value = 0; !found->accepts.empty() && values >> value;)
                EXPECT_TRUE(std::any_of(found->accepts.begin(), found->accepts.end(),
                                        [&](const auto& range) { return range.low <= value && value <= range.high; }))
                    << model.moduleId << ' ' << found->name << " does not take " << value;
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

TEST_F(SampleTest, theStyleOfEachModelFitsItsParameters) {
    EXPECT_EQ(keysFor("dome", "A1"), "1 2 3 4 5 13 7 8 9 10 11 12 ");
    EXPECT_EQ(keysFor("dome", "A2"), "1 2 3 4 5 6 14 15 7 8 9 10 11 12 ");
    EXPECT_EQ(keysFor("bullet", ""), "1 21 24 3 4 5 8 9 23 10 22 12 ");
    EXPECT_EQ(keysFor("box", ""), "1 21 25 3 4 5 8 9 10 22 12 ");

    SensorFile file;
    init(file, "bullet");
    std::ifstream golden(Source + "/tests/uiconfig/golden/bulletStyle.xml", std::ios::binary);
    EXPECT_EQ(file.getUIStyleConfig(), std::string(std::istreambuf_iterator<char>(golden), {}));
}

TEST_F(SensorFileTest, theLastUsableRecordIsTheModule) {
    const auto chosen = [this](const std::vector<int>& ids) {
        install(modulesOf(ids, AllKeys));
        SensorFile file;
        init(file);
        return file.getModuleConfigure().getDetail();
    };
    EXPECT_EQ(chosen({0, 7, 120, 12}), "n=12");
    EXPECT_EQ(chosen({0, 120}), "");
    EXPECT_EQ(chosen({1, 0}), "n=1");
    EXPECT_EQ(chosen({99, 100, -3}), "n=99");

    SensorFile file;
    ASSERT_EQ(init(file), 1);
    m_Root.write("/hd1/moduleConfig/moduleConfig.xml", "broken");
    init(file);
    EXPECT_EQ(file.getModuleConfigure().getModuleId(), 0);
    EXPECT_EQ(file.getModuleConfigure().getDetail(), "n=99") << "only the id is taken back";
}

TEST_F(SensorFileTest, whatParametersLack) {
    install(modulesOf({5}, "GUIConfig=none.xml;Prefix=p"));
    SensorFile file;
    EXPECT_EQ(init(file), 1);
    EXPECT_THAT(m_strConsole, StartsWith("ISensorController::initUIInitConfigString error\ninitUIConfigString from " +
                                         Folder + "none.xml failed\n"));
    EXPECT_THAT(file.getUISensorConfig_V1(), IsEmpty());

    install(modulesOf({5}, "Prefix=p"));
    EXPECT_EQ(init(file), 1);
    EXPECT_THAT(m_strConsole, StartsWith("get GUIConfigName from senseParameter failed\n"));
    SensorFile second;
    install(modulesOf({5}, "GUIConfig=gui.xml"));
    EXPECT_EQ(init(second), 0);
    EXPECT_EQ(m_strConsole, "getPrefix failed \n");
    EXPECT_EQ(second.getModuleConfigure().getModuleId(), 5);
    EXPECT_EQ(second.getUISensorConfig_V1(), "gui");
    EXPECT_EQ(second.getUIStyleConfig() + second.getUICommonConfig(1) + second.getUILanguageConfig(1), "");

    install(modulesOf({5}, "Prefix"));
    EXPECT_EQ(init(second), 0);
    EXPECT_EQ(m_strConsole, "parse senseParameter failed\n");
}

TEST_F(SensorFileTest, theGuiDescriptionIsReadWholeOrNotAtAll) {
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

TEST_F(SensorFileTest, languagesFallBackEachTextForItself) {
    install(modulesOf({5}, AllKeys));
    SensorFile file;
    EXPECT_EQ(init(file), 1);
    EXPECT_EQ(m_strConsole, "getLanguageFile failed , path=" + Folder + "language/de/pLang.xml\n" +
                                "getCommonFile failed , path=" + Folder + "common/none/SensorCommon.xml\n" + Success);
    EXPECT_EQ(file.getUIStyleConfig(), "base, as it is");
    EXPECT_EQ(file.getUICommonConfig(2), "common de") << "the first record of an id stands";
    EXPECT_EQ(file.getUILanguageConfig(2), "lang en");
    EXPECT_EQ(file.getUICommonConfig(3), "common en");

    m_Root.write(Folder + "common/en/SensorCommon.xml", "new");
    m_Root.write(Folder + "style/pStyle.xml", "new");
    EXPECT_EQ(init(file), 1);
    EXPECT_EQ(file.getUICommonConfig(1), "common en") << "a second start adds languages only";
    EXPECT_EQ(file.getUIStyleConfig(), "new");
}

TEST_F(SensorFileTest, aStyleThatFailsLeavesTheOneBefore) {
    install(modulesOf({5}, AllKeys));
    const std::string variations = Folder + "styleDiversity/pStyleDiversity.xml";
    const std::string tail = "m_pSensorUIConfigFile  init  failed\n";
    m_Root.write(variations, "<b n='5'/>");
    m_Root.write(Folder + "style/pStyle.xml", "<s/>");
    SensorFile file;
    sensorcontrol::MergeReport report;
    file.setMergeReport(&report);
    for (int start = 0; start < 2; ++start) {
        EXPECT_EQ(init(file), 1);
        EXPECT_EQ(report.blocks.size(), 1U) << "every start has a report of its own";
        EXPECT_EQ(report.documents.size(), 2U);
    }
    EXPECT_EQ(file.getUIStyleConfig(), "<s />\n");
    m_Root.write(variations, "<b n='5'><AddBefore><a k='1'/></AddBefore></b>");
    EXPECT_EQ(init(file), 0);
    EXPECT_EQ(m_strConsole, "can't find tab by key(1)\nmergeStyleXml failed\n"
                            "objMergedXml.getStyleMergedString(n=5) failed\n" +
                                tail);
    EXPECT_EQ(file.getUIStyleConfig(), "<s />\n");

    m_Root.remove(variations);
    m_Root.remove(Folder + "style/pStyle.xml");
    EXPECT_EQ(init(file), 0);
    EXPECT_EQ(m_strConsole, "getStyleFileText failed , path=" + Folder + "style/pStyle.xml \n" + tail);
    EXPECT_TRUE(report.documents.empty()) << "nothing was merged";
    m_Root.remove(Folder + "SensorLanguageConfig.xml");
    EXPECT_EQ(init(file), 0);
    EXPECT_EQ(m_strConsole, "parse SensorLanguageConfig.xml failed \n" + tail);
}

TEST_F(SensorFileTest, anEmptyPrefixAndAFolderOfItsOwn) {
    m_Root.write("/ui/SensorLanguageConfig.xml", "<l><language id='4' folder='x'/></l>");
    m_Root.write("/ui/style/Style.xml", "style");
    m_Root.write("/ui/common/x/SensorCommon.xml", "common");
    m_Root.write("/ui/language/x/Lang.xml", "lang");
    SensorUIConfigFile files;
    files.setUIConfigPath("/ui");
    EXPECT_EQ(files.init(""), 1);
    EXPECT_EQ(files.getUIStyleConfigString(), "style");
    EXPECT_EQ(files.getUICommonConfigString(4), "common");
    EXPECT_EQ(files.getUILanguageConfigString(4), "lang");
    EXPECT_EQ(files.getUILanguageConfigString(5), "") << "language 1 is not there either";
}

TEST_F(SensorFileTest, theTextsOfAllLanguagesHaveALimitThatCountsEachOnce) {
    for (const int step : {0, 1}) {
        installLanguages(20, step);
        SensorFile file;
        for (int start = 0; start < 2; ++start) {
            EXPECT_EQ(init(file), 1);
            EXPECT_EQ(file.getUICommonConfig(2).size(), 3UL * 1024 * 1024);
            EXPECT_EQ(m_strConsole == Success, step == 0);
            EXPECT_EQ(m_strConsole.find("exceed 33554432 bytes\n") != std::string::npos, step == 1);
        }
    }
}

} // namespace
