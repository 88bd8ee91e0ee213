#include "WireText.h"
#include "simulator/Cmd8100Block.h"
#include "simulator/InProcessLine.h"

#include <set>
#include <thread>

#include <gtest/gtest.h>

namespace camerasim {
namespace {

/// A block on an in-process line under a clock that only its own waiting moves.
class Bench {
public:
    explicit Bench(const BlockSettings& settings = {}, int baud = 0)
        : line(std::make_unique<Cmd8100Block>(settings), clock, baud) {}

    void fault(const std::string& plan) {
        std::string error;
        ASSERT_TRUE(line.withLine([&](Line& l, std::int64_t) { return l.faults().add(plan, error); })) << error;
    }
    std::string recv(std::size_t length, int tenths = 4) {
        std::vector<std::uint8_t> buffer(length);
        buffer.resize(line.recv(buffer, tenths));
        return hexText(buffer);
    }
    std::string ask(const std::string& hex, std::size_t length = 20) {
        const auto bytes = wire(hex);
        EXPECT_EQ(line.send(bytes), static_cast<std::ptrdiff_t>(bytes.size()));
        return recv(length);
    }
    std::uint32_t brightness() {
        return line.withBlock([](CameraBlock& b, std::int64_t) { return b.registerValue("brightness").value(); });
    }

