#include "simulator/SonyEh4300Block.h"

#include "ViscaCases.h"

namespace camerasim {
namespace {

TEST(SonyEh4300Block, SettingsAreHeldInquiredAndDecoded) {
    checkSettings<SonyEh4300Block>(
        "42 00 00 00 0F=sharpness 0F|5F 03=chroma suppression 03|5B 05=gamma 05|53 05=noise reduction 05|"
        "52 02=high resolution on|61 02=mirror LR on|66 02=mirror UD on|21 00 00 01 0C=day/night threshold 1C|"
        "62 02=still image on|39 0D=exposure mode bright|4A 00 00 01 05=shutter 15|4B 00 00 00 00=iris 00|"
        "4D 00 00 01 0F=bright 1F|2C 04=gain limit 04|5A 02=automatic slow shutter on|"
        "3E 02=exposure compensation on|4E 00 00 00 0E=brightness 0E|5D 30=exposure response 30|"
        "59 02=spot exposure on|29 00 0F 00 03=spot position spot column 0F, spot line 03|"
        "33 02=backlight compensation on|35 03=white balance one push|43 00 00 0F 0F=red gain FF|"
        "44 00 00 00 00=blue gain 00|10 05=white balance trigger now|11 01=infrared correction 01|"
        "3D 00=wide dynamic range 00|06 02=digital zoom on|38 03=focus mode manual|57 01=focus trigger interval|"
        "58 03=focus sensitivity low|28 0F 00 00 00=focus near limit F000|49 00 00 00 00=saturation 00|"
        "2D 03 02 01 02 09 06 00 00=wide range settings wide range display 03, wide range sensitivity 02, wide range "
        "black correction 01, wide range white correction 02, wide range short exposure 96|"
        "27 0F 0F 00 00=lens interval times lens movement FF, lens interval 00|4F 00 00 00 0E=hue 0E|"
        "5E 02=high sensitivity on|24 56 00 01=inter-sync on|24 72 00 06=video system NTSC|"
        "FE 08 64 8D=infrared board: far light 64",
        "90 41 FF");
}

TEST(SonyEh4300Block, RefusesWhatIsOutOfRange) {
    for (const char* payload :
         {"2D 04 00 00 00 01 00 00 00", "2D 00 03 00 00 01 00 00 00", "2D 00 00 04 00 01 00 00 00",
          "2D 00 00 00 03 01 00 00 00", "2D 00 00 00 00 00 00 00 00", "2D 00 00 00 00 09 07 00 00",
          "2D 00 00 00 00 01 00 01 00", "2D 00 00 00 00 01 00", "29 00 00 01 00", "29 01 00 00 00", "28 00 00 00 00",
          "4B 00 00 00 04", "4D 00 00 00 04", "39 01", "10 04", "24 56 00 02", "2C 03", "5D 00"}) {
        SonyEh4300Block block;
        EXPECT_EQ(ask(block, "81 01 04 " + std::string(payload) + " FF"), "90 60 02 FF") << payload;
    }
}

TEST(SonyEh4300Block, PartsOfARegisterHaveNames) {
    SonyEh4300Block block;
    ask(block, "81 01 04 2D 02 01 03 00 01 04 00 00 FF 81 01 04 29 00 07 00 09 FF 81 01 04 27 0A 0B 0C 0D FF");
    for (const auto& [name, value] : {std::pair{"wide range display", 2U},
                                      {"wide range sensitivity", 1U},
                                      {"wide range black correction", 3U},
                                      {"wide range white correction", 0U},
                                      {"wide range short exposure", 0x14U},
                                      {"spot column", 7U},
                                      {"spot line", 9U},
                                      {"lens movement", 0xabU},
                                      {"lens interval", 0xcdU}})
        EXPECT_EQ(block.registerValue(name), value) << name;
    EXPECT_TRUE(block.setRegister(0x202d4, 0x96));
    EXPECT_EQ(ask(block, "81 09 04 2D FF"), "90 50 02 01 03 00 09 06 00 00 FF");
    EXPECT_FALSE(block.setRegister(0x202d5, 0));
}

TEST(SonyEh4300Block, GainFollowsTheLight) {
    SonyEh4300Block block;
    play(block, "81 09 04 4C FF=90 50 00 00 00 01 FF");
    block.setLight(12.5); // two halvings below full light: 12 dB
    play(block, "81 09 04 4C FF=90 50 00 00 00 07 FF");
    block.setLight(0);
    play(block, "81 09 04 4C FF=90 50 00 00 00 0F FF==4C 1=1004C F|81 01 04 2C 05 FF=90 41 FF|"
                "81 09 04 4C FF=90 50 00 00 00 05 FF|81 01 04 39 03 FF=90 41 FF|81 01 04 4C 00 00 00 09 FF=90 41 FF|"
                "81 09 04 4C FF=90 50 00 00 00 09 FF");
}

TEST(SonyEh4300Block, RestartIsAnsweredAndBringsSyncAndVideoSystem) {
    SonyEh4300Block block(BlockSettings{.habit = ReplyHabit::AcknowledgeThenComplete, .bootTime = 5 * Second});
    play(block,
         "81 01 04 24 56 00 01 FF=90 41 FF;90 51 FF==2456 1=12456 0|81 01 04 24 72 00 06 FF=90 41 FF;90 51 FF==12472 8|"
         "81 01 04 62 02 FF=90 41 FF;90 51 FF|81 01 04 19 03 FF=90 41 FF=restart=12456 1=12472 6|"
         "81 09 04 24 56 FF=|+5000000|81 09 04 24 56 FF=90 50 00 01 FF|81 09 04 62 FF=90 50 03 FF|"
         "81 01 04 19 04 FF=90 61 41 FF");
    // What a host brought up before needs no restart.
    SonyEh4300Block settled;
    EXPECT_TRUE(settled.setVideoSystem("NTSC"));
    play(settled, "81 09 04 24 56 FF=90 50 00 01 FF|81 09 04 24 72 FF=90 50 00 06 FF==12456 1=12472 6");
}

TEST(SonyEh6300Block, AnswersFromItsSecondSocket) {
    SonyEh6300Block block(BlockSettings{.habit = ReplyHabit::AcknowledgeThenComplete});
    play(block, "81 01 04 53 05 FF=90 42 FF;90 52 FF|81 01 04 47 00 FF=90 62 41 FF|81 09 04 53 FF=90 50 05 FF|"
                "81 01 04 19 03 FF=90 42 FF");
}

} // namespace
} // namespace camerasim
