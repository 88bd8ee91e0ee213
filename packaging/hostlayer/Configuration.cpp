// The texts and XML files of the configuration. The forms are the host's own choice except for the parameter string;
// these are the ones of docs/file-formats.md, so that the sample files serve.
#include "HostLayer.h"
#include "host/BRFile.h"
#include "host/ModuleConfigureParser.h"
#include "host/ModuleParameterParser.h"
#include "host/SensorLanguageConfig.h"
#include "host/SensorParameterParser.h"
#include "host/XmlConfigureTool.h"

#include <charconv>
#include <cstdio>
#include <sstream>

#include <tinyxml.h>

namespace {

/// The whole text must be the number.
bool readNumber(const std::string& text, int& number) {
    const char* const end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && next == end;
}

/// The text up to the character, and the rest behind it; false if the character is not there.
bool take(std::string& rest, char wanted, std::string& taken) {
    const std::size_t at = rest.find(wanted);
    if (at == std::string::npos)
        return false;
    taken = rest.substr(0, at);
    rest.erase(0, at + 1);
    return true;
}

} // namespace

// "(id,value)" back to back. The library writes this form itself and searches it for "(" and an id.
int SensorParameterParser::parseSensorParameter(const std::string& text, std::map<int, int>& values) {
    std::map<int, int> read;
    std::string rest = text;
    while (!rest.empty()) {
        std::string nothing, id, value;
        int number = 0;
        if (!take(rest, '(', nothing) || !nothing.empty() || !take(rest, ',', id) || !take(rest, ')', value) ||
            !readNumber(id, number) || number < 0 || !readNumber(value, read[number]))
            return 0;
    }
    for (const auto& [id, value] : read)
        values[id] = value;
    return 1;
}

std::string SensorParameterParser::createSensorParameterString(const std::map<int, int>& values) {
    std::string text;
    for (const auto& [id, value] : values) {
        char group[32];
        std::snprintf(group, sizeof group, "(%d,%d)", id, value);
        text += group;
    }
    return text;
}

// A form of this host's own beside the library's "(1)(2)": "1,2,500".
int SensorParameterParser::parseParameterIdList(const std::string& text, std::set<int>& ids) {
    std::set<int> read;
    std::istringstream numbers(text);
    for (std::string number; std::getline(numbers, number, ',');) {
        int id = 0;
        if (!readNumber(number, id))
            return 0;
        read.insert(id);
    }
    ids = read;
    return 1;
}

// "key=value;key=value"
int ModuleParameterParser::parse(const std::string& text) {
    m_Values.clear();
    std::istringstream pairs(text);
    for (std::string pair, key; std::getline(pairs, pair, ';');) {
        if (!take(pair, '=', key) || key.empty())
            return 0;
        m_Values[key] = pair;
    }
    return 1;
}

int ModuleParameterParser::getValue(const std::string& key, std::string& value) const {
    const auto found = m_Values.find(key);
    if (found == m_Values.end())
        return 0;
    value = found->second;
    return 1;
}

// An item is an element "item", any other element a node. State shares the element: one that lies in a document keeps
// the document alive.
using Element = std::shared_ptr<TiXmlElement>;

struct XmlConfigureItem::State {
    Element element;
};

struct XmlConfigureNode::State {
    Element element;
};

namespace {

int getText(const TiXmlElement& element, const std::string& name, std::string& value) {
    const std::string* const text = element.Attribute(name);
    if (text == nullptr)
        return 0;
    value = *text;
    return 1;
}

int getNumber(const TiXmlElement& element, const std::string& name, int& value) {
    std::string text;
    int number = 0;
    if (!getText(element, name, text) || !readNumber(text, number))
        return 0;
    value = number;
    return 1;
}

int getTruth(const TiXmlElement& element, const std::string& name, bool& value) {
    std::string text;
    if (!getText(element, name, text) || (text != "1" && text != "true" && text != "0" && text != "false"))
        return 0;
    value = text == "1" || text == "true";
    return 1;
}

/// The elements below this one that are items, or those that are nodes.
std::vector<Element> childrenOf(const Element& parent, bool wantsItems) {
    std::vector<Element> children;
    for (TiXmlElement* at = parent->FirstChildElement(); at != nullptr; at = at->NextSiblingElement())
        if ((at->ValueStr() == "item") == wantsItems)
            children.push_back(Element(parent, at));
    return children;
}

} // namespace

XmlConfigureItem::XmlConfigureItem(int) : m_pState(new State{std::make_shared<TiXmlElement>("item")}) {}
XmlConfigureItem::~XmlConfigureItem() = default;
XmlConfigureItem::XmlConfigureItem(const XmlConfigureItem&) = default;
XmlConfigureItem& XmlConfigureItem::operator=(const XmlConfigureItem&) = default;

int XmlConfigureItem::getProperty(const std::string& name, std::string& value) const {
    return getText(*m_pState->element, name, value);
}
int XmlConfigureItem::getProperty(const std::string& name, int& value) const {
    return getNumber(*m_pState->element, name, value);
}
int XmlConfigureItem::getProperty(const std::string& name, bool& value) const {
    return getTruth(*m_pState->element, name, value);
}
int XmlConfigureItem::setProperty(const std::string& name, const std::string& value) {
    m_pState->element->SetAttribute(name, value);
    return 1;
}
int XmlConfigureItem::setProperty(const std::string& name, int value) {
    return setProperty(name, std::to_string(value));
}

XmlConfigureNode::XmlConfigureNode(const std::string& name, int)
    : m_pState(new State{std::make_shared<TiXmlElement>(name)}) {}
XmlConfigureNode::~XmlConfigureNode() = default;
XmlConfigureNode::XmlConfigureNode(const XmlConfigureNode&) = default;
XmlConfigureNode& XmlConfigureNode::operator=(const XmlConfigureNode&) = default;