    ManualClock clock;
    InProcessLine line;
};

constexpr const char* Set5 = "81 01 04 4E 00 00 00 05 FF";
constexpr const char* Inquire = "81 09 04 4E FF";
constexpr const char* Is5 = "90 50 00 00 00 05 FF";
constexpr const char* Is7 = "90 50 00 00 00 07 FF"; // the factory's

TEST(FaultPlan, TextForms) {
    std::string texts = "silence@3|flip:2@every|truncate:2@1-3|late:250@5+|split:1:300@2|noise-before:0|reboot,echo@2|"
                        "checksum@1,refuse@2-2,duplicate@7";
    const auto names = FaultPlan::names();
    EXPECT_EQ(std::set(names.begin(), names.end()).size(), 15U);
    for (const std::string_view name : names) {
        EXPECT_FALSE(FaultPlan::describe(name).empty());
        texts += "|" + std::string(name);
    }
    std::string error;
    for (const auto& row : table(texts))
        EXPECT_TRUE(FaultPlan().add(row[0], error)) << row[0] << ": " << error;
    for (const auto& row : table(
             "=unknown kind|silense=known are silence, late|silence@=after @|silence@0=after @|silence@3-2=after @|"
             "silence@1-=after @|silence@always=after @|silence:1=at most 0 numbers|flip:a=numbers go from|"
             "flip:-1=numbers go from|truncate:=numbers go from|late:99999999999=numbers go from|flip:1:2:3=at most 2|"
             "silence,,echo=unknown kind|echo,late@x=\"late@x\"|silence@1@2=after @|silence@+=after @")) {
        FaultPlan plan;
        EXPECT_FALSE(plan.add(row[0], error)) << row[0];
        EXPECT_NE(error.find(row[1]), std::string::npos) << row[0] << ": " << error;
        EXPECT_TRUE(plan.faults().empty()) << "a bad plan was taken in part";
    }
}

TEST(FaultPlan, CountsFromNow) {
    Bench bench;
    bench.ask(Inquire);
    bench.fault("silence@2-3,truncate:3@5-7");
    for (const char* answer : {Is7, "", "", Is7, "90 50 00", "90 50 00", "90 50 00", Is7})
        EXPECT_EQ(bench.ask(Inquire, 7), answer);
    bench.fault("truncate:3@every");
    EXPECT_EQ(bench.ask(Inquire) + bench.ask(Inquire), "90 50 0090 50 00");
    bench.line.withLine([](Line& line, std::int64_t) { line.faults().clear(); });
    EXPECT_EQ(bench.ask(Inquire, 7), Is7);
}

// The first exchange is a command with acknowledgement and completion, the second an inquiry: @ stands for its answer.
TEST(Faults, EffectOnTheBytes) {
    const auto heard = [](const std::string& plan) {
        Bench bench(BlockSettings{.habit = ReplyHabit::AcknowledgeThenComplete});
        bench.fault(plan);
        std::vector<std::string> parts{bench.ask(Set5), bench.ask(Inquire)};
        parts.push_back(std::to_string(bench.brightness()));
        return parts;
    };
    for (const auto& row :
         table("silence==@=5|truncate:0=90 51 FF=@=5|truncate:2=90 41 90 51 FF=@=5|truncate:9=90 41 FF 90 51 FF=@=5|"
               "merge==90 41 FF 90 51 FF @=5|flip:1:4=90 51 FF 90 51 FF=@=5|flip:9:0=90 41 FE 90 51 FF=@=5|"
               "duplicate=90 41 FF 90 41 FF 90 51 FF=@=5|echo=81 01 04 4E 00 00 00 05 FF 90 41 FF 90 51 FF=@=5|"
               "refuse=90 61 41 FF=90 50 00 00 00 07 FF=7|checksum=90 42 FF 90 51 FF=@=5|"
               "checksum@2=90 41 FF 90 51 FF=90 50 00 00 00 06 FF=5|late:500==@ 90 41 FF 90 51 FF=5|"
               "split:1:500=90=@ 41 FF 90 51 FF=5|duplicate,truncate:1=90 90 41 FF 90 51 FF=@=5|reboot===7")) {
        std::string second = row[2];
        if (const std::size_t at = second.find('@'); at != std::string::npos)
            second.replace(at, 1, Is5);
        EXPECT_EQ(heard(row[0]), (std::vector{row[1], second, row[3]})) << row[0];
    }
    // Noise is random, and the same every time.
    const std::string before = heard("noise-before:4")[0];
    EXPECT_EQ(before, heard("noise-before:4")[0]);
    ASSERT_EQ(before.size(), 10U * 3 - 1);
    EXPECT_EQ(before.substr(12), "90 41 FF 90 51 FF");
    const std::string between = heard("noise-between:2")[0];
    ASSERT_EQ(between.size(), 8U * 3 - 1);
    EXPECT_EQ(between.substr(0, 9) + between.substr(15), "90 41 FF 90 51 FF");
    EXPECT_NE(heard("flip")[0], "90 41 FF 90 51 FF");
}

TEST(Faults, PauseInsideAReply) {
    Bench bench(BlockSettings{.reactionTime = 300'000});
    bench.fault("split:2:300,split:2:500@2");
    const std::int64_t start = bench.clock.nowMicroseconds();
    EXPECT_EQ(bench.ask(Set5, 3), "90 41 FF") << "a pause below the timeout is bridged";
    EXPECT_EQ(bench.clock.nowMicroseconds() - start, 600'000) << "each byte starts the timeout anew";
    EXPECT_EQ(bench.ask(Set5, 3), "90 41") << "a pause above it ends the receive";
    EXPECT_EQ(bench.recv(3), "FF");
}

TEST(Faults, ShortWrite) {
    Bench bench;
    bench.fault("short-write,short-write:2@3");
    EXPECT_EQ(bench.line.send(wire(Set5)), 8);
    EXPECT_EQ(bench.recv(3), "");
    EXPECT_EQ(bench.brightness(), 7U);
    EXPECT_EQ(bench.ask(Set5, 3), "90 41 FF") << "the cut-off command stands in the way of the next";
    EXPECT_EQ(bench.line.send(wire(Inquire)), 2);
    EXPECT_EQ(bench.ask(Inquire, 7), Is5);
    bench.fault("short-write:0");
    EXPECT_EQ(bench.line.send(wire(Inquire)), 0);
}

TEST(Faults, PortGoneAndBack) {
    Bench bench(BlockSettings{.reactionTime = 100'000});
    bench.fault("port-gone:2000");
    EXPECT_EQ(bench.ask(Set5, 3), "");
    EXPECT_EQ(bench.line.send(wire(Inquire)), -1);
    bench.clock.waitMicroseconds(1'600'000);
    EXPECT_EQ(bench.ask(Inquire, 7), Is7);

    // One answer has arrived by then and one is due.
    EXPECT_EQ(bench.line.send(wire(Inquire)), 5);
    bench.clock.waitMicroseconds(200'000);
    EXPECT_EQ(bench.line.send(wire(Inquire)), 5);
    bench.line.withLine([](Line& line, std::int64_t now) { line.unplug(now); });
    bench.clock.waitMicroseconds(1'000'000'000);
    EXPECT_EQ(bench.line.send(wire(Inquire)), -1);
    bench.line.withLine([](Line& line, std::int64_t) { line.plug(); });
    EXPECT_EQ(bench.recv(7), "") << "an answer outlived the port";
    EXPECT_EQ(bench.ask(Inquire, 7), Is7);
}

TEST(Line, KeepsTheSpeedOfTheLine) {
    Bench bench({}, 9600);
    const std::int64_t start = bench.clock.nowMicroseconds();
    EXPECT_EQ(bench.ask("81 01 04 61 02 FF", 3), "90 41 FF");
    // Six bytes out and three back, ten bits each.
    EXPECT_NEAR(static_cast<double>(bench.clock.nowMicroseconds() - start), 9 * 10e6 / 9600, 2);

    EXPECT_EQ(bench.line.send(wire("81 01 04 61 03 FF")), 6);
    EXPECT_EQ(bench.line.send(wire("81 09 04 61 FF")), 5);
    EXPECT_EQ(bench.line.withBlock([](CameraBlock& b, std::int64_t) { return b.registerValue(0x61); }), 2U)
        << "the command cannot have arrived yet";
    EXPECT_EQ(bench.recv(20), "90 41 FF 90 50 03 FF");

    bench.line.withLine([](Line& line, std::int64_t) { line.setBaud(0); });
    const std::int64_t instant = bench.clock.nowMicroseconds();
    EXPECT_EQ(bench.ask("81 01 04 61 02 FF", 3), "90 41 FF");
    EXPECT_EQ(bench.clock.nowMicroseconds(), instant);
}

TEST(Line, ReceiveEndsWithSilence) {
    Bench bench;
    const std::int64_t start = bench.clock.nowMicroseconds();
    EXPECT_EQ(bench.recv(20, 1), "");
    EXPECT_EQ(bench.clock.nowMicroseconds() - start, 100'000);
    EXPECT_EQ(bench.recv(20, 0), "");
    EXPECT_EQ(bench.recv(0, 4), "");
    EXPECT_EQ(bench.clock.nowMicroseconds() - start, 100'000);
}

TEST(Line, RestartForgetsWhatWasNotSent) {
    Bench bench(BlockSettings{.habit = ReplyHabit::AcknowledgeThenComplete, .bootTime = 8'000'000});
    EXPECT_EQ(bench.ask(Set5, 3), "90 41 FF");
    bench.line.withBlock([](CameraBlock& b, std::int64_t now) { b.reboot(now, false); });
    EXPECT_EQ(bench.recv(3), "") << "a completion outlived the restart";
    bench.clock.waitMicroseconds(7'500'000);
    EXPECT_EQ(bench.ask(Inquire), "");
    EXPECT_EQ(bench.ask(Inquire, 7), Is5);
    EXPECT_EQ(bench.ask(std::string(Set5) + " FE 05 03 01 01 0A FF"), "90 41 FF");
}

TEST(Line, CallsFromSeveralThreads) {
    Bench bench;
    std::thread driver([&] {
        for (int i = 0; i < 500; ++i)
            bench.line.withBlock(
                [i](CameraBlock& b, std::int64_t) { b.setAmbient(i % 2 == 0 ? Ambient::Dark : Ambient::Light); });
    });
    for (int i = 0; i < 500; ++i) {
        const std::string report = bench.ask("81 09 04 01 FF", 4);
        EXPECT_TRUE(report == "90 50 02 FF" || report == "90 50 03 FF") << report;
    }
    driver.join();
    EXPECT_EQ(bench.ask("81 09 04 01 FF", 4), "90 50 03 FF");
}

} // namespace
} // namespace camerasim
