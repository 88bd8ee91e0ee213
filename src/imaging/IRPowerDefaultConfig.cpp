#include "imaging/IRPowerDefaultConfig.h"

#include "host/DiskManager.h"
#include "host/IRPowerParamV2.h"

#include <vector>

namespace {

constexpr const char* RootName = "IRConfig";
constexpr const char* VersionName = "version"; // the node and its property alike
constexpr const char* TableName = "IRPower";

enum Result { Done = 0, NoNode = -1, NoItems = -2, NoProperty = -3, NoFile = -4 };

int addVersion(XmlConfigureTool& tool, int toolArg, int version) {
    XmlConfigureItem item(toolArg);
    if (!item.setProperty(VersionName, version))
        return 0;
    XmlConfigureNode node(VersionName, toolArg);
    node.addItem(item);
    tool.addConfigNode(node);
    return 1;
}

int readStep(const XmlConfigureItem& item, IRPowerItem& step) {
    int zoomUp = 0;
    int far = 0;
    int middle = 0;
    int near = 0;
    if (!item.getProperty("zoomup", zoomUp) || !item.getProperty("far", far) || !item.getProperty("mid", middle) ||
        !item.getProperty("near", near))
        return 0;
    step.setZoomUp(zoomUp);
    step.setFarPower(far);
    step.setMidPower(middle);
    step.setNearPower(near);
    return 1;
}

} // namespace

int IRPowerDefaultConfig::open(int toolArg, const std::string& path, int mode) {
    if (DiskManager::isFileExist(path.c_str()))
        return m_Tool.open(path, toolArg, mode);
    if (mode == XmlConfigureTool::ReadOnly)
        return 0;
    m_Tool.close(); // what an earlier read left open has another root
    m_Tool.setRootNodeName(RootName);
    if (!m_Tool.open(path, toolArg, XmlConfigureTool::Create) || !addVersion(m_Tool, toolArg, m_nVersion))
        return 0;
    m_bVersionValid = true;
    return 1;
}

void IRPowerDefaultConfig::close() { m_Tool.close(); }

int IRPowerDefaultConfig::load(int toolArg, const std::string& path, IRPowerParamV2& param) {
    if (!open(toolArg, path, XmlConfigureTool::ReadOnly))
        return NoFile;
    XmlConfigureNode node(TableName, toolArg);
    if (!m_Tool.getConfigNode(TableName, node))
        return NoNode;
    std::vector<XmlConfigureItem> items;
    if (!node.getItemList(items))
        return NoItems;
    std::vector<IRPowerItem> steps(items.size());
    for (std::size_t i = 0; i < items.size(); ++i)
        if (!readStep(items[i], steps[i]))
            return NoProperty;
    param.setIrPower(steps);
    close();
    return Done;
}

int IRPowerDefaultConfig::getVersion(int toolArg, const std::string& path, int& version) {
    if (!m_bVersionValid) {
        if (!open(toolArg, path, XmlConfigureTool::ReadOnly))
            return NoFile;
        XmlConfigureNode node(VersionName, toolArg);
        if (!m_Tool.getConfigNode(VersionName, node))
            return NoNode;
        std::vector<XmlConfigureItem> items;
        if (!node.getItemList(items) || items.empty())
            return NoItems;
        if (!items.front().getProperty(VersionName, m_nVersion))
            return NoProperty;
        m_bVersionValid = true;
    }
    version = m_nVersion;
    return Done;
}

int IRPowerDefaultConfig::setVersion(int toolArg, const std::string& path, int version) {
    if (m_bVersionValid && m_nVersion == version)
        return Done;
    if (!open(toolArg, path, XmlConfigureTool::Change))
        return NoFile;
    while (m_Tool.removeConfigNode(VersionName))
        ;
    if (!addVersion(m_Tool, toolArg, version))
        return NoProperty;
    // The file is written here. Taken for done on a full disk, the version would never be written again.
    m_bVersionValid = m_Tool.close() != 0;
    if (!m_bVersionValid)
        return NoProperty;
    m_nVersion = version;
    return Done;
}
