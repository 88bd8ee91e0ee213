#include "controller/SchemeChoice.h"

#include "host/BRFile.h"
#include "host/DevicePaths.h"
#include "host/ScopedLock.h"
#include "host/XmlConfigureTool.h"

#include <charconv>
#include <cstdio>
#include <vector>

namespace sensorcontrol {

namespace {

using sensorhost::ScopedLock;

constexpr int XmlFormat = 1;
constexpr const char* NodeName = "paramScheme";

bool exists() {
    BRFile file;
    const bool isEmpty = file.open(paths::SchemeChoiceFile, BRFile::Read) && file.getLength() == 0;
    return BRFile::isExist(paths::SchemeChoiceFile) && !isEmpty;
}

bool open(XmlConfigureTool& tool, int mode) {
    if (tool.open(paths::SchemeChoiceFile, XmlFormat, mode))
        return true;
    std::printf("open %s failed\n", paths::SchemeChoiceFile);
    return false;
}

XmlConfigureItem makeItem(const char* name, int value) {
    XmlConfigureItem item(XmlFormat);
    item.setProperty("name", std::string(name));
    item.setProperty("value", std::to_string(value));
    return item;
}

bool findItem(const XmlConfigureTool& tool, const std::string& name, XmlConfigureItem& found) {
    XmlConfigureNode node;
    std::vector<XmlConfigureItem> items;
    if (!tool.getConfigNode(NodeName, node) || !node.getItemList(items))
        return false;
    for (const XmlConfigureItem& item : items) {
        std::string itemName;
        if (item.getProperty("name", itemName) && itemName == name) {
            found = item;
            return true;
        }
    }
    return false;
}

} // namespace

bool SchemeChoice::isThere() {
    ScopedLock lock(m_Mutex);
    return exists();
}

bool SchemeChoice::mayBeRead() {
    ScopedLock lock(m_Mutex);
    BRFile file;
    return file.open(paths::SchemeChoiceFile, BRFile::Read) != 0;
}

bool SchemeChoice::isSound() {
    ScopedLock lock(m_Mutex);
    XmlConfigureTool tool;
    return open(tool, XmlConfigureTool::ReadOnly);
}

int SchemeChoice::create(int scheme, int mode, bool makeAnew) {
    ScopedLock lock(m_Mutex);
    if (!makeAnew && exists())
        return 1;
    XmlConfigureTool tool;
    if (!open(tool, XmlConfigureTool::Create))
        return 0;
    tool.setRootNodeName("sensor");
    XmlConfigureNode node(NodeName, XmlFormat);
    node.addItem(makeItem(IndexName, scheme));
    node.addItem(makeItem(ModeName, mode));
    tool.addConfigNode(node);
    if (!tool.close())
        std::printf("%s can not be written\n", paths::SchemeChoiceFile);
    return 1;
}

int SchemeChoice::setValue(const std::string& name, const std::string& value) {
    ScopedLock lock(m_Mutex);
    XmlConfigureTool tool;
    if (!exists() || !open(tool, XmlConfigureTool::Change))
        return 0;
    XmlConfigureItem item(XmlFormat);
    const bool isFound = findItem(tool, name, item);
    if (isFound)
        item.setProperty("value", value);
    const int closed = tool.close();
    return isFound && closed ? 1 : 0;
}

int SchemeChoice::getValue(const std::string& name, std::string& value) {
    ScopedLock lock(m_Mutex);
    XmlConfigureTool tool;
    if (!exists() || !open(tool, XmlConfigureTool::ReadOnly))
        return 0;
    XmlConfigureItem item(XmlFormat);
    return findItem(tool, name, item) && item.getProperty("value", value) ? 1 : 0;
}

int SchemeChoice::getNumber(const char* name, int& number) {
    std::string text;
    int value = 0;
    if (!getValue(name, text))
        return 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return 0;
    number = value;
    return 1;
}

} // namespace sensorcontrol
