#include "FullDisk.h"
#include "host/ModuleConfigureParser.h"
#include "host/SensorLanguageConfig.h"
#include "host/XmlConfigureTool.h"
#include "host/linux/HostSettings.h"
#include "support/TempRoot.h"

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr const char* Path = "/mnt/mtd/code/config_file/sensor.xml";

/// A node with an item for each value.
XmlConfigureNode makeNode(const std::string& name, const std::vector<std::string>& values) {
    XmlConfigureNode node(name);
    XmlConfigureItem item;
    for (const std::string& value : values) {
        EXPECT_NE(item.setProperty("value", value), 0);
        EXPECT_NE(node.addItem(item), 0) << "a copy";
    }
    return node;
}

/// The file's root, and its nodes with the values of their items: "root node:a,b, node:".
std::string read(const std::string& path) {
    XmlConfigureTool tool;
    std::vector<XmlConfigureNode> nodes;
    if (tool.open(path, 1, XmlConfigureTool::ReadOnly) == 0 || tool.getAllConfigNodeList(nodes) == 0)
        return "unreadable";
    EXPECT_EQ(tool.removeConfigNode("n") + tool.addConfigNode(XmlConfigureNode("n")), 0) << "opened for reading only";
    std::string text = tool.getRootNodeName();
    for (const XmlConfigureNode& node : nodes) {
        text += ' ' + node.getNodeName() + ':';
        std::vector<XmlConfigureItem> items;
        EXPECT_NE(node.getItemList(items), 0);
        for (const XmlConfigureItem& item : items) {
            std::string value = "(none)";
            item.getProperty("value", value);
            text += value + ',';
        }
    }
    return text;
}

TEST(XmlConfigureTool, CreatesReadsChangesAndReplaces) {
    const TempRoot root;
    const std::string odd = "<&>\"' \xc3\xa4\n\t";
    XmlConfigureTool tool;
    EXPECT_NE(tool.setRootNodeName("sensor"), 0);
    ASSERT_NE(tool.open(Path, 1, XmlConfigureTool::Create), 0);
    EXPECT_NE(tool.addConfigNode(makeNode("n", {"3", odd})), 0);
    EXPECT_NE(tool.addConfigNode(makeNode("m", {"9"})), 0);
    EXPECT_FALSE(root.exists(Path)) << "written at the end";
    ASSERT_NE(tool.close(), 0);
    EXPECT_EQ(read(Path), "sensor n:3," + odd + ", m:9,");

    XmlConfigureNode node;
    std::vector<XmlConfigureItem> items;
    ASSERT_NE(tool.open(Path, 1, XmlConfigureTool::Change), 0);
    ASSERT_NE(tool.getConfigNode("n", node), 0);
    ASSERT_NE(node.getItemList(items), 0);
    XmlConfigureItem item = items.at(1);
    EXPECT_NE(item.setProperty("value", 0), 0) << "a copy of a document's item stands for the same element";
    EXPECT_EQ(tool.removeConfigNode("m"), 1);
    EXPECT_EQ(tool.removeConfigNode("m"), 0);
    tool.addConfigNode(makeNode("m", {"7"}));
    EXPECT_NE(tool.close(), 0);
    EXPECT_EQ(tool.close(), 0);
    EXPECT_EQ(read(Path), "sensor n:3,0, m:7,");
}

TEST(XmlConfigureTool, ReadsPropertiesByType) {
    const TempRoot root;
    root.write("/x.xml",
               "<r><n a='12' b='-7' c='true' d='0' e='' f='12x' g='99999999999' h='yes'/><item/><n a='1'/></r>");
    XmlConfigureTool tool;
    ASSERT_NE(tool.open("/x.xml", 1, XmlConfigureTool::ReadOnly), 0);
    XmlConfigureNode node;
    EXPECT_EQ(tool.getConfigNode("missing", node) + tool.getConfigNode("item", node), 0);
    ASSERT_NE(tool.getConfigNode("n", node), 0);
    std::istringstream rows(
        "a 12 12 ? b -7 -7 ? c true 5 1 d 0 0 0 f 12x 5 ? g 99999999999 5 ? h yes 5 ? missing ? 5 ?");
    std::string text = "?";
    EXPECT_NE(node.getProperty("e", text), 0);
    EXPECT_EQ(text, "");
    std::string name;
    int number = 0;
    for (char truth = 0; rows >> name >> text >> number >> truth;) {
        std::string asText = "?";
        int asNumber = 5;
        const int isThere = node.getProperty(name, asText);
        const int isNumber = node.getProperty(name, asNumber);
        EXPECT_EQ(isThere, asText != "?") << name;
        EXPECT_EQ(asText, text);
        EXPECT_EQ(isNumber, asNumber != 5) << name;
        EXPECT_EQ(asNumber, number) << name;
        for (const bool before : {false, true}) {
            bool asTruth = before;
            const int isTruth = node.getProperty(name, asTruth);
            EXPECT_EQ(isTruth, truth != '?') << name;
            EXPECT_EQ(asTruth, truth == '?' ? before : truth == '1') << name;
        }
    }
    XmlConfigureItem item;
    for (const char* odd : {"", "a b", "1a", "a=", "<"})
        EXPECT_EQ(item.setProperty(odd, 1), 0) << odd;
    EXPECT_EQ(item.setProperty("a", std::string("x\0y", 3)), 0);
}

