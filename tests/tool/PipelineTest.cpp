// The on-chip pipeline through the tool: no port, a scene to look at, tuning by gain.

#include "tool/ToolProcess.h"

#include <csignal>

#include <gmock/gmock.h>

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using Words = std::vector<std::string>;

class PipelineTest : public ::testing::Test {
protected:
    Words onChip(const std::string& command, const Words& more = {}) const {
        Words words = {command, "--module", "4", "--root", m_Folder.path() + "/device"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    const Words m_Tuned{"--tuning", SENSORCONTROL_SOURCE_DIR "/docs/samples/ISPParam.xml"};

    TempFolder m_Folder;
};

TEST_F(PipelineTest, followsTheScene) {
    ToolProcess watch(m_Folder.path(), onChip("watch", m_Tuned));
    ASSERT_TRUE(watch.awaitOutput("gain 1\n"));
    ASSERT_TRUE(watch.awaitOutput("DC -32\n"));
    watch.write("scene 2.5\n"); // between the thresholds: still day, with filtering
    ASSERT_TRUE(watch.awaitOutput("gain 10\n"));
    ASSERT_TRUE(watch.awaitOutput("A0 24\n"));
    watch.write("dark\n");
    ASSERT_TRUE(watch.awaitOutput("daynight night\n"));
    ASSERT_TRUE(watch.awaitOutput("DC -64\n"));
    watch.write("scene 2.4\nscene -1\n"); // here night stays night
    ASSERT_TRUE(watch.awaitError("\"-1\" is no light in lux"));
    ASSERT_TRUE(watch.awaitOutput("gain 10.42\n"));
    watch.signal(SIGINT);
    const ToolProcess::Result result = watch.wait();
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.out.substr(result.out.find("daynight night")), Not(HasSubstr("daynight day")));
}

TEST_F(PipelineTest, needsNoPortAndDrawsItsDay) {
    ToolProcess::Result result =
        ToolProcess::run(m_Folder.path(), onChip("run"), "set Brightness=70\nscene 1\ndaynight\nflush\n");
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("1 Brightness 70 applied\nscene 1 lux shutter 40000 us gain"));
    result = ToolProcess::run(m_Folder.path(), onChip("get", {"Brightness"}));
    EXPECT_EQ(result.out, "1 Brightness 70\n");

    Words day = onChip("daynight", {"--day", "--hours", "19:30-21:00", "--plot", m_Folder.path() + "/day.svg"});
    day.insert(day.end(), m_Tuned.begin(), m_Tuned.end());
    result = ToolProcess::run(m_Folder.path(), day);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("picture night (automatic: gain "));
    EXPECT_THAT(result.out, EndsWith("filter out (with the picture)\n"));
    EXPECT_THAT(m_Folder.read("day.svg"), HasSubstr(">gain</text>"));

    EXPECT_EQ(ToolProcess::run(m_Folder.path(), onChip("get", {"--port", "/dev/null"})).code, 1);
    EXPECT_EQ(ToolProcess::run(m_Folder.path(), onChip("get", {"--fault", "silence"})).code, 1);
}

TEST_F(PipelineTest, showsAndDrawsEdgeEnhancement) {
    const ToolProcess::Result result =
        ToolProcess::run(m_Folder.path(), {"edge", "--json", "25", "--plot", m_Folder.path() + "/edge.svg"});
    EXPECT_EQ(result.out, "{\"strength\":25,\"words\":[1,0,1,4,16,-3,0,-3,-1,0,0,0,0,17,75,220,28,112,24]}\n");
    EXPECT_THAT(m_Folder.read("edge.svg"), EndsWith("</svg>\n"));
}

} // namespace
