// What the golden texts of the Hitach blocks and their relatives cannot say: starts, video systems, threads, the line.

#include "drivers/RegisterTextBench.h"
#include "drivers/regtext/HitachCompatSenseController.h"
#include "drivers/regtext/HitachSenseController.h"
#include "drivers/regtext/SC110N_CSenseController.h"

#include <atomic>
#include <thread>

#include <gmock/gmock.h>

namespace {

using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

constexpr VideoResolution Hd(1280, 720);
constexpr VideoResolution Sxga(1280, 960);

template <class Block>
class Relative : public RegisterTextBench<Block> {
protected:
    /// A start with these keys beside the port's, and these replies; what it did on the port.
    std::string start(const std::string& keys, std::initializer_list<const char*> replies = {}) {
        return this->run(
            [&] { return this->m_pBlock->initController(1, ModuleConfigure(0, "RS485=a;" + keys, "RS485=1,2,3,4")); },
            replies);
    }
    std::string change(int system, const VideoResolution& resolution, std::initializer_list<const char*> replies = {}) {
        CaptureStdout();
        const std::string calls =
            this->run([&] { return this->m_pBlock->setSensorVideoSystem(system, resolution); }, replies);
        m_strConsole = GetCapturedStdout();
        return calls;
    }
    /// Ends the controller, which must take no time and leave nothing running.
    void end() {
        const double before = this->m_pClock->now();
        this->m_pBlock = SafePointer<Block>();
        EXPECT_EQ(this->m_pClock->now(), before);
        this->m_pScript->takeCalls();
        this->m_pClock->advance(130);
        EXPECT_TRUE(this->m_pScript->takeCalls().empty());
    }
    /// How often the threads sent a text within these seconds, unanswered: three tries each.
    long sentIn(double seconds, const std::string& text) {
        this->m_pScript->takeCalls();
        this->m_pClock->advance(seconds);
        const std::vector<std::string> calls = this->m_pScript->takeCalls();
        return std::ranges::count(calls, "send " + hex(text)) / 3;
    }

