// The style merge: which blocks apply, where tabs go, what is left of files that make no sense.

#include "uiconfig/MergedXml.h"

#include "support/TempRoot.h"

#include <gmock/gmock.h>

namespace {

using sensorcontrol::MergeReport;
using ::testing::HasSubstr;
using Reading = MergeReport::Reading;

constexpr const char* Original = "/style.xml";
constexpr const char* Modify = "/diversity.xml";

std::string times(int count, const std::string& part) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += part;
    return text;
}

class MergeTest : public ::testing::Test {
protected:
    struct Merged {
        int result = -1;
        std::string text = "untouched";
        std::string console;
        MergeReport report;
    };

    Merged merge(const std::string& original, const std::string& modify, const std::string& detail = "k=1") const {
        m_Root.write(Original, original);
        m_Root.write(Modify, modify);
        return mergeFiles(detail);
    }

    static Merged mergeFiles(const std::string& detail = "k=1") {
        Merged merged;
        MergedXml xml;
        xml.setStyleOriginalPath(Original);
        xml.setStyleModifyPath(Modify);
        xml.setReport(&merged.report);
        ::testing::internal::CaptureStdout();
        merged.result = xml.getStyleMergedString(detail, merged.text);
        merged.console = ::testing::internal::GetCapturedStdout();
        return merged;
    }

    /// The keys of the tabs in their order after one block that applies; "-" for a tab without a key.
    std::string keysAfter(const std::string& tabs, const std::string& directives) const {
        const Merged merged = merge(tabsOf(tabs), "<b k='1'>" + directives + "</b>");
        return merged.result == 1 ? keysOf(merged.text) : merged.console;
    }

    static std::string tabsOf(const std::string& keys) {
        std::string text = "<style>";
        for (const char key : keys)
            text += key == '-' ? std::string("<t/>") : std::string("<t id='") + key + "'/>";
        return text + "</style>";
    }

    static std::string keysOf(const std::string& text) {
        TiXmlDocument document;
        document.Parse(text.c_str());
        std::string keys;
        for (const TiXmlElement* tab = document.RootElement()->FirstChildElement(); tab != nullptr;
             tab = tab->NextSiblingElement())
            keys += tab->FirstAttribute() != nullptr ? tab->FirstAttribute()->Value() : "-";
        return keys;
    }

    TempRoot m_Root;
};

TEST_F(MergeTest, ABlockAppliesIfTheModuleHasOneOfTheValuesOfEachAttribute) {
    const auto applies = [this](const std::string& conditions, const std::string& detail) {
        return keysOf(merge(tabsOf("1"), "<b " + conditions + "><Delete><t k='1'/></Delete></b>", detail).text).empty();
    };
    for (const auto& [conditions, detail] :
         {std::pair("A='20,30' B='1'", "A=30;B=1"), {"A='20, 30'", "A= 30"}, {"A='20,,30'", "A="}})
        EXPECT_TRUE(applies(conditions, detail)) << conditions << ' ' << detail;
    for (const auto& [conditions, detail] : {std::pair("A='20,30' B='1'", "A=30"),
                                             {"A='20,30' B='1'", "A=30;B=2"},
                                             {"A='20'", "A=200"},
                                             {"a='20'", "A=20"},
                                             {"A='20, 30'", "A=30"},
                                             {"A=''", "A="},
                                             {"A='20,'", "A="},
                                             {"", "A=1"}})
        EXPECT_FALSE(applies(conditions, detail)) << conditions << ' ' << detail;
}

TEST_F(MergeTest, EveryTopLevelElementIsABlockAndTheFirstFailingConditionIsTheLastLookedAt) {
    const Merged merged = merge(tabsOf("123"),
                                "<!-- x --><a k='1'><Delete><t i='1'/></Delete></a><b none='1' k='1'/>"
                                "<c k='0'/><d k='1' l='2'><Delete><t i='3'/></Delete></d>",
                                "k=1;l=2");
    EXPECT_EQ(keysOf(merged.text), "2");
    EXPECT_EQ(merged.report.blocks.at(1).conditions.size(), 1U);
    EXPECT_FALSE(merged.report.blocks[1].conditions[0].found);
    EXPECT_EQ(merged.report.blocks.at(3).conditions.size(), 2U);
}

