#include "uiconfig/SensorUIConfigFile.h"

#include "host/BRFile.h"
#include "host/SensorLanguageConfig.h"
#include "uiconfig/FileText.h"
#include "uiconfig/MergedXml.h"

#include <cstdio>
#include <utility>
#include <vector>

namespace {

constexpr int FallbackLanguage = 1;
constexpr std::size_t LanguageTextsLimit = 32UL * 1024 * 1024;

const std::string& lookUp(const std::map<int, std::string>& texts, int languageId) {
    static const std::string empty;
    auto found = texts.find(languageId);
    if (found == texts.end())
        found = texts.find(FallbackLanguage);
    return found != texts.end() ? found->second : empty;
}

std::size_t sizeOf(const std::map<int, std::string>& texts) {
    std::size_t size = 0;
    for (const auto& [languageId, text] : texts)
        size += text.size();
    return size;
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
    std::string text;
    const std::string common = m_strCommonPath + '/' + folder + "/SensorCommon.xml";
    if (!readLanguageText(common, text)) {
        std::printf("getCommonFile failed , path=%s\n", common.c_str());
        return;
    }
    m_CommonTexts.emplace(languageId, std::move(text));
    const std::string language = m_strLanguagePath + '/' + folder + '/' + m_strPrefix + "Lang.xml";
    if (!readLanguageText(language, text)) {
        std::printf("getLanguageFile failed , path=%s\n", language.c_str());
        return;
    }
    m_LanguageTexts.emplace(languageId, std::move(text));
}

// A list may name one folder again and again, each time under another id.
int SensorUIConfigFile::readLanguageText(const std::string& path, std::string& text) const {
    if (!getFileText(path, text))
        return 0;
    const std::size_t held = sizeOf(m_CommonTexts) + sizeOf(m_LanguageTexts);
    if (held + text.size() <= LanguageTextsLimit)
        return 1;
    std::printf("the texts of all languages exceed %zu bytes\n", LanguageTextsLimit);
    return 0;
}

int SensorUIConfigFile::getFileText(const std::string& path, std::string& text) const {
    sensorcontrol::FileText file = sensorcontrol::readFileText(path, sensorcontrol::ServedTextLimit);
    if (file.result != sensorcontrol::FileText::Result::Done)
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
