#include "simulator/Cmd7200Block.h"

#include "WireText.h"

#include <gtest/gtest.h>

namespace camerasim {
namespace {

constexpr std::int64_t Second = 1'000'000;

/// What the block answers to characters, as characters, one answer behind the other.
std::string ask(CameraBlock& block, const std::string& text, std::int64_t now = 0) {
    std::string answer;
    for (const WireFrame& frame : block.exchange(wire(characters(text)), now))
        answer.append(frame.bytes().begin(), frame.bytes().end());
    return answer;
}

std::string meaning(const std::string& text) { return Cmd7200Block().describe(wire(characters(text))); }

TEST(Cmd7200Block, WritesAreEchoedAndReadBack) {
    for (const auto& row : table("FD9E=FF=brightness FF|FBF6=3F=sharpness 3F|FF30=01=mirror 1 01|FF31=01=mirror 2 01|"
                                 "FCC8=09=exposure chosen day/night, fixed shutter|FCC9=10=fixed shutter 10|"
                                 "FF0E=08=focus mode 08|E139=F4=focus limit F4|FBFF=08=white balance 08|"
                                 "FFE6=80=day/night choice night|FFFE=03=video system NTSC")) {
        Cmd7200Block block(BlockSettings{.bootTime = 0});
        const std::string write = ":W" + row[0] + row[1];
        EXPECT_NE(ask(block, ":R" + row[0] + "00"), ":R" + row[0] + row[1]) << "the factory value would hide a loss";
        EXPECT_EQ(ask(block, write), write);
        EXPECT_EQ(ask(block, ":R" + row[0] + "00"), ":R" + row[0] + row[1]);
        EXPECT_EQ(meaning(write), row[2]);
    }
}

TEST(Cmd7200Block, AnswersNothingToWhatItDoesNotKnow) {
    Cmd7200Block block;
    for (const char* text : {":WFD9F10", ":RFD9F00", ":wFD9E0010", ":RFD9E01", ":WFFE701", ":rE1ED0001", ":WFD9e10",
                             ":WFD9E1", ":XFD9E10", "WFD9E10"})
        EXPECT_EQ(ask(block, text), "") << text;
    EXPECT_EQ(block.registerValue("brightness"), 0x26U);
    for (const auto& row : table(":WFD9F10=unknown register FD9F|:RFD9F00=inquiry of unknown register FD9F|"
                                 ":wFD9E0010=brightness with a wrong length|:rE1ED0001=unknown frame|"
                                 ":rE1ED0000=store the settings|:RFFE700=inquiry day/night|:W=unknown frame"))
        EXPECT_EQ(meaning(row[0]), row[1]);
}

TEST(Cmd7200Block, StartsAtTheColon) {
    for (const char* garbage : {"x", "FD9E10", ":WFD", ":WFD9E1", ":WFD9EG", ":", "::W", ":rE1ED00", "?WFD9E10"}) {
        Cmd7200Block block;
        EXPECT_EQ(ask(block, std::string(garbage) + ":WFD9E11:RFD9E00"), ":WFD9E11:RFD9E11") << garbage;
        EXPECT_EQ(block.receivedFrameCount(), 2U);
        EXPECT_EQ(block.droppedBytes(), std::string(garbage).size());
    }
}

TEST(Cmd7200Block, KeepsWhatWasStored) {
    Cmd7200Block block(BlockSettings{.bootTime = Second});
    EXPECT_EQ(ask(block, ":WFD9E11:rE1ED0000:WFD9E22"), ":WFD9E11:WFD9E22");
    EXPECT_EQ(block.registerValue("brightness stored"), 0x11U);
    block.reboot(0, false);
    EXPECT_EQ(ask(block, ":RFD9E00", Second), ":RFD9E11");
}

TEST(Cmd7200Block, ReportFollowsLightOrChoice) {
    Cmd7200Block block;
    const auto report = [&] { return ask(block, ":RFFE700"); };
    EXPECT_EQ(report(), ":RFFE701");
    block.setAmbient(Ambient::Dark);
    EXPECT_EQ(report(), ":RFFE700");
    ask(block, ":WFFE6C0");
    EXPECT_EQ(report(), ":RFFE700") << "automatic: the choice does not count";
    ask(block, ":WFCC808");
    EXPECT_EQ(report(), ":RFFE701");
    ask(block, ":WFFE680");
    block.setAmbient(Ambient::Light);
    EXPECT_EQ(report(), ":RFFE700");
    ask(block, ":WFCC80A");
    EXPECT_EQ(report(), ":RFFE701");
}

TEST(Cmd7200Block, NewVideoSystemTakesFiveSeconds) {
    Cmd7200Block block;
    EXPECT_EQ(block.videoSystem(), "PAL");
    EXPECT_EQ(ask(block, ":WFFFE01:RFFFE00"), ":WFFFE01:RFFFE01") << "the same system costs nothing";
    EXPECT_EQ(ask(block, ":WFFFE03:RFFFE00"), ":WFFFE03");
    EXPECT_EQ(ask(block, ":RFFFE00", 5 * Second - 1), "");
    EXPECT_EQ(ask(block, ":RFFFE00", 5 * Second), ":RFFFE03");
    EXPECT_EQ(block.videoSystem(), "NTSC");
    block.reboot(0, false);
    EXPECT_EQ(block.videoSystem(), "NTSC") << "it needs no store command";
}

TEST(Cmd7200Block, RepliesAreTold) {
    const Cmd7200Block block;
    const auto told = [&](const std::string& reply, const std::string& command) {
        return block.describeReply(wire(characters(reply)), wire(characters(command)));
    };
    EXPECT_EQ(told(":WFD9E11", ":WFD9E11"), "echo: brightness 11");
    EXPECT_EQ(told(":WFD9E21", ":WFD9E11"), "wrong echo: brightness 21");
    EXPECT_EQ(told(":RFFE700", ":RFFE700"), "answer: day/night night");
    EXPECT_EQ(told("?WFD9E11", ":WFD9E11"), "refused");
    EXPECT_EQ(told(":WFD9", ":WFD9E11"), "part of a reply");
    EXPECT_EQ(told("D9", ":WFD9E11"), "stray bytes 44 39");
    EXPECT_EQ(block.replyLength(wire(characters(":WFD9:WFD9E11"))), 5U);
    EXPECT_TRUE(block.isReply(wire(characters(":RFD9E11"))));
    EXPECT_FALSE(block.isReply(wire(characters(":RFD9E00"))));
}

// A 16-bit register; no model here has one yet.
class WideBlock : public RegisterTextBlock {
public:
    WideBlock() : RegisterTextBlock(Model, {}) {}
    Picture picture() const override { return Picture::Day; }
    bool decidesDayNight() const override { return false; }

private:
    static constexpr TextRegister Rows[] = {{.address = 0xfb38, .name = "gain", .digits = 4, .factory = 0x120}};
    static constexpr RegisterTextModel Model{.name = "wide", .registers = Rows};
};

TEST(WideBlock, SixteenBitForms) {
    WideBlock block;
    EXPECT_EQ(ask(block, ":RFB380000:wFB38ABCD:RFB380000:RFB380000"), ":RFB380120:wFB38ABCD:RFB38ABCD:RFB38ABCD");
    EXPECT_EQ(ask(block, ":WFB3812"), "");
    EXPECT_EQ(block.videoSystem(), "");
}

} // namespace
} // namespace camerasim
