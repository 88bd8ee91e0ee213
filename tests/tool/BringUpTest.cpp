// The tool with a module up: simulated blocks on real pseudo-terminals, in real time. A bring-up takes two seconds, so
// each case makes the most of its own.

#include "host/DevicePaths.h"
#include "tool/ToolProcess.h"

#include <csignal>
#include <filesystem>

#include <gmock/gmock.h>

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;
using Words = std::vector<std::string>;

constexpr const char* SchemeFile = "root/mnt/mtd/code/config_file/sensor1.cfg";

class BringUpTest : public ToolTest {
protected:
    Words words(const std::string& command, const Words& more, const char* root = "/root") const {
        Words words = {command, "--module", "16", "--root", m_Folder.path() + root};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    /// As `scheme` shows one, but for what the clock selects at the time of the test.
    std::string schemeLine(int scheme, const std::string& state) const {
        return "scheme " + std::to_string(scheme) + ' ' + state + ' ' + m_Folder.path() + "/root" +
               sensorcontrol::paths::SchemeFilePrefix + std::to_string(scheme + 1) + ".cfg\n";
    }

    static std::string withoutDue(std::string text) {
        for (std::size_t at = 0; (at = text.find(" due ")) != std::string::npos;)
            text.erase(at, 4);
        return text;
    }

    const std::string m_Tuning = SENSORCONTROL_SOURCE_DIR "/docs/samples/ISPParam.xml";
};

TEST_F(BringUpTest, SetsSavesAndRestores) {
    const std::string link = m_Folder.path() + "/block";
    const Words simulate = {
        "simulate", "--module", "16", "--link", link, "--baud", "0", "--state", m_Folder.path() + "/state"};
    ToolProcess block(m_Folder.path(), simulate);
    ASSERT_TRUE(block.awaitOutput(link + '\n'));
    ToolProcess::Result result = run(words("set", {"--port", link, "--gpio", "memory", "--json", "--flush", "9=2",
                                                   "1=7", "brightness=80", "IrisUp", "Iris=11", "2=40"}));
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.out,
              R"({"id":1,"name":"Brightness","value":80,"result":"applied","reason":""}
{"id":2,"name":"Sharpness","value":40,"result":"unchanged","reason":""}
{"id":5,"name":"Iris","value":11,"result":"kept","reason":"only while ExposalMode is 2"}
{"id":9,"name":"WDRMode","value":2,"result":"applied","reason":""}
{"id":52,"name":"IrisUp","value":0,"result":"applied","reason":""}
{"flushed":")" + m_Folder.path() +
                  '/' + SchemeFile + "\"}\n");
    EXPECT_THAT(result.err, HasSubstr("sensor_Factory.cfg was missing: made from the module's factory values\n"
                                      "sensor1.cfg was missing: made from the factory values\n"
                                      "restored 33 parameters from sensor1.cfg (27 applied, 6 kept), all at their"));
    block.write("block brightness\nbogus\nblock bogus\nreceived\n");
    ASSERT_TRUE(block.awaitOutput("4E 0B brightness\n"));
    ASSERT_TRUE(block.awaitOutput("81 01 04 4E 00 00 00 0B FF # brightness 0B\n"));
    block.signal(SIGTERM);
    result = block.wait();
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.err, HasSubstr("\"bogus\" is no command"));
    EXPECT_THAT(result.err, HasSubstr("no register \"bogus\""));
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
    EXPECT_THAT(run(simulate, "block brightness\nquit\n").out, HasSubstr("4E 0B brightness\n"));
    m_Folder.write("state", "garbage");
    result = run(simulate);
    EXPECT_EQ(result.code, 4);
    EXPECT_THAT(result.err, HasSubstr("/state: "));

    // Three refusals are one command with its retries: the first of the parameters, behind five other exchanges.
    result = run(words("run", {"--simulated", "--keep-going", "--fault", "refuse@6-8"}),
                 "get ExposalMode\nflush\nset 0=0 Iris=99 # and on\nreset\nblock brightness\n"
                 "fault refuse@1-9\nset Sharpness=10\nfault clear\nfault silence@1-99\nset Sharpness=10\n"
                 "nonsense\nget IrisUp\nunplug\nset Saturation=10\nget Sharpness\n");
    EXPECT_EQ(result.code, 2) << "the first failure is the script's";
    EXPECT_EQ(result.out, "0 ExposalMode 0 applied\n5 Iris 99 refused: p_nIris(99) is out of range\n"
                          "1 Brightness 50 reset\n5 Iris 16 reset\n9 WDRMode 3 reset\n4E 07 brightness\n"
                          "2 Sharpness 10 refused: answered 90 61 41\n2 Sharpness 10 no-answer\n"
                          "3 Saturation 10 no-answer: the port failed\n2 Sharpness 40\n");
    EXPECT_THAT(m_Folder.read(SchemeFile), HasSubstr("(1,50)"));
    for (const char* const said :
         {"restored 32 of 33 parameters from sensor1.cfg (26 applied, 6 kept), 3 unlike the factory's: Brightness 80 "
          "(factory 50), Iris 11 (factory 16), WDRMode 2 (factory 3)\n",
          "not taken by the module (refused, answered 90 61 41): ExposalMode\n",
          "get ExposalMode (id 0): the module did not take its value at the bring-up\n  reason: refused, answered 90",
          "flush: failed\n", "  reason: parameter 0 has no value",
          "set Iris=99 (id 5): refused\n  reason: p_nIris(99) is out of range\n  wire: nothing was sent\n"
          "  accepted: 5..17\n",
          "90 61 41 # refused: not executable", "set Sharpness=10 (id 2): no answer from the block\n  wire: tx 81",
          "wire: rx - # nothing came", "\"nonsense\" is no command", "a set-only parameter has no value to read",
          "set Saturation=10 (id 3): the port failed\n"})
        EXPECT_THAT(result.err, HasSubstr(said));