    static inline const std::string Opened = "1, open a, line 1 2 4 3";
    std::string m_strConsole;
};

using Hitach = Relative<HitachSenseController>;
using Sc110n = Relative<SC110N_CSenseController>;
using HitachCompat = Relative<HitachCompatSenseController>;

TEST_F(Hitach, TheVideoSystemGoesByTheResolution) {
    const auto asked = exchanged(":W170100", "8/4") + exchanged(":WFCC000", "8/4");
    const auto written = [](const char* first, const char* second) {
        return exchanged(first, "8/5") + exchanged(second, "8/5") + exchanged(":WFCAC00", "8/5");
    };
    EXPECT_EQ(change(1, Hd, {":W170101", ":WFCC000"}), "1" + asked);
    EXPECT_EQ(m_strConsole, "_______set PAL & 1280*720\n");
    EXPECT_EQ(change(0, Sxga, {":W1701FF", ":WFCC001"}), "1" + asked);
    EXPECT_EQ(change(0, Hd, {":W1701FF", ":WFCC000"}), "1" + asked);
    // One register of the two is not enough.
    EXPECT_EQ(change(0, Hd, {":W1701FF", ":WFCC001", ":W1701FF", ":WFCC000", ":WFCAC00"}),
              "1" + asked + written(":W1701FF", ":WFCC000") + ", drain");
    EXPECT_EQ(m_strConsole, "_______set NTSC & 1280*720\nvideo system change!\nClear UART buffer\n");
    EXPECT_EQ(m_dSeconds, 10);
    EXPECT_EQ(change(0, Sxga, {":W170101", ":WFCC000", ":W1701FF", ":WFCC001", ":WFCAC00"}),
              "1" + asked + written(":W1701FF", ":WFCC001") + ", drain");
    // All three go out, whatever becomes of each.
    EXPECT_EQ(change(1, Hd, {":W1701FF", ":WFCC000", "", "", "", ":WFCC000", ":WFCAC00"}),
              "0" + asked + thrice(":W170101", "8/5") + exchanged(":WFCC000", "8/5") + exchanged(":WFCAC00", "8/5"));
    EXPECT_THAT(m_Log.take(), testing::EndsWith(" | Hitach setSensorVideoSystem failed"));
    EXPECT_EQ(m_dSeconds, 0);

    EXPECT_EQ(change(1, Hd), "0" + thrice(":W170100", "8/4"));
    EXPECT_THAT(m_Log.take(), testing::EndsWith(" | get video system 1 failed"));
    EXPECT_EQ(change(1, Hd, {":W170101"}), "0" + exchanged(":W170100", "8/4") + thrice(":WFCC000", "8/4"));
    EXPECT_THAT(m_Log.take(), testing::EndsWith(" | get video system 2 failed"));
    for (const auto& [system, resolution] : {std::pair(1, Sxga), std::pair(0, VideoResolution(1920, 1080))}) {
        EXPECT_EQ(change(system, resolution), "0");
        EXPECT_EQ(m_Log.take(), "setSensorVideoSystem is out of range");
    }
    EXPECT_EQ(change(2, Sxga), "1");
}

TEST_F(Hitach, TheThirdGenerationStoresItsSettingsAndRestartsSlower) {
    const auto notify = [&] { return m_pBlock->NotifySensorInitComplate(); };
    EXPECT_EQ(run(notify), "1");
    ASSERT_THAT(start("isInfrared=0;isThridGeneration=1"), testing::StartsWith(Opened));
    EXPECT_EQ(run(notify), "1, send " + hex(":rE1ED0000"));
    change(1, Hd, {":W1701FF", ":WFCC000", ":W170101", ":WFCC000", ":WFCAC00"});
    EXPECT_EQ(m_dSeconds, 20);
    ASSERT_EQ(run([&] { return m_pBlock->setCameraMode(0); }, {":WFCC800", ":WFFE6C0"}),
              "1" + exchanged(":WFCC800", "8/5") + exchanged(":WFFE6C0", "8/5"));
    EXPECT_EQ(sentIn(130, ":WFCC800"), 0);
    end();
}

TEST_F(Hitach, TheCameraModeIsWrittenAgainOnceAMinute) {
    ASSERT_THAT(start("isInfrared=0"), testing::StartsWith(Opened));
    EXPECT_EQ(sentIn(61, ":WFCC801"), 0) << "no mode yet";
    ASSERT_EQ(run([&] { return m_pBlock->setCameraMode(1); }, {":WFCC801", ":WFFE6C0"}).front(), '1');
    EXPECT_EQ(sentIn(120, ":WFCC801"), 2);
    ASSERT_EQ(run([&] { return m_pBlock->setCameraMode(0); }).front(), '0');
    EXPECT_EQ(sentIn(60, ":WFCC801"), 1) << "one that was not taken does not count";
    int mode = -1;
    (*m_pBlock).*Peek::Status = ISensorController::InitSuccess;
    ASSERT_EQ(m_pBlock->getParameterFromSensor(6, mode), 1);
    EXPECT_EQ(sentIn(60, ":WFCC800"), 1);
    end();
}

TEST_F(Hitach, AnInfraredBoardLeavesTheCameraModeAlone) {
    ASSERT_THAT(start("isInfrared=1"), testing::StartsWith(Opened));
    ASSERT_EQ(run([&] { return m_pBlock->setCameraMode(1); }, {":WFCC801", ":WFFE6C0"}).front(), '1');
    EXPECT_EQ(sentIn(130, ":WFCC801"), 0);
    EXPECT_GT(sentIn(4, ":RFFE700"), 0);
    end();
}

TEST_F(Sc110n, AStartNeedsThePinAndEmptiesTheLine) {
    EXPECT_EQ(start("isInfrared=0"), "0");
    EXPECT_EQ(m_Log.take(), "get GPIO from detail failed");
    EXPECT_EQ(start("isInfrared=0;GPIO=0,1"), "0");
    EXPECT_EQ(m_Log.take(), "parse GPIO param failed,nRet=2");
    EXPECT_THAT(start("isInfrared=0;GPIO=0,1,1"), testing::StartsWith(Opened + ", drain"));
    EXPECT_GT(sentIn(4, ":RFFE700"), 0);
    end();
}

TEST_F(Sc110n, VideoSystemRawBytesAndGain) {
    const std::string asked = exchanged(":R170100", "8/4");
    EXPECT_EQ(change(1, Sxga, {":R170100"}), "1" + asked);
    EXPECT_EQ(change(0, Sxga, {":R170100", ":W1701FF", ":WFCAC00"}),
              "1" + asked + exchanged(":W1701FF", "8/5") + exchanged(":WFCAC00", "8/5") + ", drain");
    EXPECT_EQ(m_strConsole, "_______set NTSC\nvideo system change!\nClear UART buffer\n");
    EXPECT_EQ(m_dSeconds, 20);
    EXPECT_EQ(change(1, Hd, {":R1701FF"}), "0" + asked + thrice(":W170100", "8/5"));
    EXPECT_THAT(m_Log.take(), testing::EndsWith(" | setSensorVideoSystem failed"));
    EXPECT_EQ(change(1, Hd, {":R1701FF", ":W170100"}),
              "0" + asked + exchanged(":W170100", "8/5") + thrice(":WFCAC00", "8/5"));
    EXPECT_THAT(m_Log.take(), testing::Not(testing::HasSubstr("setSensorVideoSystem")));
    EXPECT_EQ(change(2, Hd), "0");

    EXPECT_EQ(run([&] { return m_pBlock->setParameterValue(":rE1ED0000", 10); }), "0" + thrice(":rE1ED0000", "10/5"));
    m_pScript->m_SendResults = {9};
    EXPECT_EQ(run([&] { return m_pBlock->setParameterValue(":W1F", 4); }, {":W1F"}).front(), '1');
    EXPECT_THAT(m_Log.take(), testing::StartsWith("===send(1 times) @sendData failed,send(9):"));

    int gain = -1;
    for (const auto& [reply, expected] : {std::pair(":RFB38001F", 0), {":RFB380020", 1}, {":RFB38FFFF", 2047}}) {
        EXPECT_EQ(run([&] { return m_pBlock->getCurrentGain(gain); }, {reply}), "1" + exchanged(":RFB380000", "10/4"));
        EXPECT_EQ(gain, expected);
    }
    EXPECT_EQ(run([&] { return m_pBlock->getCurrentGain(gain); }, {":RFB39001F"}).front(), '0');
}

TEST_F(HitachCompat, TheFirmwareVersionDecidesHowTheStatusIsRead) {
    const auto pass = [&](const std::string& calls, const char* reply, int status, double seconds) {
        SCOPED_TRACE(reply);
        EXPECT_THAT(run([&] { return m_pBlock->getDNbody(); }, {reply}), testing::StartsWith("0" + calls));
        EXPECT_EQ((*m_pBlock).*Peek::DayNight, status);
        EXPECT_NEAR(m_dSeconds, seconds, 1e-6);
        return m_Log.take();
    };
    const std::string old = exchanged(":RFFE600", "8/4");
    const std::string later = exchanged(":RFFE700", "8/4");
    (*m_pBlock).*Peek::DayNight = 1;
    EXPECT_EQ(run([&] { return m_pBlock->getDNbody(); }), "0") << "nothing is asked without infrared board";
    EXPECT_EQ((*m_pBlock).*Peek::DayNight, -1);
    EXPECT_NEAR(m_dSeconds, 1, 1e-6);

    (*m_pBlock).*Peek::Infrared = 1;
    EXPECT_EQ(pass(old, ":RFFE680", 0, 1), "");
    EXPECT_EQ(pass(old, ":RFFE6C0", 1, 1), "");
    EXPECT_EQ(pass(old, ":RFFE600", 1, 3), "get nGetValue failed ,nGetValue = 0");
    EXPECT_THAT(pass(old, ":RFFE700", 1, 3), testing::EndsWith("recvData @getDNbody failed")) << "another's answer";

    const std::string asked = exchanged(":RE1EE00", "8/4");
    EXPECT_EQ(start("isInfrared=0"), "0" + Opened.substr(1) + thrice(":RE1EE00", "8/4"));
    EXPECT_THAT(m_Log.take(), testing::EndsWith(" | get SensorConfigVersion failed"));
    CaptureStdout();
    EXPECT_THAT(start("isInfrared=0", {":RE1EE6B"}), testing::StartsWith(Opened + asked));
    EXPECT_THAT(GetCapturedStdout(), testing::HasSubstr("m_nSensorVersion=107\n"));
    EXPECT_GT(sentIn(4, ":RFFE700"), 0);
    EXPECT_EQ(pass(later, ":RFFE700", 0, 1), "");
    EXPECT_EQ(pass(later, ":RFFE701", 1, 1), "");
    end();
}

TEST_F(HitachCompat, TheVideoSystemGoesByTheResolution) {
    const std::string asked = exchanged(":RFFFE00", "8/4");
    EXPECT_EQ(change(1, Hd, {":RFFFE00"}), "1" + asked);
    EXPECT_EQ(change(0, Hd, {":RFFFE03"}), "1" + asked);
    EXPECT_EQ(change(0, Sxga, {":RFFFE03", ":WFFFE02"}), "1" + asked + exchanged(":WFFFE02", "8/5") + ", drain");
    EXPECT_EQ(m_dSeconds, 3);
    EXPECT_EQ(m_strConsole, "Clear UART buffer\n");
    EXPECT_EQ(change(1, Sxga), "0");
    EXPECT_EQ(m_Log.take(), "setSensorVideoSystem is out of range");
}

/// Answers with an echo, and notices a command that goes out before the one under way has its reply.
class EchoPort final : public IUARTController {
public:
    int open(const char*) override { return 3; }
    int close(int) override { return 1; }
    int setParameter(int, int, int, int, int) override { return 1; }
    int send(int, const char* bytes, int length) override {
        if (m_bBusy.exchange(true))
            m_bMixed = true;
        m_strPending.assign(bytes, static_cast<std::size_t>(length));
        std::this_thread::yield();
        return length;
    }
    int recv(int, char* buffer, int length, int) override {
        if (!m_bLying)
            m_strPending.copy(buffer, static_cast<std::size_t>(length));
        m_bBusy = false;
        return length;
    }

