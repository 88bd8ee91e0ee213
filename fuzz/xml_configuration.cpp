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
void readProperties(const Element& element) {
    for (const char* name : {"name", "value", "id", "enable"}) {
        std::string text;
        int number = 0;
        bool truth = false;
        element.getProperty(name, text);
        element.getProperty(name, number);
        element.getProperty(name, truth);
    }
}

std::size_t readNode(const XmlConfigureNode& node) {
    std::size_t count = 1;
    readProperties(node);
    std::vector<XmlConfigureItem> items;
    node.getItemList(items);
    for (const XmlConfigureItem& item : items)
        readProperties(item);
    std::vector<XmlConfigureNode> nodes;
    node.getAllConfigNodeList(nodes);
    for (const XmlConfigureNode& child : nodes)
        count += readNode(child);
    return count + items.size();
}

/// The number of nodes and items in the file, or nothing if it cannot be read.
int countElements(const std::string& path, std::size_t& count) {
    XmlConfigureTool tool;
    if (tool.open(path, 1, XmlConfigureTool::ReadOnly) == 0)
        return 0;
    count = 0;
    std::vector<XmlConfigureNode> nodes;
    tool.getAllConfigNodeList(nodes);
    for (const XmlConfigureNode& node : nodes)
        count += readNode(node);
    nodes.clear();
    return tool.close();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzzing::ScratchFolder scratch;
    sensorhost::setRootFolder(scratch.path());
    scratch.write("input.xml", std::string_view(reinterpret_cast<const char*>(data), size));

    std::size_t before = 0;
    if (countElements("/input.xml", before) == 0)
        return 0;

    XmlConfigureTool tool;
    require(tool.open("/input.xml", 1, XmlConfigureTool::Change) == 1);
    XmlConfigureItem item;
    item.setProperty("value", 7);
    XmlConfigureNode node("Added");
    node.setProperty("name", "a \"quoted\" <name>");
    node.addItem(item);
    const int added = tool.addConfigNode(node);
    require(tool.close() == 1);

    std::size_t after = 0;
    require(countElements("/input.xml", after) == 1);
    require(added == 0 || after == before + 2);
    return 0;
}
