#pragma once

#include "controller/ISensorController.h"
#include "host/ModuleConfigure.h"
#include "host/VideoResolution.h"
#include "host/linux/HostSettings.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SimulatedClock.h"
#include "support/TempRoot.h"
#include "tools/sensorctl/BlockPort.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

/// A CMD8100 block on the bench: simulated block, clock, pins and files. Bringing the controller up takes no real time.
class Cmd8100Bench : public ::testing::Test {
protected:
    Cmd8100Bench();
    ~Cmd8100Bench() override;

    /// A new controller on the bench's port; the one before is destroyed first.
    ISensorController& create();
    /// create, then init with these keys.
    int bringUp(const std::string& detail = "RS485=ttyS1;isInfrared=0;generation=3", int videoSystem = 0,
                const std::string& parameters = "RS485=9600,8,1,0");
    void destroy() { m_pController = SafePointer<ISensorController>(); }

    ISensorController& controller() { return *m_pController; }
    std::string errorLog() const { return m_Root.read("/mnt/mtd/log/SensorError.log"); }
    std::string initLog() const { return m_Root.read("/mnt/mtd/log/SensorInit.log"); }

    TempRoot m_Root;
    std::shared_ptr<sensorhost::SimulatedClock> m_pClock;
    SafePointer<BlockPort> m_pPort;
    SafePointer<sensorhost::MemoryGpio> m_pGpio;
    SafePointer<ISensorController> m_pController;
};
