#include "host/ModuleConfigureParser.h"
#include "host/SensorLanguageConfig.h"
#include "host/XmlConfigureTool.h"

namespace {

/// Calls `take` with each node of that name below the file's root.
template <class Take>
int forEachNode(const std::string& fileName, const std::string& name, Take take) {
    XmlConfigureTool tool;
    std::vector<XmlConfigureNode> nodes;
    if (tool.open(fileName, 1, XmlConfigureTool::ReadOnly) == 0 || tool.getAllConfigNodeList(nodes) == 0)
        return 0;
    for (const XmlConfigureNode& node : nodes)
        if (node.getNodeName() == name)
            take(node);
    return tool.close();
}

std::string textOf(const XmlConfigureNode& node, const std::string& property) {
    std::string text;
    node.getProperty(property, text);
    return text;
}

/// A module that names no product, or no board, is there for all of them.
bool isSelected(const std::string& selector, const std::string& text) {
    return selector.empty() || text.empty() || selector == text;
}

} // namespace

int ModuleConfigureParser::parse(const std::string& fileName, const std::string& product, const std::string& board,
                                 std::vector<ModuleConfigure>& modules) {
    return forEachNode(fileName, "module", [&](const XmlConfigureNode& node) {
        int id = 0;
        if (node.getProperty("id", id) != 0 && isSelected(product, textOf(node, "product")) &&
            isSelected(board, textOf(node, "board")))
            modules.emplace_back(id, textOf(node, "detail"), textOf(node, "parameters"));
    });
}

int SensorLanguageConfigParser::parse(const std::string& fileName, std::vector<SensorLanguageConfig>& languages) {
    return forEachNode(fileName, "language", [&](const XmlConfigureNode& node) {
        int id = 0;
        std::string folder;
        if (node.getProperty("id", id) != 0 && node.getProperty("folder", folder) != 0)
            languages.emplace_back(id, folder);
    });
}
