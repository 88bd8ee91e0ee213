#include "drivers/QuietCmd8100.h"
#include "support/ScriptedPort.h"

#include <cstring>
#include <vector>

namespace {

using Calls = std::vector<std::string>;

/// Exchanges on a port that answers by script. The start is over; the background thread does not get to run, because
/// nothing here waits.
class Cmd8100Exchange : public QuietCmd8100 {
protected:
    void SetUp() override {
        create().setOperator(m_pScript, m_pGpio);
        ASSERT_EQ(controller().init(1, ModuleConfigure(16, "RS485=a;isInfrared=0;generation=3", "RS485=1,2,3,4"),
                                    VideoResolution(1920, 1080)),
                  1);
    }

    /// One exchange with these replies; its result, and the log.
    template <class Call>
    int run(std::deque<std::string> replies, Call&& call) {
        m_pScript->m_Replies = std::move(replies);
        m_pScript->takeCalls();
        forgetLog();
        const int result = call();
        m_Log = logLines();
        m_pScript->m_Replies.clear();
        return result;
    }
    int setting(std::deque<std::string> replies) {
        return run(std::move(replies), [&] { return controller().setParameterValue(Setting, sizeof Setting); });
    }
    int inquiry(std::deque<std::string> replies, int replyLength) {
        std::memset(m_Reply, 'x', sizeof m_Reply);
        return run(std::move(replies),
                   [&] { return controller().getParameterValue(Inquiry, sizeof Inquiry, m_Reply, replyLength); });
    }
    int mask(std::deque<std::string> replies) {
        return run(std::move(replies), [&] { return block().BRSendParam(Mask, sizeof Mask); });
    }

    static constexpr char Setting[] = {'\x81', 0x01, 0x04, 0x53, 0x05, '\xff'};
    static constexpr char Inquiry[] = {'\x81', 0x09, 0x04, 0x01, '\xff'};
    static constexpr char Mask[] = {'\xa1', 0x04, 0x05, '\xff'};
    inline static const std::string SendSetting = "send 81 01 04 53 05 FF";

