// The tool with a module up: simulated blocks on real pseudo-terminals, in real time. A bring-up takes two seconds, so
// each case makes the most of its own.

#include "tool/ToolProcess.h"

#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using Words = std::vector<std::string>;

constexpr const char* SchemeFile = "root/mnt/mtd/code/config_file/sensor1.cfg";

class BringUpTest : public ::testing::Test {
protected:
    Words simulated(const std::string& command, const Words& more = {}) const {
        Words words = {command, "--module", "16", "--simulated", "--root", m_Folder.path() + "/root"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    ToolProcess::Result run(const Words& arguments, const std::string& input = {}) const {
        return ToolProcess::run(m_Folder.path(), arguments, input);
    }

    TempFolder m_Folder;
};

TEST_F(BringUpTest, savesWhatWasSetAndRestoresItAtTheNextStart) {
    ToolProcess::Result result = run(simulated("set", {"--flush", "9=2", "brightness=60", "1=70"}));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out,
              "1 Brightness 70 applied\n9 WDRMode 2 applied\nflushed " + m_Folder.path() + '/' + SchemeFile + '\n');
    EXPECT_THAT(result.err, HasSubstr("sensor1.cfg was missing: made from the factory values"));
    EXPECT_THAT(result.err, HasSubstr("from sensor1.cfg, all at their factory values"));
    EXPECT_THAT(m_Folder.read(SchemeFile), HasSubstr("(1,70)"));

    result = run(simulated("get", {"--json", "BRIGHTNESS", "9"}));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out, "{\"id\":1,\"name\":\"Brightness\",\"value\":70,\"scheme\":0}\n"
                          "{\"id\":9,\"name\":\"WDRMode\",\"value\":2,\"scheme\":0}\n");
    EXPECT_THAT(result.err, HasSubstr("from sensor1.cfg, 2 unlike the factory's: Brightness 70 (factory 50), "
                                      "WDRMode 2 (factory 3)"));

    m_Folder.write(SchemeFile, "(1,7");
    result = run(simulated("reset"));
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.err, HasSubstr("sensor1.cfg is broken"));
    EXPECT_THAT(result.err, HasSubstr("from sensor_Factory.cfg"));
    EXPECT_THAT(m_Folder.read(SchemeFile), HasSubstr("(1,50)"));
}

TEST_F(BringUpTest, runsAScriptAndDrivesTheBlock) {
    const ToolProcess::Result result = run(simulated("run", {"--keep-going"}), "get Brightness # as it starts\n"
                                                                               "set Brightness=80 Iris=99\n"
                                                                               "block brightness\n"
                                                                               "fault refuse@1-9\n"
                                                                               "set Sharpness=10\n"
                                                                               "fault clear\n"
                                                                               "get Sharpness\n"
                                                                               "nonsense\n"
                                                                               "get IrisUp\n"
                                                                               "unplug\n"
                                                                               "set Saturation=10\n");
    EXPECT_EQ(result.code, 2) << "the first failure is the script's";
    EXPECT_EQ(result.out, "1 Brightness 50\n1 Brightness 80 applied\n5 Iris 99 refused\n4E 0B brightness\n"
                          "2 Sharpness 10 refused\n2 Sharpness 40\n3 Saturation 10 failed\n");
    EXPECT_THAT(result.err, HasSubstr("set Iris=99 (id 5): refused\n  reason: p_nIris(99) is out of range\n"));
    EXPECT_THAT(result.err, HasSubstr("wire: nothing was sent\n  accepted: 5..17\n"));
    EXPECT_THAT(result.err, HasSubstr("90 61 41 # refused: not executable"));
    EXPECT_THAT(result.err, HasSubstr("\"nonsense\" is no command"));
    EXPECT_THAT(result.err, HasSubstr("a set-only parameter has no value to read"));
    EXPECT_THAT(result.err, HasSubstr("set Saturation=10 (id 3): the port failed"));
}

TEST_F(BringUpTest, endsAScriptAtItsFirstFailure) {
    const ToolProcess::Result result = run(simulated("run"), "fault silence@1-99\nset Brightness=80\nget Brightness\n");
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.out, "1 Brightness 80 no-answer\n");
    EXPECT_THAT(result.err, HasSubstr("tx 81 01 04 4E 00 00 00 0B FF # brightness 0B"));
    EXPECT_THAT(result.err, HasSubstr("rx - # nothing within 0.4 s, 3 bytes wanted"));
    EXPECT_THAT(result.err, HasSubstr("ended at line 2 of the script"));
}

TEST_F(BringUpTest, givesUpOnABlockThatSaysNothing) {
    const ToolProcess::Result result = run(simulated("get", {"--fault", "silence@every", "Brightness"}));
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(result.err, HasSubstr("no answer from the block"));
    EXPECT_THAT(result.err, HasSubstr("rx - # nothing within"));
    EXPECT_THAT(result.err, HasSubstr("try: cable and power"));
}