std::string XmlConfigureNode::getNodeName() const { return m_pState->element->ValueStr(); }

int XmlConfigureNode::getProperty(const std::string& name, std::string& value) const {
    return getText(*m_pState->element, name, value);
}
int XmlConfigureNode::getProperty(const std::string& name, int& value) const {
    return getNumber(*m_pState->element, name, value);
}
int XmlConfigureNode::getProperty(const std::string& name, bool& value) const {
    return getTruth(*m_pState->element, name, value);
}

int XmlConfigureNode::getItemList(std::vector<XmlConfigureItem>& items) const {
    items.clear();
    for (const Element& element : childrenOf(m_pState->element, true)) {
        items.emplace_back();
        items.back().m_pState->element = element;
    }
    return 1;
}

int XmlConfigureNode::getAllConfigNodeList(std::vector<XmlConfigureNode>& nodes) const {
    const Element parent = m_pState->element; // the list may hold this very node
    nodes.clear();
    for (const Element& element : childrenOf(parent, false)) {
        nodes.emplace_back();
        nodes.back().m_pState->element = element;
    }
    return 1;
}

int XmlConfigureNode::addItem(const XmlConfigureItem& item) {
    return m_pState->element->InsertEndChild(*item.m_pState->element) != nullptr ? 1 : 0;
}

struct XmlConfigureTool::State {
    std::shared_ptr<TiXmlDocument> document;
    std::string path;
    std::string rootName = "config";
    bool isReadOnly = true;

    /// The root, which keeps the document alive.
    Element root() const { return document ? Element(document, document->RootElement()) : nullptr; }
};

XmlConfigureTool::XmlConfigureTool() : m_pState(std::make_unique<State>()) {}
XmlConfigureTool::~XmlConfigureTool() = default;

// TinyXML descends by recursion and builds whatever stands in a file: a product that reads files of others limits their
// size and depth first.
int XmlConfigureTool::open(const std::string& path, int, int mode) {
    State& state = *m_pState;
    state.path = path;
    state.isReadOnly = mode == ReadOnly;
    state.document = std::make_shared<TiXmlDocument>();
    if (mode == Create)
        state.document->InsertEndChild(TiXmlElement(state.rootName));
    else if (!state.document->LoadFile(hostlayer::hostPath(path)) || state.document->RootElement() == nullptr)
        state.document.reset();
    return state.document ? 1 : 0;
}

int XmlConfigureTool::close() {
    const std::shared_ptr<TiXmlDocument> document = std::move(m_pState->document);
    if (!document || m_pState->isReadOnly)
        return document ? 1 : 0;
    TiXmlPrinter printer;
    document->Accept(&printer);
    const auto length = static_cast<int>(printer.Size());
    BRFile file;
    return file.open(m_pState->path.c_str(), BRFile::Replace) && file.write(printer.CStr(), length) == length ? 1 : 0;
}

int XmlConfigureTool::setRootNodeName(const std::string& name) {
    m_pState->rootName = name;
    if (const Element root = m_pState->root())
        root->SetValue(name);
    return 1;
}

int XmlConfigureTool::getAllConfigNodeList(std::vector<XmlConfigureNode>& nodes) const {
    XmlConfigureNode node;
    node.m_pState->element = m_pState->root();
    return node.m_pState->element ? node.getAllConfigNodeList(nodes) : 0;
}

int XmlConfigureTool::getConfigNode(const std::string& name, XmlConfigureNode& node) const {
    std::vector<XmlConfigureNode> nodes;
    getAllConfigNodeList(nodes);
    for (const XmlConfigureNode& each : nodes) {
        if (each.getNodeName() == name) {
            node = each;
            return 1;
        }
    }
    return 0;
}

int XmlConfigureTool::addConfigNode(const XmlConfigureNode& node) {
    const Element root = m_pState->root();
    return root && root->InsertEndChild(*node.m_pState->element) != nullptr ? 1 : 0;
}

int XmlConfigureTool::removeConfigNode(const std::string& name) {
    const Element root = m_pState->root();
    TiXmlElement* const element = root ? root->FirstChildElement(name) : nullptr;
    return element != nullptr && root->RemoveChild(element) ? 1 : 0;
}

int ModuleConfigureParser::parse(const std::string& fileName, const std::string& product, const std::string& board,
                                 std::vector<ModuleConfigure>& modules) {
    XmlConfigureTool tool;
    std::vector<XmlConfigureNode> nodes;
    if (!tool.open(fileName, 1, XmlConfigureTool::ReadOnly) || !tool.getAllConfigNodeList(nodes))
        return 0;
    for (const XmlConfigureNode& node : nodes) {
        std::string forProduct = product, forBoard = board, detail, parameters;
        int id = 0;
        node.getProperty("product", forProduct);
        node.getProperty("board", forBoard);
        node.getProperty("detail", detail);
        node.getProperty("parameters", parameters);
        if (node.getProperty("id", id) && (product.empty() || product == forProduct) &&
            (board.empty() || board == forBoard))
            modules.emplace_back(id, detail, parameters);
    }
    return 1;
}

int SensorLanguageConfigParser::parse(const std::string& fileName, std::vector<SensorLanguageConfig>& languages) {
    XmlConfigureTool tool;
    std::vector<XmlConfigureNode> nodes;
    if (!tool.open(fileName, 1, XmlConfigureTool::ReadOnly) || !tool.getAllConfigNodeList(nodes))
        return 0;
    for (const XmlConfigureNode& node : nodes) {
        int id = 0;
        std::string folder;
        if (node.getProperty("id", id) && node.getProperty("folder", folder))
            languages.emplace_back(id, folder);
    }
    return 1;
}