    m_Folder.write(SchemeFile, "(1,7");
    result = run(words("daynight", {"night", "--wait", "30", "--simulated", "-vv", "--trace", m_Folder.path() + "/t"}));
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.out, "daynight night mode night\n") << "records alone";
    EXPECT_THAT(result.err, HasSubstr("Clear UART buffer")) << "the library's console, asked for by -vv";
    EXPECT_THAT(result.err, HasSubstr("sensor1.cfg is broken"));
    EXPECT_THAT(result.err, HasSubstr("from sensor_Factory.cfg"));
    EXPECT_THAT(m_Folder.read("t"), HasSubstr(" rx 90 41 FF # acknowledgement\n"));
}

TEST_F(BringUpTest, EndsABringUpThatNobodyAnswersOrWants) {
    ToolProcess silent(m_Folder.path(), words("get", {"--simulated", "--fault", "silence@every", "1"}));
    ToolProcess restart(m_Folder.path(), words("get", {"--simulated", "--simulated-restart", "-v"}, "/other"));
    ASSERT_TRUE(restart.awaitError("bring-up: restart of the module, 20 s\n"));
    const auto start = std::chrono::steady_clock::now();
    restart.signal(SIGTERM);
    ToolProcess::Result result = restart.wait();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(result.code, 130);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(result.err, HasSubstr("interrupted"));

    result = silent.wait();
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(result.err, HasSubstr("no answer from the block\n"));
    EXPECT_THAT(result.err, HasSubstr("rx - # nothing came"));
    EXPECT_THAT(result.err, HasSubstr("try: cable and power"));
    EXPECT_THAT(result.err, Not(HasSubstr("restored"))) << "no start that has failed";
}

TEST_F(BringUpTest, WatchesTheBlockAndItsPortAndEndsOnASignal) {
    ToolProcess watch(m_Folder.path(), words("watch", {"--simulated"}));
    ASSERT_TRUE(watch.awaitOutput(" daynight day\n"));
    watch.write("dark\n");
    ASSERT_TRUE(watch.awaitOutput(" daynight night\n"));
    watch.write("unplug\n");
    ASSERT_TRUE(watch.awaitOutput(" port lost\n"));
    watch.write("plug\n");
    ASSERT_TRUE(watch.awaitOutput(" port back\n"));
    const ToolProcess::Result second = run(words("get", {"--simulated"}));
    EXPECT_EQ(second.code, 4);
    EXPECT_THAT(second.err, HasSubstr("another sensorctl uses"));
    watch.signal(SIGINT);
    EXPECT_EQ(watch.wait().code, 0);
}

