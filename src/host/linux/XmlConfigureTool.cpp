#include "host/XmlConfigureTool.h"

#include "host/linux/FileSystem.h"
#include "host/linux/HostSettings.h"
#include "host/linux/XmlFile.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include <tinyxml.h>
#include <unistd.h>

namespace {

constexpr const char* ItemName = "item";
constexpr const char* DefaultName = "config";

bool isName(std::string_view text) {
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    const auto isPart = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; };
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), isPart);
}

bool isItem(const TiXmlElement& element) { return element.ValueStr() == ItemName; }

} // namespace

/// What an item or a node stands for: an element, and what keeps it alive.
struct XmlConfigureItem::State {
    std::shared_ptr<void> owner; ///< the document it lies in, or the element itself if it stands alone
    TiXmlElement* element = nullptr;
};

struct XmlConfigureNode::State : XmlConfigureItem::State {};

namespace {

template <class State>
std::shared_ptr<State> standAlone(const std::shared_ptr<TiXmlElement>& element) {
    auto state = std::make_shared<State>();
    state->element = element.get();
    state->owner = element;
    return state;
}

template <class State>
std::shared_ptr<State> within(const std::shared_ptr<void>& owner, TiXmlElement* element) {
    auto state = std::make_shared<State>();
    state->owner = owner;
    state->element = element;
    return state;
}

/// A copy of what stands alone is another one; a copy of what lies in a document means the same element.
template <class State>
std::shared_ptr<State> copyOf(const std::shared_ptr<State>& other) {
    if (other->owner.get() != other->element)
        return other;
    return standAlone<State>(std::make_shared<TiXmlElement>(*other->element));
}

template <class State>
int readProperty(const State& state, const std::string& name, std::string& value) {
    const std::string* const text = state.element->Attribute(name);
    if (text == nullptr)
        return 0;
    value = *text;
    return 1;
}

template <class State>
int readProperty(const State& state, const std::string& name, int& value) {
    const std::string* const text = state.element->Attribute(name);
    int number = 0;
    if (text == nullptr)
        return 0;
    const char* const end = text->data() + text->size();
    const auto [next, error] = std::from_chars(text->data(), end, number);
    if (error != std::errc() || next != end)
        return 0;
    value = number;
    return 1;
}

template <class State>
int readProperty(const State& state, const std::string& name, bool& value) {
    const std::string* const text = state.element->Attribute(name);
    if (text == nullptr || (*text != "1" && *text != "true" && *text != "0" && *text != "false"))
        return 0;
    value = *text == "1" || *text == "true";
    return 1;
}

template <class State>
int writeProperty(State& state, const std::string& name, const std::string& value) {
    if (!isName(name) || value.find('\0') != std::string::npos)
        return 0;
    state.element->SetAttribute(name, value);
    return 1;
}

std::vector<TiXmlElement*> childrenOf(const TiXmlElement& element, bool items) {
    std::vector<TiXmlElement*> children;
    for (const TiXmlElement* child = element.FirstChildElement(); child != nullptr; child = child->NextSiblingElement())
        if (isItem(*child) == items)
            children.push_back(const_cast<TiXmlElement*>(child));
    return children;
}

} // namespace

XmlConfigureItem::XmlConfigureItem(int) : m_pState(standAlone<State>(std::make_shared<TiXmlElement>(ItemName))) {}

XmlConfigureItem::~XmlConfigureItem() = default;

XmlConfigureItem::XmlConfigureItem(const XmlConfigureItem& other) : m_pState(copyOf(other.m_pState)) {}

XmlConfigureItem& XmlConfigureItem::operator=(const XmlConfigureItem& other) {
    if (this != &other)
        m_pState = copyOf(other.m_pState);
    return *this;
}

int XmlConfigureItem::getProperty(const std::string& name, std::string& value) const {
    return readProperty(*m_pState, name, value);
}

int XmlConfigureItem::getProperty(const std::string& name, int& value) const {
    return readProperty(*m_pState, name, value);
}

int XmlConfigureItem::getProperty(const std::string& name, bool& value) const {
    return readProperty(*m_pState, name, value);
}

int XmlConfigureItem::setProperty(const std::string& name, const std::string& value) {
    return writeProperty(*m_pState, name, value);
}

int XmlConfigureItem::setProperty(const std::string& name, int value) {
    return writeProperty(*m_pState, name, std::to_string(value));
}

XmlConfigureNode::XmlConfigureNode(const std::string& name, int)
    : m_pState(standAlone<State>(std::make_shared<TiXmlElement>(isName(name) ? name : std::string(DefaultName)))) {}

XmlConfigureNode::~XmlConfigureNode() = default;

XmlConfigureNode::XmlConfigureNode(const XmlConfigureNode& other) : m_pState(copyOf(other.m_pState)) {}

XmlConfigureNode& XmlConfigureNode::operator=(const XmlConfigureNode& other) {
    if (this != &other)
        m_pState = copyOf(other.m_pState);
    return *this;
}

std::string XmlConfigureNode::getNodeName() const { return m_pState->element->ValueStr(); }

int XmlConfigureNode::getProperty(const std::string& name, std::string& value) const {
    return readProperty(*m_pState, name, value);
}

int XmlConfigureNode::getProperty(const std::string& name, int& value) const {
    return readProperty(*m_pState, name, value);
}

int XmlConfigureNode::getProperty(const std::string& name, bool& value) const {
    return readProperty(*m_pState, name, value);
}

int XmlConfigureNode::setProperty(const std::string& name, const std::string& value) {
    return writeProperty(*m_pState, name, value);
}

