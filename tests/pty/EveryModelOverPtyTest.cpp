// Every model on its simulated block behind a real pseudo-terminal: what was saved is in the block again after both
// were switched off.

#include "controller/ModelCatalogue.h"
#include "controller/SenseControllerFactory.h"
#include "host/ModuleConfigure.h"
#include "host/SensorParameterParser.h"
#include "host/VideoResolution.h"
#include "host/imaging/ImagingStandIn.h"
#include "host/linux/HostSettings.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SerialPort.h"
#include "host/linux/SimulatedClock.h"
#include "simulator/BlockRegistry.h"
#include "simulator/PtyServer.h"
#include "support/TempRoot.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace sensorcontrol;

std::vector<camerasim::BlockEntry> modules() {
    std::vector<camerasim::BlockEntry> entries;
    for (const camerasim::BlockEntry& entry : camerasim::blockEntries())
        if (entry.moduleId != camerasim::BlockEntry::NoModule && describeModel(entry.moduleId))
            entries.push_back(entry);
    return entries;
}

class EveryModelOverPty : public ::testing::TestWithParam<camerasim::BlockEntry> {
protected:
    EveryModelOverPty() {
        sensorhost::ImagingStandIn::getInstance().reset();
        sensorhost::installClock(m_pClock);
        m_Root.writeSchemeCount(1);
        const camerasim::BlockEntry& entry = GetParam();
        m_strDetail = std::string(entry.portKey) + '=' +
                      serve(m_pBlock, camerasim::makeBlock(entry.moduleId, Settings)) + ';' +
                      std::string(entry.detail) + ";GPIO=0,1,1";
        m_strLine = std::string(entry.portKey) + "=9600,8,1,0";
        if (entry.makeCompanion != nullptr) {
            m_strDetail += ';' + std::string(entry.companionPortKey) + '=' +
                           serve(m_pCompanion, camerasim::makeCompanion(entry.moduleId));
            m_strLine += ';' + std::string(entry.companionPortKey) + "=9600,8,1,0";
        }
    }
    ~EveryModelOverPty() override {
        m_pController = SafePointer<ISensorController>();
        sensorhost::installClock(nullptr);
        sensorhost::ImagingStandIn::getInstance().reset();
    }

    /// Serves a block; the name of its port.
    std::string serve(std::unique_ptr<camerasim::PtyServer>& server, std::unique_ptr<camerasim::CameraBlock> block) {
        const std::string link = m_Root.path() + "/port" + (&server == &m_pBlock ? "" : "2");
        server = std::make_unique<camerasim::PtyServer>(std::move(block),
                                                        camerasim::PtyServer::Settings{.baud = 0, .linkPath = link});
        std::string error;
        EXPECT_TRUE(server->start(error)) << error;
        return link;
    }

    int bringUp() {
        m_pController = SafePointer<ISensorController>();
        m_pController = SenseControllerFactory::create(GetParam().moduleId);
        m_pController->setOperator(SafePointer<IUARTController>(new sensorhost::SerialPort),
                                   SafePointer<IGPIO>(new sensorhost::MemoryGpio));
        return m_pController->init(1, ModuleConfigure(GetParam().moduleId, m_strDetail, m_strLine),
                                   VideoResolution(1920, 1080));
    }

    std::map<std::string, std::uint32_t> registers() {
        return m_pBlock->withBlock([](camerasim::CameraBlock& block, std::int64_t) { return kept(block); });
    }
    static std::map<std::string, std::uint32_t> kept(const camerasim::CameraBlock& block) {
        std::map<std::string, std::uint32_t> values;
        for (const camerasim::RegisterState& state : block.registers())
            if (state.persistent)
                values[state.name] = state.value;
        return values;
    }
    std::map<int, int> parameters() {
        std::string all;
        std::map<int, int> values;
        EXPECT_EQ(m_pController->getAllParameters(all), 1);
        SensorParameterParser::parseSensorParameter(all, values);
        return values;
    }

    static constexpr camerasim::BlockSettings Settings{.bootTime =
                                                           0}; // it boots in real time, the library waits in simulated

    TempRoot m_Root;
    std::shared_ptr<sensorhost::SimulatedClock> m_pClock = std::make_shared<sensorhost::SimulatedClock>();
    std::unique_ptr<camerasim::PtyServer> m_pBlock;
    std::unique_ptr<camerasim::PtyServer> m_pCompanion;
    SafePointer<ISensorController> m_pController;
    std::string m_strDetail;
    std::string m_strLine;
};

TEST_P(EveryModelOverPty, WhatWasSavedIsInTheBlockAgain) {
    ASSERT_EQ(bringUp(), 1);
    if (m_pController->getSensorStatus() != 2)
        return; // its parameters are closed
    int changed = 0;
    const std::optional<ModelInfo> model = describeModel(GetParam().moduleId);
    // In another mode the start would leave registers alone that the first one wrote.
    std::string modes;
    for (const ParameterInfo& parameter : model->parameters)
        modes += parameter.condition;
    for (const ParameterInfo& parameter : model->parameters) {
        if (parameter.kind != IdManager::Common || parameter.accepts.empty() || parameter.id >= 500 ||
            modes.find(' ' + parameter.name + " is") != std::string::npos)
            continue;
        const int low = parameter.accepts.front().low;
        const int other = parameter.factoryValue == low ? parameter.accepts.back().high : low;
        changed += m_pController->setParameters("(" + std::to_string(parameter.id) + "," + std::to_string(other) + ")");
    }
    EXPECT_GT(changed, 5) << "some bound each other, but not all";
    ASSERT_EQ(m_pController->flush(), 1);
    const std::map<int, int> saved = parameters();
    const auto before = registers();
    const auto factory = kept(*camerasim::makeBlock(GetParam().moduleId, Settings));

    m_pBlock->withBlock([](camerasim::CameraBlock& block, std::int64_t now) { block.reboot(now, true); });
    ASSERT_EQ(bringUp(), 1);
    EXPECT_EQ(parameters(), saved);
    const auto after = registers();
    for (const auto& [name, value] : before)
        EXPECT_TRUE(value == factory.at(name) || after.at(name) == value) << name << ' ' << value;
}

INSTANTIATE_TEST_SUITE_P(Models, EveryModelOverPty, ::testing::ValuesIn(modules()),
                         [](const auto& entry) { return "Module" + std::to_string(entry.param.moduleId); });

} // namespace
