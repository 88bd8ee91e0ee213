#include "simulator/Cmd8100Block.h"

#include "WireText.h"
#include "simulator/BlockRegistry.h"
#include "simulator/StateFile.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>
#include <unistd.h>

namespace camerasim {
namespace {

constexpr std::int64_t second = 1'000'000;

std::string ask(CameraBlock& p_Block, const std::string& p_strHex, std::int64_t p_nNow = 0) {
    return hexText(p_Block.exchange(wire(p_strHex), p_nNow));
}

std::string lastMeaning(const CameraBlock& p_Block) {
    const auto frames = p_Block.receivedFrames();
    return frames.empty() ? "" : p_Block.describe(frames.back().bytes());
}

struct Setting {
    const char* szCommand;
    std::uint32_t nAddress;
    std::uint32_t nValue;
    const char* szMeaning;
    const char* szInquiry;
    const char* szAnswer;
};

TEST(Cmd8100Block, SettingsAreHeldInquiredAndDecoded) {
    static constexpr Setting settings[] = {
        {"81 01 04 39 0B FF", 0x39, 0x0b, "exposure mode iris priority", "81 09 04 39 FF", "90 50 0B FF"},
        {"81 01 04 39 A0 FF", 0x39, 0xa0, "exposure mode manual", "81 09 04 39 FF", "90 50 A0 FF"},
        {"81 01 04 4E 00 00 00 0E FF", 0x4e, 14, "brightness 0E", "81 09 04 4E FF", "90 50 00 00 00 0E FF"},
        {"81 01 04 42 00 00 00 00 FF", 0x42, 0, "sharpness 00", "81 09 04 42 FF", "90 50 00 00 00 00 FF"},
        {"81 01 04 49 00 00 00 09 FF", 0x49, 9, "saturation 09", "81 09 04 49 FF", "90 50 00 00 00 09 FF"},
        {"81 01 04 61 02 FF", 0x61, 2, "mirror LR on", "81 09 04 61 FF", "90 50 02 FF"},
        {"81 01 04 66 02 FF", 0x66, 2, "mirror UD on", "81 09 04 66 FF", "90 50 02 FF"},
        {"81 01 04 4B 00 00 01 01 FF", 0x4b, 17, "iris 11", "81 09 04 4B FF", "90 50 00 00 01 01 FF"},
        {"81 01 04 A2 03 FF", 0xa2, 3, "photometry 03", "81 09 04 A2 FF", "90 50 03 FF"},
        {"81 01 04 4A 00 00 01 02 FF", 0x4a, 18, "shutter 12", "81 09 04 4A FF", "90 50 00 00 01 02 FF"},
        {"81 01 04 3D 02 FF", 0x3d, 2, "wide dynamic range on", "81 09 04 3D FF", "90 50 02 FF"},
        {"81 01 04 A1 02 FF", 0xa1, 2, "defog on", "81 09 04 A1 FF", "90 50 02 FF"},
        {"81 01 04 53 05 FF", 0x53, 5, "noise reduction 05", "81 09 04 53 FF", "90 50 05 FF"},
        {"81 01 04 21 00 00 01 0C FF", 0x21, 28, "day/night threshold 1C", "81 09 04 21 FF", "90 50 00 00 01 0C FF"},
        {"81 01 04 2C 0F FF", 0x2c, 15, "gain limit 0F", "81 09 04 2C FF", "90 50 0F FF"},
        {"81 01 04 38 03 FF", 0x38, 3, "focus mode manual", "81 09 04 38 FF", "90 50 03 FF"},
        {"81 01 04 57 02 FF", 0x57, 2, "focus trigger after zoom", "81 09 04 57 FF", "90 50 02 FF"},
        {"81 01 04 28 00 00 00 04 FF", 0x28, 4, "focus near limit 04", "81 09 04 28 FF", "90 50 00 00 00 04 FF"},
        {"81 01 04 58 05 FF", 0x58, 5, "focus sensitivity 05", "81 09 04 58 FF", "90 50 05 FF"},
        {"81 01 04 35 09 FF", 0x35, 9, "white balance 09", "81 09 04 35 FF", "90 50 09 FF"},
        {"81 01 04 A3 00 00 00 0C FF", 0xa3, 12, "shutter limit 0C", "81 09 04 A3 FF", "90 50 00 00 00 0C FF"},
        {"81 01 04 3E 02 FF", 0x3e, 2, "exposure compensation on", "81 09 04 3E FF", "90 50 02 FF"},
        {"81 01 04 24 72 00 06 FF", 0x2472, 6, "video system NTSC", "81 09 04 24 72 FF", "90 50 00 06 FF"},
        {"FE 01 1E 02 01 01 23 FF", 0xfe01, 1, "infrared board: power mode 01", "", ""},
        {"FE 01 1E 02 06 5A 81 FF", 0xfe06, 90, "infrared board: near light 5A", "", ""},
        {"FE 01 1E 02 07 00 28 FF", 0xfe07, 0, "infrared board: middle light 00", "", ""},
        {"FE 01 1E 02 08 64 8D FF", 0xfe08, 100, "infrared board: far light 64", "", ""},
    };
    for (const Setting& setting : settings) {
        SCOPED_TRACE(setting.szCommand);
        Cmd8100Block block;
        const auto before = block.registers();
        EXPECT_NE(block.registerValue(setting.nAddress), setting.nValue)
            << "the factory value would hide a lost command";
        EXPECT_EQ(ask(block, setting.szCommand), "90 41 FF");
        EXPECT_EQ(block.registerValue(setting.nAddress), setting.nValue);
        EXPECT_EQ(lastMeaning(block), setting.szMeaning);
        EXPECT_EQ(ask(block, setting.szInquiry), setting.szAnswer);

        int nChanged = 0;
        const auto after = block.registers();
        ASSERT_EQ(after.size(), before.size());
        for (std::size_t i = 0; i < after.size(); ++i) {
            nChanged += after[i].value != before[i].value ? 1 : 0;
        }
        EXPECT_EQ(nChanged, 1) << "a command touched a foreign register";
    }
}

TEST(Cmd8100Block, RefusesWhatItDoesNotKnow) {
    static constexpr const char* cases[][3] = {
        {"81 01 04 4E 00 00 00 0F FF", "90 60 02 FF", "brightness 0F"},
        {"81 01 04 4E 00 00 10 07 FF", "90 60 02 FF", "brightness 07"},
        {"81 01 04 4E 07 FF", "90 60 02 FF", "brightness with a wrong length"},
        {"81 01 04 39 01 FF", "90 60 02 FF", "exposure mode 01"},
        {"81 01 04 24 72 00 07 FF", "90 60 02 FF", "video system 07"},
        {"81 01 04 24 FF", "90 61 41 FF", "unknown register 24"},
        {"81 01 04 48 01 00 00 00 FF", "90 61 41 FF", "focus position 1000"},
        {"81 01 04 0B 04 FF", "90 61 41 FF", "unknown register 0B"},
        {"81 01 04 18 FF", "90 60 02 FF", "unknown register 18"},
        {"81 01 06 01 FF", "90 60 02 FF", "unknown frame"},
        {"81 FF", "90 60 02 FF", "unknown frame"},
        {"81 09 04 47 FF", "90 61 41 FF", "inquiry of unknown register 47"},
        {"81 09 04 4E 00 FF", "90 60 02 FF", "inquiry brightness"},
        {"FE 01 1E 02 05 01 27 FF", "90 61 41 FF", "infrared board: unknown selector 05"},
        {"FE 01 1E 02 06 65 8C FF", "90 61 41 FF", "infrared board: near light 65"},
        {"FE 01 1E 02 06 32 5A FF", "", "infrared board: near light 32 (wrong checksum)"},
        {"A1 20 05 FF", "", "mask: unknown operation"},
    };
    for (const auto& [szCommand, szAnswer, szMeaning] : cases) {
        SCOPED_TRACE(szCommand);
        Cmd8100Block block;
        const std::string strBefore = stateText(block);
        EXPECT_EQ(ask(block, szCommand), szAnswer);
        EXPECT_EQ(lastMeaning(block), szMeaning);
        EXPECT_EQ(stateText(block), strBefore);
    }
}

TEST(Cmd8100Block, ReplyHabits) {
    BlockSettings settings{
        .habit = ReplyHabit::acknowledgeThenComplete, .reactionTime = 16'000, .completionDelay = 70'000};
    Cmd8100Block both(settings);
    const auto replies = both.exchange(wire("81 01 04 61 02 FF"), second);
    ASSERT_EQ(hexText(replies), "90 41 FF|90 51 FF");
    EXPECT_EQ(replies[0].time, second + 16'000);
    EXPECT_EQ(replies[1].time, second + 86'000);
    EXPECT_EQ(ask(both, "81 09 04 61 FF"), "90 50 02 FF") << "an inquiry has no completion";

    settings.habit = ReplyHabit::complete;
    Cmd8100Block completing(settings);
    EXPECT_EQ(ask(completing, "FE 01 1E 02 06 5A 81 FF"), "90 51 FF");
    EXPECT_EQ(ask(completing, "A1 01 03 FF"), "A1 01 03 FF");
}

TEST(Cmd8100Block, ResynchronisesAfterGarbage) {
    static constexpr const char* setBrightness = "81 01 04 4E 00 00 00 03 FF";
    std::istringstream garbage("00 13 FF|FE|FE 01 1E|FE 05 03 02|FE 01 1E 02 06 32 59 00|A1 04 03|4D 45 4E 55|81 01 04 "
                               "4E 00 00|81 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00|90 41 FF|81 81");
    for (std::string strGarbage; std::getline(garbage, strGarbage, '|');) {
        SCOPED_TRACE(strGarbage);
        Cmd8100Block block;
        EXPECT_EQ(ask(block, strGarbage + ' ' + setBrightness), "90 41 FF");
        EXPECT_EQ(block.registerValue(0x4e), 3U);
        EXPECT_EQ(block.droppedBytes(), wire(strGarbage).size());
        EXPECT_EQ(block.receivedFrameCount(), 1U);
    }

    Cmd8100Block slow;
    EXPECT_EQ(ask(slow, "81 01 04 4E 00", 0), "");
    EXPECT_EQ(ask(slow, "00 00 03 FF", 50'000), "90 41 FF") << "a pause within the limit splits nothing";
    EXPECT_EQ(ask(slow, "81 01 04 4E 00", second), "");
    EXPECT_EQ(ask(slow, "00 00 05 FF", second + 50'001), "") << "an unfinished frame is dropped after the limit";
    EXPECT_EQ(slow.registerValue(0x4e), 3U);

    Cmd8100Block two;
    EXPECT_EQ(ask(two, "81 01 04 61 02 FF 81 09 04 61 FF 4D 45 4E 55 4F 4E A1 01 02 FF"),
              "90 41 FF|90 50 02 FF|A1 01 02 FF");
    EXPECT_EQ(two.describe(two.receivedFrames()[2].bytes()), "pan/tilt stop");
    EXPECT_EQ(ask(two, "4D 45 4E 55 4F 4E"), "");

    // Far more than fits the receive buffer in one go.
    std::string strMany;
    for (int i = 0; i < 5000; ++i) {
        strMany += i % 2 == 0 ? "33 81 01 04 61 02 FF " : "81 01 04 61 03 FF ";
    }
    const auto replies = two.exchange(wire(strMany), 0);
    EXPECT_EQ(replies.size(), 5000U);
    EXPECT_EQ(two.droppedBytes(), 2500U);
    EXPECT_EQ(two.receivedFrames().size(), 4096U);
    EXPECT_EQ(lastMeaning(two), "mirror LR off");
    EXPECT_EQ(two.describe(two.receivedFrames().front().bytes()), "mirror LR on");
}

TEST(Cmd8100Block, DayNightFollowsModeAndLight) {
    struct Step {
        const char* szCommand;
        Ambient ambient;
        bool bNight;
        std::uint32_t nPrivate;
    };
    static constexpr Step steps[] = {
        {"81 09 04 22 FF", Ambient::light, false, 0},         {"81 09 04 22 FF", Ambient::dark, true, 0},
        {"81 01 04 51 03 FF", Ambient::dark, true, 1},        {"81 01 04 01 03 FF", Ambient::dark, false, 2},
        {"81 01 04 01 02 FF", Ambient::light, true, 1},       {"81 01 04 51 02 FF", Ambient::light, false, 0},
        {"FE 01 1E 02 00 01 22 FF", Ambient::light, true, 1}, {"FE 01 1E 02 00 02 23 FF", Ambient::dark, false, 2},
        {"FE 01 1E 02 00 00 21 FF", Ambient::dark, true, 0},  {"81 01 04 01 03 FF", Ambient::dark, false, 0},
        {"81 01 04 51 03 FF", Ambient::dark, false, 2},
    };
    Cmd8100Block block;
    for (const Step& step : steps) {
        SCOPED_TRACE(&step - steps);
        block.setAmbient(step.ambient);
        ask(block, step.szCommand);
        EXPECT_EQ(ask(block, "81 09 04 01 FF"), step.bNight ? "90 50 02 FF" : "90 50 03 FF");
        EXPECT_EQ(block.registerValue(0xfe00), step.nPrivate);
    }
}

TEST(Cmd8100Block, RestartTakesItsTimeAndTheVideoSystem) {
    Cmd8100Block block(BlockSettings{.bootTime = 5 * second});
    ask(block, "81 01 04 4E 00 00 00 03 FF A1 00 04 FF A1 01 04 FF 81 01 04 38 03 FF 81 01 04 08 03 FF");
    ask(block, "81 01 04 24 72 00 06 FF");
    EXPECT_EQ(block.registerValue("video system"), 6U);
    EXPECT_EQ(block.registerValue("video system in force"), 8U);
    EXPECT_EQ(ask(block, "FE 05 03 01 01 0B FF"), "");
    EXPECT_TRUE(block.isUp(0)) << "a restart with a wrong sum restarts nothing";

    EXPECT_EQ(ask(block, "FE 05 03 01 01 0A FF 81 09 04 24 72 FF", second), "");
    EXPECT_EQ(block.registerValue("video system in force"), 6U);
    EXPECT_EQ(ask(block, "81 01 04 4E 00 00 00 09 FF", 6 * second - 1), "");
    EXPECT_EQ(ask(block, "81 09 04 4E FF", 6 * second), "90 50 00 00 00 03 FF");
    EXPECT_EQ(block.registerValue("focus position"), 0x1000U) << "the lens starts anew";
    EXPECT_TRUE(block.masks().region(4).set);

    block.reboot(10 * second, true);
    EXPECT_EQ(block.registerValue("brightness"), 7U);
    EXPECT_EQ(block.registerValue("video system in force"), 8U);
    EXPECT_FALSE(block.masks().region(4).set);

    ask(block, "81 01 04 61 02 FF", 20 * second);
    block.pressPowerButton(21 * second);
    EXPECT_EQ(ask(block, "81 09 04 61 FF", 100 * second), "");
    block.pressPowerButton(101 * second);
    EXPECT_EQ(ask(block, "81 09 04 61 FF", 106 * second), "90 50 02 FF");
}

TEST(Cmd8100Block, LensSteps) {
    Cmd8100Block block;
    ask(block, "81 01 04 0B 03 FF");
    EXPECT_EQ(block.registerValue("iris"), 15U);
    EXPECT_EQ(lastMeaning(block), "iris down");
    for (int i = 0; i < 30; ++i) {
        EXPECT_EQ(ask(block, "81 01 04 0B 02 FF"), "90 41 FF");
    }
    EXPECT_EQ(block.registerValue("iris"), 17U) << "it stops at its end";
    ask(block, "81 01 04 08 03 FF 81 01 04 08 03 FF 81 01 04 08 02 FF");
    EXPECT_EQ(ask(block, "81 09 04 48 FF"), "90 50 01 01 00 00 FF");
    ask(block, "81 01 04 18 01 FF");
    EXPECT_EQ(block.registerValue("focus position"), 0x2a00U);
    EXPECT_EQ(lastMeaning(block), "one-push trigger");
}

TEST(Cmd8100Block, MasksKeepTheirStateAndEcho) {
    struct Step {
        const char* szFrame;
        const char* szMeaning;
        int nRegion;
        MaskRegion expected;
    };
    static constexpr Step steps[] = {
        {"A1 00 05 FF", "mask: set region 5", 5, {}},
        {"A1 04 05 FF", "mask: show 5", 5, {}},
        {"A1 20 01 FF", "mask: increase width", 5, {}},
        {"A1 01 05 FF", "mask: set 5", 5, {true, true, 8, 8}},
        {"A1 05 05 FF", "mask: hide 5", 5, {true, false, 8, 8}},
        {"A1 04 05 FF", "mask: show 5", 5, {true, true, 8, 8}},
        {"A1 20 01 FF", "mask: increase width", 5, {true, true, 9, 8}},
        {"A1 20 04 FF", "mask: decrease height", 5, {true, true, 9, 7}},
        {"A1 20 02 FF", "mask: decrease width", 5, {true, true, 8, 7}},
        {"A1 20 03 FF", "mask: increase height", 5, {true, true, 8, 8}},
        {"A1 01 FF FF", "mask: set 255", 255, {true, true, 8, 8}},
        {"A1 06 05 FF", "mask: clear 5", 5, {}},
        {"A1 07 00 FF", "mask: clear all", 255, {}},
    };
    Cmd8100Block block;
    for (const Step& step : steps) {
        SCOPED_TRACE(step.szFrame);
        EXPECT_EQ(ask(block, step.szFrame), step.szFrame);
        EXPECT_EQ(lastMeaning(block), step.szMeaning);
        const MaskRegion& mask = block.masks().region(step.nRegion);
        EXPECT_EQ(mask.set, step.expected.set);
        EXPECT_EQ(mask.shown, step.expected.shown);
        EXPECT_EQ(mask.width, step.expected.width);
        EXPECT_EQ(mask.height, step.expected.height);
    }
    EXPECT_EQ(block.registerValue("mask region"), 5U);
}

TEST(Cmd8100Block, StateSurvivesAFile) {
    const std::string strPath =
        (std::filesystem::temp_directory_path() / ("block-state-" + std::to_string(getpid()))).string();
    Cmd8100Block block;
    ask(block, "81 01 04 4E 00 00 00 03 FF 81 01 04 51 03 FF 81 01 04 01 02 FF A1 00 09 FF A1 01 09 FF A1 05 09 FF");
    ask(block, "81 01 04 24 72 00 06 FF FE 01 1E 02 06 5A 81 FF");
    std::string strError;
    ASSERT_TRUE(saveState(block, strPath, strError)) << strError;

    const auto pSecond = makeBlock(16);
    ASSERT_TRUE(pSecond);
    ASSERT_TRUE(loadState(*pSecond, strPath, strError)) << strError;
    EXPECT_EQ(stateText(*pSecond), stateText(block));
    EXPECT_EQ(pSecond->registerValue(0x01), 2U);
    EXPECT_EQ(pSecond->registerValue("mask 9"), block.registerValue("mask 9"));
    EXPECT_NE(pSecond->registerValue("mask 9"), std::nullopt);
    EXPECT_EQ(stateText(block).find("focus position"), std::string::npos) << "a lens does not stay where it was";
    EXPECT_EQ(pSecond->registerValue("video system in force"), 8U);
    std::filesystem::remove(strPath);

    EXPECT_FALSE(loadState(*pSecond, strPath, strError));
    EXPECT_FALSE(saveState(block, "/nonexistent/state", strError));
    EXPECT_NE(strError.find("/nonexistent/state"), std::string::npos);

    const std::string strBefore = stateText(*pSecond);
    static constexpr const char* bad[][2] = {{"", "line 1"},
                                             {"camerasim-state 1 other\n", "line 1"},
                                             {"camerasim-state 1 cmd8100\n4E 5\n4E\n", "line 3"},
                                             {"camerasim-state 1 cmd8100\n\n4E five\n", "line 3"},
                                             {"camerasim-state 1 cmd8100\n4E 5 6\n", "line 2"},
                                             {"camerasim-state 1 cmd8100\n4E 5\n1234 5\n", "no register 1234"}};
    for (const auto& [szText, szReason] : bad) {
        EXPECT_FALSE(applyStateText(*pSecond, szText, strError)) << szText;
        EXPECT_NE(strError.find(szReason), std::string::npos) << strError;
        EXPECT_EQ(stateText(*pSecond), strBefore) << "a bad text was taken in part";
    }
    EXPECT_EQ(makeBlock(99), nullptr);
}

} // namespace
} // namespace camerasim