TEST_F(BringUpTest, traceIsWhatDecodeReads) {
    const ToolProcess::Result trace = run(simulated("trace", {"Brightness=60", "Iris=4"}));
    EXPECT_EQ(trace.code, 2) << "4 is no iris";
    EXPECT_THAT(trace.out, HasSubstr("tx 81 09 04 24 72 FF # inquiry video system\n"));
    EXPECT_THAT(trace.out, HasSubstr("rx 90 50 00 08 FF # answer: video system PAL\n"));
    EXPECT_THAT(trace.out, HasSubstr("tx 81 01 04 4E 00 00 00 08 FF # brightness 08\n"));
    const ToolProcess::Result decoded = run({"decode"}, trace.out);
    EXPECT_EQ(decoded.code, 0);
    EXPECT_EQ(decoded.out, trace.out);
}

TEST_F(BringUpTest, watchesTheBlockGoDarkAndEndsOnASignal) {
    ToolProcess watch(m_Folder.path(), simulated("watch"));
    ASSERT_TRUE(watch.awaitOutput(" daynight day\n"));
    watch.write("dark\n");
    ASSERT_TRUE(watch.awaitOutput(" daynight night\n"));
    const ToolProcess::Result second = run(simulated("get"));
    EXPECT_EQ(second.code, 4);
    EXPECT_THAT(second.err, HasSubstr("another sensorctl uses"));
    watch.signal(SIGINT);
    EXPECT_EQ(watch.wait().code, 0);
}

TEST_F(BringUpTest, setsTheDayNightModeAndWaitsForTheSwitch) {
    const ToolProcess::Result result = run(simulated("daynight", {"night", "--wait", "30"}));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out, "daynight night mode night\n");
}

TEST_F(BringUpTest, saysWhatTheBlockDidNotTakeAtTheStart) {
    // Three refusals are one command with its retries: the first of the parameters, behind five other exchanges.
    const ToolProcess::Result result = run(simulated("get", {"--fault", "refuse@6-8", "ExposalMode"}));
    EXPECT_EQ(result.code, 2);
    EXPECT_THAT(result.err, HasSubstr("restored 32 of 33 parameters from sensor1.cfg"));
    EXPECT_THAT(result.err, HasSubstr("not taken by the module: ExposalMode\n"));
    EXPECT_THAT(result.err, HasSubstr("get ExposalMode (id 0): the module did not take its value"));
}

TEST_F(BringUpTest, isInterruptedDuringABringUp) {
    ToolProcess process(m_Folder.path(), simulated("get", {"--verbose"}));
    ASSERT_TRUE(process.awaitError("bring-up: video system"));
    process.signal(SIGTERM);
    const ToolProcess::Result result = process.wait();
    EXPECT_EQ(result.code, 130);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(result.err, HasSubstr("interrupted"));
}

TEST_F(BringUpTest, keepsItsOutputForRecords) {
    ToolProcess process(m_Folder.path(), simulated("list", {"--trace", m_Folder.path() + "/trace", "-vv"}));
    process.closeInput();
    const ToolProcess::Result result = process.wait();
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.out, StartsWith("   0  ExposalMode "));
    EXPECT_THAT(result.out, Not(HasSubstr("Clear UART buffer")));
    EXPECT_THAT(result.err, HasSubstr("Clear UART buffer")) << "the library's console, asked for by -vv";
    EXPECT_THAT(result.out, HasSubstr("   1  Brightness        0..100         50  common           50\n"));
    EXPECT_THAT(m_Folder.read("trace"), HasSubstr(" rx 90 41 FF # acknowledgement\n"));
}

TEST(SimulateTest, servesABlockBehindALinkAndKeepsItsState) {
    const TempFolder folder;
    const std::string link = folder.path() + "/block";
    const Words arguments = {
        "simulate", "--module", "16", "--link", link, "--baud", "0", "--state", folder.path() + "/state"};
    ToolProcess block(folder.path(), arguments);
    ASSERT_TRUE(block.awaitOutput(link + '\n'));
    EXPECT_TRUE(std::filesystem::is_symlink(link));

    const Words target = {"--module", "16", "--port", link, "--gpio", "memory"};
    Words set = {"set", "Brightness=80"};
    set.insert(set.end(), target.begin(), target.end());
    const ToolProcess::Result result = ToolProcess::run(folder.path(), set);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out, "1 Brightness 80 applied\n");

    block.write("block brightness\nbogus\nblock bogus\nreceived\n");
    ASSERT_TRUE(block.awaitOutput("4E 0B brightness\n"));
    ASSERT_TRUE(block.awaitOutput("81 01 04 4E 00 00 00 0B FF # brightness 0B\n"));
    block.signal(SIGTERM);
    const ToolProcess::Result ended = block.wait();
    EXPECT_EQ(ended.code, 0);
    EXPECT_THAT(ended.err, HasSubstr("\"bogus\" is no command"));
    EXPECT_THAT(ended.err, HasSubstr("no register \"bogus\""));
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));

    EXPECT_THAT(ToolProcess::run(folder.path(), arguments, "block brightness\nquit\n").out,
                HasSubstr("4E 0B brightness\n"));
    folder.write("state", "garbage");
    const ToolProcess::Result broken = ToolProcess::run(folder.path(), arguments);
    EXPECT_EQ(broken.code, 4);
    EXPECT_THAT(broken.err, HasSubstr("/state: "));
}

} // namespace
