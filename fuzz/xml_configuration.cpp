// A configuration file that lies on the device: read it whole, then change and write it.
#include "FuzzSupport.h"
#include "host/XmlConfigureTool.h"
#include "host/linux/HostSettings.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

using fuzzing::require;

namespace {

template <class Element>
void describeProperties(const Element& element, std::string& text) {
    for (const char* name : {"name", "value", "id", "enable"}) {
        std::string value;
        int number = 0;
        bool truth = false;
        if (element.getProperty(name, value) != 0)
            text += '|' + value;
        if (element.getProperty(name, number) != 0)
            text += '|' + std::to_string(number);
        if (element.getProperty(name, truth) != 0)
            text += truth ? "|true" : "|false";
    }
}

void describeNode(const XmlConfigureNode& node, std::string& text) {
    text += '<' + node.getNodeName();
    describeProperties(node, text);
    std::vector<XmlConfigureItem> items;
    node.getItemList(items);
    for (const XmlConfigureItem& item : items) {
        text += '-';
        describeProperties(item, text);
    }
    std::vector<XmlConfigureNode> nodes;
    node.getAllConfigNodeList(nodes);
    for (const XmlConfigureNode& child : nodes)
        describeNode(child, text);
    text += '>';
}

/// What a host finds in the file. 0 if it cannot be read.
int describeFile(const std::string& path, std::string& text) {
    XmlConfigureTool tool;
    if (tool.open(path, 1, XmlConfigureTool::ReadOnly) == 0)
        return 0;
    text = tool.getRootNodeName();
    std::vector<XmlConfigureNode> nodes;
    tool.getAllConfigNodeList(nodes);
    for (const XmlConfigureNode& node : nodes)
        describeNode(node, text);
    nodes.clear();
    return tool.close();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzzing::ScratchFolder Scratch;
    sensorhost::setRootFolder(Scratch.path());
    const std::string input(reinterpret_cast<const char*>(data), size);
    Scratch.write("input.xml", input);

    std::string before;
    if (describeFile("/input.xml", before) == 0)
        return 0;

    XmlConfigureTool tool;
    require(tool.open("/input.xml", 1, XmlConfigureTool::Change) == 1);
    XmlConfigureItem item;
    item.setProperty("value", 7);
    XmlConfigureNode node("Added");
    node.setProperty("name", "a \"quoted\" <name>");
    node.addItem(item);
    require(tool.addConfigNode(node) == 1);
    if (tool.close() == 0) {
        require(!fuzzing::isPlainXml(input));
        require(Scratch.read("input.xml") == input);
        return 0;
    }
    std::string after;
    require(describeFile("/input.xml", after) == 1);
    require(after == before + "<Added|a \"quoted\" <name>-|7|7>");
    return 0;
}
