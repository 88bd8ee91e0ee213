#include "WireText.h"
#include "simulator/Cmd8100Block.h"
#include "simulator/InProcessLine.h"

#include <random>
#include <set>
#include <thread>

#include <gtest/gtest.h>

namespace camerasim {
namespace {

/// A block on an in-process line under a clock that only its own waiting moves.
class Bench {
public:
    explicit Bench(const BlockSettings& p_Settings = {}, int p_nBaud = 0)
        : line(std::make_unique<Cmd8100Block>(p_Settings), clock, p_nBaud) {}

    void fault(const std::string& p_strPlan) {
        std::string strError;
        ASSERT_TRUE(line.withLine([&](Line& l, std::int64_t) { return l.faults().add(p_strPlan, strError); }))
            << strError;
    }
    std::string recv(std::size_t p_nLength, int p_nTenths = 4) {
        std::vector<std::uint8_t> buffer(p_nLength);
        buffer.resize(line.recv(buffer, p_nTenths));
        return hexText(buffer);
    }
    std::string ask(const std::string& p_strHex, std::size_t p_nLength = 20) {
        const auto bytes = wire(p_strHex);
        EXPECT_EQ(line.send(bytes), static_cast<std::ptrdiff_t>(bytes.size()));
        return recv(p_nLength);
    }
    std::uint32_t brightness() {
        return line.withBlock([](CameraBlock& b, std::int64_t) { return b.registerValue("brightness").value(); });
    }