    std::atomic<bool> m_bBusy{false};
    std::atomic<bool> m_bMixed{false};
    bool m_bLying = false; ///< says that a reply is there and gives none

private:
    std::string m_strPending;
};

TEST_F(Sc110n, MaskFramesAndTextsDoNotMixOnTheLine) {
    const SafePointer<EchoPort> port(new EchoPort);
    m_pBlock->setOperator(port, m_pGpio);
    (*m_pBlock).*Peek::Inited = true;
    ASSERT_EQ(m_pBlock->setRegion(5), 1);
    std::thread masks([&] {
        for (int i = 0; i < 2000; ++i)
            m_pBlock->showMask();
    });
    for (int i = 0; i < 2000; ++i)
        m_pBlock->sendData(":WFF3000");
    masks.join();
    EXPECT_FALSE(port->m_bMixed);
}

TEST_F(HitachCompat, OneExchangeAtATimeAndNoneTakesTheReplyOfTheOneBefore) {
    const SafePointer<EchoPort> port(new EchoPort);
    m_pBlock->setOperator(port, m_pGpio);
    std::thread reads([&] {
        int value = 0;
        for (int i = 0; i < 2000; ++i)
            m_pBlock->recvData(":RFFE700", 2, value);
    });
    for (int i = 0; i < 2000; ++i)
        m_pBlock->sendData(":WFF3000");
    reads.join();
    EXPECT_FALSE(port->m_bMixed);

    port->m_bLying = true;
    EXPECT_EQ(m_pBlock->sendData(":WFF3000"), 0);
}

} // namespace
