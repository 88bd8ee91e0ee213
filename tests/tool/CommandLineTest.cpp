// What needs no bring-up: the command line itself, the catalogue, the decoder, and ports that do not work.

#include "tool/ToolProcess.h"

#include <nlohmann/json.hpp>
#include <sstream>

#include <gmock/gmock.h>

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Words = std::vector<std::string>;

constexpr const char* Samples = SENSORCONTROL_SOURCE_DIR "/docs/samples/moduleConfig";

struct Misuse {
    const char* name;
    Words arguments;
    int code;
    const char* says;
};

void PrintTo(const Misuse& misuse, std::ostream* stream) { *stream << misuse.name; }

class MisuseTest : public ToolTest, public ::testing::WithParamInterface<Misuse> {};

TEST_P(MisuseTest, EndsWithItsCodeAndSaysWhatToTry) {
    const ToolProcess::Result result = run(GetParam().arguments);
    EXPECT_EQ(result.code, GetParam().code);
    EXPECT_THAT(result.err, HasSubstr(GetParam().says));
    EXPECT_THAT(result.err, HasSubstr("sensorctl: "));
    EXPECT_THAT(result.out, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    , MisuseTest,
    ::testing::Values(
        Misuse{"noCommand", {}, 1, "try: sensorctl --help"}, Misuse{"unknownCommand", {"frobnicate"}, 1, "--help"},
        Misuse{"noModule", {"get", "-s"}, 1, "--module is required"},
        Misuse{"unknownModule", {"get", "-m", "3", "-s"}, 1, "there are: "},
        Misuse{"unknownModuleInList", {"list", "-m", "0"}, 1, "no such module"},
        Misuse{"noPort", {"get", "-m", "16"}, 1, "a port is missing"},
        Misuse{"moduleAndConfig", {"get", "-m", "16", "--config", Samples, "-s"}, 1, "--module excludes --config"},
        Misuse{"boardWithoutConfig", {"get", "-m", "16", "--board", "A1", "-s"}, 1, "--config"},
        Misuse{"noSuchProduct", {"ui", "--config", Samples, "--product", "toaster"}, 1, "--product 'toaster'"},
        Misuse{"portAndSimulated", {"get", "-m", "16", "-s", "-p", "/dev/null"}, 1, "excludes"},
        Misuse{"noValue", {"set", "-m", "16", "-s", "Brightness"}, 1, "try: Brightness=VALUE"},
        Misuse{"valueIsNoNumber", {"set", "-m", "16", "-s", "1=6x"}, 1, "\"6x\" in \"1=6x\" is no whole number"},
        Misuse{"valueBeyondInt", {"set", "-m", "16", "-s", "1=99999999999"}, 1, "is no whole number"},
        Misuse{"secondIsWrong", {"set", "-m", "16", "-s", "1=60", "Bright=1"}, 1, "similar: Brightness"},
        Misuse{"unservedId", {"get", "-m", "16", "-s", "8"}, 1, "has no parameter 8"},
        Misuse{"faultPlan", {"get", "-m", "16", "-s", "--fault", "blah"}, 1, "known are silence"},
        Misuse{"faultOnRealPort", {"get", "-m", "16", "-p", "x", "--fault", "silence"}, 1, "need --simulated"},
        Misuse{"line", {"get", "-m", "16", "-s", "--line", "9600,8,1"}, 1, "try: --line 9600,8,1,0"},
        Misuse{"resolution", {"get", "-m", "16", "-s", "--resolution", "big"}, 1, "try: --resolution"},
        Misuse{"detail", {"get", "-m", "16", "-s", "--detail", "generation"}, 1, "is no key=value"},
        Misuse{"videoSystem", {"get", "-m", "16", "-s", "--video-system", "secam"}, 1, "secam"},
        Misuse{"portOnTheChip", {"get", "-m", "4", "-p", "/dev/null"}, 1, "it has no port"},
        Misuse{"faultOnTheChip", {"get", "-m", "4", "--fault", "silence"}, 1, "need --simulated"},
        Misuse{"dayOnAPort", {"scheme", "-m", "16", "-p", "/dev/null", "--day"}, 1, "simulated module"},
        Misuse{"daySpan", {"scheme", "-m", "16", "-s", "--day", "--light", "20:00-06:00"}, 1, "is no span"},
        Misuse{"portName", {"get", "-m", "16", "-p", "a;b"}, 1, "cannot be told"},
        Misuse{"simulatedModule", {"simulate", "-m", "99"}, 1, "no simulated block"},
        Misuse{"hex", {"decode", "81", "zz"}, 1, "\"zz\" is no hex byte"},
        Misuse{"time", {"decode", "noon tx 81 FF"}, 1, "is no time"},
        Misuse{"missingDevice", {"get", "-m", "16", "-p", "/dev/ttyNone"}, 4, "No such file"},
        Misuse{"noSerialPort", {"get", "-m", "16", "-p", "/dev/null"}, 4, "no serial port"},
        Misuse{"noConfig", {"ui", "--config", "/dev/null"}, 4, "there is no such file"},
        Misuse{"root", {"get", "-m", "16", "-s", "--root", "/dev/null/x"}, 4, "try: --root"},
        Misuse{"trace", {"get", "-m", "16", "-s", "--trace", "/dev/null/x"}, 4, "--trace /dev/null/x"},
        Misuse{"linkIsAFile", {"simulate", "-m", "16", "--link", "/dev/null"}, 4, "try: another --link"}),
    [](const auto& misuse) { return misuse.param.name; });

using CommandLineTest = ToolTest;

TEST_F(CommandLineTest, EveryCommandHelpsWithAnExampleThatItTakes) {
    for (const char* const command :
         {"modules", "list", "get", "set", "reset", "run", "watch", "daynight", "trace", "decode", "simulate", "ui"}) {
        const ToolProcess::Result result = run({command, "--help"});
        EXPECT_EQ(result.code, 0);
        EXPECT_THAT(result.err, IsEmpty());
        const std::size_t example = result.out.find("Example:\n  ");
        ASSERT_NE(example, std::string::npos) << command;
        EXPECT_THAT(result.out.substr(example), HasSubstr(std::string("sensorctl ") + command)) << command;
        EXPECT_THAT(result.out, HasSubstr("Exit codes: 0 done")) << command;
    }
}

TEST_F(CommandLineTest, ListWithoutAPortIsTheCatalogue) {
    std::istringstream lines(run({"list", "--module", "16", "--json"}).out);
    int lastId = -1;
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        const auto object = nlohmann::json::parse(line);
        EXPECT_GT(object.at("id").get<int>(), lastId);
        lastId = object.at("id");
        EXPECT_TRUE(object.at("value").is_null());
        if (lastId == 5) {
            EXPECT_EQ(line, R"({"id":5,"name":"Iris","accepts":[[5,17]],"command":false,"factory":16,"kind":"common",)"
                            R"("value":null,"scheme":null,"condition":"only while ExposalMode is 2"})");
        }
    }
    EXPECT_EQ(lastId, 504);
    EXPECT_EQ(count, 47);
    const std::string text = run({"list", "--module", "16", "--no-bring-up"}).out;
    EXPECT_THAT(text, HasSubstr("   1  Brightness        0..100         50  common            -\n"));
    EXPECT_THAT(text, HasSubstr("  19  WBMode            0,4,9           4  common            -\n"));
    EXPECT_THAT(text, HasSubstr("  52  IrisUp            command         -  set-only          -\n"));
    EXPECT_THAT(run({"modules"}).out, HasSubstr("16  CMD8100SenseController"));
}

