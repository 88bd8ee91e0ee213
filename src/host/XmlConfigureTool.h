#pragma once

#include "host/Export.h"

#include <memory>
#include <string>
#include <vector>

/// A leaf of a configuration file: an element "item" with properties (attributes).
/// Either stands alone, as constructed, or refers into the open document that it came from; then it must not be used
/// after that document's close.
class SENSORHOST_API XmlConfigureItem {
public:
    explicit XmlConfigureItem(int format = 1);
    ~XmlConfigureItem();
    XmlConfigureItem(const XmlConfigureItem&);
    XmlConfigureItem& operator=(const XmlConfigureItem&);

    /// 1 and the property, or 0 with the target as it was: a missing property, or text that is no number or truth
    /// value.
    int getProperty(const std::string& name, std::string& value) const;
    int getProperty(const std::string& name, int& value) const;
    int getProperty(const std::string& name, bool& value) const;

    /// 1, or 0 for a name that no attribute can have or a value with a zero byte.
    int setProperty(const std::string& name, const std::string& value);
    int setProperty(const std::string& name, int value);

private:
    friend class XmlConfigureNode;
    struct State;
    std::shared_ptr<State> m_pState;
};

/// An inner element of a configuration file: a name (the element's), properties, items and further nodes.
/// The rules of XmlConfigureItem for stand-alone and document nodes hold here too.
class SENSORHOST_API XmlConfigureNode {
public:
    /// A name that no element can have becomes "config".
    explicit XmlConfigureNode(const std::string& name = std::string(), int format = 1);
    ~XmlConfigureNode();
    XmlConfigureNode(const XmlConfigureNode&);
    XmlConfigureNode& operator=(const XmlConfigureNode&);

    std::string getNodeName() const;

    int getProperty(const std::string& name, std::string& value) const;
    int getProperty(const std::string& name, int& value) const;
    int getProperty(const std::string& name, bool& value) const;
    int setProperty(const std::string& name, const std::string& value);
    int setProperty(const std::string& name, int value);

    /// Replaces the list by the node's items, in file order. 1.
    int getItemList(std::vector<XmlConfigureItem>& items) const;
    /// Replaces the list by the nodes below this one, in file order. 1.
    int getAllConfigNodeList(std::vector<XmlConfigureNode>& nodes) const;
    /// Adds a copy. 1.
    int addItem(const XmlConfigureItem& item);
    int addConfigNode(const XmlConfigureNode& node);

private:
    friend class XmlConfigureTool;
    struct State;
    std::shared_ptr<State> m_pState;
};

/// A configuration file in XML. One object serves one thread at a time.
class SENSORHOST_API XmlConfigureTool {
public:
    enum OpenMode { ReadOnly = 1, Change = 2, Create = 3 };

    XmlConfigureTool();
    /// Gives up what was not closed.
    ~XmlConfigureTool();
    XmlConfigureTool(const XmlConfigureTool&) = delete;
    XmlConfigureTool& operator=(const XmlConfigureTool&) = delete;

    /// 1, or 0: a missing or malformed file, one that is no UTF-8, has more than 1 MiB, 64 elements within each other,
    /// 32,768 nodes or 1,024 attributes of an element, or for Create one that cannot be made. Create makes the file at
    /// close. Gives up what was open. `format` is 1.
    int open(const std::string& path, int format, int mode);

    /// Writes the file unless it was opened for reading only. 1, or 0 and the old file stands: it cannot be written, or
    /// would not be read back as what it was changed to (a declaration with quotes in it, bytes that are no UTF-8).
    int close();

    /// The name of the root of the open document, or if none is open of the one created next; "config" otherwise.
    int setRootNodeName(const std::string& name);
    std::string getRootNodeName() const;

    /// The first node of that name below the root. 1, or 0 with the target as it was.
    int getConfigNode(const std::string& name, XmlConfigureNode& node) const;
    /// All nodes below the root, in file order. 1, or 0 with the list as it was if nothing is open.
    int getAllConfigNodeList(std::vector<XmlConfigureNode>& nodes) const;
    /// Adds a copy below the root. 1, or 0 if no document is open for a change.
    int addConfigNode(const XmlConfigureNode& node);
    /// Takes the first node of that name below the root away. What refers to it must not be used any more. 1, or 0 if
    /// there is none.
    int removeConfigNode(const std::string& name);

private:
    struct State;
    std::unique_ptr<State> m_pState;
};