int XmlConfigureNode::setProperty(const std::string& name, int value) {
    return writeProperty(*m_pState, name, std::to_string(value));
}

int XmlConfigureNode::getItemList(std::vector<XmlConfigureItem>& items) const {
    // The list may hold this very element's owner.
    const std::shared_ptr<State> state = m_pState;
    items.clear();
    for (TiXmlElement* element : childrenOf(*state->element, true)) {
        XmlConfigureItem item;
        item.m_pState = within<XmlConfigureItem::State>(state->owner, element);
        items.push_back(item);
    }
    return 1;
}

int XmlConfigureNode::getAllConfigNodeList(std::vector<XmlConfigureNode>& nodes) const {
    const std::shared_ptr<State> state = m_pState;
    nodes.clear();
    for (TiXmlElement* element : childrenOf(*state->element, false)) {
        XmlConfigureNode node;
        node.m_pState = within<State>(state->owner, element);
        nodes.push_back(node);
    }
    return 1;
}

int XmlConfigureNode::addItem(const XmlConfigureItem& item) {
    return m_pState->element->InsertEndChild(*item.m_pState->element) != nullptr ? 1 : 0;
}

int XmlConfigureNode::addConfigNode(const XmlConfigureNode& node) {
    // A copy of a node into itself would grow while it is copied.
    const TiXmlElement copy(*node.m_pState->element);
    return m_pState->element->InsertEndChild(copy) != nullptr ? 1 : 0;
}

struct XmlConfigureTool::State {
    std::string path;
    int mode = 0;
    std::string rootName; ///< of the next file to be created
    std::shared_ptr<TiXmlDocument> document;

    TiXmlElement* root() const { return document ? document->RootElement() : nullptr; }
    TiXmlElement* changeableRoot() const { return mode != ReadOnly ? root() : nullptr; }
};

namespace {

/// Whether the file can be written, without making it: an empty file would be taken for a configuration.
bool canCreate(const std::string& path) {
    const std::string file = sensorhost::hostPath(path);
    if (file.empty() || file.back() == '/')
        return false;
    if (::access(file.c_str(), F_OK) == 0)
        return ::access(file.c_str(), R_OK | W_OK) == 0;
    sensorhost::makeParentFolder(file);
    const std::size_t slash = file.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : file.substr(0, slash + 1);
    return ::access(folder.c_str(), W_OK | X_OK) == 0;
}

std::shared_ptr<TiXmlDocument> makeDocument(const std::string& rootName) {
    auto document = std::make_shared<TiXmlDocument>();
    document->LinkEndChild(std::make_unique<TiXmlDeclaration>("1.0", "UTF-8", "").release());
    document->LinkEndChild(std::make_unique<TiXmlElement>(rootName).release());
    return document;
}

} // namespace

XmlConfigureTool::XmlConfigureTool() : m_pState(std::make_unique<State>()) {}

XmlConfigureTool::~XmlConfigureTool() = default;

int XmlConfigureTool::open(const std::string& path, int, int mode) {
    State& s = *m_pState;
    s.document.reset();
    s.path = path;
    s.mode = mode;
    if (mode == ReadOnly || mode == Change)
        s.document = sensorhost::loadXml(path);
    else if (mode == Create && canCreate(path))
        s.document = makeDocument(s.rootName.empty() ? DefaultName : s.rootName);
    return s.document ? 1 : 0;
}

int XmlConfigureTool::close() {
    State& s = *m_pState;
    const std::shared_ptr<TiXmlDocument> document = std::move(s.document);
    s.document.reset();
    s.rootName.clear();
    if (!document)
        return 0;
    return s.mode == ReadOnly || sensorhost::saveXml(s.path, *document) ? 1 : 0;
}

int XmlConfigureTool::setRootNodeName(const std::string& name) {
    State& s = *m_pState;
    if (!isName(name) || (s.document && s.mode == ReadOnly))
        return 0;
    s.rootName = name;
    if (s.document)
        s.root()->SetValue(name);
    return 1;
}

std::string XmlConfigureTool::getRootNodeName() const {
    const TiXmlElement* const root = m_pState->root();
    return root != nullptr ? root->ValueStr() : m_pState->rootName;
}

int XmlConfigureTool::getConfigNode(const std::string& name, XmlConfigureNode& node) const {
    TiXmlElement* const root = m_pState->root();
    TiXmlElement* const element = root != nullptr && name != ItemName ? root->FirstChildElement(name) : nullptr;
    if (element == nullptr)
        return 0;
    node.m_pState = within<XmlConfigureNode::State>(m_pState->document, element);
    return 1;
}

int XmlConfigureTool::getAllConfigNodeList(std::vector<XmlConfigureNode>& nodes) const {
    TiXmlElement* const root = m_pState->root();
    if (root == nullptr)
        return 0;
    nodes.clear();
    for (TiXmlElement* element : childrenOf(*root, false)) {
        XmlConfigureNode node;
        node.m_pState = within<XmlConfigureNode::State>(m_pState->document, element);
        nodes.push_back(node);
    }
    return 1;
}

int XmlConfigureTool::addConfigNode(const XmlConfigureNode& node) {
    TiXmlElement* const root = m_pState->changeableRoot();
    if (root == nullptr)
        return 0;
    const TiXmlElement copy(*node.m_pState->element);
    return root->InsertEndChild(copy) != nullptr ? 1 : 0;
}

int XmlConfigureTool::removeConfigNode(const std::string& name) {
    TiXmlElement* const root = m_pState->changeableRoot();
    TiXmlElement* const element = root != nullptr && name != ItemName ? root->FirstChildElement(name) : nullptr;
    return element != nullptr && root->RemoveChild(element) ? 1 : 0;
}
