#include "FullDisk.h"
#include "host/ModuleConfigureParser.h"
#include "host/SensorLanguageConfig.h"
#include "host/XmlConfigureTool.h"
#include "host/linux/HostSettings.h"
#include "support/TempRoot.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr const char* PATH = "/mnt/mtd/code/config_file/sensor.xml";

void create(const char* path, const std::string& index, const std::string& mode) {
    XmlConfigureTool tool;
    ASSERT_NE(tool.open(path, 1, XmlConfigureTool::Create), 0);
    ASSERT_NE(tool.setRootNodeName("sensor"), 0);
    XmlConfigureNode node("paramScheme", 1);
    for (const auto& [name, value] : {std::pair{"SchemeIndex", index}, {"SchemeMode", mode}}) {
        XmlConfigureItem item(1);
        EXPECT_NE(item.setProperty("name", std::string(name)), 0);
        EXPECT_NE(item.setProperty("value", value), 0);
        EXPECT_NE(node.addItem(item), 0);
    }
    EXPECT_NE(tool.addConfigNode(node), 0);
    ASSERT_NE(tool.close(), 0);
}

std::string valueOfItem(const char* path, std::size_t number) {
    XmlConfigureTool tool;
    XmlConfigureNode node;
    std::vector<XmlConfigureItem> items;
    std::string value = "(none)";
    if (tool.open(path, 1, XmlConfigureTool::ReadOnly) == 0 || tool.getConfigNode("paramScheme", node) == 0)
        return "(no node)";
    node.getItemList(items);
    if (number < items.size())
        items[number].getProperty("value", value);
    return value;
}

TEST(XmlConfigureTool, createsReadsAndChanges) {
    const TempRoot root;
    const std::string odd = "<&>\"' \xc3\xa4\n\t";
    create(PATH, "3", odd);
    EXPECT_EQ(valueOfItem(PATH, 0), "3");
    EXPECT_EQ(valueOfItem(PATH, 1), odd);
    EXPECT_EQ(valueOfItem(PATH, 2), "(none)");
    {
        XmlConfigureTool tool;
        ASSERT_NE(tool.open(PATH, 1, XmlConfigureTool::Change), 0);
        EXPECT_EQ(tool.getRootNodeName(), "sensor");
        XmlConfigureNode node;
        ASSERT_NE(tool.getConfigNode("paramScheme", node), 0);
        std::vector<XmlConfigureItem> items;
        ASSERT_NE(node.getItemList(items), 0);
        ASSERT_EQ(items.size(), 2U);
        // A copy of a document's item stands for the same element.
        XmlConfigureItem item = items[1];
        EXPECT_NE(item.setProperty("value", 0), 0);
        EXPECT_NE(tool.close(), 0);
        EXPECT_EQ(tool.close(), 0);
    }
    EXPECT_EQ(valueOfItem(PATH, 0), "3");
    EXPECT_EQ(valueOfItem(PATH, 1), "0");
}

TEST(XmlConfigureTool, replacesANode) {
    const TempRoot root;
    XmlConfigureTool tool;
    EXPECT_NE(tool.setRootNodeName("IRConfig"), 0);
    ASSERT_NE(tool.open("/ir.xml", 1, XmlConfigureTool::Create), 0);
    for (const int version : {1, 7}) {
        EXPECT_EQ(tool.removeConfigNode("version"), version == 1 ? 0 : 1);
        XmlConfigureNode node("version");
        XmlConfigureItem item;
        item.setProperty("version", version);
        node.addItem(item);
        item.setProperty("version", 99);
        tool.addConfigNode(node);
    }
    ASSERT_NE(tool.close(), 0);
    ASSERT_NE(tool.open("/ir.xml", 1, XmlConfigureTool::ReadOnly), 0);
    EXPECT_EQ(tool.getRootNodeName(), "IRConfig");
    std::vector<XmlConfigureNode> nodes;
    ASSERT_NE(tool.getAllConfigNodeList(nodes), 0);
    ASSERT_EQ(nodes.size(), 1U);
    std::vector<XmlConfigureItem> items;
    nodes[0].getItemList(items);
    int version = 0;
    ASSERT_EQ(items.size(), 1U);
    EXPECT_NE(items[0].getProperty("version", version), 0);
    EXPECT_EQ(version, 7);
    EXPECT_EQ(tool.removeConfigNode("version"), 0) << "opened for reading only";
    EXPECT_EQ(tool.addConfigNode(nodes[0]), 0);
}

