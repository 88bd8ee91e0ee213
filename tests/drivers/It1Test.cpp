#include "drivers/binary/IT1SenseController.h"
#include "drivers/binary/IT1ZoomModuleSenseController.h"
#include "drivers/binary/Log2.h"
#include "host/ModuleConfigure.h"
#include "host/VideoResolution.h"
#include "host/linux/HostSettings.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SimulatedClock.h"
#include "support/OpenController.h"
#include "support/ScriptedPort.h"
#include "support/TempRoot.h"

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <thread>

#include <gmock/gmock.h>

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;
using Calls = std::vector<std::string>;
using sensorcontrol::binary::scaledLog2;

/// A block that holds registers, and a lens. The test names calls that fail and frames that get no answer.
class It1Port final : public IUARTController {
public:
    int open(const char* device) override {
        const std::string name = device;
        return note("open " + name) ? name == "lens" ? LensHandle : 1 : -1;
    }
    int close(int) override { return 1; }
    int setParameter(int, int baudRate, int, int parity, int stopBits) override {
        return note("line " + std::to_string(baudRate * 100 + parity * 10 + stopBits)) ? 1 : 0;
    }
    int send(int handle, const char* bytes, int length) override {
        const std::string frame = (handle == LensHandle ? "lens " : "") + toHex(bytes, length);
        if (!note(frame))
            return length - 1;
        const std::lock_guard lock(m_Mutex);
        m_Pending.clear();
        if (length < 8 || handle == LensHandle || m_Silent.contains(frame))
            return length;
        const auto at = [bytes](int index) { return static_cast<unsigned char>(bytes[index]); };
        int& held = m_Registers[at(4) << 8 | at(5)];
        std::string data;
        if (at(3) == 2)
            held = length == 9 ? at(6) | at(7) << 8 : at(6);
        else
            data = std::string{static_cast<char>(held), static_cast<char>(held >> 8)}.substr(0, at(6));
        m_Pending = std::string{static_cast<char>(5 + data.size()), 1, 2, 1} + data + '\0';
        IBaseIT1SenseController::computeCheckSum(m_Pending.data(), static_cast<int>(m_Pending.size()));
        return length;
    }
    int recv(int, char* buffer, int length, int) override {
        const std::lock_guard lock(m_Mutex);
        const std::size_t count = m_Pending.copy(buffer, static_cast<std::size_t>(length));
        m_Pending.erase(0, count);
        return static_cast<int>(count);
    }
    /// The calls since the last time, each with " | " before it.
    std::string takeCalls() {
        const std::lock_guard lock(m_Mutex);
        return std::exchange(m_strCalls, {});
    }

    std::map<int, int> m_Registers{{0x0101, 5}, {0x1439, 0xffff}};
    std::set<std::string> m_Silent;
    std::set<std::string> m_Failing;

private:
    static constexpr int LensHandle = 2;

    bool note(const std::string& call) {
        const std::lock_guard lock(m_Mutex);
        m_strCalls += " | " + call;
        return !m_Failing.contains(call);
    }

    std::mutex m_Mutex;
    std::string m_strCalls;
    std::string m_Pending;
};

const std::string Keys = "RS232=block;isInfrared=0;GPIO=0,12,1";
const std::string OldBoard = "RS232=block;isInfrared=1;GPIO=0,12,1";
const std::string NewBoard = OldBoard + ";isNewInfrared=1;GPIOInfraredLight=0,2,0;GPIODNLevel=0,5,1";

/// The controllers after the head of a start: the thread does not run unless the test starts it.
class It1 : public ::testing::Test {
protected:
    It1() { sensorhost::installClock(m_pClock); }
    ~It1() override {
        m_pController.reset();
        sensorhost::installClock(nullptr);
    }

