#pragma once

#include "drivers/onchip/BreltoISPSenseController.h"
#include "host/ModuleConfigure.h"
#include "host/VideoResolution.h"
#include "host/imaging/ImagingStandIn.h"
#include "host/linux/HostSettings.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SimulatedClock.h"
#include "support/TempRoot.h"

#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

/// The controller of the on-chip pipeline on the simulated one, with clock, pins and files of its own.
class OnChipBench : public ::testing::Test {
protected:
    OnChipBench() {
        m_Pipeline.reset();
        sensorhost::installClock(m_pClock);
        m_Root.writeSchemeCount(1);
    }
    ~OnChipBench() override {
        m_pController.reset();
        sensorhost::installClock(nullptr);
        EXPECT_TRUE(m_Pipeline.misuses().empty());
        m_Pipeline.reset();
    }

    BreltoISPSenseController& create(int moduleId = 4) {
        m_pController.reset();
        m_Pipeline.reset(); // a controller that never came up ends what never began
        m_pController = std::make_unique<BreltoISPSenseController>(moduleId);
        m_pController->setOperator(SafePointer<IUARTController>(), m_pGpio);
        return *m_pController;
    }
    int bringUp(const std::string& detail = "isInfrared=0;autoIris=1;GPIO=0,12,1;TNF=1;HDR=1", int videoSystem = 1,
                const std::string& parameters = "") {
        return create().init(videoSystem, ModuleConfigure(4, detail, parameters), VideoResolution(1920, 1080));
    }
    BreltoISPSenseController& controller() { return *m_pController; }

    /// What the library was told since the last call, "Brtness=50 SatDgr=3", without the names' common heads.
    std::string told() {
        std::string text;
        for (const auto& call : m_Pipeline.calls()) {
            std::string name(call.function);
            if (const std::size_t head = name.find("UiSet"); head != std::string::npos)
                name = name.substr(head + 5);
            else if (name.find("Get") != std::string::npos)
                continue;
            char separator = '=';
            text += (text.empty() ? "" : " ") + name;
            for (const int argument : call.arguments)
                text += std::exchange(separator, ',') + std::to_string(argument);
        }
        m_Pipeline.setRecording(true);
        return text;
    }
    std::string takeErrors() {
        const std::string lines = m_Root.errorLines();
        m_Root.remove("/mnt/mtd/log/SensorError.log");
        return lines;
    }
    int fromSensor(int id) {
        int value = -999;
        return controller().getParameterFromSensor(id, value) ? value : -1000;
    }

    sensorhost::ImagingStandIn& m_Pipeline = sensorhost::ImagingStandIn::getInstance();
    TempRoot m_Root;
    std::shared_ptr<sensorhost::SimulatedClock> m_pClock = std::make_shared<sensorhost::SimulatedClock>();
    SafePointer<sensorhost::MemoryGpio> m_pGpio{new sensorhost::MemoryGpio};
    std::unique_ptr<BreltoISPSenseController> m_pController;
};