TEST(XmlConfigureTool, readsPropertiesByType) {
    const TempRoot root;
    root.write("/x.xml",
               "<r><n a='12' b='-7' c='true' d='0' e='' f='12x' g='99999999999' h='yes'/><item/><n z='1'/></r>");
    XmlConfigureTool tool;
    ASSERT_NE(tool.open("/x.xml", 1, XmlConfigureTool::ReadOnly), 0);
    XmlConfigureNode node;
    EXPECT_EQ(tool.getConfigNode("missing", node), 0);
    EXPECT_EQ(tool.getConfigNode("item", node), 0);
    ASSERT_NE(tool.getConfigNode("n", node), 0);
    int number = 5;
    bool truth = false;
    std::string text = "?";
    EXPECT_NE(node.getProperty("b", number), 0);
    EXPECT_NE(node.getProperty("c", truth), 0);
    for (const char* name : {"e", "f", "g", "missing"})
        EXPECT_EQ(node.getProperty(name, number), 0) << name;
    for (const char* name : {"a", "e", "h", "missing"})
        EXPECT_EQ(node.getProperty(name, truth), 0) << name;
    EXPECT_EQ(node.getProperty("missing", text), 0);
    EXPECT_EQ(number, -7);
    EXPECT_TRUE(truth);
    EXPECT_EQ(text, "?");
    EXPECT_NE(node.getProperty("d", truth), 0);
    EXPECT_FALSE(truth);
    EXPECT_NE(node.getProperty("e", text), 0);
    EXPECT_EQ(text, "");

    XmlConfigureItem item;
    for (const char* name : {"", "a b", "1a", "a=", "<"})
        EXPECT_EQ(item.setProperty(name, 1), 0) << name;
    EXPECT_EQ(item.setProperty("a", std::string("x\0y", 3)), 0);
}

std::string nested(int depth, const std::string& between = "") {
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "<a>" + between;
    for (int i = 0; i < depth; ++i)
        text += "</a>";
    return text;
}

template <class Part>
std::string repeated(int count, Part part) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += part(i);
    return text;
}

std::string unclosed(int depth, const std::string& between) {
    return repeated(depth, [&](int) { return "<a>" + between; });
}