    template <class Controller = IT1SenseController>
    Controller& create() {
        auto* controller = new Controller;
        m_pController.reset(controller);
        controller->setOperator(m_pPort, m_pGpio);
        controller->setObserver(&m_Log);
        controller->*Peek::Status = ISensorController::InitSuccess;
        return *controller;
    }
    /// Through the keys and the head of the start.
    std::string start(const std::string& detail, const std::string& parameters = "RS232=96,8,1,0;RS485=48,8,2,0") {
        m_pPort->takeCalls();
        return outcome([&] { return m_pController->initController(1, ModuleConfigure(2, detail, parameters)); });
    }
    IT1SenseController& started(const std::string& detail) {
        IT1SenseController& controller = create();
        EXPECT_THAT(start(detail), ::testing::StartsWith("1"));
        controller.*Peek::Inited = true;
        return controller;
    }
    void store(const std::string& text) { (m_pController.get()->*Peek::CurrentCache)->setSensorValues(text); }

    /// Result, seconds if any, pins written and error log of an operation: "0 1s 12=0 gpio set infrared failed".
    template <class Call>
    std::string outcome(Call call) {
        m_pGpio->clearHistory();
        m_Log.take();
        const double begin = m_pClock->now();
        std::string text = std::to_string(call());
        if (const int seconds = static_cast<int>(m_pClock->now() - begin + 0.5); seconds > 0)
            text += " " + std::to_string(seconds) + "s";
        for (const auto& write : m_pGpio->getHistory())
            text += " " + std::to_string(write.pin) + "=" + std::to_string(write.value);
        const std::string log = m_Log.take();
        return text + (log.empty() ? "" : " ") + log;
    }

    TempRoot m_Root;
    std::shared_ptr<sensorhost::SimulatedClock> m_pClock = std::make_shared<sensorhost::SimulatedClock>();
    SafePointer<It1Port> m_pPort{new It1Port};
    SafePointer<sensorhost::MemoryGpio> m_pGpio{new sensorhost::MemoryGpio};
    LogKeeper m_Log;
    std::unique_ptr<IBaseIT1SenseController> m_pController;
};

TEST_F(It1, AnExchangeFailsInItsWays) {
    IT1SenseController& controller = create();
    const SafePointer<ScriptedPort> script(new ScriptedPort);
    controller.setOperator(script, m_pGpio);
    char command[] = {8, 1, 5, 1, 0x0a, 3, 1, 0};
    const std::string send = "send 08 01 05 01 0A 03 01 1D";
    CaptureStdout();
    for (const auto& [replies, expected] :
         {std::pair{std::deque<std::string>{"06", "01 03 01 80 8B"}, "6"},
          {{}, "-2 recv dataCount failed,nRecvLength=0"},
          {{ScriptedPort::Dead}, "-2 recv dataCount failed,nRecvLength=-1"},
          {{"06", "01 03"}, "-2 recv data failed,nRecvLength=2,nRecvCount=5"},
          {{"06", "01 03 01 80 8C"}, "-3 checkSum error,nExpectedCheckSum = 0x8b,actualCheckSum=0x8c"},
          {{"01"}, "-3 checkSum error,nExpectedCheckSum = 0x00,actualCheckSum=0x01"},
          {{"00"}, "-2 recv data failed,nRecvLength=0,nRecvCount=-1"},
          {{"0B"}, "-4"}}) {
        char result[10] = {};
        script->m_Replies = replies;
        script->takeCalls();
        EXPECT_EQ(outcome([&] { return controller.baseSendCommand(command, sizeof command, result, sizeof result); }),
                  expected);
        EXPECT_EQ(script->takeCalls().size(), replies.size() == 2 ? 3U : 2U) << "nothing more is read";
    }
    int value = 77;
    const auto read = [&] { return controller.getParameterValue(command, sizeof command, value); };
    script->m_SendResults = {3};
    script->m_Replies = {"07", "01 04 01 34 12 53"};
    EXPECT_EQ(outcome(read), "1 p_pszSendCommandLen = 8,nSendLength=3") << "the second try";
    EXPECT_EQ(value, 0x1234);
    EXPECT_EQ(script->takeCalls().size(), 4U);

    // After the second failure the port is emptied byte by byte; an acknowledgement is no answer to a read.
    script->m_Replies = {"06", "01 03 01 80 8C", "", "FF", "FF"};
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(script->takeCalls(),
              (Calls{send, "recv 1/6", "recv 5/6", send, "recv 1/6", "recv 1/6", "recv 1/6", "recv 1/6"}));
    script->m_Replies = {"05", "01 02 01 09"};
    EXPECT_EQ(read(), 0);
    EXPECT_EQ(controller.setParameterValue(command, sizeof command), 0);
    EXPECT_EQ(value, 0x1234);
    const std::string console = GetCapturedStdout();
    for (const char* text :
         {"recv dataCount failed,dataCount=11,nResult=0x0b\n", "second sendCommand failed,nCount=-2\n",
          "getParameterValue error,nRet = -2,command is:0x08 0x01 0x05 ", "Value error,nRet = 5,",
          "setParameterValue error,nRet = -2,\n\tsendCommand is:0x08 "})
        EXPECT_THAT(console, HasSubstr(text));
}

