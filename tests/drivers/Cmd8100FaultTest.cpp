#include "drivers/QuietCmd8100.h"
#include "simulator/FaultPlan.h"

#include <algorithm>
#include <set>

namespace {

/// What becomes of an exchange under a fault: the frames that it sends, "!" when it fails, "~" when foreign bytes
/// behind the reply of an inquiry stay in the port, so that the next inquiry reads them first.
struct FaultRow {
    const char* fault;
    const char* setOnce;
    const char* setEvery;
    const char* statusOnce;
    const char* statusEvery;
    const char* maskOnce;
    const char* maskEvery;
};

constexpr FaultRow FaultRows[] = {
    {"silence", "2", "3!", "2", "3!", "2", "3!"},
    {"late:700", "2", "2", "2", "2", "2", "2"}, // the first reply serves the second try
    {"late:3000", "2", "3!", "2", "3!", "2", "3!"},
    {"truncate:2", "2", "3!", "2", "3!", "2", "3!"},
    {"split:1:100", "1", "1", "1", "1", "1", "1"},
    {"merge", "2", "3!", "2", "3!", "2", "3!"},
    {"noise-before:3", "2", "3!", "1!", "1!", "2", "3!"},
    {"noise-between:3", "1", "1", "1~", "1~", "1", "1"},
    {"flip:2:2", "2", "3!", "1!", "1!", "2", "3!"},
    {"duplicate", "1", "1", "1", "1", "1", "1"},
    {"echo", "2", "3!", "1!", "1!", "1", "1"},
    {"refuse", "2", "3!", "1!", "1!", "2", "3!"},
    {"checksum", "2", "3!", "1!", "1!", "2", "3!"},
    {"short-write", "2", "3!", "2", "3!", "2", "3!"},
    {"port-gone:300", "2", "3!", "2", "3!", "2", "3!"},
    {"port-gone:5000", "3!", "3!", "3!", "3!", "3!", "3!"},
    {"reboot", "3!", "3!", "3!", "3!", "3!", "3!"}, // the block boots longer than three tries last
};

class Cmd8100Faults : public QuietCmd8100 {
protected:
    Outcome status() {
        return outcome([&] { return controller().getDNStatusFromSensor(m_nStatus); });
    }
    Outcome showMask() {
        return outcome([&] { return block().showMask(); });
    }
    std::string known(int id) {
        std::string text;
        return controller().getParameters("(" + std::to_string(id) + ")", text) ? text : "";
    }

    static std::string summary(const Outcome& outcome) {
        const auto count = outcome.frames.empty() ? 0 : std::ranges::count(outcome.frames, '|') + 1;
        return std::to_string(count) + (outcome.result ? "" : "!");
    }

    /// The exchange under the fault; then the line is clean again, and boots and late replies are over.
    template <class Exchange>
    std::string under(const std::string& fault, Exchange&& exchange) {
        m_pPort->addFault(fault);
        const std::string made = summary(exchange());
        m_pPort->clearFaults();
        m_pClock->advance(10);
        return made;
    }

    void checkSetting(const std::string& fault, const std::string& expected) {
        ASSERT_EQ(store("(1,0)").result + store("(1,50)").result, 2);
        EXPECT_EQ(under(fault, [&] { return store("(1,100)"); }), expected);
        const bool isTaken = !expected.ends_with("!");
        EXPECT_EQ(known(1), isTaken ? "(1,100)" : "(1,50)");
        if (isTaken) {
            EXPECT_EQ(m_pPort->registerValue(0x4e), 14U);
        }
        EXPECT_EQ(store("(1,99)").result, 1);
        EXPECT_EQ(m_pPort->registerValue(0x4e), 13U);
    }

    void checkStatus(const std::string& fault, const std::string& expected) {
        const bool isShifted = expected.ends_with("~");
        m_nStatus = 77;
        const std::string made = under(fault, [&] { return status(); });
        EXPECT_EQ(made + (isShifted ? "~" : ""), expected);
        EXPECT_EQ(m_nStatus, made.ends_with("!") ? 77 : 1);
        if (isShifted) {
            m_nStatus = 77;
            EXPECT_EQ(summary(status()), "1!");
            EXPECT_EQ(m_nStatus, 77) << "never a wrong status";
        }
        EXPECT_EQ(summary(status()), "1");
    }