TEST(XmlConfigureTool, refusesBrokenFiles) {
    const TempRoot root;
    const std::vector<std::pair<const char*, std::string>> files{
        {"empty", ""},
        {"no element", "only text"},
        {"comment only", "<!-- nothing -->"},
        {"not closed", "<a><b></b>"},
        {"closed twice", "<a></a></a>"},
        {"crossed", "<a><b></a></b>"},
        {"cut in a tag", "<a b="},
        {"cut in a value", "<a b=\"c"},
        {"cut in a comment", "<a><!-- x </a>"},
        {"zeros", std::string(100, '\0')},
        {"noise", "\x7f\x45LF\x01\x02<<<>>>\"'"},
        {"deep", nested(100'000)},
        {"deep, hidden by comments", nested(100'000, "<!-- </a> -->")},
        {"deep, hidden by values", nested(100'000, "<b c='</a>'/>")},
        {"deep, hidden by character data", nested(50'000, "<![CDATA[</a>]]>")},
        {"deep, hidden by declarations", nested(50'000, "<?xml version=\"></a>\"?>")},
        {"deep, hidden by unknown tags", nested(50'000, "<!x \"></a>\">")},
        {"deep, hidden by character references", unclosed(50'000, "&#x</a>x41;")},
        {"too many attributes", "<a " + repeated(1025, [](int i) { return 'b' + std::to_string(i) + "='' "; }) + "/>"},
        {"too many elements", "<a>" + repeated(32'768, [](int) { return "<b/>"; }) + "</a>"},
        {"long", "<a>" + std::string(1024 * 1024, ' ') + "</a>"},
    };
    for (const auto& [name, text] : files) {
        root.write("/x.xml", text);
        XmlConfigureTool tool;
        EXPECT_EQ(tool.open("/x.xml", 1, XmlConfigureTool::ReadOnly), 0) << name;
        EXPECT_EQ(tool.open("/x.xml", 1, XmlConfigureTool::Change), 0) << name;
        EXPECT_EQ(tool.close(), 0) << name;
        EXPECT_EQ(root.read("/x.xml"), text) << name;
        XmlConfigureNode node;
        std::vector<XmlConfigureNode> nodes;
        EXPECT_EQ(tool.getConfigNode("a", node), 0);
        EXPECT_EQ(tool.getAllConfigNodeList(nodes), 0);
        EXPECT_EQ(tool.addConfigNode(node), 0);
    }
    XmlConfigureTool tool;
    EXPECT_EQ(tool.open("/missing.xml", 1, XmlConfigureTool::ReadOnly), 0);
    EXPECT_EQ(tool.open("/missing.xml", 1, XmlConfigureTool::Change), 0);
    EXPECT_EQ(tool.open("/x.xml/below.xml", 1, XmlConfigureTool::Create), 0);
    EXPECT_EQ(tool.open("/x.xml", 1, 4), 0);
    EXPECT_FALSE(root.exists("/missing.xml"));
}

TEST(XmlConfigureTool, readsUnusualButSoundFiles) {
    const TempRoot root;
    const std::vector<std::string> texts{
        nested(64),
        "\xef\xbb\xbf<?xml version=\"1.0\"?>\n<!DOCTYPE a>\n<!-- > </b> \" -->\n<a b='>' c=\"'\"><d/></a>\n",
        "<a/>" + std::string(50, '\0') + "</rest of an older text>",
        "<a><![CDATA[</a>]]></a>",
    };
    for (const std::string& text : texts) {
        root.write("/x.xml", text);
        XmlConfigureTool tool;
        EXPECT_NE(tool.open("/x.xml", 1, XmlConfigureTool::ReadOnly), 0) << text;
        EXPECT_EQ(tool.getRootNodeName(), "a") << text;
    }
}

TEST(XmlConfigureTool, aFullDiskLeavesTheOldFile) {
    const TempRoot root;
    create(PATH, "3", "1");
    const std::string before = root.read(PATH);
    XmlConfigureTool tool;
    ASSERT_NE(tool.open(PATH, 1, XmlConfigureTool::Change), 0);
    XmlConfigureNode node("more");
    node.setProperty("text", std::string(2000, 'x'));
    tool.addConfigNode(node);
    const FullDisk disk(1000);
    EXPECT_EQ(tool.close(), 0);
    EXPECT_EQ(root.read(PATH), before);
    EXPECT_NE(tool.open("/new.xml", 1, XmlConfigureTool::Create), 0);
    tool.addConfigNode(node);
    EXPECT_EQ(tool.close(), 0);
    EXPECT_FALSE(root.exists("/new.xml"));
}

std::string idsOf(const std::vector<ModuleConfigure>& modules) {
    std::string ids;
    for (const ModuleConfigure& module : modules)
        ids += std::to_string(module.getModuleId()) + ' ';
    return ids;
}

TEST(Samples, theModuleListAndItsSelectors) {
    const std::string file = std::string(SENSORCONTROL_SOURCE_DIR) + "/docs/samples/moduleConfig/moduleConfig.xml";
    const auto select = [&](const char* product, const char* board) {
        std::vector<ModuleConfigure> modules;
        EXPECT_NE(ModuleConfigureParser::parse(file, product, board, modules), 0);
        return idsOf(modules);
    };
    EXPECT_EQ(select("", ""), "16 16 4 6 ");
    EXPECT_EQ(select("dome", ""), "16 16 ");
    EXPECT_EQ(select("bullet", "B2"), "4 ");
    EXPECT_EQ(select("", "A1"), "16 4 6 ");
    EXPECT_EQ(select("turret", "A1"), "");
    std::vector<ModuleConfigure> modules(1);
    ASSERT_NE(ModuleConfigureParser::parse(file, "dome", "A2", modules), 0);
    ASSERT_EQ(modules.size(), 2U);
    EXPECT_EQ(modules[1].getDetail(), "RS485=/dev/ttyS1;isInfrared=1;generation=3;GPIO=0,12,1");
    EXPECT_EQ(modules[1].getParameters(), "RS485=9600,8,1,0;GUIConfig=cameraGui.xml;Prefix=camera");
    EXPECT_EQ(ModuleConfigureParser::parse("/missing.xml", "", "", modules), 0);
    EXPECT_EQ(modules.size(), 2U);
}

TEST(Samples, theLanguageListAndEntriesThatLackSomething) {
    std::vector<SensorLanguageConfig> languages;
    ASSERT_NE(SensorLanguageConfigParser::parse(std::string(SENSORCONTROL_SOURCE_DIR) +
                                                    "/docs/samples/moduleConfig/sensorConfig/SensorLanguageConfig.xml",
                                                languages),
              0);
    ASSERT_EQ(languages.size(), 2U);
    EXPECT_EQ(languages[1].getLanguageId(), 2);
    EXPECT_EQ(languages[1].getFolderName(), "german");

    const TempRoot root;
    root.write("/l.xml", "<l><language id='x' folder='a'/><language id='2'/><other id='3' folder='b'/>"
                         "<language id='4' folder='c'/></l>");
    languages.clear();
    ASSERT_NE(SensorLanguageConfigParser::parse("/l.xml", languages), 0);
    ASSERT_EQ(languages.size(), 1U);
    EXPECT_EQ(languages[0].getLanguageId(), 4);
    EXPECT_EQ(SensorLanguageConfigParser::parse("/missing.xml", languages), 0);
}

} // namespace
