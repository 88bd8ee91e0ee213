#include "simulator/It1Block.h"

#include "WireText.h"
#include "simulator/It1ZoomBlock.h"

#include <cmath>
#include <numeric>

#include <gtest/gtest.h>

namespace camerasim {
namespace {

/// Length and sum around a body, as a host would make them.
std::string framed(const std::string& body) {
    auto bytes = wire(body);
    bytes.insert(bytes.begin(), static_cast<std::uint8_t>(bytes.size() + 2));
    bytes.push_back(static_cast<std::uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0U)));
    return hexText(bytes);
}

std::string ask(CameraBlock& block, const std::string& hex) { return hexText(block.exchange(wire(hex), 0)); }

constexpr const char* Acknowledged = "05 01 02 01 09";
constexpr const char* Refused = "04 01 01 06";

TEST(It1Block, RegistersAreWrittenAndReadByPage) {
    for (const auto& row :
         table("0A 03=7F=brightness|14 02=3F=sharpness 1|14 03=4F=sharpness 2|15 00=03=mirror|0A 15=19=gain limit 1|"
               "0A 16=FF=gain limit 2|0A 01=02=shutter and iris mode|16 04=60=gamma|0B 00=22=white balance|"
               "14 10=11=night colour|1C 03=99=iris voltage|0A 27=05=iris speed 1|0A 28=0A=iris speed 2|"
               "0A 29=10=iris speed 3|0A 2A=40=iris speed 4|01 01=05=picture mode|14 11=00=threshold of day|"
               "14 12=00=threshold of night|0A 08=FA 28=longest shutter|0A 0C=8D 47=shortest shutter|"
               "14 1F=01 02=chroma RY1|14 21=03 04=chroma BY1|14 27=05 06=chroma RY2|14 29=07 08=chroma BY2|"
               "14 2F=09 0A=chroma RY3|14 31=0B 0C=chroma BY3|14 37=0D 0E=chroma RY4|14 39=0F 10=chroma BY4")) {
        SCOPED_TRACE(row[2]);
        const bool isWide = row[1].size() > 2;
        It1Block block;
        const std::string read = framed("01 05 01 " + row[0] + (isWide ? " 02" : " 01"));
        const std::string answer = framed((isWide ? "01 04 01 " : "01 03 01 ") + row[1]);
        EXPECT_NE(ask(block, read), answer) << "the factory value would hide a lost command";
        const std::string write = framed((isWide ? "01 06 02 " : "01 05 02 ") + row[0] + " " + row[1]);
        EXPECT_EQ(ask(block, write), Acknowledged);
        EXPECT_EQ(ask(block, read), answer);
        EXPECT_EQ(block.describe(wire(read)), "inquiry " + row[2]);
        EXPECT_EQ(block.describe(wire(write)).substr(0, row[2].size() + 1), row[2] + " ");
        // Low byte first.
        const auto bytes = wire(row[1]);
        EXPECT_EQ(block.registerValue(row[2]), isWide ? bytes[0] + bytes[1] * 256U : bytes[0]);
    }
}

TEST(It1Block, SilentAboutWhatIsNoFrameAndRefusesTheRest) {
    for (const auto& row :
         table("08 01 05 02 0A 03 7F 9D=brightness 7F (wrong checksum)|08 01 05 03 0A 03 7F 9D=unknown frame|"
               "09 01 06 01 0A 08 02 00 25=unknown frame|08 02 05 01 0A 03 01 1E=unknown frame|"
               "08 01 06 01 0A 03 01 1E=unknown frame|07 01 05 01 0A 03 1B=unknown frame|61=unknown frame")) {
        It1Block block;
        EXPECT_EQ(ask(block, row[0]), "") << row[0];
        EXPECT_EQ(block.describe(wire(row[0])), row[1]);
        EXPECT_EQ(ask(block, row[0] + " " + framed("01 05 01 0A 03 01")), framed("01 03 01 80")) << row[0];
        EXPECT_EQ(block.receivedFrameCount(), 1U);
    }
    It1Block block;
    for (const char* body : {"01 05 02 0A 04 7F", "01 05 01 0A 04 01", "01 05 01 0A 03 00", "01 05 01 0A 03 03",
                             "01 05 01 0A 03 02", "01 06 02 0A 03 01 02", "01 05 02 3D 0B 01"})
        EXPECT_EQ(ask(block, framed(body)), Refused) << body;
    EXPECT_EQ(block.registerValue("brightness"), 0x80U) << "a refused frame was carried out in part";
    // A frame that was cut off does not take the repeated one with it.
    EXPECT_EQ(ask(block, "08 01 05 02 0A 03 7F 08 01 05 02 0A 03 7F 9C"), Acknowledged);
}