    void checkMask(const std::string& fault, const std::string& expected) {
        ASSERT_EQ(block().setRegion(5), 1);
        EXPECT_EQ(under(fault, [&] { return showMask(); }), expected);
        EXPECT_EQ(showMask().result, 1);
    }

    int m_nStatus = 0;
};

TEST_F(Cmd8100Faults, EveryKindIsOvercomeOrReportedWithinThreeTries) {
    std::set<std::string_view> kinds;
    for (const FaultRow& row : FaultRows) {
        const std::string fault = row.fault;
        kinds.insert(std::string_view(row.fault).substr(0, fault.find(':')));
        for (const bool isOnce : {true, false}) {
            const std::string where = fault + (isOnce ? "@1" : "@every");
            SCOPED_TRACE(where);
            start();
            checkSetting(where, isOnce ? row.setOnce : row.setEvery);
            controller().clearUartBuffer();
            checkStatus(where, isOnce ? row.statusOnce : row.statusEvery);
            controller().clearUartBuffer();
            checkMask(where, isOnce ? row.maskOnce : row.maskEvery);
        }
    }
    for (const std::string_view kind : camerasim::FaultPlan::names())
        EXPECT_EQ(kinds.count(kind), 1U) << kind;
}

TEST_F(Cmd8100Faults, AStartUnderAnyOfThemEndsAndRemembersOnlyWhatTheBlockHas) {
    static constexpr struct {
        int id;
        std::uint32_t address;
        std::uint32_t ofFactoryValue;
        std::uint32_t before;
    } Registers[] = {{1, 0x4e, 7, 1},  {2, 0x42, 5, 1},  {3, 0x49, 12, 1}, {6, 0xa2, 2, 3},
                     {9, 0x3d, 3, 2},  {10, 0xa1, 3, 2}, {11, 0x53, 6, 1}, {14, 0x2c, 12, 1},
                     {16, 0x28, 2, 1}, {17, 0x58, 1, 0}, {19, 0x35, 4, 9}, {20, 0xa3, 0, 1}};
    for (const FaultRow& row : FaultRows) {
        for (const char* where : {"@every", "@2", "@9-11", "@30+"}) {
            SCOPED_TRACE(std::string(row.fault) + where);
            destroy();
            m_pPort = SafePointer<BlockPort>(new BlockPort);
            m_pPort->line().withBlock([&](camerasim::CameraBlock& block, std::int64_t) {
                for (const auto& held : Registers)
                    block.setRegister(held.address, held.before);
            });
            m_pPort->addFault(row.fault + std::string(where));
            ASSERT_EQ(bringUp(), 1);
            const bool hasLostState = std::string_view(row.fault) == "reboot";
            m_pPort->clearFaults();
            m_pClock->advance(30);
            for (const auto& held : Registers)
                if (known(held.id) != "" && !hasLostState) {
                    EXPECT_EQ(m_pPort->registerValue(held.address), held.ofFactoryValue) << held.id;
                }
            quieten();
            EXPECT_EQ(store("(1,99)").result, 1);
            EXPECT_EQ(m_pPort->registerValue(0x4e), 13U);
        }
    }
}

TEST_F(Cmd8100Faults, ABlockThatCompletesAfterAcknowledgingIsServedOffsetByOneReply) {
    camerasim::BlockSettings settings;
    settings.habit = camerasim::ReplyHabit::AcknowledgeThenComplete;
    m_pPort = SafePointer<BlockPort>(new BlockPort(16, settings));
    start();
    EXPECT_EQ(set(1, 50).frames, "81 01 04 4E 00 00 00 07 FF");
    m_pClock->advance(1);
    EXPECT_EQ(set(1, 100), (Outcome{1, "81 01 04 4E 00 00 00 0E FF", ""})) << "takes the completion of the one before";
    EXPECT_EQ(m_pPort->registerValue(0x4e), 14U);
    m_pClock->advance(1);
    int value = 77;
    const Outcome misled = outcome([&] { return controller().getDNStatusFromSensor(value); });
    EXPECT_EQ(misled.result, 0) << "the completion stands at the head of the reply";
    EXPECT_EQ(value, 77);
}

} // namespace
