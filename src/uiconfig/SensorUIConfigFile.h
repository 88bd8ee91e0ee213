#pragma once

#include "host/Export.h"

#include <cstddef>
#include <map>
#include <string>

namespace sensorcontrol {
struct MergeReport;
}

/// The texts from which the web interface is made for one module: a style, and for each language a common and a
/// language text. They are read once and kept; nothing interprets them but the merge of the style (MergedXml).
///
/// Order of calls: the setters, init, then the getters, which may be called at any time and give the empty text for
/// what was not loaded. Init and the setters are for one thread. Failures are told on the console.
class SENSORCONTROL_API SensorUIConfigFile {
public:
    /// Directory "/hd1/moduleConfig/sensorConfig", no prefix.
    SensorUIConfigFile();

    /// The directory of the texts, without a slash at its end.
    void setUIConfigPath(const std::string& path);
    /// What the module's file names begin with.
    void setUIConfigPrefix(const std::string& prefix);

    /// Loads all texts for a module of this detail text. 1, or 0 if there is no list of languages or no style. A
    /// language that cannot be read is left out, and so is what would exceed 32 MiB in all. At a second call the
    /// languages that are there keep their texts.
    int init(std::string detail);

    /// Reads a file whole. 1, or 0 with `text` untouched: also for more than 4 MiB.
    int getFileText(const std::string& path, std::string& text) const;

    std::string& getUIStyleConfigString() { return m_strStyle; }
    /// The text of the language, else that of language 1, else the empty text.
    const std::string& getUICommonConfigString(int languageId) const;
    const std::string& getUILanguageConfigString(int languageId) const;

    /// Lets the merge of each init write down what it does; null, as at the start, for nothing.
    void setMergeReport(sensorcontrol::MergeReport* report) { m_pMergeReport = report; }

private:
    using Texts = std::map<int, std::string>;

    /// Where the module's style comes from: the base, and the variations, which need not be there.
    std::string getStylePath() const;
    std::string getStyleDiversityPath() const;
    int loadStyle(const std::string& detail);
    void loadLanguage(int languageId, const std::string& folder);
    /// 1 if the language has a text now, the file's or the one it had; 0 for a file that cannot be read or is too much.
    int loadText(const std::string& path, int languageId, Texts& texts);

    std::string m_strUIConfigPath;
    std::string m_strStylePath;
    std::string m_strCommonPath;
    std::string m_strLanguagePath;
    std::string m_strStyleDiversityPath;
    std::string m_strLanguageDiversityPath; ///< nothing is read from there
    std::string m_strLanguageConfigFile;
    std::string m_strPrefix;
    std::string m_strStyle;
    Texts m_CommonTexts;
    Texts m_LanguageTexts;
    std::size_t m_nLanguageBytes = 0; ///< of both
    sensorcontrol::MergeReport* m_pMergeReport = nullptr;
};
