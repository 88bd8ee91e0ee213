// What holds for every model, driven from its own table against its own simulated block or the simulated pipeline.

#include "controller/ModelCatalogue.h"
#include "controller/OperationReport.h"
#include "controller/SenseControllerFactory.h"
#include "host/SensorParameterParser.h"
#include "host/imaging/ImagingStandIn.h"
#include "simulator/BlockRegistry.h"
#include "simulator/FaultPlan.h"
#include "support/Cmd8100Bench.h"

#include <algorithm>
#include <climits>
#include <map>
#include <vector>

namespace {

using namespace sensorcontrol;

/// Models that something stands in for: a simulated block, or the simulated pipeline for those without a port.
std::vector<int> testableModels() {
    std::vector<int> ids = listModuleIds();
    std::erase_if(ids, [](int id) { return describeModel(id)->hasPort && camerasim::findBlock(id) == nullptr; });
    return ids;
}

class EveryModel : public ::testing::TestWithParam<int> {
protected:
    EveryModel() : m_pClock(std::make_shared<sensorhost::SimulatedClock>()) {
        m_Pipeline.reset();
        sensorhost::installClock(m_pClock);
        if (camerasim::makeBlock(GetParam()))
            m_pPort = SafePointer<BlockPort>(new BlockPort(GetParam()));
        m_Root.writeSchemeCount(1);
        m_pController = SenseControllerFactory::create(GetParam());
        m_pController->setOperator(m_pPort, SafePointer<IGPIO>(new sensorhost::MemoryGpio));
        m_nInit = m_pController->init(0,
                                      ModuleConfigure(GetParam(),
                                                      "RS485=p;RS232=p;isInfrared=0;generation=3;GPIO=0,1,1;autoIris=0",
                                                      "RS485=9600,8,1,0;RS232=9600,8,1,0"),
                                      VideoResolution(1920, 1080));
    }
    ~EveryModel() override {
        m_pController = SafePointer<ISensorController>();
        sensorhost::installClock(nullptr);
        EXPECT_TRUE(m_Pipeline.misuses().empty());
        m_Pipeline.reset();
    }

    /// Whether the model has no parameters: it takes every one of them for set.
    static bool isClosed(const ModelInfo& model) {
        return std::ranges::none_of(model.parameters, [](const ParameterInfo& one) { return one.id < 500; });
    }

    /// Whether the module was told or asked anything since the last call.
    bool takeTraffic() {
        const bool isAny = !m_Pipeline.calls().empty() || (m_pPort.get() != nullptr && !m_pPort->takeSent().empty());
        m_Pipeline.setRecording(true);
        return isAny;
    }

    /// Whether a value never reaches the module: it is refused, or passed over as long as the parameter does not count.
    bool isKeptAway(const ParameterInfo& parameter, int value) {
        OperationReport report;
        const ReportScope scope(report);
        const int isTaken = m_pController->setParameterToSensor(parameter.id, value);
        // A Hitach focus mode beyond the last is refused once the beginning of another one went out.
        const bool mayBegin = (GetParam() == 7 || GetParam() == 23) && parameter.name == "FocusMode" && value > 0;
        return (report.frames.empty() || mayBegin) && (!isTaken || !parameter.condition.empty());
    }

