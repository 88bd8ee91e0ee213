#include "imaging/ISPParamParse.h"

#include "host/XmlConfigureTool.h"

#include <cstdio>

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
    config.getProperty("realTimeUpdate", m_bRealTimeUpdate);
    config.getProperty("time", m_nDelayTime);

    std::vector<XmlConfigureNode> types;
    config.getAllConfigNodeList(types);
    for (const XmlConfigureNode& type : types)
        parseType(type);
    tool.close();
    return 1;
}

void ISPParamParse::parseType(const XmlConfigureNode& typeNode) {
    bool enable = false;
    if (!typeNode.getProperty("enable", enable))
        return;
    const std::string type = typeNode.getNodeName();
    m_objISPParam.setEnableFlag(type, enable);

    std::vector<XmlConfigureNode> units;
    typeNode.getAllConfigNodeList(units);
    for (const XmlConfigureNode& unit : units)
        parseUnit(type, unit);
}

void ISPParamParse::parseUnit(const std::string& type, const XmlConfigureNode& unitNode) {
    int min = 0;
    int max = 0;
    if (!unitNode.getProperty("min", min) || !unitNode.getProperty("max", max))
        return;
    const std::string unit = unitNode.getNodeName();

    std::vector<XmlConfigureItem> items;
    unitNode.getItemList(items);
    for (const XmlConfigureItem& item : items) {
        std::string name;
        int value = 0;
        if (item.getProperty("name", name) && item.getProperty("value", value))
            m_objISPParam.setParam(type, unit, min, max, name, value);
    }
}

int ISPParamParse::getISPParam(ISPParam& target) const {
    target = m_objISPParam;
    return 1;
}
