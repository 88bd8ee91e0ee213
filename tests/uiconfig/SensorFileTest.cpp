// The host's way in: the module record and the texts of its web interface, from the samples and from broken folders.

#include "uiconfig/SensorFile.h"

#include "support/TempRoot.h"
#include "uiconfig/SensorUIConfigFile.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

const std::string Source = SENSORCONTROL_SOURCE_DIR;

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

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
        write("gui.xml", "gui");
        write("SensorLanguageConfig.xml", "<l><language id='1' folder='en'/><language id='2' folder='de'/>"
                                          "<language id='3' folder='none'/><language id='2' folder='en'/></l>");
        write("style/pStyle.xml", "base, as it is");
        write("common/en/SensorCommon.xml", "common en");
        write("common/de/SensorCommon.xml", "common de");
        write("language/en/pLang.xml", "lang en");
    }
    void write(const std::string& name, const std::string& text) const {
        m_Root.write("/hd1/moduleConfig/sensorConfig/" + name, text);
    }
    void remove(const std::string& name) const { m_Root.remove("/hd1/moduleConfig/sensorConfig/" + name); }

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

    std::string namesFor(const std::string& product, const std::string& board) {
        SensorFile file;
        EXPECT_EQ(init(file, product, board), 1) << m_strConsole;
        std::string names;
        const std::string& style = file.getUIStyleConfig();
        for (std::size_t at = 0; (at = style.find("<tab id=\"", at)) != std::string::npos; ++at)
            names += style.substr(at + 9, style.find('"', at + 9) - at - 9) + ' ';
        return names;
    }
};

TEST_F(SampleTest, theStyleOfEachModel) {
    SensorFile file;
    ASSERT_EQ(init(file, "bullet"), 1) << m_strConsole;
    EXPECT_EQ(m_strConsole, "SensorFile::init  successs !!!!\n");
    EXPECT_EQ(file.getModuleConfigure().getModuleId(), 4);
    EXPECT_EQ(file.getUIStyleConfig(), readFile(Source + "/tests/uiconfig/golden/bulletStyle.xml"));

    EXPECT_EQ(namesFor("dome", "A1"), "1 2 3 4 5 13 7 8 9 10 11 12 ");
    EXPECT_EQ(namesFor("dome", "A2"), "1 2 3 4 5 6 14 15 7 8 9 10 11 12 ");
    EXPECT_EQ(namesFor("box", ""), "21 26 3 4 5 8 22 23 10 12 ");
}

TEST_F(SampleTest, theTextsOfEachLanguageAsTheyStandOnDisk) {
    SensorFile file;
    ASSERT_EQ(init(file, "dome"), 1);
    const std::string folder = Source + "/docs/samples/moduleConfig/sensorConfig/";
    EXPECT_EQ(file.getUISensorConfig_V1(), readFile(folder + "cameraGui.xml"));
    EXPECT_EQ(file.getUICommonConfig(2), readFile(folder + "common/german/SensorCommon.xml"));
    EXPECT_EQ(file.getUILanguageConfig(2), readFile(folder + "language/german/cameraLang.xml"));
    EXPECT_EQ(file.getUILanguageConfig(-7), readFile(folder + "language/english/cameraLang.xml"));
    EXPECT_THAT(file.getUILanguageConfig(1), Not(IsEmpty()));
}

TEST_F(SensorFileTest, theLastUsableRecordIsTheModule) {
    const auto chosen = [this](const std::vector<int>& ids) {
        install(modulesOf(ids, "GUIConfig=gui.xml;Prefix=p"));
        SensorFile file;
        init(file);
        return file.getModuleConfigure().getDetail();
    };
    EXPECT_EQ(chosen({0, 7, 120, 12}), "n=12");
    EXPECT_EQ(chosen({7}), "n=7");
    EXPECT_EQ(chosen({0, 120}), "");
    EXPECT_EQ(chosen({1, 0}), "n=1");
    EXPECT_EQ(chosen({99, 100}), "n=99");
    EXPECT_EQ(chosen({12, -3}), "n=12");

    SensorFile file;
    ASSERT_EQ(init(file), 1);
    m_Root.write("/hd1/moduleConfig/moduleConfig.xml", "broken");
    init(file);
    EXPECT_EQ(file.getModuleConfigure().getModuleId(), 0);
    EXPECT_EQ(file.getModuleConfigure().getDetail(), "n=12") << "only the id is taken back";
}

TEST_F(SensorFileTest, whatParametersLack) {
    install(modulesOf({5}, "GUIConfig=none.xml;Prefix=p"));
    const std::string path = "/hd1/moduleConfig/sensorConfig/";
    SensorFile file;
    EXPECT_EQ(init(file), 1);
    EXPECT_THAT(m_strConsole, StartsWith("ISensorController::initUIInitConfigString error\ninitUIConfigString from " +
                                         path + "none.xml failed\n"));
    EXPECT_THAT(m_strConsole, EndsWith("SensorFile::init  successs !!!!\n"));
    EXPECT_THAT(file.getUISensorConfig_V1(), IsEmpty());

    install(modulesOf({5}, "Prefix=p"));
    EXPECT_EQ(init(file), 1);
    EXPECT_THAT(m_strConsole, StartsWith("get GUIConfigName from senseParameter failed\n"));
    EXPECT_THAT(m_strConsole, HasSubstr("initUIConfigString from " + path + " failed\n"));

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
    EXPECT_EQ(file.getUISensorConfig_V1(), std::string("a\0b", 3));
    m_Root.write("/gui", std::string(4UL * 1024 * 1024 + 1, 'x'));
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(file.initUIInitConfigString("/gui"), 0);
    EXPECT_EQ(file.initUIInitConfigString("/"), 0);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "/gui has 4194305 bytes, more than the 4194304 that are taken\n"
                                                        "ISensorController::initUIInitConfigString error\n");
    EXPECT_EQ(file.getUISensorConfig_V1().size(), 3U);
    m_Root.write("/gui", "");
    EXPECT_EQ(file.initUIInitConfigString("/gui"), 1);
    EXPECT_THAT(file.getUISensorConfig_V1(), IsEmpty());
}