TEST_F(MergeTest, DeletesEveryTabOfAKey) {
    const auto without = [this](const std::string& tabs, const std::string& key) {
        return keysAfter(tabs, "<Delete><x k='" + key + "'/></Delete>");
    };
    EXPECT_EQ(without("1223", "2"), "13");
    EXPECT_EQ(without("1123", "1"), "23");
    EXPECT_EQ(without("123", "9"), "123");
    EXPECT_EQ(without("1x-3", "0"), "1-3") << "a text without a number is 0, no attribute is no key";
    EXPECT_EQ(keysAfter("10-", "<Delete><x/><x k='1'/></Delete><delete><x k='0'/></delete>"), "0-");
    EXPECT_EQ(merge("<s><t b='5' a='9'/><t a=' +7x'/><t a='-3'/><t a='99999999999999'/><o><t a='5'/></o></s>",
                    "<b k='1'><Delete><x z='5' a='9'/><x z='7'/><x z='-3'/><x z='2147483647'/></Delete></b>")
                  .text,
              "<s>\n    <o>\n        <t a=\"5\" />\n    </o>\n</s>\n");
}

TEST_F(MergeTest, NewTabsStandInTheirOrderAfterOrBeforeTheAnchor) {
    EXPECT_EQ(keysAfter("123", "<AddAfter><a k='2'><n k='7'/><n k='8'/></a></AddAfter>"), "12783");
    EXPECT_EQ(keysAfter("123", "<AddBefore><a k='2'><n k='7'/><n k='8'/></a></AddBefore>"), "17823");
    EXPECT_EQ(keysAfter("123", "<AddBefore><a k='1'><n k='7'/></a><a k='7'><n k='8'/></a></AddBefore>"), "87123");
    EXPECT_EQ(keysAfter("1232", "<AddAfter><a k='2'><n k='7'/></a></AddAfter>"), "12732") << "the first of a key";
    EXPECT_EQ(keysAfter("123", "<AddAfter><a k='3'><n k='1'/><n k='7'/></a></AddAfter>"), "17231")
        << "what follows a new tab is placed behind the first tab of its key";
    EXPECT_EQ(
        keysAfter("129", "<AddAfter>" + times(99, "<a k='2'><n k='3'/></a>") + "<a k='3'><n k='7'/></a></AddAfter>"),
        "1237" + times(98, "3") + '9')
        << "a new tab can be the first of its key, as often as one likes";
    EXPECT_EQ(keysAfter("12", "<AddAfter><a k='2'><n k='7'/><n/><n k='8'/></a></AddAfter>"), "127-8");
    EXPECT_EQ(keysAfter("12", "<AddBefore><a k='2'><n/><n k='7'/></a></AddBefore>"), "1-72");
}

TEST_F(MergeTest, AnAnchorThatIsNotThereEndsTheMerge) {
    const std::string lost = "can't find tab by key(4)\nmergeStyleXml failed\n";
    EXPECT_EQ(keysAfter("123", "<AddAfter><a k='4'><n k='7'/></a></AddAfter>"), lost);
    EXPECT_EQ(keysAfter("123", "<AddAfter><a k='4'/></AddAfter>"), "123") << "not looked up without a new tab";
    EXPECT_EQ(keysAfter("123", "<AddBefore><a k='4'/></AddBefore>"), lost) << "looked up at once";
    EXPECT_EQ(keysAfter("0-", "<AddBefore><a/></AddBefore>"), "can't find tab by key(0)\nmergeStyleXml failed\n");

    const Merged merged = merge(tabsOf("34"), "<a k='1'><Delete><t k='4'/></Delete></a>"
                                              "<b k='1'><AddAfter><t k='4'><n k='5'/></t></AddAfter></b><c k='1'/>");
    EXPECT_EQ(merged.text, "untouched");
    EXPECT_EQ(merged.console, lost);
    ASSERT_EQ(merged.report.blocks.size(), 2U);
    EXPECT_FALSE(merged.report.blocks[1].edits.at(0).isDone);
}

