#include "drivers/GoldenPort.h"
#include "drivers/RegisterTextBench.h"
#include "drivers/regtext/CMD7200SenseController.h"

#include <gmock/gmock.h>

namespace {

using Cmd7200 = RegisterTextBench<CMD7200SenseController>;

TEST_F(Cmd7200, AWriteWantsItsEchoAndTheStoreCommandNone) {
    const auto write = [&] { return m_pBlock->sendData(":W1F"); };
    const std::string one = exchanged(":W1F", "4/5");
    const std::string bytes = " | 0x3a,0x57,0x31,0x46";
    EXPECT_EQ(run(write, {"", ":W1", ":W1F"}), "1" + one + ", drain" + one + ", drain" + one);
    EXPECT_EQ(m_Log.take(), "===recv(1 times) @sendData failed,send:" + bytes +
                                " | ===recv(0): | ===recv(2 times) @sendData failed,send:" + bytes +
                                " | ===recv(3): | 0x3a,0x57,0x31");
    EXPECT_EQ(run(write, {":w1F", ":W1f", ":W1E"}), "0" + thrice(":W1F", "4/5"));
    EXPECT_THAT(m_Log.take(), testing::EndsWith("===check(3 times) @sendData failed,send:" + bytes +
                                                " | ===recv(4): | 0x3a,0x57,0x31,0x45"));

    const auto store = [&] { return m_pBlock->NotifySensorInitComplate(); };
    const std::string sent = ", send " + hex(":rE1ED0000");
    EXPECT_EQ(run(store), "1" + sent);
    m_pScript->m_SendResults = {9, -1, 0};
    EXPECT_EQ(run(store), "0" + sent + ", drain" + sent + ", drain" + sent + ", drain");
    EXPECT_THAT(m_Log.take(), testing::StartsWith("===send(1 times) @setParameterValue failed,send(9): | 0x3a,0x72"));
}

TEST_F(Cmd7200, AReadIsComparedUpToItsValue) {
    int value = -5;
    const auto read = [&] { return m_pBlock->recvData(":RFFFE00", 2, value); };
    EXPECT_EQ(run(read, {":RFFFD01", ":RFFFE0", ":WFFFE01"}), "0" + thrice(":RFFFE00", "8/4"));
    EXPECT_THAT(m_Log.take(), testing::AllOf(testing::StartsWith("===check(1 times) @getParameterValue failed,send:"),
                                             testing::HasSubstr("===recv(2 times) @getParameterValue failed,send:")));
    EXPECT_EQ(value, -5);
    EXPECT_EQ(run(read, {":RFFFEc3"}), "1" + exchanged(":RFFFE00", "8/4"));
    EXPECT_EQ(value, 0xc3);
    EXPECT_EQ(run(read, {":RFFFEzz"}), "1" + exchanged(":RFFFE00", "8/4"));
    EXPECT_EQ(value, 0) << "no number";
    EXPECT_EQ(m_pBlock->recvData(":RFFFE00", 9, value), 0);
    EXPECT_EQ(m_pBlock->assembleString(":wabcd", 0xbc, 4), ":wabcd00BC");
}

TEST_F(Cmd7200, TheStatusIsPolledAndStaysWithoutAnswer) {
    const auto poll = [&] { return m_pBlock->getDNbody(); };
    const auto expectPass = [&](const char* reply, int status, double seconds, const std::string& logEnd) {
        EXPECT_THAT(run(poll, {reply}), testing::StartsWith("0" + exchanged(":RFFE700", "8/4")));
        EXPECT_EQ((*m_pBlock).*Peek::DayNight, status) << reply;
        EXPECT_NEAR(m_dSeconds, seconds, 1e-6) << reply;
        EXPECT_THAT(m_Log.take(), testing::EndsWith(logEnd));
    };
    expectPass(":RFFE701", 1, 1, "");
    expectPass(":RFFE700", 0, 1, "");
    expectPass(":RFFE702", 0, 3, "get nGetValue failed ,nGetValue = 2");
    expectPass("", 0, 3, " | recvData 1@getDNbody failed");
}

TEST_F(Cmd7200, TheVideoSystemIsWrittenOnlyWhenItDiffers) {
    int system = 1;
    const auto change = [&] { return m_pBlock->setSensorVideoSystem(system, VideoResolution(1280, 720)); };
    const std::string read = exchanged(":RFFFE00", "8/4");
    EXPECT_EQ(run(change, {":RFFFE01"}), "1" + read);
    EXPECT_EQ(run(change, {":RFFFE03", ":WFFFE01"}), "1" + read + exchanged(":WFFFE01", "8/5") + ", drain");
    EXPECT_EQ(m_dSeconds, 5);
    system = 0;
    EXPECT_EQ(run(change, {":RFFFE01"}), "0" + read + thrice(":WFFFE03", "8/5"));
    EXPECT_EQ(m_dSeconds, 0) << "nothing to wait for";
    EXPECT_EQ(run(change), "0" + thrice(":RFFFE00", "8/4"));
    EXPECT_THAT(m_Log.take(), testing::EndsWith(" | get video system failed"));
    system = 2;
    EXPECT_EQ(run(change), "0");
    EXPECT_EQ(m_Log.take(), "setSensorVideoSystem is out of range");
}

TEST_F(Cmd7200, TheThreadRunsFromASuccessfulStartToAPromptEnd) {
    const auto start = [&] {
        return m_pBlock->initController(1, ModuleConfigure(22, "RS485=a;isInfrared=1", "RS485=1,2,3,4"));
    };
    m_pScript->m_nOpenResult = -1;
    EXPECT_EQ(run(start), "0, open a");
    EXPECT_EQ(m_Log.take(), "open UART(a) failed");
    m_pScript->m_nOpenResult = 0;
    m_pScript->m_nLineResult = 0;
    EXPECT_EQ(run(start), "0, open a, line 1 2 4 3");
    m_pClock->advance(4);
    EXPECT_TRUE(m_pScript->takeCalls().empty());
    m_pScript->m_nLineResult = 1;
    ASSERT_EQ(start(), 1);
    m_pClock->advance(3.5); // nothing is answered: a pass each three seconds
    EXPECT_EQ(m_pScript->takeCalls().size(), 2 + 2 * 9U);
    const double before = m_pClock->now();
    m_pBlock = SafePointer<CMD7200SenseController>();
    EXPECT_EQ(m_pClock->now(), before);
    m_pClock->advance(4);
    EXPECT_TRUE(m_pScript->takeCalls().empty());
}

TEST_F(Cmd7200, ShutterAndDayNightKeepTheOthersHalfOfTheirRegister) {
    const SafePointer<GoldenPort> port(new GoldenPort);
    m_pBlock->setOperator(port, m_pGpio);
    (*m_pBlock).*Peek::Status = ISensorController::InitSuccess;
    ASSERT_EQ(m_pBlock->setParameters("(5,0)") + m_pBlock->setParameters("(6,3)"), 2);
    port->takeSent();
    const auto set = [&](const char* parameter, const std::string& unanswered = "") {
        port->answer(unanswered, "");
        m_pBlock->setParameters(parameter);
        port->answer(unanswered, unanswered);
        return port->takeSent();
    };
    EXPECT_EQ(set("(4,1)"), R"(":WFCC808" | ":WFFE6C0")");
    EXPECT_EQ(set("(5,1)"), R"(":WFCC809" | ":WFCC909")");
    EXPECT_EQ(set("(4,0)"), R"(":WFCC80A")");
    EXPECT_EQ(set("(4,2)", ":WFFE680"), R"(":WFCC809" | ":WFFE680" | ":WFFE680" | ":WFFE680")");
    EXPECT_EQ(set("(5,0)"), R"(":WFCC820")") << "fixed night was not taken";
    EXPECT_EQ(set("(5,1)", ":WFCC909"), R"(":WFCC80A" | ":WFCC909" | ":WFCC909" | ":WFCC909")");
    EXPECT_EQ(set("(4,2)"), R"(":WFCC808" | ":WFFE680")") << "nor the fixed shutter";
}

} // namespace