TEST(It1Block, LightIndexFollowsTheLight) {
    It1Block block;
    // As a host computes it from the two bytes: 32 to a halving of the light.
    const auto index = [&] {
        const auto answer = wire(ask(block, framed("01 05 01 3D 0B 02")));
        const int value = answer.size() == 7 ? answer[4] + 256 * answer[5] : 0;
        return static_cast<int>((std::log2(value) - 7.0) * 32.0);
    };
    for (const auto& [lux, expected] :
         {std::pair{20000.0, 0}, {100.0, 0}, {50.0, 32}, {12.5, 96}, {1.5625, 192}, {0.2, 286}, {0.0, 287}}) {
        block.setLight(lux);
        EXPECT_EQ(index(), expected) << lux;
    }
    EXPECT_EQ(block.picture(), Picture::Night) << "with thresholds the block decides";
    block.setLight(10);
    EXPECT_EQ(block.picture(), Picture::Night) << "between the thresholds it stays";
    ask(block, framed("01 05 02 14 11 00") + " " + framed("01 05 02 14 12 00"));
    block.setAmbient(Ambient::Light);
    EXPECT_EQ(block.picture(), Picture::Night) << "without thresholds the host does";
    EXPECT_FALSE(block.decidesDayNight());
    EXPECT_FALSE(block.movesFilter());
}

TEST(It1Block, RepliesAreTold) {
    const It1Block block;
    const auto read = wire(framed("01 05 01 0A 08 02"));
    for (const auto& row :
         table("05 01 02 01 09=acknowledgement|04 01 01 06=refused|05=head of a reply of 5 bytes|"
               "01 02 01 09=acknowledgement|01 04 01 B0 1E DB=answer: longest shutter 1EB0|"
               "07 01 04 01 B0 1E DC=reply with a wrong checksum|01 04 01 B0 1E DC=stray bytes 01 04 01 B0 1E DC|"
               "13 13=stray bytes 13 13|08 01 05 01 0A 08 02 23=echo: inquiry longest shutter"))
        EXPECT_EQ(block.describeReply(wire(row[0]), read), row[1]);
    EXPECT_TRUE(block.isReply(wire("05 01 02 01 09")));
    EXPECT_FALSE(block.isReply(read));
}

TEST(It1ZoomBlock, LensHasALineOfItsOwn) {
    LensMotorBlock lens;
    for (const auto& row : table("81 01 04 B1 03 FF=lens adjusted=B1=3|81 01 04 B1 04 FF=lens at 5 cm=B1=4|"
                                 "81 01 04 B1 00 FF=lens at 1 m=B1=0|81 01 04 B1 01 FF=lens at 2 m=B1=1|"
                                 "81 01 04 B1 02 FF=lens at 3 m=B1=2|81 01 04 38 02 FF=focus mode automatic=38=2|"
                                 "81 01 04 18 01 FF=one-push trigger=38=3|81 01 04 B1 05 FF=lens 05=B1=2|"
                                 "81 09 04 B1 FF=inquiry lens=B1=2")) {
        EXPECT_EQ(ask(lens, row[0]), "") << row[0];
        EXPECT_EQ(lens.describe(wire(row[0])), row[1]);
        EXPECT_EQ(lens.registerValue(static_cast<std::uint32_t>(std::stoul(row[2], nullptr, 16))), std::stoul(row[3]));
    }
}

} // namespace
} // namespace camerasim