TEST_F(It1, AStartNamesTheKeyOrTheStepThatFails) {
    create();
    m_pPort->m_Failing = {"open gone"};
    for (const auto& [detail, parameters, log] :
         {std::tuple{"RS232", "", "parse detail failed"},
          {"isInfrared=0;GPIO=0,1,1", "RS232=1,8,1,0", "get RS232DeviceName from detail failed"},
          {"RS232=a;GPIO=0,1,1", "RS232=1,8,1,0", "get isInfrared from detail failed"},
          {"RS232=a;isInfrared=0", "RS232=1,8,1,0", "get GPIO from detail failed"},
          {"RS232=a;isInfrared=0;GPIO=0", "=", "parse senseParameter failed"},
          {"RS232=a;isInfrared=0;GPIO=0", "", "get RS232Parameter from senseParameter failed"},
          {"RS232=a;isInfrared=0;GPIO=0,1", "RS232=1", "parse GPIO param failed,nRet=2"},
          {"RS232=a;isInfrared=0;GPIO=0,1,1", "RS232=1,8,1", "parse RS232 param failed,nRet=3"},
          {"RS232=gone;isInfrared=0;GPIO=0,1,1", "RS232=1,8,1,0", "open UART(gone) failed"}})
        EXPECT_EQ(start(detail, parameters), std::string("0 ") + log);

    EXPECT_EQ(start(Keys), "1");
    const std::string calls = m_pPort->takeCalls();
    EXPECT_THAT(calls, ::testing::StartsWith(" | open block | line 9601 | 61 | 08 01 05 01 0A 01 01"));
    std::size_t begin = calls.find("61 | ") + 2;
    const std::string chroma = " failed | Init getChroma Value failed";
    const std::string sharpness = "Init Low Sharpness Value failed";
    std::vector<std::string> logs{"Init Low Shutter Value failed", sharpness, sharpness, "Init Day Night Failed",
                                  "Init getMirror Value failed"};
    for (const char* name : {"RY1", "BY1", "RY2", "BY2", "RY3", "BY3", "RY4", "BY4"})
        logs.push_back("get getChroma" + std::string(name) + chroma);
    logs.emplace_back("init base_setDayToNightTransition(0) failed");
    logs.emplace_back("init base_setNightToDayTransition(0) failed");
    for (const std::string& log : logs) {
        const std::size_t end = calls.find(" | ", begin + 3);
        const std::string frame = calls.substr(begin, end - begin);
        m_pPort->m_Silent = {frame.substr(3)};
        EXPECT_THAT(start(Keys), EndsWith("nRecvLength=0 | " + log));
        EXPECT_EQ(m_pPort->takeCalls(), calls.substr(0, end) + frame) << "and no more";
        begin = end;
    }
    EXPECT_EQ(calls.substr(begin), " | 08 01 05 01 01 01 01 12 | 08 01 05 02 01 01 15 27");
    m_pPort->m_Silent.clear();
    m_pPort->m_Failing = {"08 01 05 02 01 01 15 27"};
    EXPECT_EQ(start(Keys), "0 send szcommand_DNoff1 failed");
}

