#include "uiconfig/MergedXml.h"

#include "host/ModuleParameterParser.h"
#include "host/xml/XmlShape.h"
#include "uiconfig/TabList.h"
#include "uiconfig/UiFile.h"

#include <algorithm>
#include <cstdio>
#include <set>
#include <utility>

using sensorcontrol::keyOf;
using sensorcontrol::MergeReport;
using sensorcontrol::TabList;
using sensorhost::FileText;
using sensorhost::XmlShape;

namespace {

constexpr std::size_t DetailLimit = 16UL * 1024;

/// What stands between the commas, untrimmed; a comma at the end has nothing behind it.
std::set<std::string> tokensOf(const std::string& text) {
    std::set<std::string> tokens;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        tokens.insert(text.substr(start, end - start));
        start = end + 1;
    }
    return tokens;
}

MergeReport::Reading readDocument(const std::string& path, std::string& text) {
    FileText file = sensorcontrol::readUiFile(path, static_cast<long long>(XmlShape::LengthLimit));
    if (file.result == FileText::Result::NotOpened)
        std::puts("mergeStyleXml file open failed ");
    if (file.result == FileText::Result::TooLong)
        return MergeReport::Reading::Refused;
    if (file.result != FileText::Result::Done)
        return MergeReport::Reading::NotRead;
    const XmlShape shape = XmlShape::of(file.text, false);
    if (shape.isObscure)
        std::printf("%s is refused: the encoding in its declaration is written with an '&'\n", path.c_str());
    else if (!shape.isWithinLimits())
        std::printf("%s is refused: more than %d elements within each other, %d nodes or %d attributes of an element\n",
                    path.c_str(), XmlShape::DepthLimit, XmlShape::NodeLimit, XmlShape::AttributeLimit);
    if (!shape.isWithinLimits())
        return MergeReport::Reading::Refused;
    text = std::move(file.text);
    text.resize(std::min(text.find('\0'), text.size()));
    text.append(XmlShape::ParserOverrun, '\0');
    return shape.isWhole ? MergeReport::Reading::Whole : MergeReport::Reading::Broken;
}

/// The text goes when it is parsed. False for text that has a fault.
bool parseInto(TiXmlDocument& document, std::string&& text) {
    const std::string parsed = std::move(text);
    // Without a tab size nothing counts lines, which some releases of the parser never finish on a cut character.
    document.SetTabSize(0);
    document.Parse(parsed.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
    return !document.Error();
}

bool readTold(const std::string& path, std::string& text, MergeReport& report) {
    const MergeReport::Reading reading = readDocument(path, text);
    report.documents.push_back({.path = path, .reading = reading});
    return reading == MergeReport::Reading::Whole || reading == MergeReport::Reading::Broken;
}

std::string printed(const TiXmlDocument& document) {
    TiXmlPrinter printer;
    document.Accept(&printer);
    return printer.Str();
}

} // namespace

/// The module's keys. The text is one and the same for every condition, so it is parsed once, by the first that asks.
class MergedXml::ModuleDetail {
public:
    explicit ModuleDetail(std::string text) : m_strText(std::move(text)) {}

    bool parse() {
        if (m_strText.size() > DetailLimit)
            std::printf("the module's detail has %zu bytes, more than the %zu that are taken\n", m_strText.size(),
                        DetailLimit);
        m_bParsed = m_bParsed || (m_strText.size() <= DetailLimit && m_Parser.parse(m_strText) != 0);
        return m_bParsed;
    }

    std::optional<std::string> valueOf(const std::string& key) const {
        std::string value;
        return m_Parser.getValue(key, value) != 0 ? std::optional(std::move(value)) : std::nullopt;
    }

private:
    std::string m_strText;
    ModuleParameterParser m_Parser;
    bool m_bParsed = false;
};

MergedXml::MergedXml() : m_pTabs(std::make_unique<TabList>(nullptr)) {}

MergedXml::~MergedXml() = default;

int MergedXml::setStyleOriginalPath(std::string path) {
    m_strStyleOriginalPath = std::move(path);
    return 1;
}

int MergedXml::setStyleModifyPath(std::string path) {
    m_strStyleModifyPath = std::move(path);
    return 1;
}

int MergedXml::getStyleMergedString(const std::string& detail, std::string& text) {
    if (!mergeStyleXml(detail)) {
        std::puts("mergeStyleXml failed");
        return 0;
    }
    text = printed(m_StyleOriginal);
    return 1;
}

int MergedXml::mergeStyleXml(std::string detail) {
    if (m_strStyleModifyPath.empty() || m_strStyleOriginalPath.empty()) {
        std::puts("m_strStyleModifyPath or m_strStyleOriginalPath is NULL,Please set path first");
        return 0;
    }
    MergeReport unwanted;
    MergeReport& report = m_pReport != nullptr ? *m_pReport : unwanted;
    report = {};
    std::string original;
    std::string modify;
    if (!readTold(m_strStyleOriginalPath, original, report) || !readTold(m_strStyleModifyPath, modify, report))
        return 0;
    if (!parseInto(m_StyleOriginal, std::move(original)))
        report.documents[0].reading = MergeReport::Reading::Broken;
    if (!parseInto(m_StyleModify, std::move(modify)))
        report.documents[1].reading = MergeReport::Reading::Broken;

    m_pTabs = std::make_unique<TabList>(m_StyleOriginal.FirstChildElement());
    const int result = applyBlocks(std::move(detail));
    report.steps = m_pTabs->steps();
    return result;
}