std::string times(int count, const std::string& part) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += part;
    return text;
}

std::string nested(int depth, const std::string& between = "") {
    return times(depth, "<a>" + between) + times(depth, "</a>");
}

TEST(XmlConfigureTool, RefusesBrokenFiles) {
    const TempRoot root;
    std::string attributes;
    for (int i = 0; i < 1025; ++i)
        attributes += 'b' + std::to_string(i) + "='' ";
    std::vector<std::string> texts{std::string(100, '\0'), nested(100'000), "<a " + attributes + "/>",
                                   "<a>" + times(32'768, "<b/>") + "</a>",
                                   "<a>" + std::string(1024 * 1024, ' ') + "</a>"};
    for (const char* const text : {"", "only text", "<!-- nothing -->", "<a><b></b>", "<a></a></a>", "<a><b></a></b>",
                                   "<a b=", "<a b=\"c", "<a><!-- x </a>", "\x7f\x45LF\x01\x02<<<>>>\"'"})
        texts.emplace_back(text);
    for (const std::string& text : texts) {
        SCOPED_TRACE(text.substr(0, 40));
        root.write("/x.xml", text);
        XmlConfigureTool tool;
        EXPECT_EQ(tool.open("/x.xml", 1, XmlConfigureTool::ReadOnly), 0);
        EXPECT_EQ(tool.open("/x.xml", 1, XmlConfigureTool::Change), 0);
        XmlConfigureNode node;
        std::vector<XmlConfigureNode> nodes;
        EXPECT_EQ(tool.getConfigNode("a", node) + tool.getAllConfigNodeList(nodes) + tool.addConfigNode(node), 0);
        EXPECT_EQ(tool.close(), 0);
        EXPECT_EQ(root.read("/x.xml"), text);
    }
    XmlConfigureTool tool;
    EXPECT_EQ(tool.open("/missing.xml", 1, XmlConfigureTool::ReadOnly), 0);
    EXPECT_EQ(tool.open("/missing.xml", 1, XmlConfigureTool::Change), 0);
    EXPECT_EQ(tool.open("/x.xml/below.xml", 1, XmlConfigureTool::Create), 0);
    EXPECT_EQ(tool.open("/x.xml", 1, 4), 0);
    EXPECT_FALSE(root.exists("/missing.xml"));
}

TEST(XmlConfigureTool, ReadsUnusualButSoundFilesUpToADepth) {
    const TempRoot root;
    const auto rootOf = [&root](const std::string& text) {
        root.write("/x.xml", text);
        return read("/x.xml").substr(0, 2);
    };
    EXPECT_EQ(
        rootOf("\xef\xbb\xbf<?xml version=\"1.0\"?>\n<!DOCTYPE a>\n<!-- > </b> \" -->\n<a b='>' c=\"'\"><d/></a>"),
        "a ");
    EXPECT_EQ(rootOf("<a/>" + std::string(50, '\0') + "</rest of an older text>"), "a");
    for (const char* const hiding : {"", "<!-- </a> -->", "<b c='</a>'/>", "<![CDATA[</a>]]>",
                                     "<?xml version=\"></a>\"?>", "<!x </a>", "&#x41;"}) {
        EXPECT_EQ(rootOf(nested(63, hiding)), "a ") << hiding;
        EXPECT_EQ(rootOf(nested(65, hiding)), "un") << hiding;
    }
}

TEST(XmlConfigureTool, WhatWouldNotBeReadBackAsItIsLeavesTheOldFile) {
    const TempRoot root;
    const auto closes = [&root](const std::string& text, const std::string& value) {
        root.write("/x.xml", text);
        XmlConfigureTool tool;
        EXPECT_NE(tool.open("/x.xml", 1, XmlConfigureTool::Change), 0) << text;
        XmlConfigureNode node("n");
        EXPECT_NE(node.setProperty("v", value), 0);
        EXPECT_NE(tool.addConfigNode(node), 0);
        const bool isClosed = tool.close() != 0;
        EXPECT_EQ(root.read("/x.xml") == text, !isClosed) << text;
        return isClosed;
    };
    EXPECT_TRUE(closes("<?xml version='1.0'?><!-- a --><!b><a c='&lt;&quot;'>d<![CDATA[<e>]]><f/></a>", "&amp;"));
    EXPECT_FALSE(closes("<a/>", "\xff"));
    for (const char* const odd : {"<a>&#x20;b</a>", "<?xml version='\"'?><a/>", "<?xml encoding='&amp;lt;'?><a/>",
                                  "<?xml standalone='&quot;?><b/>'?><a/>"})
        EXPECT_FALSE(closes(odd, "1")) << odd;
}

TEST(XmlConfigureTool, AFullDiskLeavesTheOldFile) {
    const TempRoot root;
    root.write(Path, "<sensor/>");
    const FullDisk disk(1000);
    for (const auto& [path, mode] :
         {std::pair(Path, XmlConfigureTool::Change), {"/new.xml", XmlConfigureTool::Create}}) {
        XmlConfigureTool tool;
        ASSERT_NE(tool.open(path, 1, mode), 0);
        tool.addConfigNode(makeNode("more", {std::string(2000, 'x')}));
        EXPECT_EQ(tool.close(), 0);
    }
    EXPECT_EQ(root.read(Path), "<sensor/>");
    EXPECT_FALSE(root.exists("/new.xml"));
}

const std::string SampleFolder = std::string(SENSORCONTROL_SOURCE_DIR) + "/docs/samples/moduleConfig/";

TEST(Samples, TheModuleListAndItsSelectors) {
    const auto select = [](const char* product, const char* board) {
        std::vector<ModuleConfigure> modules;
        EXPECT_NE(ModuleConfigureParser::parse(SampleFolder + "moduleConfig.xml", product, board, modules), 0);
        std::string text;
        for (const ModuleConfigure& module : modules)
            text += std::to_string(module.getModuleId()) + ' ';
        return text + (modules.size() == 1 ? modules[0].getDetail() + ' ' + modules[0].getParameters() : "");
    };
    EXPECT_EQ(select("", ""), "16 16 4 6 ");
    EXPECT_EQ(select("dome", ""), "16 16 ");
    EXPECT_EQ(select("", "A1"), "16 4 6 ");
    EXPECT_EQ(select("turret", "A1"), "");
    EXPECT_EQ(select("bullet", "B2").substr(0, 2), "4 ");
    EXPECT_EQ(select("dome", "A2"), "16 RS485=/dev/ttyS1;isInfrared=1;generation=3;GPIO=0,12,1 "
                                    "RS485=9600,8,1,0;GUIConfig=cameraGui.xml;Prefix=camera");
}

TEST(Samples, TheLanguageListAndEntriesThatLackSomething) {
    const auto read = [](const std::string& path) {
        std::vector<SensorLanguageConfig> languages;
        std::string text = std::to_string(SensorLanguageConfigParser::parse(path, languages));
        for (const SensorLanguageConfig& language : languages)
            text += ' ' + std::to_string(language.getLanguageId()) + ' ' + language.getFolderName();
        return text;
    };
    EXPECT_EQ(read(SampleFolder + "sensorConfig/SensorLanguageConfig.xml"), "1 1 english 2 german");
    const TempRoot root;
    root.write("/l.xml", "<l><language id='x' folder='a'/><language id='2'/><other id='3' folder='b'/>"
                         "<language id='4' folder='c'/></l>");
    EXPECT_EQ(read("/l.xml"), "1 4 c");
    EXPECT_EQ(read("/missing.xml"), "0");
    std::vector<ModuleConfigure> modules(1);
    EXPECT_EQ(ModuleConfigureParser::parse("/missing.xml", "", "", modules), 0);
    EXPECT_EQ(modules.size(), 1U);
}

} // namespace