TEST_F(It1, NoSetterGoesOnBehindAFailedFrame) {
    IT1SenseController& controller = started(Keys);
    store("(8,8)(11,13)(18,0)(19,0)");
    // What the log has of a failure at the last frame.
    std::istringstream rows("2 40 set p_nSharpness(40) failed\n9 30\n11 13\n13 57 set BY4 failed \n"
                            "17 6 setIrisValue4 failed\n19 0\n19 1\n");
    int id = 0;
    int value = 0;
    for (std::string log; rows >> id >> value && std::getline(rows, log);) {
        m_pPort->takeCalls();
        EXPECT_EQ(controller.setParameterToSensor(id, value), 1);
        const std::string sent = m_pPort->takeCalls();
        const std::string last = sent.substr(sent.rfind(" | "));
        m_pPort->m_Silent = {last.substr(3)};
        EXPECT_EQ(controller.setParameterToSensor(id, value), 0) << id;
        EXPECT_EQ(m_pPort->takeCalls(), sent + last);
        EXPECT_THAT(m_Log.take(), EndsWith("nRecvLength=0" + (log.empty() ? "" : " |" + log)));
        m_pPort->m_Silent.clear();
    }
    EXPECT_EQ(m_pPort->m_Registers[0x1439], 70122 & 0xffff) << "65535 and 7 hundredths, cut to what goes out";
}

TEST_F(It1, LogarithmsInWholeNumbersAreThoseOfTheFormula) {
    EXPECT_EQ(scaledLog2(1020, 10), 0x27fa);
    EXPECT_EQ(scaledLog2(204000, 10), 0x468d);
    EXPECT_EQ(scaledLog2(204, 10), 0x1eb0);
    for (const int bits : {5, 10}) {
        int wrong = 0;
        for (std::uint32_t x = 1; x <= 204000; ++x)
            wrong += scaledLog2(x, bits) != static_cast<int>(IBaseIT1SenseController::getLog2Value(x) * (1 << bits));
        EXPECT_EQ(wrong, 0) << bits;
    }
}

TEST_F(It1, ThresholdsKeepTheirOrderAndTheLevelItsBand) {
    IT1SenseController& controller = create();
    EXPECT_EQ(controller.setDayToNightTransition(100), 1) << "above the one in force, none is stored";
    EXPECT_EQ(controller.setNightToDayTransition(100), 0);
    store("(5,80)(6,32)");
    EXPECT_EQ(controller.setTransitionBack(), 1);
    const auto judge = [&](int level) {
        int status = 77;
        m_pPort->m_Registers[0x3d0b] = level;
        return controller.getDayNightValue(status) ? status : -1;
    };
    // Step 32 begins at level 256, step 81 at 740.
    for (const auto& [level, status] : {std::pair{739, 1}, {740, 0}, {256, 0}, {255, 1}, {739, 1}, {65535, 0}, {0, 1}})
        EXPECT_EQ(judge(level), status) << level;
    store("(6,0)");
    EXPECT_EQ(controller.setTransitionBack(), 1);
    for (const auto& [level, status] : {std::pair{65535, 0}, {126, 0}, {125, 1}})
        EXPECT_EQ(judge(level), status) << level << ": a step of -0.7 is cut to 0";
}

TEST_F(It1, TurningMovesThePinsThatTheBoardHas) {
    // The board, id 4, id 22; then what turning to day and to night moves.
    for (const auto& [detail, setup, infrared, day, night] : {std::tuple{Keys, 0, 0, "1 12=1", "1 12=0"},
                                                              {Keys, 0, 1, "1", "1"},
                                                              {NewBoard, 0, 0, "1 2=0 12=1", "1 2=1 12=0"},
                                                              {NewBoard, 0, 1, "1 12=1", "1 12=0"},
                                                              {NewBoard, 2, 1, "1 12=1", "1 2=1 12=0"}}) {
        IT1SenseController& controller = started(detail);
        controller.setInfrared(infrared);
        controller.setDayNightSetup(setup);
        controller.stopSwitchThread();
        m_pPort->takeCalls();
        EXPECT_EQ(outcome([&] { return controller.exitNightMode(); }), day);
        EXPECT_EQ(outcome([&] { return controller.enterNightMode(); }), night);
        EXPECT_EQ(m_pPort->takeCalls(), " | 08 01 05 02 01 01 05 17 | 08 01 05 02 01 01 45 57");
    }
    IT1SenseController& controller = started(NewBoard);
    m_pGpio->setFailing(0, 2, true);
    EXPECT_EQ(outcome([&] { return controller.exitNightMode(); }), "0 1s gpio set infrared failed");
    EXPECT_EQ(outcome([&] { return controller.setInfrared(1); }), "0 1s focus open infrared light failed");
    m_pGpio->setFailing(0, 12, true);
    EXPECT_EQ(outcome([&] { return controller.enterNightMode(); }), "0 1s gpio set filter failed") << "mode 1 is kept";
    m_pPort->m_Silent = {"08 01 05 02 01 01 05 17"};
    EXPECT_THAT(outcome([&] { return controller.exitNightMode(); }),
                EndsWith("nRecvLength=0 | closeDayNight failed | closeDayNightMode failed"));
}