TEST_F(SensorFileTest, languagesFallBackEachTextForItself) {
    install(modulesOf({5}, "GUIConfig=gui.xml;Prefix=p"));
    SensorFile file;
    EXPECT_EQ(init(file), 1);
    const std::string folder = "/hd1/moduleConfig/sensorConfig/";
    EXPECT_EQ(m_strConsole, "getLanguageFile failed , path=" + folder + "language/de/pLang.xml\n" +
                                "getCommonFile failed , path=" + folder + "common/none/SensorCommon.xml\n" +
                                "SensorFile::init  successs !!!!\n");
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

TEST_F(SensorFileTest, withoutLanguagesOrAStyle) {
    install(modulesOf({5}, "GUIConfig=gui.xml;Prefix=p"));
    write("SensorLanguageConfig.xml", "<l/>");
    SensorFile file;
    EXPECT_EQ(init(file), 1);
    EXPECT_EQ(file.getUIStyleConfig(), "base, as it is");
    EXPECT_EQ(file.getUICommonConfig(1), "");

    const std::string tail = "m_pSensorUIConfigFile  init  failed\n";
    write("styleDiversity/pStyleDiversity.xml", "<b k='1'/>");
    write("style/pStyle.xml", "<s/>");
    SensorFile merged;
    EXPECT_EQ(init(merged), 1);
    EXPECT_EQ(merged.getUIStyleConfig(), "<s />\n");
    write("styleDiversity/pStyleDiversity.xml", "<b n='5'><AddBefore><a k='1'/></AddBefore></b>");
    EXPECT_EQ(init(merged), 0);
    EXPECT_EQ(m_strConsole, "can't find tab by key(1)\nmergeStyleXml failed\n"
                            "objMergedXml.getStyleMergedString(n=5) failed\n" +
                                tail);
    EXPECT_EQ(merged.getUIStyleConfig(), "<s />\n") << "as it was";

    remove("styleDiversity/pStyleDiversity.xml");
    remove("style/pStyle.xml");
    EXPECT_EQ(init(merged), 0);
    EXPECT_EQ(m_strConsole, "getStyleFileText failed , path=/hd1/moduleConfig/sensorConfig/style/pStyle.xml \n" + tail);
    remove("SensorLanguageConfig.xml");
    EXPECT_EQ(init(merged), 0);
    EXPECT_EQ(m_strConsole, "parse SensorLanguageConfig.xml failed \n" + tail);
}

TEST_F(SensorFileTest, anEmptyPrefixAndAFolderOfItsOwn) {
    m_Root.write("/ui/SensorLanguageConfig.xml", "<l><language id='4' folder='x'/></l>");
    m_Root.write("/ui/style/Style.xml", "style");
    m_Root.write("/ui/common/x/SensorCommon.xml", "common");
    m_Root.write("/ui/language/x/Lang.xml", "lang");
    SensorUIConfigFile files;
    EXPECT_EQ(files.getUICommonConfigString(4) + files.getUIStyleConfigString(), "");
    files.setUIConfigPath("/ui");
    files.setUIConfigPrefix("");
    EXPECT_EQ(files.init(""), 1);
    EXPECT_EQ(files.getUIStyleConfigString(), "style");
    EXPECT_EQ(files.getUICommonConfigString(4), "common");
    EXPECT_EQ(files.getUILanguageConfigString(4), "lang");
    EXPECT_EQ(files.getUILanguageConfigString(5), "") << "language 1 is not there either";
    m_Root.write("/ui/styleDiversity/StyleDiversity.xml", "");
    m_Root.write("/ui/style/Style.xml", "<s/>");
    EXPECT_EQ(files.init(""), 1);
    EXPECT_EQ(files.getUIStyleConfigString(), "<s />\n");
}

TEST_F(SensorFileTest, oneFolderUnderAThousandIdsDoesNotFillTheMemory) {
    install(modulesOf({5}, "GUIConfig=gui.xml;Prefix=p"));
    std::string list = "<l>";
    for (int id = 1; id <= 1000; ++id)
        list += "<language id='" + std::to_string(id) + "' folder='en'/>";
    write("SensorLanguageConfig.xml", list + "</l>");
    write("common/en/SensorCommon.xml", std::string(3UL * 1024 * 1024, 'x'));
    SensorFile file;
    EXPECT_EQ(init(file), 1);
    EXPECT_EQ(file.getUICommonConfig(2).size(), 3UL * 1024 * 1024);
    EXPECT_THAT(m_strConsole, HasSubstr("the texts of all languages exceed 33554432 bytes\n"));
}

} // namespace