TEST_F(CommandLineTest, DecodeTellsFramesRepliesAndTraceLines) {
    const ToolProcess::Result result = run({"decode"}, "81 01 04 4E 00 00 00 08 FF\n"
                                                       "# a remark\n\n"
                                                       "810904 01ff\n"
                                                       "90 50 02 FF\n"
                                                       "tx A1 04 03 FF\n"
                                                       "rx A1 04 03 FF\n"
                                                       "0xFE 0x01 0x1E 0x02 0x06 0x32 0x59 0xFF\n"
                                                       "1.5 rx 90 41 FF 90 51 FF # old meaning\n"
                                                       "- rx 90 61 41\n"
                                                       "2.5 rx - # nothing within 0.4 s, 3 bytes wanted\n"
                                                       "3 tx! 4D 45 4E 55 4F 4E");
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(result.out, "- tx 81 01 04 4E 00 00 00 08 FF # brightness 08\n"
                          "- tx 81 09 04 01 FF # inquiry day/night\n"
                          "- rx 90 50 02 FF # answer: day/night night\n"
                          "- tx A1 04 03 FF # mask: show 3\n"
                          "- rx A1 04 03 FF # echo: mask: show 3\n"
                          "- tx FE 01 1E 02 06 32 59 FF # infrared board: near light 32\n"
                          "1.500000 rx 90 41 FF 90 51 FF # acknowledgement; completion\n"
                          "- rx 90 61 41 # refused: not executable (part of a reply)\n"
                          "2.500000 rx - # nothing within 0.4 s, 3 bytes wanted\n"
                          "3.000000 tx! 4D 45 4E 55 4F 4E # pan/tilt stop\n");
    EXPECT_EQ(run({"decode", "--json", "90", "41", "FF"}).out,
              R"({"seconds":null,"direction":"rx","failed":false,"bytes":"90 41 FF","meaning":"acknowledgement"})"
              "\n");
    const ToolProcess::Result bad = run({"decode"}, "90 41 FF\n90 4\n90 51 FF\n");
    EXPECT_EQ(bad.code, 1);
    EXPECT_THAT(bad.err, HasSubstr("line 2: \"4\" is no hex byte"));
    EXPECT_THAT(bad.out, HasSubstr("completion")) << "goes on behind a bad line";
}

} // namespace
