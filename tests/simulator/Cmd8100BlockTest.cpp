#include "simulator/Cmd8100Block.h"

#include "ViscaCases.h"
#include "simulator/BlockRegistry.h"
#include "simulator/StateFile.h"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <unistd.h>

namespace camerasim {
namespace {

TEST(Cmd8100Block, SettingsAreHeldInquiredAndDecoded) {
    checkSettings<Cmd8100Block>(
        "39 0B=exposure mode iris priority|39 A0=exposure mode manual|42 00 00 00 00=sharpness 00|"
        "4E 00 00 00 0E=brightness 0E|49 00 00 00 09=saturation 09|61 02=mirror LR on|"
        "66 02=mirror UD on|4B 00 00 01 01=iris 11|A2 03=photometry 03|4A 00 00 01 02=shutter 12|"
        "3D 02=wide dynamic range on|A1 02=defog on|53 05=noise reduction 05|2C 0F=gain limit 0F|"
        "21 00 00 01 0C=day/night threshold 1C|38 03=focus mode manual|57 02=focus trigger after zoom|"
        "28 00 00 00 04=focus near limit 04|58 05=focus sensitivity 05|35 09=white balance 09|"
        "A3 00 00 00 0C=shutter limit 0C|3E 02=exposure compensation on|"
        "24 72 00 06=video system NTSC|FE 01 01 23=infrared board: power mode 01|"
        "FE 06 5A 81=infrared board: near light 5A|FE 07 00 28=infrared board: middle light 00|"
        "FE 08 64 8D=infrared board: far light 64",
        "90 41 FF");
}

TEST(Cmd8100Block, RefusesWhatItDoesNotKnow) {
    for (const auto& [answer, commands] :
         {std::pair{"90 60 02 FF",
                    "81 01 04 4E 00 00 00 0F FF=brightness 0F|81 01 04 4E 00 00 10 07 FF=brightness 07|"
                    "81 01 04 4E 07 FF=brightness with a wrong length|81 01 04 39 01 FF=exposure mode 01|"
                    "81 01 04 24 72 00 07 FF=video system 07|81 01 04 18 FF=unknown register 18|"
                    "81 01 06 01 FF=unknown frame|81 FF=unknown frame|81 09 04 4E 00 FF=inquiry brightness"},
          {"90 61 41 FF", "81 01 04 24 FF=unknown register 24|81 01 04 48 01 00 00 00 FF=focus position 1000|"
                          "81 01 04 0B 04 FF=unknown register 0B|81 09 04 47 FF=inquiry of unknown register 47|"
                          "FE 01 1E 02 05 01 27 FF=infrared board: unknown selector 05|"
                          "FE 01 1E 02 06 65 8C FF=infrared board: near light 65"},
          {"", "FE 01 1E 02 06 32 5A FF=infrared board: near light 32 (wrong checksum)|"
               "A1 20 05 FF=mask: unknown operation"}}) {
        for (const auto& row : table(commands)) {
            SCOPED_TRACE(row[0]);
            Cmd8100Block block;
            const std::string before = stateText(block);
            EXPECT_EQ(ask(block, row[0]), answer);
            EXPECT_EQ(lastMeaning(block), row[1]);
            EXPECT_EQ(stateText(block), before);
        }
    }
}

TEST(Cmd8100Block, ReplyHabits) {
    BlockSettings settings{
        .habit = ReplyHabit::AcknowledgeThenComplete, .reactionTime = 16'000, .completionDelay = 70'000};
    Cmd8100Block both(settings);
    const auto replies = both.exchange(wire("81 01 04 61 02 FF"), Second);
    ASSERT_EQ(hexText(replies), "90 41 FF;90 51 FF");
    EXPECT_EQ(replies[0].time, Second + 16'000);
    EXPECT_EQ(replies[1].time, Second + 86'000);
    EXPECT_EQ(ask(both, "81 09 04 61 FF"), "90 50 02 FF") << "an inquiry has no completion";

    settings.habit = ReplyHabit::Complete;
    Cmd8100Block completing(settings);
    play(completing, "FE 01 1E 02 06 5A 81 FF=90 51 FF|A1 01 03 FF=A1 01 03 FF");
}

TEST(Cmd8100Block, ResynchronisesAfterGarbage) {
    for (const auto& row :
         table("00 13 FF|FE|FE 01 1E|FE 05 03 02|FE 01 1E 02 06 32 59 00|A1 04 03|4D 45 4E 55|81 01 04 4E "
               "00 00|81 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00|90 41 FF|81 81")) {
        Cmd8100Block block;
        play(block, row[0] + " 81 01 04 4E 00 00 00 03 FF=90 41 FF==4E 3");
        EXPECT_EQ(block.droppedBytes(), wire(row[0]).size());
        EXPECT_EQ(block.receivedFrameCount(), 1U);
    }
    // A pause within the limit splits nothing, a longer one drops what had come.
    Cmd8100Block slow;
    play(slow, "81 01 04 4E 00=|+50000|00 00 03 FF=90 41 FF|+50000|81 01 04 4E 00=|+50001|00 00 05 FF===4E 3");

    Cmd8100Block two;
    play(two, "81 01 04 61 02 FF 81 09 04 61 FF A1 01 02 FF 4D 45 4E 55 4F 4E=90 41 FF;90 50 02 FF;A1 01 02 "
              "FF=pan/tilt stop|4D 45 4E 55 4F 4E=");
    // Far more than fits the receive buffer in one go, and more than the log keeps.
    std::string many;
    for (int i = 0; i < 5000; ++i)
        many += i % 2 == 0 ? "33 81 01 04 61 02 FF " : "81 01 04 61 03 FF ";
    const auto replies = two.exchange(wire(many), 0);
    EXPECT_EQ(replies.size(), 5000U);
    EXPECT_EQ(two.droppedBytes(), 2500U);
    EXPECT_EQ(two.receivedFrames().size(), 4096U);
    EXPECT_EQ(lastMeaning(two), "mirror LR off");
    EXPECT_EQ(two.describe(two.receivedFrames().front().bytes()), "mirror LR on");
}

TEST(Cmd8100Block, DayNightFollowsModeAndLight) {
    Cmd8100Block block;
    play(block, "light|81 09 04 01 FF=90 50 03 FF==FE00 0|dark|81 09 04 01 FF=90 50 02 FF==FE00 0|"
                "81 01 04 51 03 FF=90 41 FF==1 2=FE00 1|81 01 04 01 03 FF=90 41 FF==1 3=FE00 2|"
                "light|81 01 04 01 02 FF=90 41 FF==1 2=FE00 1|81 01 04 51 02 FF=90 41 FF==1 3=FE00 0|"
                "FE 01 1E 02 00 01 22 FF=90 41 FF==1 2=FE00 1|dark|FE 01 1E 02 00 02 23 FF=90 41 FF==1 3=FE00 2|"
                "FE 01 1E 02 00 00 21 FF=90 41 FF==1 2=FE00 0|81 01 04 01 03 FF=90 41 FF==1 3=FE00 0|"
                "81 01 04 51 03 FF=90 41 FF==1 3=FE00 2|81 09 04 01 FF=90 50 03 FF");
}

TEST(Cmd8100Block, RestartTakesItsTimeAndTheVideoSystem) {
    Cmd8100Block block(BlockSettings{.bootTime = 5 * Second});
    // The new video system comes into force with a restart, which a wrong sum does not start.
    play(block,
         "81 01 04 4E 00 00 00 03 FF=90 41 FF|A1 00 04 FF=A1 00 04 FF|A1 01 04 FF=A1 01 04 FF|"
         "81 01 04 38 03 FF=90 41 FF|81 01 04 08 03 FF=90 41 FF|81 01 04 24 72 00 06 FF=90 41 FF==2472 6=12472 8|"
         "FE 05 03 01 01 0B FF=|81 09 04 38 FF=90 50 03 FF|FE 05 03 01 01 0A FF 81 09 04 24 72 FF===12472 6|"
         "+4999999|81 01 04 4E 00 00 00 09 FF=|+1|81 09 04 4E FF=90 50 00 00 00 03 FF==48 1000=A104 80803");
    play(block, "+20000000|lose all===4E 7=12472 8=A104 0|+5000000|81 01 04 61 02 FF=90 41 FF|power|"
                "+80000000|81 09 04 61 FF=|power|+5000000|81 09 04 61 FF=90 50 02 FF");
}

TEST(Cmd8100Block, LensSteps) {
    Cmd8100Block block;
    play(block, "81 01 04 0B 03 FF=90 41 FF=iris down=4B F");
    for (int i = 0; i < 30; ++i)
        play(block, "81 01 04 0B 02 FF=90 41 FF=iris up");
    play(block, "81 09 04 4B FF=90 50 00 00 01 01 FF|81 01 04 08 03 FF=90 41 FF=focus near|81 01 04 08 03 FF=90 41 FF|"
                "81 01 04 08 02 FF=90 41 FF=focus far|81 09 04 48 FF=90 50 01 01 00 00 FF|"
                "81 01 04 18 01 FF=90 41 FF=one-push trigger=48 2A00");
}

TEST(Cmd8100Block, MasksKeepTheirStateAndEcho) {
    Cmd8100Block block;
    // A mask as a number: height, width, 3 shown or 1 hidden.
    for (const auto& row :
         table("A1 00 05 FF=set region 5=0=0|A1 04 05 FF=show 5=0=0|A1 20 01 FF=increase width=0=0|"
               "A1 01 05 FF=set 5=80803=0|A1 05 05 FF=hide 5=80801=0|A1 04 05 FF=show 5=80803=0|"
               "A1 20 01 FF=increase width=80903=0|A1 20 04 FF=decrease height=70903=0|"
               "A1 20 02 FF=decrease width=70803=0|A1 20 03 FF=increase height=80803=0|"
               "A1 01 FF FF=set 255=80803=80803|A1 06 05 FF=clear 5=0=80803|A1 07 00 FF=clear all=0=0"))
        play(block, row[0] + "=" + row[0] + "=mask: " + row[1] + "=A105 " + row[2] + "=A1FF " + row[3]);
    EXPECT_EQ(block.registerValue("mask region"), 5U);
}

TEST(Cmd8100Block, StateSurvivesAFile) {
    const std::string path =
        (std::filesystem::temp_directory_path() / ("block-state-" + std::to_string(getpid()))).string();
    Cmd8100Block block;
    ask(block, "81 01 04 4E 00 00 00 03 FF 81 01 04 51 03 FF 81 01 04 01 02 FF A1 00 09 FF A1 01 09 FF A1 05 09 FF");
    ask(block, "81 01 04 24 72 00 06 FF FE 01 1E 02 06 5A 81 FF");
    std::string error;
    ASSERT_TRUE(saveState(block, path, error)) << error;

    const auto restored = makeBlock(16);
    ASSERT_TRUE(restored);
    ASSERT_TRUE(loadState(*restored, path, error)) << error;
    EXPECT_EQ(stateText(*restored), stateText(block));
    EXPECT_EQ(restored->registerValue("mask 9"), 0x80801U);
    EXPECT_EQ(stateText(block).find("focus position"), std::string::npos) << "a lens does not stay where it was";
    EXPECT_EQ(restored->registerValue("video system in force"), 8U);
    std::filesystem::remove(path);

    EXPECT_FALSE(loadState(*restored, path, error));
    EXPECT_FALSE(saveState(block, "/nonexistent/state", error));
    EXPECT_NE(error.find("/nonexistent/state"), std::string::npos);

    const std::string before = stateText(*restored);
    for (const auto& row :
         table("=line 1|camerasim-state 1 other\n=line 1|camerasim-state 1 cmd8100\n4E 5\n4E\n=line 3|"
               "camerasim-state 1 cmd8100\n\n4E five\n=line 3|camerasim-state 1 cmd8100\n4E 5 6\n=line 2|"
               "camerasim-state 1 cmd8100\n4E 5\n1234 5\n=no register 1234")) {
        EXPECT_FALSE(applyStateText(*restored, row[0], error)) << row[0];
        EXPECT_NE(error.find(row[1]), std::string::npos) << error;
        EXPECT_EQ(stateText(*restored), before) << "a bad text was taken in part";
    }
    EXPECT_EQ(makeBlock(99), nullptr);
}

} // namespace
} // namespace camerasim
