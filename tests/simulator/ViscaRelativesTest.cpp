// What is particular to the relatives of the CMD8100 and of the Sony EH4300.

#include "ViscaCases.h"
#include "simulator/BlockRegistry.h"
#include "simulator/Cmd8300Block.h"
#include "simulator/SonyCh3310Block.h"
#include "simulator/SonyCv7500Block.h"

namespace camerasim {
namespace {

TEST(ViscaRelatives, RangesAreTheModelsOwn) {
    for (const auto& row :
         table("cmd8100_old=4E 00 00 00 0C=4E 00 00 00 0D|cmd8100_old=42 00 00 00 0F=39 A0|cmd8100_old=58 03=35 09|"
               "cmd8100_old=4A 00 00 01 01=4A 00 00 01 02|cmd8100_old=24 72 00 06=24 72 00 0E|"
               "cmd7300=39 A0=4C 00 00 00 01|cmd7300=24 72 01 01=24 72 00 06|cmd8300=A4 00 00 00 0F=A4 00 00 00 00|"
               "cmd8300=4A 00 00 00 15=4A 00 00 01 05|cmd8300=21 01 00 07 0E=21 00 00 07 0E|cmd8300=A3 0F=A3 10|"
               "cmd8300=18 02=18 03|cmd8300=4D 00 00 01 0F=4D 00 00 00 04|cmd8300=35 08=35 07|cmd8300=53 FE=3E 02|"
               "sony_ch3310=4B 00 00 00 03=4B 00 00 00 02|sony_ch3310=4D 00 00 00 03=4D 00 00 00 02|"
               "sony_ch3310=5D 20=5D 21|sony_ch3310=28 0D 00 00 00=28 0E 00 00 00|sony_ch3310=24 72 00 0E=24 72 00 06|"
               "sony_cv7500=34 00=34 01|sony_cv7500=37 02 00=37 02 01|sony_cv7500=3D 06=3D 04|"
               "sony_cv7500=2D 00 06 03 02 00 00 00 00=2D 00 07 00 00 00 00 00 00|sony_cv7500=35 09=35 0A|"
               "sony_cv7500=24 72 00 13=24 72 01 03|sony_cv7500=08 02=33 02|no_sensor_ui=61 02=53 02")) {
        SCOPED_TRACE(row[0] + ": " + row[1] + ", " + row[2]);
        const auto block = makeBlock(row[0]);
        EXPECT_EQ(ask(*block, "81 01 04 " + row[1] + " FF"), "90 41 FF");
        EXPECT_EQ(ask(*block, "81 01 04 " + row[2] + " FF").substr(0, 4), "90 6");
    }
}

TEST(ViscaRelatives, VideoSystemOfTwoBytesComesWithTheRestart) {
    for (const char* const name : {"cmd7300", "sony_ch3310"}) {
        const auto block = makeBlock(name);
        const std::string restart =
            name == std::string("cmd7300") ? "FE 05 03 01 01 0A FF=" : "81 01 04 19 03 FF=90 41 FF";
        play(*block, "81 09 04 24 72 FF=90 50 01 01 FF|81 01 04 24 72 00 0E FF=90 41 FF=video system NTSC=12472 11|" +
                         restart + "=restart=12472 E|+8000000|81 09 04 24 72 FF=90 50 00 0E FF");
    }
    SonyCv7500Block sized;
    EXPECT_TRUE(sized.setVideoSystem("720 lines, system 4"));
    play(sized, "81 09 04 24 72 FF=90 50 00 0C FF|81 01 04 24 72 00 14 FF=90 41 FF=video system 1080 lines, system 4|"
                "81 09 04 24 72 FF=90 50 00 14 FF");
}

TEST(Cmd8300Block, TwoCommandsTogetherSwitchDayAndNight) {
    Cmd8300Block block;
    play(block, "dark|81 09 04 01 FF=90 50 02 FF=inquiry day/night=10001 2=FE00 0|"
                "81 01 04 01 02 FF=90 41 FF=day/night day=10001 3=FE00 2|81 09 04 01 FF=90 50 03 FF|"
                "81 01 04 51 03 FF=90 41 FF=day/night mode night=10001 2=FE00 1|light|81 09 04 01 FF=90 50 02 FF|"
                "81 01 04 01 03 FF=90 41 FF=day/night by the light=10001 2|81 01 04 51 02 FF=90 41 FF==10001 3=FE00 0|"
                "FE 01 1E 02 00 01 22 FF=90 41 FF==51 3=10001 2|FE 01 1E 02 00 02 23 FF=90 41 FF==51 2=1 2=10001 3|"
                "81 01 04 19 03 FF=90 41 FF=restart=10001 3");
    EXPECT_EQ(block.describeReply(wire("90 50 02 FF"), wire("81 09 04 01 FF")), "answer: day/night night");
}

TEST(SonyCv7500Block, PointLightStandsInPagesButForOneRegister) {
    SonyCv7500Block block;
    play(block, "81 01 7F 01 7F FF=90 41 FF=open the pages|81 01 7F 7F 02 00 00 01 00 01 FF=90 41 FF=page access 01|"
                "81 09 7F 7F 01 0B 04 09 FF=90 50 00 00 0F 00 FF=inquiry point light 0|"
                "81 01 7F 7F 02 0B 04 09 03 00 FF=90 41 FF=point light 0 open=7F0B0409 30|"
                "81 01 7F 7F 02 0B 04 0B 03 00 FF=90 41 FF=point light 1 open=7F0B0409 30|"
                "81 09 7F 7F 01 0B 04 0B FF=90 50 00 00 00 00 FF|"
                "81 01 7F 7F 02 0B 0F 09 00 02 FF=90 41 FF=point light 8 open=7F0B0F09 2|"
                "81 01 7F 7F 02 0B 04 0A 03 05 FF=90 61 41 FF=unknown register 04 0A of page 0B with 03 05|"
                "81 09 7F 7F 01 0C 04 09 FF=90 61 41 FF=inquiry unknown register 04 09 of page 0C|"
                "81 01 7F 7F 02 00 00 01 00 02 FF=90 60 02 FF|81 01 7F 7F 02 0B 04 09 10 05 FF=90 60 02 FF|"
                "81 01 7F 7F 03 0B 04 09 03 05 FF=90 60 02 FF=unknown frame=7F0B0409 30");
    play(*makeBlock("sony_eh4300"), "81 01 7F 01 7F FF=90 60 02 FF=unknown frame");
}

TEST(SonyCh3310Block, ExposureMovesWithTheLightUnlessItIsFixed) {
    SonyCh3310Block block;
    const auto exposure = [&](double lux) {
        block.setLight(lux);
        return ask(block, "81 09 04 4A FF 81 09 04 4B FF 81 09 04 4C FF");
    };
    const auto shows = [](const std::string& shutter, const std::string& iris, const std::string& gain) {
        return "90 50 00 00 " + shutter + " FF;90 50 00 00 " + iris + " FF;90 50 00 00 " + gain + " FF";
    };
    EXPECT_EQ(exposure(12.5), shows("00 05", "01 01", "00 07")) << "dark: gain alone";
    EXPECT_EQ(exposure(200), shows("00 05", "00 0D", "00 01")) << "bright: the iris first";
    EXPECT_EQ(exposure(3200), shows("00 07", "00 09", "00 01")) << "then the shutter";
    ask(block, "81 01 04 39 0A FF 81 01 04 4A 00 00 00 08 FF");
    EXPECT_EQ(exposure(3200), shows("00 08", "00 05", "00 01")) << "shutter priority: the iris alone";
    ask(block, "81 01 04 39 0B FF 81 01 04 4B 00 00 00 0C FF");
    EXPECT_EQ(exposure(3200), shows("00 0B", "00 0C", "00 01")) << "iris priority: the shutter alone";
    EXPECT_EQ(exposure(1e9), shows("01 05", "00 0C", "00 01"));
    ask(block, "81 01 04 39 03 FF 81 01 04 4C 00 00 00 09 FF");
    EXPECT_EQ(exposure(0), shows("00 08", "00 0C", "00 09")) << "manual: as it was set";
}

} // namespace
} // namespace camerasim