TEST_F(BringUpTest, EditsKeepsWhatWasChosenAndPlaysADay) {
    // Spans that the library's own setters would refuse half-way if they came one by one.
    const std::string script = "scheme manual\n"
                               "scheme span 1 23:40-23:50\nscheme span 1 00:10-00:20\nscheme span 1 23:50-24:00\n"
                               "scheme span 1 08:30-08:50\nscheme enable 1\n"
                               "set Brightness=77\n"
                               "scheme span 1 01:00-02:00\n" // refused: 77 would be lost
                               "flush\nscheme copy 0 2\nscheme choose 2\nscheme disable 0\n"
                               "scheme choose 3\nscheme span 1 09:00-08:00\nscheme span 1 08:05-09:00\nscheme turn\n"
                               "get 1\n";
    const ToolProcess::Result result = run(words("run", {"--simulated", "--schemes", "3", "--keep-going"}), script);
    EXPECT_EQ(result.code, 2);
    EXPECT_THAT(result.err, HasSubstr("scheme 0 is in force with values that are not saved: Brightness 77 (saved 50)"));
    EXPECT_THAT(result.err, HasSubstr("there is no scheme 3"));
    EXPECT_THAT(result.err, HasSubstr("\"09:00-08:00\" is no span of a day"));
    EXPECT_THAT(result.err, HasSubstr("span 08:05-09:00: a scheme starts and ends on ten minutes"));
    EXPECT_THAT(result.err, HasSubstr("\"turn\" is nothing to do with one"));
    for (const char* span : {"23:40-23:50", "00:10-00:20", "23:50-24:00", "08:30-08:50"})
        EXPECT_THAT(result.out, HasSubstr(std::string("scheme 1 disabled ") + span));
    EXPECT_THAT(withoutDue(result.out),
                EndsWith(schemeLine(0, "disabled 00:00-24:00") + schemeLine(1, "enabled 08:30-08:50") +
                         schemeLine(2, "disabled 00:00-24:00 in-force") + "1 Brightness 77 scheme 2\n"));
    EXPECT_THAT(result.out, Not(HasSubstr("01:00-02:00")));

    // By hand stays by hand: the start's values by the clock give way to the choice.
    const ToolProcess::Result next =
        run(words("run", {"--simulated"}),
            "get 1 500\nscheme enable 0\nscheme span 1 05:00-06:00\nscheme span 0 06:10-07:00\n"
            "scheme choose 1\nset DayNightMode=2\nflush\nscheme auto\nset Iris=99\nget 9\n");
    EXPECT_EQ(next.code, 2);
    EXPECT_THAT(next.out, StartsWith("1 Brightness 77 scheme 2\n500 EnableParam 0 scheme 2\n"));
    EXPECT_THAT(next.out, Not(HasSubstr("WDRMode")));
    EXPECT_THAT(next.err, HasSubstr("scheme 2 put back in force"));
    EXPECT_THAT(next.err, HasSubstr("ended at line 9 of the script: set Iris=99"));
    const std::string sensorXml = m_Folder.read("root/mnt/mtd/code/config_file/sensor.xml");

    const std::string drawing = m_Folder.path() + "/day.svg";
    const ToolProcess::Result day =
        run(words("scheme", {"--simulated", "--day", "--hours", "04:50-06:40", "--light", "05:30-20:00", "--plot",
                             drawing, "--detail", "isInfrared=1"}));
    EXPECT_EQ(day.code, 0);
    EXPECT_THAT(day.out, HasSubstr("04:50:02 sky dark (at the start)\n"));
    EXPECT_THAT(day.out, HasSubstr("05:30:00 sky light\n"));
    EXPECT_THAT(day.out, EndsWith("06:10:01 scheme 0 (its span is 06:10-07:00)\n"
                                  "06:10:01 picture day (automatic: light since 05:30:00, with scheme 0)\n"
                                  "06:10:01 filter in (with the picture)\n"
                                  "06:10:01 lights 0 (with the picture)\n"));
    const std::string svg = m_Folder.read("day.svg");
    EXPECT_THAT(svg, HasSubstr("<svg xmlns"));
    EXPECT_THAT(svg, HasSubstr("1  05:00-06:00"));
    EXPECT_THAT(svg, EndsWith("</svg>\n"));
    // What was played has left no trace.
    EXPECT_EQ(m_Folder.read("root/mnt/mtd/code/config_file/sensor.xml"), sensorXml);

    EXPECT_EQ(run(words("scheme", {"--simulated", "--day", "--hours", "04:50-04:51", "--plot",
                                   m_Folder.path() + "/none/day.svg"}))
                  .code,
              4);
}

TEST_F(BringUpTest, FollowsTheScene) {
    m_Folder.write("moduleConfig.xml",
                   "<moduleConfig><module id='4' detail='isInfrared=0;autoIris=0;GPIO=0,12,1;TNF=1;HDR=1' "
                   "parameters='Prefix=none'/></moduleConfig>");
    ToolProcess watch(m_Folder.path(),
                      {"watch", "--config", m_Folder.path(), "--gpio", "memory", "--tuning", m_Tuning});
    ToolProcess script(m_Folder.path(), {"run", "--module", "4", "--root", m_Folder.path() + "/run"});
    script.write("set Brightness=70\nscene 1\ndaynight\nflush\n");
    script.closeInput();
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
    ToolProcess::Result result = watch.wait();
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.out.substr(result.out.find("daynight night")), Not(HasSubstr("daynight day")));

    result = script.wait();
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("1 Brightness 70 applied\nscene 1 lux shutter 40000 us gain"));
    EXPECT_THAT(result.err, Not(HasSubstr("warning"))) << "that there is no tuning file is none";
    EXPECT_THAT(m_Folder.read("run/mnt/mtd/code/config_file/sensor1.cfg"), HasSubstr("(1,70)"));
}

TEST_F(BringUpTest, NeedsNoPortAndDrawsItsDay) {
    const ToolProcess::Result result = run({"daynight", "--module", "4", "--day", "--hours", "19:30-21:00", "--plot",
                                            m_Folder.path() + "/day.svg", "--tuning", m_Tuning});
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("picture night (automatic: gain "));
    EXPECT_THAT(result.out, EndsWith("filter out (with the picture)\n"));
    EXPECT_THAT(m_Folder.read("day.svg"), HasSubstr(">gain</text>"));
}

TEST_F(BringUpTest, ShowsAndDrawsEdgeEnhancement) {
    const ToolProcess::Result result = run({"edge", "--json", "25", "--plot", m_Folder.path() + "/edge.svg"});
    EXPECT_EQ(result.out, "{\"strength\":25,\"words\":[1,0,1,4,16,-3,0,-3,-1,0,0,0,0,17,75,220,28,112,24]}\n");
    EXPECT_THAT(m_Folder.read("edge.svg"), EndsWith("</svg>\n"));
}

} // namespace