TEST_F(It1, APassJudgesByTheMeteredLevel) {
    const auto pass = [&](int level) {
        m_pPort->m_Registers[0x3d0b] = level;
        return outcome([&] { return m_pController->switchThreadBody(); });
    };
    started(Keys + ";GPIOExternalLevel=0,7,2");
    EXPECT_EQ(pass(5000), "0 1s 12=0 7=0");
    EXPECT_EQ(pass(0), "0 1s 12=1 7=1");
    started(Keys + ";GPIOExternalLevel=0,7,0").setDNSwitchDelay(3);
    EXPECT_EQ(pass(5000), "0 1s 12=0 7=1");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(pass(0), "0 1s") << "light must last";
    EXPECT_EQ(pass(0), "0 1s 12=1 7=0");
    m_pGpio->setFailing(0, 7, true);
    EXPECT_EQ(pass(0), "0 1s 12=1 setDayLevel() error");
    EXPECT_EQ(pass(5000), "0 1s 12=0 setNightLevel() error");
    m_pGpio->setFailing(0, 12, true);
    EXPECT_EQ(pass(5000), "0 2s gpio set filter failed | enterNightMode failed");
    m_pPort->m_Silent = {"08 01 05 01 3D 0B 02 59"};
    EXPECT_THAT(pass(0), EndsWith(" getDayNightValue error"));
}

TEST_F(It1, APassFollowsTheBoard) {
    const auto pass = [&](int pin, int level) {
        m_pGpio->setLevel(0, pin, level);
        return outcome([&] { return m_pController->switchThreadBody(); });
    };
    started(NewBoard);
    EXPECT_EQ(pass(5, 0), "0 1s 2=1 12=0");
    EXPECT_EQ(pass(5, 1), "0 1s 2=0 12=1");
    m_pGpio->setFailing(0, 12, true);
    EXPECT_EQ(pass(5, 0), "0 4s 2=1 gpio set filter failed");
    m_pGpio->setFailing(0, 5, true);
    EXPECT_EQ(pass(5, 0), "0 3s GPIO(5) get DNLevel failed value = -1");

    started(OldBoard);
    EXPECT_EQ(pass(7, 0), "0 3s --------getLevel() error------") << "no line to read";
    started(OldBoard + ";GPIOExternalLevel=0,7,1");
    EXPECT_EQ(pass(7, 0), "0 4s gpio set filter failed");
    m_pGpio->setFailing(0, 12, false);
    EXPECT_EQ(pass(7, 0), "0 1s 12=0") << "tried again";
    EXPECT_EQ(pass(7, 0), "0 1s") << "no news";
}

