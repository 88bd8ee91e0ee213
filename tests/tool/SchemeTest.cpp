// The parameter schemes through the tool: edited, chosen, kept over a restart, and played through a day.

#include "tool/ToolProcess.h"

#include <gmock/gmock.h>

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using Words = std::vector<std::string>;

class SchemeTest : public ::testing::Test {
protected:
    ToolProcess::Result run(const std::string& command, const Words& more = {}, const std::string& input = {}) const {
        Words words = {command, "--module", "16", "--simulated", "--root", m_Folder.path() + "/device"};
        words.insert(words.end(), more.begin(), more.end());
        return ToolProcess::run(m_Folder.path(), words, input);
    }
    std::string line(int scheme, const std::string& state) const {
        return "scheme " + std::to_string(scheme) + ' ' + state + ' ' + m_Folder.path() +
               "/device/mnt/mtd/code/config_file/sensor" + std::to_string(scheme + 1) + ".cfg\n";
    }

    TempFolder m_Folder;
};

TEST_F(SchemeTest, editsChoosesAndKeepsWhatWasChosen) {
    // Spans that the library's own setters would refuse half-way if they came one by one.
    const std::string script = "scheme manual\n"
                               "scheme span 1 23:40-23:50\nscheme span 1 00:10-00:20\nscheme span 1 23:50-24:00\n"
                               "scheme span 1 08:30-08:50\nscheme enable 1\n"
                               "set Brightness=77\n"
                               "scheme span 1 01:00-02:00\n" // refused: 77 would be lost
                               "flush\nscheme copy 0 2\nscheme choose 2\nscheme disable 0\n"
                               "scheme choose 3\nscheme span 1 09:00-08:00\nscheme span 1 08:05-09:00\nscheme turn\n"
                               "get 1\n";
    const ToolProcess::Result result = run("run", {"--schemes", "3", "--keep-going"}, script);
    EXPECT_EQ(result.code, 2);
    EXPECT_THAT(result.err, HasSubstr("scheme 0 is in force with values that are not saved: 1 77 (saved 50)"));
    EXPECT_THAT(result.err, HasSubstr("there is no scheme 3"));
    EXPECT_THAT(result.err, HasSubstr("\"09:00-08:00\" is no span of a day"));
    EXPECT_THAT(result.err, HasSubstr("span 08:05-09:00: a scheme starts and ends on ten minutes"));
    EXPECT_THAT(result.err, HasSubstr("\"turn\" is nothing to do with one"));
    for (const char* span : {"23:40-23:50", "00:10-00:20", "23:50-24:00", "08:30-08:50"})
        EXPECT_THAT(result.out, HasSubstr(std::string("scheme 1 disabled ") + span));
    EXPECT_THAT(result.out, EndsWith(line(0, "disabled 00:00-24:00") + line(1, "enabled 08:30-08:50") +
                                     line(2, "disabled 00:00-24:00 in-force") + "1 Brightness 77 scheme 2\n"));
    EXPECT_THAT(result.out, Not(HasSubstr("01:00-02:00")));

    // By hand stays by hand: the start's values by the clock give way to the choice.
    const ToolProcess::Result next = run("get", {"1", "500"});
    EXPECT_EQ(next.out, "1 Brightness 77 scheme 2\n500 EnableParam 0 scheme 2\n");
    EXPECT_THAT(next.err, HasSubstr("scheme 2 put back in force"));
}

TEST_F(SchemeTest, playsADay) {
    const std::string script = "scheme span 1 05:00-06:00\nscheme enable 1\nscheme span 0 06:10-07:00\n"
                               "scheme choose 1\nset DayNightMode=2\nflush\n";
    ASSERT_EQ(run("run", {"--schemes", "2"}, script).code, 0);
    const std::string sensorXml = m_Folder.read("device/mnt/mtd/code/config_file/sensor.xml");

    const std::string drawing = m_Folder.path() + "/day.svg";
    const ToolProcess::Result day = run("scheme", {"--day", "--hours", "04:50-06:40", "--light", "05:30-20:00",
                                                   "--plot", drawing, "--detail", "isInfrared=1"});
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
    EXPECT_EQ(m_Folder.read("device/mnt/mtd/code/config_file/sensor.xml"), sensorXml);

    EXPECT_EQ(run("scheme", {"--day", "--hours", "04:50-04:51", "--plot", m_Folder.path() + "/none/day.svg"}).code, 4);
    EXPECT_EQ(run("scheme", {"--day", "--light", "20:00-06:00"}).code, 1);
    EXPECT_EQ(ToolProcess::run(m_Folder.path(), {"scheme", "--module", "16", "--port", "/dev/null", "--day"}).code, 1);
}

} // namespace
