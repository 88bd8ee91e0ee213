#include "drivers/QuietCmd8100.h"

#include <algorithm>
#include <climits>
#include <map>

namespace {

/// A parameter that is one command. In `frame` "vv" stands for the wire value, "hh ll" for its two halves.
struct Setting {
    int id;
    const char* name;
    const char* refusal;
    std::vector<int> accepts;
    const char* frame;
    std::vector<int> steps{}; ///< the lowest value of each wire number from 0 on; none: the number is the value
    const char* first = "";   ///< stored before, where the setting depends on it
};

std::vector<int> upTo(int low, int high) {
    std::vector<int> values;
    for (int value = low; value <= high; ++value)
        values.push_back(value);
    return values;
}

const std::vector<int> Fourteenths{0, 8, 15, 22, 29, 36, 43, 50, 58, 65, 72, 79, 86, 93, 100};
const std::vector<int> Gains{0, 1, 4, 6, 9, 11, 14, 16, 19, 21, 24, 26, 29, 31, 34, 36};

const Setting Settings[] = {
    {1, "Brightness", "p_nBrightness(%d) is out of range", upTo(0, 100), "81 01 04 4E 00 00 00 vv FF", Fourteenths},
    {2, "Sharpness", "p_Sharpness(%d) is out of range", upTo(0, 100), "81 01 04 42 00 00 00 vv FF", Fourteenths},
    {3, "Saturation", "p_nSaturation(%d) is out of range", upTo(0, 100), "81 01 04 49 00 00 00 vv FF", Fourteenths},
    {5, "Iris", "p_nIris(%d) is out of range", upTo(5, 17), "81 01 04 4B 00 00 hh ll FF", {}, "(0,2)"},
    {6, "Photometry", "setPhotometry(%d) out of range", {2, 3}, "81 01 04 A2 vv FF"},
    {7, "Shutter", "p_nShutter(%d) is out of range", upTo(0, 18), "81 01 04 4A 00 00 hh ll FF", {}, "(0,1)"},
    {9, "WDRMode", "p_nWD(%d) is out of range", {2, 3}, "81 01 04 3D vv FF"},
    {10, "DeFog", "p_nDeFog(%d) is out of range", {2, 3}, "81 01 04 A1 vv FF"},
    {11, "NoiseReduction", "p_nNR(%d) is out of range", upTo(0, 6), "81 01 04 53 vv FF"},
    {13, "Threshold", "p_nThreshold(%d) is out of range", upTo(0, 28), "81 01 04 21 00 00 hh ll FF"},
    {14, "MaxGain", "p_nMaxGain(%d) is out of range", upTo(0, 38), "81 01 04 2C vv FF", Gains},
    {16, "FocusNearLimit", "p_nFocusNearLimit(%d) is out of range", upTo(0, 4), "81 01 04 28 00 00 00 vv FF"},
    {17, "Sensitivity", "setSensitivity(%d) out of range", upTo(1, 6), "81 01 04 58 vv FF", {1, 2, 3, 4, 5, 6}},
    {19, "WBMode", "setWBMode(%d) out of range", {0, 4, 9}, "81 01 04 35 vv FF"},
    {20, "ShutDownLimit", "setShutDownLimit(%d) is out of range", upTo(0, 12), "81 01 04 A3 00 00 hh ll FF"},
};

std::string format(const char* text, int value) {
    std::string pattern = text;
    return pattern.replace(pattern.find("%d"), 2, std::to_string(value));
}

std::uint32_t wireOf(const Setting& setting, int value) {
    const auto above = std::upper_bound(setting.steps.begin(), setting.steps.end(), value);
    return static_cast<std::uint32_t>(setting.steps.empty() ? value : above - setting.steps.begin() - 1);
}

std::string frameOf(const Setting& setting, int value) {
    const std::uint32_t wire = wireOf(setting, value);
    std::string frame = setting.frame;
    const auto put = [&](const char* place, std::uint32_t byte) {
        const char hex = static_cast<char>(byte);
        if (const std::size_t at = frame.find(place); at != std::string::npos)
            frame.replace(at, 2, toHex(&hex, 1));
    };
    put("vv", wire);
    put("hh", wire / 16);
    put("ll", wire % 16);
    return frame;
}

std::string regular(const std::string& setter, int value) { return setter + format(" error,value is %d", value); }

class Cmd8100Parameters : public QuietCmd8100 {};

TEST_F(Cmd8100Parameters, EveryValueOfASettingIsItsCommandOrARefusal) {
    start();
    for (const Setting& setting : Settings) {
        controller().setParameters(setting.first);
        std::vector<int> values = upTo(setting.accepts.front() - 2, setting.accepts.back() + 2);
        values.insert(values.end(), {INT_MIN, INT_MAX, 256 + setting.accepts.front()});
        for (const int value : values) {
            const bool isAccepted = std::ranges::count(setting.accepts, value) == 1;
            const Outcome expected = isAccepted ? Outcome{1, frameOf(setting, value), ""}
                                                : Outcome{0, "",
                                                          format(setting.refusal, value) + " | " +
                                                              regular(std::string("set") + setting.name, value)};
            EXPECT_EQ(set(setting.id, value), expected) << setting.name << " " << value;
            if (isAccepted) {
                const int address = std::stoi(std::string(setting.frame).substr(9, 2), nullptr, 16);
                EXPECT_EQ(m_pPort->registerValue(static_cast<std::uint32_t>(address)), wireOf(setting, value));
            }
        }
    }
}

TEST_F(Cmd8100Parameters, AConditionThatDoesNotHoldSendsNothingAndSucceeds) {
    start(1);
    EXPECT_EQ(set(13, 28), (Outcome{1, "", ""})) << "threshold with infrared board";
    for (const int mode : {0, 1, 2, 3}) {
        controller().setParameters("(0," + std::to_string(mode) + ")");
        EXPECT_EQ(set(5, 10).frames, mode == 2 ? "81 01 04 4B 00 00 00 0A FF" : "") << mode;
        EXPECT_EQ(set(7, 10).frames, mode == 1 ? "81 01 04 4A 00 00 00 0A FF" : "") << mode;
        EXPECT_EQ(set(5, 10).result + set(7, 10).result, 2);
        EXPECT_EQ(set(5, 4), (Outcome{0, "", "p_nIris(4) is out of range | setIris error,value is 4"}));
    }
}

TEST_F(Cmd8100Parameters, ExposureModeSendsWhatBelongsToItAgain) {
    start();
    const std::string shutter = "81 01 04 4A 00 00 01 02 FF";
    const std::string iris = "81 01 04 4B 00 00 01 01 FF";
    EXPECT_EQ(store("(0,1)"), (Outcome{1, "81 01 04 39 0A FF | 81 01 04 4A 00 00 00 00 FF", ""})) << "stored shutter";
    EXPECT_EQ(store("(0,2)(5,17)"), (Outcome{1, "81 01 04 39 0B FF | " + iris + " | " + iris, ""}));
    EXPECT_EQ(store("(0,1)(7,18)"), (Outcome{1, "81 01 04 39 0A FF | " + shutter + " | " + shutter, ""}));
    EXPECT_EQ(store("(0,0)(7,3)"), (Outcome{1, "81 01 04 39 00 FF", ""}));
    EXPECT_EQ(store("(0,3)"), (Outcome{1, "81 01 04 39 A0 FF", ""}));
    for (const int value : {-1, 4, INT_MIN, INT_MAX})
        EXPECT_EQ(set(0, value), (Outcome{0, "", regular("setExposalMode", value)}));

    m_pPort->addFault("refuse@2-4");
    const Outcome failed = store("(0,2)");
    EXPECT_EQ(failed.frames, "81 01 04 39 0B FF | " + times(3, iris));
    EXPECT_TRUE(failed.log.find("setExposalMode error,value is 2 | setParameterToSensor (0,2) failed") !=
                std::string::npos)
        << failed;
    std::string stored;
    EXPECT_EQ(controller().getParameters("(0)", stored), 1);
    EXPECT_EQ(stored, "(0,3)") << "the refused mode is not taken for the block's";

    // The re-sent value goes through its own setter, with its own refusal.
    const Outcome outOfRange = store("(0,1)(7,19)");
    EXPECT_TRUE(outOfRange.log.starts_with("p_nShutter(19) is out of range | setExposalMode error,value is 1 | "))
        << outOfRange;
}

TEST_F(Cmd8100Parameters, MirrorFollowsTheGeneration) {
    static constexpr const char* Common[] = {"03|03", "02|03", "03|02", "02|02"};
    static constexpr const char* Fourth[] = {"02|02", "03|02", "02|03", "03|03"};
    for (const char* generation : {"generation=3", "generation=4", "", "generation=x", "generation=04"}) {
        start(0, generation);
        const bool isFourth = std::string(generation).ends_with("4");
        for (int mirror = 0; mirror < 4; ++mirror) {
            const std::string bytes = (isFourth ? Fourth : Common)[mirror];
            EXPECT_EQ(
                set(4, mirror),
                (Outcome{1, "81 01 04 61 " + bytes.substr(0, 2) + " FF | 81 01 04 66 " + bytes.substr(3) + " FF", ""}))
                << generation << " " << mirror;
        }
    }
    for (const int mirror : {-1, 4, INT_MAX})
        EXPECT_EQ(set(4, mirror),
                  (Outcome{0, "", format("p_nMirror(%d) is out of range | ", mirror) + regular("setMirror", mirror)}));
    int mirror = 0;
    EXPECT_EQ(store("(4,2)").result, 1);
    EXPECT_EQ(controller().getMirrorValue(mirror), 1);
    EXPECT_EQ(mirror, 2);
    create();
    EXPECT_EQ(controller().getMirrorValue(mirror), 0);
    EXPECT_EQ(mirror, 2) << "left alone when there is none";
}

TEST_F(Cmd8100Parameters, FocusModesAreOneOrTwoCommands) {
    start();
    EXPECT_EQ(set(15, 0), (Outcome{1, "81 01 04 38 02 FF | 81 01 04 57 02 FF", ""}));
    EXPECT_EQ(set(15, 1), (Outcome{1, "81 01 04 38 02 FF | 81 01 04 57 00 FF", ""}));
    EXPECT_EQ(set(15, 2), (Outcome{1, "81 01 04 38 03 FF", ""}));
    for (const int mode : {-1, 3, 7, INT_MAX})
        EXPECT_EQ(set(15, mode), (Outcome{1, "", ""}));
    int mode = 7;
    EXPECT_EQ(controller().getFocusMode(mode), 1);
    EXPECT_EQ(mode, 1);
}

TEST_F(Cmd8100Parameters, APairStopsAtTheCommandThatFails) {
    start();
    const std::string first = "81 01 04 61 02 FF";
    for (const char* fault : {"refuse@1-3", "refuse@2-4"}) {
        const bool isFirst = fault[7] == '1';
        m_pPort->addFault(fault);
        EXPECT_EQ(set(4, 1).frames, isFirst ? times(3, first) : first + " | " + times(3, "81 01 04 66 03 FF"));
        m_pPort->addFault(fault);
        const Outcome failed = set(15, 1);
        EXPECT_EQ(failed.result, 0);
        EXPECT_EQ(failed.frames,
                  isFirst ? times(3, "81 01 04 38 02 FF") : "81 01 04 38 02 FF | " + times(3, "81 01 04 57 00 FF"));
        EXPECT_TRUE(failed.log.ends_with(" | setFocusMode error,value is 1")) << failed;
    }
}

TEST_F(Cmd8100Parameters, CommandsIgnoreTheValue) {
    start();
    for (const auto& [id, frame] : std::map<int, const char*>{{52, "81 01 04 0B 02 FF"},
                                                              {53, "81 01 04 0B 03 FF"},
                                                              {54, "81 01 04 08 03 FF"},
                                                              {55, "81 01 04 08 02 FF"},
                                                              {64, "81 01 04 18 01 FF"}})
        for (const int value : {0, 7, -1})
            EXPECT_EQ(set(id, value), (Outcome{1, frame, ""}));
}

TEST_F(Cmd8100Parameters, LightsSpeakToTheInfraredBoardOnly) {
    static constexpr struct {
        int id;
        const char* name;
        int highest;
        const char* frame; ///< of the highest value
    } Lights[] = {{56, "setPowerMode", 1, "FE 01 1E 02 01 01 23 FF"},
                  {57, "setNearLight", 100, "FE 01 1E 02 06 64 8B FF"},
                  {58, "setMiddleLight", 100, "FE 01 1E 02 07 64 8C FF"},
                  {59, "setFarLight", 100, "FE 01 1E 02 08 64 8D FF"}};
    for (const int infrared : {0, 1, 2}) {
        start(infrared);
        for (const auto& light : Lights) {
            EXPECT_EQ(set(light.id, light.highest), (Outcome{1, infrared == 0 ? "" : light.frame, ""})) << infrared;
            for (const int wrong : {-1, light.highest + 1, INT_MIN})
                EXPECT_EQ(
                    set(light.id, wrong),
                    (Outcome{0, "", light.name + format("(%d) out of range | ", wrong) + regular(light.name, wrong)}));
        }
        EXPECT_EQ(set(57, 0).frames, infrared == 0 ? "" : "FE 01 1E 02 06 00 27 FF");
    }
}

TEST_F(Cmd8100Parameters, SwitchTimesAndDayNightModeSendNothing) {
    start(); // 18:00 to night, 6:00 to day
    const Outcome done{1, "", ""};
    const auto refused = [](int value, const std::string& setter) {
        return Outcome{0, "", format("failed:DTNTIME == NTDTIME,value = %d | ", value) + setter + " failed"};
    };
    EXPECT_EQ(set(60, 6), refused(600, "setDTNTime_H"));
    EXPECT_EQ(set(62, 18), refused(1800, "setNTDTime_H"));
    EXPECT_EQ(set(61, 3), done);
    EXPECT_EQ(set(62, 18), done) << "18:30 and 18:00";
    EXPECT_EQ(set(61, 0), refused(1800, "setDTNTime_M"));
    EXPECT_EQ(set(63, 3), refused(1830, "setNTDTime_M"));
    for (const int mode : {3, 1, 7, -1})
        EXPECT_EQ(set(12, mode), done) << mode;

    // 0 and 4 both hand the choice to the block: it is told once, and asked from then on.
    for (const int mode : {0, 4}) {
        quieten();
        EXPECT_EQ(controller().setParameterToSensor(12, mode), 1);
        m_pClock->advance(1.2);
        const std::vector<std::string> sent = m_pPort->takeSent();
        EXPECT_EQ(std::ranges::count(sent, "81 01 04 51 02 FF"), 1) << mode;
        EXPECT_GE(std::ranges::count(sent, "81 09 04 01 FF"), 1) << mode;
    }
    quieten();
    EXPECT_EQ(controller().setParameterToSensor(12, 2), 1);
    m_pClock->advance(1.2);
    EXPECT_EQ(m_pPort->takeSent(), (std::vector<std::string>{"81 01 04 51 03 FF", "81 01 04 01 02 FF"}));
}

TEST_F(Cmd8100Parameters, AFailedExchangeIsToldByTheTextOfItsRow) {
    struct Failure {
        int id;
        int value;
        std::string lastLine;
    };
    std::vector<Failure> failures{{64, 1, "OnePushTrigger failed"}};
    for (const auto& [id, name] : std::map<int, const char*>{{0, "setExposalMode"},
                                                             {4, "setMirror"},
                                                             {15, "setFocusMode"},
                                                             {52, "IrisUp"},
                                                             {53, "IrisDown"},
                                                             {54, "FocusUp"},
                                                             {55, "FocusDown"},
                                                             {56, "setPowerMode"},
                                                             {57, "setNearLight"},
                                                             {58, "setMiddleLight"},
                                                             {59, "setFarLight"}})
        failures.push_back({id, 1, regular(name, 1)});
    for (const Setting& setting : Settings)
        if (setting.id != 13)
            failures.push_back(
                {setting.id, setting.accepts[1], regular(std::string("set") + setting.name, setting.accepts[1])});
    start(1);
    for (const Failure& failure : failures) {
        controller().setParameters(failure.id == 7 ? "(0,1)" : "(0,2)");
        m_pPort->addFault("refuse@1-3");
        const Outcome failed = set(failure.id, failure.value);
        EXPECT_EQ(failed.result, 0) << failure.lastLine;
        EXPECT_EQ(std::ranges::count(failed.frames, '|'), 2) << failed;
        EXPECT_TRUE(failed.log.ends_with(" | " + failure.lastLine)) << failed;
        EXPECT_EQ(std::ranges::count(failed.log, '|'), 9) << "three lines a try and one at the end: " << failed;
    }
}

TEST_F(Cmd8100Parameters, ReadingGivesFactoryValues) {
    const std::map<int, int> factory{{0, 0},   {1, 50},  {2, 40},  {3, 90}, {4, 0},  {5, 16},  {6, 2},
                                     {7, 0},   {9, 3},   {10, 3},  {11, 6}, {12, 0}, {13, 10}, {14, 30},
                                     {15, 1},  {16, 2},  {17, 2},  {19, 4}, {20, 0}, {56, 0},  {57, 50},
                                     {58, 50}, {59, 50}, {60, 18}, {61, 0}, {62, 6}, {63, 0},  {65, 0}};
    int value = 77;
    create();
    EXPECT_EQ(controller().getParameterFromSensor(1, value), 0);
    EXPECT_EQ(value, 77) << "before the start the value is left alone";
    EXPECT_EQ(controller().setParameterToSensor(1, 50), 0);
    EXPECT_TRUE(m_pPort->takeSent().empty());

    start();
    EXPECT_EQ(store("(1,10)(14,3)").result, 1);
    for (const auto& [id, expected] : factory) {
        EXPECT_EQ(outcome([&, id = id] { return controller().getParameterFromSensor(id, value); }),
                  (Outcome{1, "", ""}));
        EXPECT_EQ(value, expected) << id;
    }
    EXPECT_EQ(controller().getParameterFromSensor(52, value), 0) << "a command has no value";
}

TEST_F(Cmd8100Parameters, EveryServedIdWaitsAndNoOther) {
    start();
    for (const int id : {8, 18, 21, 51, 75, 499, 505, -1, INT_MIN, INT_MAX}) {
        const Outcome refused = set(id, 1);
        EXPECT_EQ(refused, (Outcome{-1, "", ""})) << id;
        EXPECT_EQ(refused.seconds, 0);
    }
    for (const int id : {1, 15, 58, 60}) {
        int value = 0;
        EXPECT_NEAR(set(id, 7).seconds, 0.03, 1e-6) << id;
        EXPECT_NEAR(outcome([&] { return controller().getParameterFromSensor(id, value); }).seconds, 0.03, 1e-6);
    }
    EXPECT_EQ(set(1, 101).seconds, 0);
}

} // namespace