int MergedXml::applyBlocks(std::string detail) {
    ModuleDetail module(std::move(detail));
    const TiXmlElement* block = m_StyleModify.FirstChildElement();
    for (; block != nullptr; block = block->NextSiblingElement()) {
        MergeReport::Block told = judge(*block, module);
        const MergeReport::Verdict verdict = told.verdict;
        if (m_pReport != nullptr)
            m_pReport->blocks.push_back(std::move(told));
        if (verdict == MergeReport::Verdict::Undecided || (verdict == MergeReport::Verdict::Applies && !apply(*block)))
            return 0;
    }
    return 1;
}

MergeReport::Block MergedXml::judge(const TiXmlElement& block, ModuleDetail& detail) {
    MergeReport::Block told = {.name = block.ValueStr()};
    for (const TiXmlAttribute* condition = block.FirstAttribute(); condition != nullptr;
         condition = condition->Next()) {
        if (!detail.parse()) {
            std::puts("parse detail failed");
            told.verdict = MergeReport::Verdict::Undecided;
            return told;
        }
        const std::optional<std::string> found = detail.valueOf(condition->Name());
        const bool holds = found && tokensOf(condition->ValueStr()).count(*found) != 0;
        told.conditions.push_back(
            {.key = condition->Name(), .accepted = condition->ValueStr(), .found = found, .holds = holds});
        if (!holds)
            return told;
    }
    if (!told.conditions.empty())
        told.verdict = MergeReport::Verdict::Applies;
    return told;
}

int MergedXml::apply(const TiXmlElement& block) {
    const TiXmlElement* directive = block.FirstChildElement();
    for (; directive != nullptr; directive = directive->NextSiblingElement()) {
        const std::string& name = directive->ValueStr();
        if (name == "Delete")
            deleteTabs(*directive);
        else if ((name == "AddAfter" && !addAfter(*directive)) || (name == "AddBefore" && !addBefore(*directive)))
            return 0;
    }
    return 1;
}

void MergedXml::deleteTabs(const TiXmlElement& directive) {
    const TiXmlElement* entry = directive.FirstChildElement();
    for (; entry != nullptr; entry = entry->NextSiblingElement()) {
        const std::optional<int> key = keyOf(*entry);
        const int tabs = m_pTabs->remove(key);
        report({.kind = MergeReport::EditKind::Delete, .key = key, .tabs = tabs, .isDone = true});
    }
}

int MergedXml::deleteTabNode(int key) {
    m_pTabs->remove(key);
    return 1;
}

// Each new tab is placed behind the tab that has the key of the one before it. So if a key is there twice, what
// follows goes behind its first tab, wherever that is.
int MergedXml::addAfter(const TiXmlElement& directive) {
    constexpr auto Kind = MergeReport::EditKind::AddAfter;
    const TiXmlElement* anchor = directive.FirstChildElement();
    for (; anchor != nullptr; anchor = anchor->NextSiblingElement()) {
        const TiXmlElement* predecessor = anchor;
        std::optional<TabList::Position> last;
        const TiXmlElement* tab = anchor->FirstChildElement();
        for (; tab != nullptr; tab = tab->NextSiblingElement()) {
            // A new tab without a key cannot be found again: the next one goes behind its copy.
            const std::optional<int> key = keyOf(*predecessor);
            const std::optional<TabList::Position> found = key ? m_pTabs->find(key) : last;
            if (!found)
                return failAt(Kind, *predecessor);
            last = m_pTabs->addAfter(*found, *tab);
            report({.kind = Kind, .key = keyOf(*tab), .anchor = key, .tabs = 1, .isDone = true});
            predecessor = tab;
        }
    }
    return 1;
}

int MergedXml::addBefore(const TiXmlElement& directive) {
    constexpr auto Kind = MergeReport::EditKind::AddBefore;
    const TiXmlElement* anchor = directive.FirstChildElement();
    for (; anchor != nullptr; anchor = anchor->NextSiblingElement()) {
        const std::optional<TabList::Position> found = m_pTabs->find(keyOf(*anchor));
        if (!found)
            return failAt(Kind, *anchor);
        const TiXmlElement* tab = anchor->FirstChildElement();
        for (; tab != nullptr; tab = tab->NextSiblingElement()) {
            m_pTabs->addBefore(*found, *tab);
            report({.kind = Kind, .key = keyOf(*tab), .anchor = keyOf(*anchor), .tabs = 1, .isDone = true});
        }
    }
    return 1;
}

int MergedXml::findNodeByKey(int key, TiXmlNode* parent, TiXmlNode*& result) {
    TiXmlElement* child = parent != nullptr ? parent->FirstChildElement() : nullptr;
    for (; child != nullptr; child = child->NextSiblingElement()) {
        if (keyOf(*child) == key) {
            result = child;
            return 1;
        }
    }
    return 0;
}

void MergedXml::report(const MergeReport::Edit& edit) {
    if (m_pReport != nullptr)
        m_pReport->blocks.back().edits.push_back(edit);
}

int MergedXml::failAt(MergeReport::EditKind kind, const TiXmlElement& anchor) {
    std::printf("can't find tab by key(%d)\n", keyOf(anchor).value_or(0));
    report({.kind = kind, .anchor = keyOf(anchor)});
    return 0;
}

int MergedXml::setLangOriginalPath(std::string path) {
    m_strLangOriginalPath = std::move(path);
    return 1;
}

int MergedXml::setLangModifyPath(std::string path) {
    m_strLangModifyPath = std::move(path);
    return 1;
}

int MergedXml::mergeLangXml(const std::string& /*detail*/) { return 1; }

int MergedXml::getLangMergedString(const std::string& detail, std::string& text) {
    if (!mergeLangXml(detail))
        return 0;
    text = printed(m_LangOriginal);
    return 1;
}