    ManualClock clock;
    InProcessLine line;
};

constexpr const char* set5 = "81 01 04 4E 00 00 00 05 FF";
constexpr const char* inquire = "81 09 04 4E FF";

TEST(FaultPlan, TextForms) {
    for (const char* szPlan : {"silence@3", "flip:2@every", "truncate:2@1-3", "late:250@5+", "split:1:300@2",
                               "noise-before:0", "reboot,echo@2", "checksum@1,refuse@2-2,duplicate@7"}) {
        FaultPlan plan;
        std::string strError;
        EXPECT_TRUE(plan.add(szPlan, strError)) << szPlan << ": " << strError;
    }
    static constexpr const char* bad[][2] = {{"", "unknown kind"},
                                             {"silense", "known are silence, late"},
                                             {"silence@", "after @"},
                                             {"silence@0", "after @"},
                                             {"silence@3-2", "after @"},
                                             {"silence@1-", "after @"},
                                             {"silence@always", "after @"},
                                             {"silence:1", "at most 0 numbers"},
                                             {"flip:a", "numbers go from"},
                                             {"flip:-1", "numbers go from"},
                                             {"truncate:", "numbers go from"},
                                             {"late:99999999999", "numbers go from"},
                                             {"flip:1:2:3", "at most 2"},
                                             {"silence,,echo", "unknown kind"},
                                             {"echo,late@x", "\"late@x\""},
                                             {"silence@1@2", "after @"},
                                             {"silence@+", "after @"}};
    for (const auto& [szPlan, szReason] : bad) {
        FaultPlan plan;
        std::string strError;
        EXPECT_FALSE(plan.add(szPlan, strError)) << szPlan;
        EXPECT_NE(strError.find(szReason), std::string::npos) << szPlan << ": " << strError;
        EXPECT_TRUE(plan.faults().empty()) << "a bad plan was taken in part";
    }
    std::set<std::string_view> names;
    for (const std::string_view strName : FaultPlan::names()) {
        FaultPlan plan;
        std::string strError;
        EXPECT_TRUE(plan.add(strName, strError)) << strError;
        EXPECT_FALSE(FaultPlan::describe(strName).empty());
        names.insert(strName);
    }
    EXPECT_EQ(names.size(), 15U);
}

TEST(FaultPlan, CountsFromNow) {
    Bench bench;
    bench.ask(inquire);
    bench.fault("silence@2-3");
    EXPECT_EQ(bench.ask(inquire, 7), "90 50 00 00 00 07 FF");
    EXPECT_EQ(bench.ask(inquire, 7), "");
    EXPECT_EQ(bench.ask(inquire, 7), "");
    EXPECT_EQ(bench.ask(inquire, 7), "90 50 00 00 00 07 FF");
    bench.fault("truncate:3@every");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(bench.ask(inquire), "90 50 00");
    }
    bench.line.withLine([](Line& line, std::int64_t) { line.faults().clear(); });
    EXPECT_EQ(bench.ask(inquire, 7), "90 50 00 00 00 07 FF");
}

TEST(Faults, EffectOnTheBytes) {
    struct Case {
        const char* szPlan;
        const char* szFirst;
        const char* szSecond;
        std::uint32_t nBrightness;
    };
    // The first exchange is a command with acknowledgement and completion, the second an inquiry.
    static constexpr Case cases[] = {
        {"silence", "", "90 50 00 00 00 05 FF", 5},
        {"truncate:0", "90 51 FF", "90 50 00 00 00 05 FF", 5},
        {"truncate:2", "90 41 90 51 FF", "90 50 00 00 00 05 FF", 5},
        {"truncate:9", "90 41 FF 90 51 FF", "90 50 00 00 00 05 FF", 5},
        {"merge", "", "90 41 FF 90 51 FF 90 50 00 00 00 05 FF", 5},
        {"flip:1:4", "90 51 FF 90 51 FF", "90 50 00 00 00 05 FF", 5},
        {"flip:9:0", "90 41 FE 90 51 FF", "90 50 00 00 00 05 FF", 5},
        {"duplicate", "90 41 FF 90 41 FF 90 51 FF", "90 50 00 00 00 05 FF", 5},
        {"echo", "81 01 04 4E 00 00 00 05 FF 90 41 FF 90 51 FF", "90 50 00 00 00 05 FF", 5},
        {"refuse", "90 61 41 FF", "90 50 00 00 00 07 FF", 7},
        {"checksum", "90 42 FF 90 51 FF", "90 50 00 00 00 05 FF", 5},
        {"checksum@2", "90 41 FF 90 51 FF", "90 50 00 00 00 06 FF", 5},
        {"late:500", "", "90 50 00 00 00 05 FF 90 41 FF 90 51 FF", 5},
        {"split:1:500", "90", "90 50 00 00 00 05 FF 41 FF 90 51 FF", 5},
        {"duplicate,truncate:1", "90 90 41 FF 90 51 FF", "90 50 00 00 00 05 FF", 5},
        {"reboot", "", "", 7},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.szPlan);
        Bench bench(BlockSettings{.habit = ReplyHabit::acknowledgeThenComplete});
        bench.fault(one.szPlan);
        EXPECT_EQ(bench.ask(set5), one.szFirst);
        EXPECT_EQ(bench.ask(inquire), one.szSecond);
        EXPECT_EQ(bench.brightness(), one.nBrightness);
    }
}

TEST(Faults, NoiseIsRepeatable) {
    const auto heard = [](const char* szPlan) {
        Bench bench(BlockSettings{.habit = ReplyHabit::acknowledgeThenComplete});
        bench.fault(szPlan);
        return bench.ask(set5);
    };
    const std::string strBefore = heard("noise-before:4");
    EXPECT_EQ(strBefore, heard("noise-before:4"));
    ASSERT_EQ(strBefore.size(), 10U * 3 - 1);
    EXPECT_EQ(strBefore.substr(12), "90 41 FF 90 51 FF");
    const std::string strBetween = heard("noise-between:2");
    ASSERT_EQ(strBetween.size(), 8U * 3 - 1);
    EXPECT_EQ(strBetween.substr(0, 9) + strBetween.substr(15), "90 41 FF 90 51 FF");
    EXPECT_NE(heard("flip"), "90 41 FF 90 51 FF");
}

