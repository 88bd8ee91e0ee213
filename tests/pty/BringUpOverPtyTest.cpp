// The shipped library on a real pseudo-terminal: termios, the kernel's line, a block on a thread of its own. Waits of
// the library pass on the simulated clock, the serial line is real.

#include "controller/SensorControllerManager.h"
#include "host/ModuleConfigure.h"
#include "host/VideoResolution.h"
#include "host/linux/HostSettings.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SerialPort.h"
#include "host/linux/SimulatedClock.h"
#include "simulator/BlockRegistry.h"
#include "simulator/PtyServer.h"
#include "support/TempRoot.h"

#include <thread>

#include <gtest/gtest.h>

namespace {

constexpr std::uint32_t BrightnessRegister = 0x4e;

class OverPty : public ::testing::Test {
protected:
    OverPty() : m_pClock(std::make_shared<sensorhost::SimulatedClock>()) {
        sensorhost::installClock(m_pClock);
        m_Root.writeSchemeCount(1);
        m_strLink = m_Root.path() + "/port";
        camerasim::BlockSettings settings;
        settings.bootTime = 0; // the block boots in real time, the library waits in simulated
        m_pServer = std::make_unique<camerasim::PtyServer>(
            camerasim::makeBlock(16, settings), camerasim::PtyServer::Settings{.baud = 0, .linkPath = m_strLink});
        std::string error;
        if (!m_pServer->start(error))
            ADD_FAILURE() << error;
    }

    ~OverPty() override {
        m_pManager.reset();
        sensorhost::installClock(nullptr);
    }

    ISensorController& bringUp() {
        m_pManager = std::make_unique<SensorControllerManager>();
        m_pManager->setUARTController(SafePointer<IUARTController>(new sensorhost::SerialPort));
        m_pManager->setGPIO(SafePointer<IGPIO>(new sensorhost::MemoryGpio));
        m_pManager->init(1, VideoResolution(1920, 1080),
                         ModuleConfigure(16, "RS485=" + m_strLink + ";isInfrared=0;generation=3", "RS485=9600,8,1,0"));
        return *m_pManager->getSensorController();
    }

    std::uint32_t registerValue(std::uint32_t address) {
        return m_pServer->withBlock([&](camerasim::CameraBlock& block, std::int64_t) {
            return block.registerValue(address).value_or(0xffffffff);
        });
    }

    TempRoot m_Root;
    std::string m_strLink;
    std::shared_ptr<sensorhost::SimulatedClock> m_pClock;
    std::unique_ptr<camerasim::PtyServer> m_pServer;
    std::unique_ptr<SensorControllerManager> m_pManager;
};

TEST_F(OverPty, SavedValuesComeBackAfterARestart) {
    ISensorController& first = bringUp();
    ASSERT_EQ(first.getSensorStatus(), 2);
    EXPECT_EQ(registerValue(BrightnessRegister), 7U); // factory 50
    ASSERT_EQ(first.setParameters("(1,80)(4,3)"), 1);
    EXPECT_EQ(registerValue(BrightnessRegister), 11U);
    ASSERT_EQ(first.flush(), 1);
    ASSERT_EQ(first.setParameters("(1,10)"), 1); // not saved

    m_pServer->withBlock([](camerasim::CameraBlock& block, std::int64_t now) { block.reboot(now, true); });
    ISensorController& second = bringUp();
    ASSERT_EQ(second.getSensorStatus(), 2);
    EXPECT_EQ(registerValue(BrightnessRegister), 11U);
    std::string values;
    EXPECT_EQ(second.getParameters("(1)(4)", values), 1);
    EXPECT_EQ(values, "(1,80)(4,3)");
}

TEST_F(OverPty, TheBlocksReportSwitchesDayAndNight) {
    ISensorController& controller = bringUp();
    m_pServer->withBlock(
        [](camerasim::CameraBlock& block, std::int64_t) { block.setAmbient(camerasim::Ambient::Dark); });
    m_pClock->advance(3);
    int status = -1;
    ASSERT_EQ(controller.getCurrentDNStatus(status), 1);
    EXPECT_EQ(status, 0);
    ASSERT_EQ(controller.setDayNightMode(1), 1);
    m_pClock->advance(3);
    EXPECT_EQ(registerValue(0x01), 3U); // the block was told: day
}

TEST_F(OverPty, AnUnpluggedPortFailsAndItsReturnNeedsANewStart) {
    ISensorController& controller = bringUp();
    m_pServer->unplug();
    EXPECT_EQ(controller.setParameters("(1,80)"), 0);
    int status = -1;
    EXPECT_EQ(controller.getCurrentDNStatus(status), 0);
    EXPECT_EQ(status, -1);
    std::string values;
    EXPECT_EQ(controller.getParameters("(1)", values), 1);
    EXPECT_EQ(values, "(1,50)"); // what the block did not accept is not remembered

    std::string error;
    ASSERT_TRUE(m_pServer->plug(error)) << error;
    EXPECT_EQ(bringUp().setParameters("(1,80)"), 1);
    EXPECT_EQ(registerValue(BrightnessRegister), 11U);
}

TEST_F(OverPty, ThreadsShareTheController) {
    ISensorController& controller = bringUp();
    constexpr int Rounds = 12;
    std::atomic<int> failures{0};
    const auto expect = [&](int result) { failures += result == 1 ? 0 : 1; };
    std::thread writer([&] {
        for (int i = 0; i < Rounds; ++i)
            expect(controller.setParameters(i % 2 == 0 ? "(1,20)(2,20)(3,20)(12,1)" : "(1,90)(2,90)(3,90)(12,0)"));
    });
    std::thread reader([&] {
        std::string values;
        for (int i = 0; i < Rounds * 50; ++i) {
            int value = 0;
            expect(controller.getParameters("(1)(2)(3)", values));
            expect(controller.getParameter(1, value));
        }
    });
    std::thread saver([&] {
        std::string all;
        for (int i = 0; i < Rounds; ++i) {
            expect(controller.flush());
            expect(controller.getAllParameters(all));
        }
    });
    std::thread switcher([&] {
        for (int i = 0; i < Rounds; ++i) {
            expect(controller.setDayNightMode(i % 4));
            expect(controller.DNSwitchHandle());
        }
    });
    {
        sensorhost::SimulatedClock::Absence absence(*m_pClock);
        writer.join();
        reader.join();
        saver.join();
        switcher.join();
    }
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(registerValue(BrightnessRegister), 12U);
}

} // namespace
