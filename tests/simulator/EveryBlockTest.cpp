// What holds for every simulated block, whatever it speaks.

#include "WireText.h"
#include "simulator/BlockRegistry.h"
#include "simulator/InProcessLine.h"
#include "simulator/StateFile.h"

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

namespace camerasim {
namespace {

/// A setting of each model, and what goes with it on the wire.
struct Sample {
    std::string name;
    std::string reg;
    std::uint32_t value;
    std::string set;
    std::string reply;
    std::string inquiry;
    std::string answer;
    std::string meaning;
    std::string answerMeaning;
    std::string save = ""; ///< what keeps settings over a restart, where they are not kept anyway
    std::string saveReply = "";
    std::string night = ""; ///< commands a black-and-white picture
    std::string day = "";
    std::string automatic = "";          ///< leaves the picture to the block, where it has a sensor
    std::vector<std::string> alike = {}; ///< models with the same sample
};

const Sample Samples[] = {
    {.name = "cmd8100",
     .reg = "brightness",
     .value = 5,
     .set = "81 01 04 4E 00 00 00 05 FF",
     .reply = "90 41 FF",
     .inquiry = "81 09 04 4E FF",
     .answer = "90 50 00 00 00 05 FF",
     .meaning = "brightness 05",
     .answerMeaning = "answer: brightness 05",
     .night = "81 01 04 51 03 FF 81 01 04 01 02 FF",
     .day = "81 01 04 51 03 FF 81 01 04 01 03 FF",
     .automatic = "81 01 04 51 02 FF",
     .alike = {"cmd8100_old", "cmd7300", "no_sensor_ui", "sony_ch3310"}},
    {.name = "cmd8300",
     .reg = "threshold night to day",
     .value = 0x74,
     .set = "81 01 04 21 00 00 07 04 FF",
     .reply = "90 41 FF",
     .inquiry = "81 09 04 21 00 FF",
     .answer = "90 50 00 07 04 FF",
     .meaning = "threshold night to day 74",
     .answerMeaning = "answer: threshold night to day 74",
     .night = "81 01 04 51 03 FF 81 01 04 01 03 FF",
     .day = "81 01 04 51 02 FF 81 01 04 01 02 FF",
     .automatic = "81 01 04 51 02 FF 81 01 04 01 03 FF"},
    {.name = "sony_cv7500",
     .reg = "point light 2",
     .value = 0x35,
     .set = "81 01 7F 7F 02 0B 04 0C 03 05 FF",
     .reply = "90 41 FF",
     .inquiry = "81 09 7F 7F 01 0B 04 0C FF",
     .answer = "90 50 00 00 03 05 FF",
     .meaning = "point light 2 open",
     .answerMeaning = "answer: point light 2 open",
     .night = "81 01 04 01 02 FF 81 01 04 51 03 FF",
     .day = "81 01 04 01 03 FF 81 01 04 51 03 FF",
     .automatic = "81 01 04 01 03 FF 81 01 04 51 02 FF"},
    {.name = "sony_eh4300",
     .reg = "lens movement",
     .value = 0xff,
     .set = "81 01 04 27 0F 0F 00 01 FF",
     .reply = "90 41 FF",
     .inquiry = "81 09 04 27 FF",
     .answer = "90 50 0F 0F 00 01 FF",
     .meaning = "lens interval times lens movement FF, lens interval 01",
     .answerMeaning = "answer: lens interval times lens movement FF, lens interval 01",
     .night = "81 01 04 01 02 FF 81 01 04 51 03 FF",
     .day = "FE 01 1E 02 00 02 23 FF",
     .automatic = "81 01 04 01 03 FF 81 01 04 51 02 FF"},
    {.name = "sony_eh6300",
     .reg = "brightness",
     .value = 5,
     .set = "81 01 04 4E 00 00 00 05 FF",
     .reply = "90 42 FF",
     .inquiry = "81 09 04 4E FF",
     .answer = "90 50 00 00 00 05 FF",
     .meaning = "brightness 05",
     .answerMeaning = "answer: brightness 05",
     .night = "81 01 04 51 03 FF 81 01 04 01 02 FF",
     .day = "81 01 04 51 03 FF 81 01 04 01 03 FF",
     .automatic = "81 01 04 51 02 FF"},
    {.name = "cmd7200",
     .reg = "brightness",
     .value = 0x7f,
     .set = characters(":WFD9E7F"),
     .reply = characters(":WFD9E7F"),
     .inquiry = characters(":RFD9E00"),
     .answer = characters(":RFD9E7F"),
     .meaning = "brightness 7F",
     .answerMeaning = "answer: brightness 7F",
     .save = characters(":rE1ED0000"),
     .night = characters(":WFCC809:WFFE680"),
     .day = characters(":WFFE6C0:WFCC808"),
     .automatic = characters(":WFCC80A")},
    {.name = "it1",
     .reg = "longest shutter",
     .value = 0x1eb0,
     .set = "09 01 06 02 0A 08 B0 1E F2",
     .reply = "05 01 02 01 09",
     .inquiry = "08 01 05 01 0A 08 02 23",
     .answer = "07 01 04 01 B0 1E DB",
     .meaning = "longest shutter 1EB0",
     .answerMeaning = "answer: longest shutter 1EB0",
     .night = "08 01 05 02 14 11 00 35 08 01 05 02 14 12 00 36 08 01 05 02 01 01 55 67",
     .day = "08 01 05 02 01 01 15 27",
     .automatic = "08 01 05 02 14 11 32 67 08 01 05 02 14 12 B8 EE"},
    {.name = "it1_zoom",
     .reg = "longest shutter",
     .value = 0x1eb0,
     .set = "09 01 06 02 0A 08 B0 1E F2",
     .reply = "05 01 02 01 09",
     .inquiry = "08 01 05 01 0A 08 02 23",
     .answer = "07 01 04 01 B0 1E DB",
     .meaning = "longest shutter 1EB0",
     .answerMeaning = "answer: longest shutter 1EB0",
     .night = "08 01 05 02 14 11 00 35 08 01 05 02 14 12 00 36 08 01 05 02 01 01 55 67",
     .day = "08 01 05 02 01 01 15 27",
     .automatic = "08 01 05 02 14 11 32 67 08 01 05 02 14 12 B8 EE"},
};

class EveryBlock : public testing::TestWithParam<BlockEntry> {
protected:
    void SetUp() override {
        for (const Sample& sample : Samples)
            if (sample.name == GetParam().name ||
                std::find(sample.alike.begin(), sample.alike.end(), GetParam().name) != sample.alike.end())
                m_Sample = sample;
        ASSERT_FALSE(m_Sample.name.empty()) << "a model without a sample in this test";
        makeLine({});
    }

