#include "imaging/ISPParamParse.h"

#include "host/XmlConfigureTool.h"

#include <cstdio>

namespace {

/// A setting may be missing, but not be something else.
template <class Value>
void readSetting(const XmlConfigureNode& node, const char* name, Value& value) {
    std::string text;
    if (node.getProperty(name, text) && !node.getProperty(name, value))
        std::printf("%s: \"%s\" can not be \"%s\"\n", ISPParamParse::FilePath, name, text.c_str());
}

} // namespace

int ISPParamParse::parse() {
    XmlConfigureTool tool;
    if (!tool.open(FilePath, 1, XmlConfigureTool::ReadOnly)) {
        std::printf("open %s failed\n", FilePath);
        return 0;
    }
    XmlConfigureNode config;
    if (!tool.getConfigNode("config", config)) {
        std::printf("%s has no node \"config\"\n", FilePath);
        return 0;
    }
    readSetting(config, "realTimeUpdate", m_bRealTimeUpdate);
    readSetting(config, "time", m_nDelayTime);

    std::vector<XmlConfigureNode> types;
    config.getAllConfigNodeList(types);
    for (const XmlConfigureNode& type : types)
        parseType(type);
    tool.close();
    return 1;
}

void ISPParamParse::parseType(const XmlConfigureNode& typeNode) {
    bool enable = false;
    const std::string type = typeNode.getNodeName();
    if (!typeNode.getProperty("enable", enable)) {
        std::printf("%s: %s skipped, no \"enable\" of 0, 1, true or false\n", FilePath, type.c_str());
        return;
    }
    m_objISPParam.setEnableFlag(type, enable);

    std::vector<XmlConfigureNode> units;
    typeNode.getAllConfigNodeList(units);
    for (const XmlConfigureNode& unit : units)
        parseUnit(type, unit);
}

void ISPParamParse::parseUnit(const std::string& type, const XmlConfigureNode& unitNode) {
    int min = 0;
    int max = 0;
    const std::string unit = unitNode.getNodeName();
    if (!unitNode.getProperty("min", min) || !unitNode.getProperty("max", max)) {
        std::printf("%s: %s %s skipped, \"min\" or \"max\" is no number\n", FilePath, type.c_str(), unit.c_str());
        return;
    }

    std::vector<XmlConfigureItem> items;
    unitNode.getItemList(items);
    for (const XmlConfigureItem& item : items) {
        std::string name;
        int value = 0;
        if (item.getProperty("name", name) && item.getProperty("value", value))
            m_objISPParam.setParam(type, unit, min, max, name, value);
        else
            std::printf("%s: an item of %s %s skipped, no name or no number\n", FilePath, type.c_str(), unit.c_str());
    }
}

int ISPParamParse::getISPParam(ISPParam& target) const {
    target = m_objISPParam;
    return 1;
}