    sensorhost::ImagingStandIn& m_Pipeline = sensorhost::ImagingStandIn::getInstance();
    TempRoot m_Root;
    std::shared_ptr<sensorhost::SimulatedClock> m_pClock;
    SafePointer<BlockPort> m_pPort;
    SafePointer<ISensorController> m_pController;
    int m_nInit = 0;
};

TEST_P(EveryModel, ComesUpReportsItsIdAndServesItsTable) {
    ASSERT_EQ(m_nInit, 1);
    EXPECT_EQ(m_pController->getSensorType(), GetParam());
    const std::optional<ModelInfo> model = describeModel(GetParam());
    ASSERT_TRUE(model);

    if (isClosed(*model)) {
        EXPECT_EQ(m_pController->getSensorStatus(), 1) << "parameters stay closed to the host";
        return;
    }
    std::string all;
    ASSERT_EQ(m_pController->getAllParameters(all), 1);
    std::map<int, int> values;
    ASSERT_EQ(SensorParameterParser::parseSensorParameter(all, values), 1);
    for (const ParameterInfo& parameter : model->parameters) {
        SCOPED_TRACE(parameter.name);
        int value = INT_MIN;
        const int isRead = m_pController->getParameterFromSensor(parameter.id, value);
        EXPECT_EQ(isRead == 1, !parameter.isCommand);
        if (parameter.factoryValue) {
            EXPECT_EQ(value, *parameter.factoryValue);
        }
        // What can be saved has a value from the first start on.
        EXPECT_EQ(values.contains(parameter.id),
                  parameter.kind == IdManager::Common || parameter.kind == IdManager::KeepDefault);
    }
}

TEST_P(EveryModel, TakesTheEndsOfEveryRangeAndNothingBeyond) {
    ASSERT_EQ(m_nInit, 1);
    const std::optional<ModelInfo> model = describeModel(GetParam());
    for (const ParameterInfo& parameter : isClosed(*model) ? std::vector<ParameterInfo>() : model->parameters) {
        SCOPED_TRACE(parameter.name);
        for (std::size_t i = 0; i < parameter.accepts.size(); ++i) {
            const auto [low, high] = parameter.accepts[i];
            EXPECT_EQ(m_pController->setParameterToSensor(parameter.id, low), 1) << low;
            EXPECT_EQ(m_pController->setParameterToSensor(parameter.id, high), 1) << high;
            const bool touchesNext = i + 1 < parameter.accepts.size() && parameter.accepts[i + 1].low == high + 1;
            if (!touchesNext) {
                EXPECT_TRUE(isKeptAway(parameter, high + 1)) << high + 1;
            }
        }
        if (!parameter.accepts.empty()) {
            for (const int value : {parameter.accepts.front().low - 1, INT_MAX, INT_MIN})
                EXPECT_TRUE(isKeptAway(parameter, value)) << value;
        }
        // Others may count for some values of this one alone.
        if (parameter.factoryValue && !parameter.accepts.empty()) {
            EXPECT_EQ(m_pController->setParameterToSensor(parameter.id, *parameter.factoryValue), 1);
        }
    }
}

TEST_P(EveryModel, AnswersForIdsThatItDoesNotServe) {
    const std::optional<ModelInfo> model = describeModel(GetParam());
    std::map<int, bool> served;
    for (const ParameterInfo& parameter : model->parameters)
        served[parameter.id] = true;
    takeTraffic();
    for (int id = -1; id < 500; ++id) {
        int value = 0;
        if (!served.contains(id)) {
            EXPECT_EQ(m_pController->setParameterToSensor(id, 1) == 1, isClosed(*model)) << id;
            EXPECT_EQ(m_pController->getParameterFromSensor(id, value), isClosed(*model) ? 1 : 0) << id;
        }
    }
    EXPECT_FALSE(takeTraffic());
}

// Every kind of fault on every fifth parameter, each parameter under some of the kinds.
TEST_P(EveryModel, SaysUnderEveryFaultWhatBecameOfASettingAndServesTheNext) {
    const std::optional<ModelInfo> model = describeModel(GetParam());
    if (m_pPort.get() == nullptr || isClosed(*model))
        return; // nothing can happen to it on the wire
    const auto cached = [this](int id) {
        std::string text;
        return m_pController->getParameters("(" + std::to_string(id) + ")", text) ? text : "";
    };
    std::size_t turn = 0;
    for (const std::string_view kind : camerasim::FaultPlan::names()) {
        ++turn;
        for (const ParameterInfo& parameter : model->parameters) {
            if (++turn % 5 != 0 || parameter.isCommand || parameter.accepts.empty() || parameter.id >= 500)
                continue;
            SCOPED_TRACE(std::string(kind) + " on " + parameter.name);
            const std::string before = cached(parameter.id);
            const auto [low, high] = parameter.accepts.front();
            const std::string id = std::to_string(parameter.id);
            std::string asked = "(" + id + "," + std::to_string(low) + ")";
            if (asked == before)
                asked = "(" + id + "," + std::to_string(high) + ")";

            m_pPort->addFault(std::string(kind) + "@every");
            OperationReport report;
            {
                const ReportScope scope(report);
                const int isSet = m_pController->setParameters(asked);
                EXPECT_EQ(cached(parameter.id), isSet ? asked : before);
                EXPECT_TRUE(isSet == 1 || !report.parameters.empty());
            }
            EXPECT_LE(report.frames.size(), 3U * 6) << "as many tries as a setting of several frames has";
            m_pPort->clearFaults();
            m_pClock->advance(10); // boots and late replies are over
            EXPECT_EQ(m_pController->setParameters(asked), 1);
            if (parameter.factoryValue) {
                EXPECT_EQ(m_pController->setParameters("(" + id + "," + std::to_string(*parameter.factoryValue) + ")"),
                          1);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Models, EveryModel, ::testing::ValuesIn(testableModels()),
                         [](const auto& model) { return "Module" + std::to_string(model.param); });

} // namespace
