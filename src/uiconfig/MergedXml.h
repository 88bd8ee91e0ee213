#pragma once

#include "host/Export.h"
#include "host/xml/TinyXml.h"
#include "uiconfig/MergeReport.h"

#include <memory>
#include <string>

namespace sensorcontrol {
class TabList;
}

/// Makes one style text of a family's base style and of its variations, which say what is different for which module.
/// One object serves one merge, on one thread. Failures are told on the console.
///
/// The children of the base document's root are the tabs; the first attribute of a tab, whatever its name, is its key,
/// read as a leading decimal number, 0 if there is none. A tab without attributes has no key and is found by none.
/// Beyond 1 MiB, 64 elements within each other, 32,768 nodes or 1,024 attributes of an element a file is refused. What
/// lies within is merged in time that grows with the sizes of the two files, not with their product.
class SENSORCONTROL_API MergedXml {
public:
    MergedXml();
    ~MergedXml();
    MergedXml(const MergedXml&) = delete;
    MergedXml& operator=(const MergedXml&) = delete;

    /// The base style. Always 1.
    int setStyleOriginalPath(std::string path);
    /// The variations. Always 1.
    int setStyleModifyPath(std::string path);

    /// Merges for a module of this detail text and prints the result. 1, or 0 with `text` untouched.
    int getStyleMergedString(const std::string& detail, std::string& text);
    /// The merge alone: its result stays here. 1, or 0 if a file cannot be read or is refused, the detail text cannot
    /// be parsed (or has more than 16 KiB), or no tab has the key that a new tab is to be put beside.
    int mergeStyleXml(std::string detail);

    /// Removes every tab of the key. Always 1.
    int deleteTabNode(int key);
    /// 1 and the first child element of `parent` with the key, or 0 with `result` untouched.
    int findNodeByKey(int key, TiXmlNode* parent, TiXmlNode*& result);

    /// Language texts are not merged: the paths are stored, mergeLangXml does nothing, getLangMergedString gives the
    /// empty text. Always 1.
    int setLangOriginalPath(std::string path);
    int setLangModifyPath(std::string path);
    int mergeLangXml(const std::string& detail);
    int getLangMergedString(const std::string& detail, std::string& text);

    /// Lets the next merge write down what it does, in place of what stands there; null, as at the start, for nothing.
    void setReport(sensorcontrol::MergeReport* report) { m_pReport = report; }

private:
    class ModuleDetail;

    /// The block with its conditions, as far as they were looked at, and what follows from them.
    static sensorcontrol::MergeReport::Block judge(const TiXmlElement& block, ModuleDetail& detail);
    int applyBlocks(std::string detail);
    int apply(const TiXmlElement& block);
    void deleteTabs(const TiXmlElement& directive);
    int addAfter(const TiXmlElement& directive);
    int addBefore(const TiXmlElement& directive);
    void report(const sensorcontrol::MergeReport::Edit& edit);
    int failAt(sensorcontrol::MergeReport::EditKind kind, const TiXmlElement& anchor);

    std::string m_strStyleOriginalPath;
    std::string m_strStyleModifyPath;
    TiXmlDocument m_StyleOriginal;
    TiXmlDocument m_StyleModify;
    std::string m_strLangOriginalPath;
    std::string m_strLangModifyPath;
    TiXmlDocument m_LangOriginal;
    TiXmlDocument m_LangModify;
    std::unique_ptr<sensorcontrol::TabList> m_pTabs; ///< of the base document
    sensorcontrol::MergeReport* m_pReport = nullptr;
};