TEST_F(It1, TheSetupStartsAndStopsTheThread) {
    IT1SenseController& controller = create();
    EXPECT_EQ(start(NewBoard), "1");
    EXPECT_EQ(controller.setInfrared(1), 1) << "before the end of the start: remembered";
    controller.*Peek::Inited = true;
    const auto isFollowing = [&] {
        m_pGpio->setLevel(0, 5, 1 - m_pGpio->getLevel(0, 5));
        m_pGpio->clearHistory();
        m_pClock->advance(1.5);
        return !m_pGpio->getHistory().empty();
    };
    EXPECT_EQ(controller.setDayNightSetup(0), 1);
    EXPECT_TRUE(isFollowing());
    EXPECT_EQ(outcome([&] { return controller.setDayNightSetup(1); }), "1 12=1") << "in the midst of a wait";
    EXPECT_FALSE(isFollowing());
    EXPECT_EQ(outcome([&] { return controller.setDayNightSetup(2); }), "1 2=1 12=0");
    EXPECT_EQ(controller.setDayNightSetup(0), 1);
    for (const int mode : {0, 1}) {
        EXPECT_EQ(outcome([&] { return controller.setInfrared(2); }), "1 2=1 12=0");
        EXPECT_FALSE(isFollowing());
        EXPECT_EQ(controller.setInfrared(mode), 1);
        EXPECT_TRUE(isFollowing());
    }
}

TEST_F(It1, TheLensHasAPortOfItsOwn) {
    IT1ZoomModuleSenseController& controller = create<IT1ZoomModuleSenseController>();
    EXPECT_THAT(start("RS485=lens"), EndsWith("DeviceName from detail failed | baseIT1SenseController init failed "));
    EXPECT_EQ(start(Keys), "0 get RS485DeviceName from detail failed");
    const std::string keys = Keys + ";RS485=lens";
    EXPECT_EQ(start(keys, "RS232=1,8,1,0"), "0 get RS232Parameter from senseParameter failed");
    EXPECT_EQ(start(keys, "RS232=1,8,1,0;RS485=1,8"), "0 parse RS485 param failed,nRet=2");
    m_pPort->m_Failing = {"line 4802"};
    EXPECT_EQ(start(keys), "0 RS485 setParameter failed(lens,48,8,2,0)");
    m_pPort->m_Failing = {"open lens"};
    EXPECT_EQ(start(keys), "0 RS485 uart open(lens) failed");
    m_pPort->m_Failing = {"lens 81 01 04 B1 04 FF"};
    EXPECT_EQ(start(keys), "1");
    m_pPort->takeCalls();
    int mode = 0;
    EXPECT_EQ(controller.stopPTZ() + controller.setFocusMode(0) + controller.getFocusMode(mode), 2);
    EXPECT_EQ(mode, 2);
    EXPECT_EQ(m_pPort->takeCalls(), " | lens 4D 45 4E 55 4F 4E");
    EXPECT_EQ(outcome([&] { return controller.setParameterToSensor(20, 1); }), "0 send data failed nRet=5");
}

/// A whole start, and the thread at work while hosts set parameters. Shows its worth under the thread sanitizer.
TEST_F(It1, HostsAndThreadShareABlock) {
    m_Root.writeSchemeCount(1);
    ISensorController& controller = create();
    ASSERT_EQ(controller.init(1, ModuleConfigure(2, Keys, "RS232=96,8,1,0"), VideoResolution(1920, 1080)), 1);
    m_pClock->advance(2);
    EXPECT_EQ(controller.*Peek::DayNight, 1) << "as the thread judges";
    constexpr int Rounds = 300;
    const auto repeat = [](auto call) {
        return std::jthread([call] {
            for (int i = 0; i < Rounds; ++i)
                call(i);
        });
    };
    CaptureStdout();
    {
        const sensorhost::SimulatedClock::Absence absence(*m_pClock);
        const std::jthread setups = repeat([this](int i) { m_pController->setDayNightSetup(i % 3); });
        const std::jthread infrared = repeat([this](int i) { m_pController->setInfrared(i % 3); });
        const std::jthread shutters = repeat([this](int i) { m_pController->setLowShutterSetup(i % 2); });
        const std::jthread irises = repeat([this](int i) { m_pController->setParameterToSensor(10, i % 2); });
    }
    GetCapturedStdout();
    EXPECT_EQ(m_pController->setDayNightSetup(2), 1);
    EXPECT_EQ(m_pPort->m_Registers[0x0a01] & 3, 1) << "no change of one bit undoes the other's";
    EXPECT_EQ(m_pPort->m_Registers[0x0101], 0x45);
}

} // namespace