    void makeLine(const BlockSettings& settings, int baud = 0) {
        m_pLine = std::make_unique<InProcessLine>(GetParam().make(settings), m_Clock, baud);
    }
    void fault(const std::string& plan) {
        std::string error;
        ASSERT_TRUE(m_pLine->withLine([&](Line& line, std::int64_t) { return line.faults().add(plan, error); }))
            << error;
    }
    std::string ask(const std::string& hex, std::size_t length = 60) {
        m_pLine->send(wire(hex));
        std::vector<std::uint8_t> buffer(length);
        buffer.resize(m_pLine->recv(buffer, 4));
        return hexText(buffer);
    }
    template <class Function>
    auto block(Function function) {
        return m_pLine->withBlock([&](CameraBlock& block, std::int64_t) { return function(block); });
    }
    std::uint32_t value() {
        return block([&](CameraBlock& b) { return b.registerValue(m_Sample.reg).value(); });
    }
    void restart(bool loseState) {
        m_pLine->withBlock([&](CameraBlock& b, std::int64_t now) { b.reboot(now, loseState); });
    }

    Sample m_Sample;
    ManualClock m_Clock;
    std::unique_ptr<InProcessLine> m_pLine;
};

TEST_P(EveryBlock, IsFoundAndNamesItself) {
    EXPECT_EQ(findBlock(GetParam().name)->make, GetParam().make);
    EXPECT_EQ(block([](CameraBlock& b) { return std::string(b.modelName()); }), GetParam().name);
    if (GetParam().moduleId != BlockEntry::NoModule) {
        EXPECT_EQ(makeBlock(GetParam().moduleId)->modelName(), GetParam().name);
    }
    EXPECT_EQ(makeBlock(BlockEntry::NoModule), nullptr);
    EXPECT_EQ(makeCompanion(GetParam().moduleId) != nullptr, !GetParam().companionPortKey.empty());
}

TEST_P(EveryBlock, SettingsAreHeldAskedForAndTold) {
    const std::uint32_t factory = value();
    ASSERT_NE(factory, m_Sample.value) << "the factory value would hide a lost command";
    EXPECT_EQ(ask(m_Sample.set), m_Sample.reply);
    EXPECT_EQ(value(), m_Sample.value);
    EXPECT_EQ(ask(m_Sample.inquiry), m_Sample.answer);
    block([&](CameraBlock& b) {
        EXPECT_EQ(b.describe(wire(m_Sample.set)), m_Sample.meaning);
        EXPECT_EQ(b.describe(b.receivedFrames().front().bytes()), m_Sample.meaning);
        EXPECT_EQ(b.describeReply(wire(m_Sample.answer), wire(m_Sample.inquiry)), m_Sample.answerMeaning);
        EXPECT_TRUE(b.startsWithFrame(wire(m_Sample.set + " " + m_Sample.inquiry)));
        EXPECT_EQ(b.frameLength(wire(m_Sample.set + " " + m_Sample.inquiry)), wire(m_Sample.set).size());
        EXPECT_EQ(b.replyLength(wire(m_Sample.answer + " " + m_Sample.reply)), wire(m_Sample.answer).size());
        for (const RegisterState& state : b.registers()) {
            EXPECT_EQ(b.registerValue(state.address), state.value) << state.name;
            EXPECT_EQ(b.registerValue(state.name), state.value) << "a name stands twice: " << state.name;
        }
    });
}

TEST_P(EveryBlock, WordsToPanAndTiltPass) {
    const std::string words = characters("MENUON");
    fault("refuse@2");
    EXPECT_EQ(ask(words), "");
    EXPECT_EQ(ask(words), "");
    EXPECT_EQ(ask(characters("MENU") + " " + words + " " + m_Sample.set), m_Sample.reply);
    block([&](CameraBlock& b) {
        EXPECT_EQ(b.receivedFrameCount(), 4U);
        EXPECT_EQ(b.droppedBytes(), 4U);
        EXPECT_EQ(b.describe(wire(words)), "pan/tilt stop");
    });
}

TEST_P(EveryBlock, RestartIsSilentAndLosesWhatItShould) {
    const std::uint32_t factory = value();
    makeLine(BlockSettings{.bootTime = 4'000'000});
    ask(m_Sample.set);
    EXPECT_EQ(ask(m_Sample.save), m_Sample.saveReply);
    restart(false);
    m_Clock.waitMicroseconds(3'500'000);
    EXPECT_EQ(ask(m_Sample.inquiry), "");
    m_Clock.waitMicroseconds(100'000);
    EXPECT_EQ(ask(m_Sample.inquiry), m_Sample.answer);
    restart(true);
    EXPECT_EQ(value(), factory);
    m_Clock.waitMicroseconds(4'000'000);
    EXPECT_EQ(ask(m_Sample.set), m_Sample.reply);
}

TEST_P(EveryBlock, StateIsSavedAndRestored) {
    ask(m_Sample.set);
    ask(m_Sample.save);
    const std::string text = block([](CameraBlock& b) { return stateText(b); });
    const auto restored = GetParam().make({});
    EXPECT_NE(stateText(*restored), text);
    std::string error;
    ASSERT_TRUE(applyStateText(*restored, text, error)) << error;
    EXPECT_EQ(stateText(*restored), text);
    EXPECT_EQ(restored->registerValue(m_Sample.reg), m_Sample.value);
}

TEST_P(EveryBlock, PictureFollowsTheHostOrTheLight) {
    const auto picture = [this] { return block([](CameraBlock& b) { return b.picture(); }); };
    const auto decides = [this] { return block([](CameraBlock& b) { return b.decidesDayNight(); }); };
    const auto setAmbient = [this](Ambient ambient) { block([ambient](CameraBlock& b) { b.setAmbient(ambient); }); };
    ask(m_Sample.night);
    EXPECT_EQ(picture(), Picture::Night);
    EXPECT_FALSE(decides());
    setAmbient(Ambient::Dark);
    ask(m_Sample.day);
    EXPECT_EQ(picture(), Picture::Day);
    EXPECT_FALSE(decides());
    if (m_Sample.automatic.empty())
        return;
    ask(m_Sample.automatic);
    EXPECT_TRUE(decides());
    EXPECT_EQ(picture(), Picture::Night);
    block([](CameraBlock& b) { b.setLight(1000); });
    EXPECT_EQ(picture(), Picture::Day);
    block([](CameraBlock& b) { b.setLight(0.5); });
    EXPECT_EQ(picture(), Picture::Night);
}

TEST_P(EveryBlock, VideoSystemIsText) {
    block([](CameraBlock& b) {
        EXPECT_FALSE(b.setVideoSystem("SECAM"));
        if (b.videoSystem().empty()) {
            EXPECT_FALSE(b.setVideoSystem("PAL"));
            return;
        }
        for (const char* system : {"NTSC", "PAL"}) {
            EXPECT_TRUE(b.setVideoSystem(system));
            EXPECT_EQ(b.videoSystem(), system);
        }
    });
}

TEST_P(EveryBlock, FaultsHitTheReply) {
    const std::size_t length = wire(m_Sample.reply).size();
    const auto heard = [&](const std::string& plan) {
        makeLine({});
        fault(plan);
        return ask(m_Sample.set);
    };
    EXPECT_EQ(heard("silence"), "");
    EXPECT_EQ(value(), m_Sample.value) << "only the reply was to be lost";
    EXPECT_EQ(heard("truncate:2"), m_Sample.reply.substr(0, 5));
    EXPECT_EQ(heard("split:1:300"), m_Sample.reply);
    EXPECT_EQ(heard("split:1:500"), m_Sample.reply.substr(0, 2));
    EXPECT_EQ(heard("duplicate"), m_Sample.reply + " " + m_Sample.reply);
    EXPECT_EQ(heard("echo"), m_Sample.set + " " + m_Sample.reply);
    EXPECT_EQ(heard("late:600"), "");
    EXPECT_EQ(wire(heard("noise-before:3")).size(), length + 3);
    EXPECT_EQ(heard("merge"), "");
    EXPECT_EQ(ask(m_Sample.inquiry), m_Sample.reply + " " + m_Sample.answer);

    const std::string wrong = heard("checksum");
    const std::size_t at = block([&](CameraBlock& b) { return b.checkByteIndex(wire(m_Sample.reply)); });
    ASSERT_EQ(wire(wrong).size(), length);
    EXPECT_EQ(wire(wrong)[at], static_cast<std::uint8_t>(wire(m_Sample.reply)[at] + 1));

    const std::string refusal = heard("refuse");
    EXPECT_NE(refusal, "");
    EXPECT_NE(refusal, m_Sample.reply);
    EXPECT_NE(value(), m_Sample.value) << "a refused command was carried out";
    const std::string meaning =
        block([&](CameraBlock& b) { return b.describeReply(wire(refusal), wire(m_Sample.set)); });
    EXPECT_EQ(meaning.substr(0, 7), "refused");
    heard("reboot");
    EXPECT_NE(value(), m_Sample.value);
    EXPECT_EQ(heard("port-gone"), "");
    EXPECT_NE(value(), m_Sample.value);
}

TEST_P(EveryBlock, NoBytesAndNoFaultsLeaveItDeaf) {
    auto heads = wire(m_Sample.set + " " + m_Sample.inquiry + " " + m_Sample.night + " " + m_Sample.save);
    std::minstd_rand random(7);
    const auto number = [&random](std::size_t below) { return static_cast<std::size_t>(random() >> 8) % below; };
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE(round);
        makeLine(BlockSettings{.habit = static_cast<ReplyHabit>(number(3))}, round % 3 == 0 ? 9600 : 0);
        m_pLine->withLine([&](Line& line, std::int64_t) {
            for (std::size_t i = number(4); i > 0; --i) {
                const std::size_t first = number(20) + 1;
                line.faults().add({.kind = static_cast<FaultKind>(number(15)),
                                   .argument = static_cast<int>(number(12)) - 1,
                                   .extra = static_cast<int>(number(12)) - 1,
                                   .first = first,
                                   .last = first + number(20)});
            }
        });
        for (int send = 0; send < 40; ++send) {
            std::vector<std::uint8_t> bytes(number(60));
            const std::size_t start = number(heads.size());
            for (std::size_t i = 0; i < bytes.size(); ++i)
                bytes[i] = number(8) == 0 ? static_cast<std::uint8_t>(number(256)) : heads[(start + i) % heads.size()];
            m_pLine->send(bytes);
            std::vector<std::uint8_t> buffer(number(30));
            m_pLine->recv(buffer, static_cast<int>(number(2)));
            block([&](CameraBlock& b) {
                EXPECT_FALSE(b.describe(bytes).empty());
                EXPECT_FALSE(b.describeReply(bytes, wire(m_Sample.inquiry)).empty());
                EXPECT_LE(b.frameLength(bytes), bytes.size());
                if (!bytes.empty()) {
                    EXPECT_GT(b.frameLength(bytes), 0U);
                    EXPECT_GT(b.replyLength(bytes), 0U);
                    EXPECT_LE(b.replyLength(bytes), bytes.size());
                }
            });
        }
        m_pLine->withLine([](Line& line, std::int64_t) { line.faults().clear(); });
        m_Clock.waitMicroseconds(20'000'000);
        ask(m_Sample.inquiry, 10'000); // also brings what a merge held back
        block([&](CameraBlock& b) { b.settings().habit = ReplyHabit::Acknowledge; });
        EXPECT_EQ(ask(m_Sample.set), m_Sample.reply);
        EXPECT_EQ(ask(m_Sample.inquiry), m_Sample.answer);
    }
}

INSTANTIATE_TEST_SUITE_P(Models, EveryBlock, testing::ValuesIn(blockEntries().begin(), blockEntries().end()),
                         [](const auto& entry) { return std::string(entry.param.name); });

} // namespace
} // namespace camerasim