    SafePointer<ScriptedPort> m_pScript{new ScriptedPort};
    char m_Reply[8] = {};
    std::string m_Log;
};

TEST_F(Cmd8100Exchange, ASettingReadsThreeBytesAndTakesAcknowledgementOrCompletion) {
    for (const char* good : {"90 41 FF", "90 51 FF"}) {
        EXPECT_EQ(setting({good}), 1) << good;
        EXPECT_EQ(m_pScript->takeCalls(), (Calls{SendSetting, "recv 3/4"}));
        EXPECT_EQ(m_Log, "");
    }
    // Each is a failed try; the next one is taken.
    const std::string sent = "0x81,0x1,0x4,0x53,0x5,0xff";
    const std::string shortReply = "===recv(1 times) @setParameterValue failed,send: | " + sent + " | ===recv(";
    const std::string wrongReply = "===send: | " + sent + " | ===setParameterValue(1 times) recv error,recv:";
    const struct {
        const char* reply;
        std::string log;
    } bad[] = {
        {"FF 90 41", wrongReply + "0xff,0x90,0x41"},
        {"90 42 FF", wrongReply + "0x90,0x42,0xff"},
        {"90 61 41", wrongReply + "0x90,0x61,0x41"},
        {"41 FF 90", wrongReply + "0x41,0xff,0x90"},
        {"90 41", shortReply + "2): | 0x90,0x41"},
        {"90", shortReply + "1): | 0x90"},
        {"", shortReply + "0):"},
        {ScriptedPort::Dead, shortReply + "-1):"},
    };
    for (const auto& row : bad) {
        EXPECT_EQ(setting({row.reply, "90 51 FF"}), 1) << row.reply;
        EXPECT_EQ(m_pScript->takeCalls(), (Calls{SendSetting, "recv 3/4", "drain", SendSetting, "recv 3/4"}));
        EXPECT_EQ(m_Log, row.log);
        EXPECT_EQ(setting({row.reply, row.reply, row.reply, "90 41 FF"}), 0) << "no fourth try";
        EXPECT_EQ(m_pScript->takeCalls(), (Calls{SendSetting, "recv 3/4", "drain", SendSetting, "recv 3/4", "drain",
                                                 SendSetting, "recv 3/4", "drain"}));
        EXPECT_NE(m_Log.find("(3 times)"), std::string::npos) << m_Log;
    }
}

TEST_F(Cmd8100Exchange, AShortSendIsAFailedTryWithoutAReceive) {
    m_pScript->m_SendResults = {5, -1, 0};
    EXPECT_EQ(setting({}), 0);
    EXPECT_EQ(m_pScript->takeCalls(), (Calls{SendSetting, "drain", SendSetting, "drain", SendSetting, "drain"}));
    const std::string sent = "0x81,0x1,0x4,0x53,0x5,0xff";
    EXPECT_EQ(m_Log, "===send(1 times) @setParameterValue failed,send(5): | " + sent +
                         " | ===send(2 times) @setParameterValue failed,send(-1): | " + sent +
                         " | ===send(3 times) @setParameterValue failed,send(0): | " + sent);
    m_pScript->m_SendResults = {4};
    EXPECT_EQ(inquiry({"90 50 03 FF"}, 4), 1);
    EXPECT_EQ(m_Log, "===send(1 times) @getParameterValue failed,send(4): | 0x81,0x9,0x4,0x1,0xff");
    m_pScript->m_SendResults = {3};
    EXPECT_EQ(mask({"A1 04 05 FF"}), 1);
    EXPECT_EQ(m_Log, "===send(1 times) @BRSendParam failed,send(3): | 0xa1,0x4,0x5,0xff");
}

TEST_F(Cmd8100Exchange, AnInquiryTakesAnyReplyOfItsLength) {
    const std::string send = "send 81 09 04 01 FF";
    EXPECT_EQ(inquiry({"01 02 03 04"}, 4), 1);
    EXPECT_EQ(m_pScript->takeCalls(), (Calls{send, "recv 4/4"}));
    EXPECT_EQ(toHex(m_Reply, 5), "01 02 03 04 78");
    EXPECT_EQ(inquiry({"90 50 00", "90 50 00 06 FF"}, 5), 1);
    EXPECT_EQ(m_pScript->takeCalls(), (Calls{send, "recv 5/4", "drain", send, "recv 5/4"}));
    EXPECT_EQ(toHex(m_Reply, 6), "90 50 00 06 FF 78");
    EXPECT_EQ(m_Log,
              "===recv(1 times) @getParameterValue failed,send: | 0x81,0x9,0x4,0x1,0xff | ===recv(3): | 0x90,0x50,0x0");
    EXPECT_EQ(inquiry({"90 50 00", "90", ScriptedPort::Dead}, 7), 0);
    EXPECT_EQ(toHex(m_Reply, 8), "78 78 78 78 78 78 78 78") << "what came too short stays away from the caller";
}

TEST_F(Cmd8100Exchange, AMaskFrameWantsItsEcho) {
    const std::string send = "send A1 04 05 FF";
    EXPECT_EQ(mask({"A1 04 05 FF"}), 1);
    EXPECT_EQ(m_pScript->takeCalls(), (Calls{send, "recv 4/5"}));
    EXPECT_EQ(mask({"A1 04 05", "A1 04 04 FF", "90 41 FF 00"}), 0);
    EXPECT_EQ(m_pScript->takeCalls(),
              (Calls{send, "recv 4/5", "drain", send, "recv 4/5", "drain", send, "recv 4/5", "drain"}));
    const std::string sent = "failed,send: | 0xa1,0x4,0x5,0xff | ===recv(";
    EXPECT_EQ(m_Log, "===recv(1 times) @BRSendParam " + sent + "3): | 0xa1,0x4,0x5 | ===check(2 times) @BRSendParam " +
                         sent + "4): | 0xa1,0x4,0x4,0xff | ===check(3 times) @BRSendParam " + sent +
                         "4): | 0x90,0x41,0xff,0x0");
    EXPECT_EQ(run({}, [&] { return block().BRSendParam(Mask, 0); }), 1) << "nothing is echoed by nothing";
}

TEST_F(Cmd8100Exchange, ADrainGoesOnWhileItIsFilled) {
    m_pScript->m_DrainResults = {20, 20, 19};
    EXPECT_EQ(setting({"", "90 41 FF"}), 1);
    EXPECT_EQ(m_pScript->takeCalls(),
              (Calls{SendSetting, "recv 3/4", "drain", "drain", "drain", SendSetting, "recv 3/4"}));
    m_pScript->m_DrainResults = {-1};
    EXPECT_EQ(setting({"", "90 41 FF"}), 1);
    EXPECT_EQ(m_pScript->takeCalls(), (Calls{SendSetting, "recv 3/4", "drain", SendSetting, "recv 3/4"}));
}

TEST_F(Cmd8100Exchange, LengthsThatCannotBeAreRefusedAndNothingIsSent) {
    const auto isRefused = [&](int result) { return result == 0 && m_pScript->takeCalls().empty(); };
    EXPECT_TRUE(isRefused(run({}, [&] { return controller().setParameterValue(Setting, -1); })));
    EXPECT_EQ(m_Log, "===setParameterValue: a command of -1 bytes and a reply of 3 are refused");
    EXPECT_TRUE(isRefused(run({}, [&] { return block().BRSendParam(Mask, -1); })));
    EXPECT_TRUE(isRefused(run({}, [&] { return controller().getParameterValue(Inquiry, -1, m_Reply, 4); })));
    EXPECT_TRUE(isRefused(inquiry({}, -1)));
    EXPECT_TRUE(isRefused(inquiry({}, 101))) << "more than the receive buffer holds";
    EXPECT_EQ(m_Log, "===getParameterValue: a command of 5 bytes and a reply of 101 are refused");
}

} // namespace
