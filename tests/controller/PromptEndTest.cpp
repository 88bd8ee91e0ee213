// An end comes at once, whatever the block does: of the thread in the midst of a switch on a dead line, of a start
// that the host gives up.

#include "controller/SensorControllerManager.h"
#include "support/Cmd8100Bench.h"

#include <chrono>
#include <thread>

namespace {

using Milliseconds = std::chrono::milliseconds;

class PromptEnd : public Cmd8100Bench {
protected:
    /// Two schemes: one of the first minute of the day, one of the rest that differs in every parameter.
    void writeSecondScheme() {
        m_Root.writeSchemeCount(2);
        ASSERT_EQ(bringUp(), 1);
        std::string text;
        ASSERT_EQ(controller().getAllParameters(text), 1);
        destroy();
        for (int id = 0; id < 64; ++id) {
            const std::string head = '(' + std::to_string(id) + ',';
            if (const std::size_t at = text.find(head); at != std::string::npos)
                text.replace(at + head.size(), text.find(')', at) - at - head.size(), "1");
        }
        const std::string values = text.substr(0, text.find("(500,"));
        m_Root.write("/mnt/mtd/code/config_file/sensor1.cfg", "(500,1)(501,0)(502,0)(503,0)(504,0)");
        m_Root.write("/mnt/mtd/code/config_file/sensor2.cfg", values + "(500,1)(501,0)(502,1)(503,24)(504,0)");
    }
};

} // namespace

TEST_F(PromptEnd, OfTheThreadOnADeadLine) {
    writeSecondScheme();
    unsigned seed = 7;
    for (int round = 0; round < 30; ++round) {
        m_pClock->setTimeOfDay(0, 0);
        ASSERT_EQ(bringUp(), 1);
        m_pPort->addFault("silence@every");
        m_pClock->setTimeOfDay(0, 10);
        seed = seed * 1103515245U + 12345U;
        m_pClock->advance((seed >> 16) % 10000 / 1000.0);
        const double before = m_pClock->now();
        destroy();
        EXPECT_LT(m_pClock->now() - before, 0.41 + 0.1) << "round " << round; // one receive
        m_pPort->clearFaults();
    }
}

TEST_F(PromptEnd, OfAStartThatTheHostGivesUp) {
    // In real time: two threads that both wait on the clock have to agree on it.
    sensorhost::installClock(nullptr);
    SensorControllerManager manager;
    manager.setUARTController(m_pPort);
    manager.setGPIO(m_pGpio);
    EXPECT_EQ(manager.cancelStart(), 0);
    std::thread host([&] {
        manager.init(1, VideoResolution(1920, 1080), // another video system: the block restarts, 20 s
                     ModuleConfigure(16, "RS485=ttyS1;isInfrared=0;generation=3", "RS485=9600,8,1,0"));
    });
    for (std::size_t sent = 0; sent < 4; sent += m_pPort->takeSent().size()) // menu, inquiry, video system, restart
        std::this_thread::sleep_for(Milliseconds(5));
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(manager.cancelStart(), 1);
    host.join();
    EXPECT_LT(std::chrono::steady_clock::now() - before, Milliseconds(2000));
    EXPECT_EQ(manager.getSensorController()->getSensorStatus(), ISensorController::NotInited);
    EXPECT_NE(errorLog().find("the start was cancelled"), std::string::npos);
    EXPECT_EQ(m_Root.read("/mnt/mtd/code/config_file/sensor_Factory.cfg"), "<none>");
    EXPECT_EQ(manager.cancelStart(), 0);
}
