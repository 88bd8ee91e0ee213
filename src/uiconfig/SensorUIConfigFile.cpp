#include "uiconfig/SensorUIConfigFile.h"

#include "host/BRFile.h"
#include "host/SensorLanguageConfig.h"
#include "uiconfig/MergedXml.h"
#include "uiconfig/UiFile.h"

#include <cstdio>
#include <utility>
#include <vector>

namespace {

constexpr int FallbackLanguage = 1;
constexpr std::size_t LanguageTextsLimit = 32UL * 1024 * 1024;

const std::string& lookUp(const std::map<int, std::string>& texts, int languageId) {
    static const std::string Empty;
    auto found = texts.find(languageId);
    if (found == texts.end())
        found = texts.find(FallbackLanguage);
    return found != texts.end() ? found->second : Empty;
}

} // namespace

SensorUIConfigFile::SensorUIConfigFile() { setUIConfigPath("/hd1/moduleConfig/sensorConfig"); }

void SensorUIConfigFile::setUIConfigPath(const std::string& path) {
    m_strUIConfigPath = path;
    m_strStylePath = path + "/style";
    m_strCommonPath = path + "/common";
    m_strLanguagePath = path + "/language";
    m_strStyleDiversityPath = path + "/styleDiversity";
    m_strLanguageDiversityPath = path + "/languageDiversity";
    m_strLanguageConfigFile = path + "/SensorLanguageConfig.xml";
}

void SensorUIConfigFile::setUIConfigPrefix(const std::string& prefix) { m_strPrefix = prefix; }

std::string SensorUIConfigFile::getStylePath() const { return m_strStylePath + '/' + m_strPrefix + "Style.xml"; }

std::string SensorUIConfigFile::getStyleDiversityPath() const {
    return m_strStyleDiversityPath + '/' + m_strPrefix + "StyleDiversity.xml";
}

// Hosts are built against this signature.
int SensorUIConfigFile::init(std::string detail) { // NOLINT(performance-unnecessary-value-param)
    if (m_pMergeReport != nullptr)
        *m_pMergeReport = {};
    std::vector<SensorLanguageConfig> languages;
    if (!SensorLanguageConfigParser::parse(m_strLanguageConfigFile, languages)) {
        std::puts("parse SensorLanguageConfig.xml failed ");
        return 0;
    }
    if (!loadStyle(detail))
        return 0;
    for (const SensorLanguageConfig& language : languages)
        loadLanguage(language.getLanguageId(), language.getFolderName());
    return 1;
}

int SensorUIConfigFile::loadStyle(const std::string& detail) {
    const std::string style = getStylePath();
    const std::string diversity = getStyleDiversityPath();
    BRFile probe;
    if (probe.open(diversity.c_str(), BRFile::Read)) {
        probe.close();
        MergedXml merged;
        merged.setReport(m_pMergeReport);
        merged.setStyleOriginalPath(style);
        merged.setStyleModifyPath(diversity);
        if (!merged.getStyleMergedString(detail, m_strStyle)) {
            std::printf("objMergedXml.getStyleMergedString(%s) failed\n", detail.c_str());
            return 0;
        }
    } else if (!getFileText(style, m_strStyle)) {
        std::printf("getStyleFileText failed , path=%s \n", style.c_str());
        return 0;
    }
    return 1;
}

void SensorUIConfigFile::loadLanguage(int languageId, const std::string& folder) {
    const std::string common = m_strCommonPath + '/' + folder + "/SensorCommon.xml";
    if (!loadText(common, languageId, m_CommonTexts)) {
        std::printf("getCommonFile failed , path=%s\n", common.c_str());
        return;
    }
    const std::string language = m_strLanguagePath + '/' + folder + '/' + m_strPrefix + "Lang.xml";
    if (!loadText(language, languageId, m_LanguageTexts))
        std::printf("getLanguageFile failed , path=%s\n", language.c_str());
}

int SensorUIConfigFile::loadText(const std::string& path, int languageId, Texts& texts) {
    std::string text;
    if (!getFileText(path, text))
        return 0;
    if (texts.count(languageId) != 0)
        return 1;
    // A list may name one folder again and again, each time under another id.
    if (m_nLanguageBytes + text.size() > LanguageTextsLimit) {
        std::printf("the texts of all languages exceed %zu bytes\n", LanguageTextsLimit);
        return 0;
    }
    m_nLanguageBytes += text.size();
    texts.emplace(languageId, std::move(text));
    return 1;
}

int SensorUIConfigFile::getFileText(const std::string& path, std::string& text) const {
    sensorhost::FileText file = sensorcontrol::readUiFile(path, sensorcontrol::ServedTextLimit);
    if (file.result != sensorhost::FileText::Result::Done)
        return 0;
    text = std::move(file.text);
    return 1;
}

const std::string& SensorUIConfigFile::getUICommonConfigString(int languageId) const {
    return lookUp(m_CommonTexts, languageId);
}

const std::string& SensorUIConfigFile::getUILanguageConfigString(int languageId) const {
    return lookUp(m_LanguageTexts, languageId);
}