TEST(Faults, PauseInsideAReply) {
    Bench bench(BlockSettings{.reactionTime = 300'000});
    bench.fault("split:2:300,split:2:500@2");
    const std::int64_t nStart = bench.clock.nowMicroseconds();
    EXPECT_EQ(bench.ask(set5, 3), "90 41 FF") << "a pause below the timeout is bridged";
    EXPECT_EQ(bench.clock.nowMicroseconds() - nStart, 600'000) << "each byte starts the timeout anew";
    EXPECT_EQ(bench.ask(set5, 3), "90 41") << "a pause above it ends the receive";
    EXPECT_EQ(bench.recv(3), "FF");
}

TEST(Faults, ShortWrite) {
    Bench bench;
    bench.fault("short-write,short-write:2@3");
    EXPECT_EQ(bench.line.send(wire(set5)), 8);
    EXPECT_EQ(bench.recv(3), "");
    EXPECT_EQ(bench.brightness(), 7U);
    EXPECT_EQ(bench.ask(set5, 3), "90 41 FF") << "the cut-off command stands in the way of the next";
    EXPECT_EQ(bench.line.send(wire(inquire)), 2);
    EXPECT_EQ(bench.ask(inquire, 7), "90 50 00 00 00 05 FF");
    bench.fault("short-write:0");
    EXPECT_EQ(bench.line.send(wire(inquire)), 0);
}

TEST(Faults, PortGoneAndBack) {
    Bench bench;
    bench.fault("port-gone:2000");
    EXPECT_EQ(bench.ask(set5, 3), "");
    EXPECT_EQ(bench.line.send(wire(inquire)), -1);
    bench.clock.waitMicroseconds(1'600'000);
    EXPECT_EQ(bench.ask(inquire, 7), "90 50 00 00 00 07 FF");

    EXPECT_EQ(bench.line.send(wire(inquire)), 5);
    bench.line.withLine([](Line& line, std::int64_t nNow) { line.unplug(nNow); });
    bench.clock.waitMicroseconds(1'000'000'000);
    EXPECT_EQ(bench.line.send(wire(inquire)), -1);
    bench.line.withLine([](Line& line, std::int64_t) { line.plug(); });
    EXPECT_EQ(bench.recv(7), "") << "an answer outlived the port";
    EXPECT_EQ(bench.ask(inquire, 7), "90 50 00 00 00 07 FF");
}

TEST(Line, KeepsTheSpeedOfTheLine) {
    Bench bench({}, 9600);
    const std::int64_t nStart = bench.clock.nowMicroseconds();
    EXPECT_EQ(bench.ask("81 01 04 61 02 FF", 3), "90 41 FF");
    // Six bytes out and three back, ten bits each.
    EXPECT_NEAR(static_cast<double>(bench.clock.nowMicroseconds() - nStart), 9 * 10e6 / 9600, 2);

    EXPECT_EQ(bench.line.send(wire("81 01 04 61 03 FF")), 6);
    EXPECT_EQ(bench.line.send(wire("81 09 04 61 FF")), 5);
    EXPECT_EQ(bench.line.withBlock([](CameraBlock& b, std::int64_t) { return b.registerValue(0x61); }), 2U)
        << "the command cannot have arrived yet";
    EXPECT_EQ(bench.recv(20), "90 41 FF 90 50 03 FF");

    bench.line.withLine([](Line& line, std::int64_t) { line.setBaud(0); });
    const std::int64_t nInstant = bench.clock.nowMicroseconds();
    EXPECT_EQ(bench.ask("81 01 04 61 02 FF", 3), "90 41 FF");
    EXPECT_EQ(bench.clock.nowMicroseconds(), nInstant);
}

TEST(Line, ReceiveEndsWithSilence) {
    Bench bench;
    const std::int64_t nStart = bench.clock.nowMicroseconds();
    EXPECT_EQ(bench.recv(20, 1), "");
    EXPECT_EQ(bench.clock.nowMicroseconds() - nStart, 100'000);
    EXPECT_EQ(bench.recv(20, 0), "");
    EXPECT_EQ(bench.recv(0, 4), "");
    EXPECT_EQ(bench.clock.nowMicroseconds() - nStart, 100'000);
}

TEST(Line, RestartForgetsWhatWasNotSent) {
    Bench bench(BlockSettings{.habit = ReplyHabit::acknowledgeThenComplete, .bootTime = 8'000'000});
    EXPECT_EQ(bench.ask(set5, 3), "90 41 FF");
    bench.line.withBlock([](CameraBlock& b, std::int64_t nNow) { b.reboot(nNow, false); });
    EXPECT_EQ(bench.recv(3), "") << "a completion outlived the restart";
    bench.clock.waitMicroseconds(7'500'000);
    EXPECT_EQ(bench.ask(inquire), "");
    EXPECT_EQ(bench.ask(inquire, 7), "90 50 00 00 00 05 FF");
    EXPECT_EQ(bench.ask(std::string(set5) + " FE 05 03 01 01 0A FF"), "90 41 FF");
}

TEST(Line, NoBytesAndNoFaultsLeaveTheBlockDeaf) {
    static constexpr std::uint8_t heads[] = {0x81, 0x01, 0x04, 0x09, 0xfe, 0x05, 0x1e,
                                             0x02, 0xa1, 0xff, 0x4d, 0x45, 0x20, 0x24};
    std::minstd_rand random(7);
    const auto number = [&random](unsigned nBelow) { return static_cast<unsigned>(random() >> 8) % nBelow; };
    for (int nRound = 0; nRound < 300; ++nRound) {
        SCOPED_TRACE(nRound);
        Bench bench(BlockSettings{.habit = static_cast<ReplyHabit>(number(3))}, nRound % 3 == 0 ? 9600 : 0);
        bench.line.withLine([&](Line& line, std::int64_t) {
            for (unsigned i = number(4); i > 0; --i) {
                const unsigned nFirst = number(20) + 1;
                line.faults().add({.kind = static_cast<FaultKind>(number(15)),
                                   .argument = static_cast<int>(number(12)) - 1,
                                   .extra = static_cast<int>(number(12)) - 1,
                                   .first = nFirst,
                                   .last = nFirst + number(20)});
            }
        });
        std::vector<std::uint8_t> bytes;
        for (int nSend = 0; nSend < 40; ++nSend) {
            bytes.clear();
            for (unsigned i = number(90); i > 0; --i) {
                bytes.push_back(number(4) == 0 ? static_cast<std::uint8_t>(number(256))
                                               : heads[number(std::size(heads))]);
            }
            bench.line.send(bytes);
            bench.recv(number(30), static_cast<int>(number(2)));
            bench.line.withBlock(
                [&](CameraBlock& block, std::int64_t) { EXPECT_FALSE(block.describe(bytes).empty()); });
        }
        bench.line.withLine([](Line& line, std::int64_t) { line.faults().clear(); });
        bench.clock.waitMicroseconds(20'000'000);
        bench.ask("81 09 04 22 FF", 10'000); // also brings what a merge held back
        EXPECT_EQ(bench.ask("81 09 04 22 FF", 7), "90 50 00 20 01 08 FF");
    }
}

TEST(Line, CallsFromSeveralThreads) {
    Bench bench;
    std::thread driver([&] {
        for (int i = 0; i < 500; ++i) {
            bench.line.withBlock(
                [i](CameraBlock& b, std::int64_t) { b.setAmbient(i % 2 == 0 ? Ambient::dark : Ambient::light); });
        }
    });
    for (int i = 0; i < 500; ++i) {
        const std::string strReport = bench.ask("81 09 04 01 FF", 4);
        EXPECT_TRUE(strReport == "90 50 02 FF" || strReport == "90 50 03 FF") << strReport;
    }
    driver.join();
    EXPECT_EQ(bench.ask("81 09 04 01 FF", 4), "90 50 03 FF");
}

} // namespace
} // namespace camerasim