TEST_F(MergeTest, FilesAndDetailsThatCannotBeRead) {
    MergedXml xml;
    xml.setStyleModifyPath(Modify);
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(xml.mergeStyleXml("") + xml.deleteTabNode(1), 1);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              "m_strStyleModifyPath or m_strStyleOriginalPath is NULL,Please set path first\n");

    m_Root.write(Original, "<a/>");
    const Merged merged = mergeFiles();
    EXPECT_EQ(merged.console, "mergeStyleXml file open failed \nmergeStyleXml failed\n");
    EXPECT_EQ(merged.report.documents.back().path, Modify);
    EXPECT_EQ(merged.report.documents.back().reading, Reading::NotRead);

    const std::string refused = "parse detail failed\nmergeStyleXml failed\n";
    const Merged broken = merge("<s/>", "<b/><b k='1'/>", "broken");
    EXPECT_EQ(broken.console, refused);
    EXPECT_EQ(broken.report.blocks.at(1).verdict, MergeReport::Verdict::Undecided);
    EXPECT_EQ(merge("<s/>", "<b k='1'/>", "k=" + std::string(16'384, 'x')).console,
              "the module's detail has 16386 bytes, more than the 16384 that are taken\n" + refused);
    EXPECT_EQ(merge("<s/>", "<b/>", "broken").result, 1) << "no condition asks for it";
}

TEST_F(MergeTest, DocumentsOfAnyShapeAreUsedAsFarAsTheyGo) {
    const std::string add = "<b k='1'><AddAfter><t k='1'><n k='7'/></t></AddAfter></b>";
    const std::string drop = "<b k='1'><Delete><t k='1'/></Delete></b>";
    const auto readings = [](const Merged& merged) {
        return std::pair(merged.report.documents.at(0).reading, merged.report.documents.at(1).reading);
    };
    const Merged cutStyle = merge("<s><t k='1'/><t k='2'/", add);
    EXPECT_EQ(keysOf(cutStyle.text), "172");
    EXPECT_EQ(readings(cutStyle), std::pair(Reading::Broken, Reading::Whole));
    const Merged cutVariations = merge("<s><t k='1'/></s>", "<b k='1'><Delete><t k='1'/><t");
    EXPECT_EQ(keysOf(cutVariations.text), "");
    EXPECT_EQ(readings(cutVariations), std::pair(Reading::Whole, Reading::Broken));
    EXPECT_EQ(readings(merge("<s></t>", "<b k='1' k='2'/>")), std::pair(Reading::Broken, Reading::Broken));
    EXPECT_EQ(merge("", drop).text, "") << "nothing to delete is no failure";
    EXPECT_EQ(merge("", add).console, "can't find tab by key(1)\nmergeStyleXml failed\n");
    EXPECT_EQ(merge(std::string("<s/>\0<t/>", 9), "").text, "<s />\n");
    EXPECT_EQ(merge("<?xml version='1.0' encoding='GB2312'?><s t='\xc4\xe3'/>", "").text,
              "<?xml version=\"1.0\" encoding=\"GB2312\" ?>\n<s t=\"\xc4\xe3\" />\n");
    for (const char* const text : {"<?xml ", "<?xml encoding", "<s t='\xf0", "<s>\xf0", "\xef\xbb\xbf<s>\xef", "<s>&#x",
                                   "<s>&#0;</s>", "<", "<s t", "<![CDATA[", "<!-- "}) {
        EXPECT_EQ(merge(text, text).result, 1) << text;
        merge("<s><t k='1'/></s>", std::string("<b k='1'><AddBefore><a k='1'>") + text);
    }
}

TEST_F(MergeTest, CostsInStepWithTabsAndEditsWhereverTheTabsStand) {
    const std::string tabs = "<s>" + times(15'000, "<t a='1'/>") + "<t a='2'/>" + times(15'000, "<t a='1'/>") + "</s>";
    for (const auto& [name, entry, perEdit] : {std::tuple<std::string, const char*, int>("Delete", "<t a='3'/>", 1),
                                               {"AddAfter", "<t a='2'><n a='2'/></t>", 16},
                                               {"AddBefore", "<t a='2'><n a='2'/></t>", 16}}) {
        const Merged merged = merge(tabs, "<b k='1'><" + name + '>' + times(15'000, entry) + "</" + name + "></b>");
        EXPECT_EQ(merged.result, 1);
        EXPECT_LE(merged.report.steps, 30'001 + 15'000 * perEdit) << name;
    }
}

TEST_F(MergeTest, RefusesWhatIsTooLargeOrTooDeepByWhateverItIsHidden) {
    for (const std::string& text :
         {times(60'000, "<a><!-- </a> -->"), times(60'000, "<a b='</a>'>"), times(60'000, "<a>&#x</a>x1;"),
          "\xef\xbb\xbf" + times(60'000, "<a>\xf0</a>"), times(65, "<a>")}) {
        for (const Merged& merged : {merge(text, "<b/>"), merge("<s/>", text)}) {
            EXPECT_THAT(merged.console, HasSubstr(".xml is refused: more than 64 elements within each other"));
            EXPECT_EQ(merged.report.documents.back().reading, Reading::Refused);
        }
    }
    EXPECT_EQ(merge(times(64, "<a>") + times(64, "</a>"), "<b/>").result, 1);
    EXPECT_THAT(merge("<s/>", "<?xml encoding='&#x4c;'?><b/>").console,
                HasSubstr("/diversity.xml is refused: the encoding in its declaration is written with an '&'\n"));
    EXPECT_THAT(merge(std::string(10UL * 1024 * 1024, ' '), "<b/>").console,
                HasSubstr("/style.xml has 10485760 bytes, more than the 1048576 that are taken\n"));
}

} // namespace
