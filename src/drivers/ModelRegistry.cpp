// The models that there are: a row a module id.

#include "controller/ModelCatalogue.h"
#include "drivers/ModelDescription.h"
#include "drivers/onchip/BreltoISPSenseController.h"
#include "drivers/visca/CMD8100SenseController.h"
#include "drivers/visca/ViscaModel.h"

#include <algorithm>
#include <type_traits>

namespace sensorcontrol {

namespace {

struct RegistryRow {
    int moduleId;
    ISensorController* (*create)(int moduleId);
    const ModelDescription& (*describe)();
};

/// A controller that stands for several modules is told which.
template <class Controller>
ISensorController* make(int moduleId) {
    if constexpr (std::is_constructible_v<Controller, int>)
        return new Controller(moduleId);
    else
        return new Controller;
}

template <class Controller>
const ModelDescription& parametersOf() {
    return Controller::model().parameters;
}

constexpr RegistryRow registry[] = {
    {4, make<BreltoISPSenseController>, BreltoISPSenseController::model},
    {5, make<BreltoISPSenseController>, BreltoISPSenseController::model},
    {6, make<BreltoISPSenseController>, BreltoISPSenseController::model},
    {16, make<CMD8100SenseController>, parametersOf<CMD8100SenseController>},
};

const RegistryRow* findModel(int moduleId) {
    const auto row = std::ranges::find(registry, moduleId, &RegistryRow::moduleId);
    return row != std::end(registry) ? row : nullptr;
}

std::string describeCondition(const ModelDescription& model, const Condition& condition) {
    if (condition.kind == Condition::WithoutInfrared)
        return "only without infrared board";
    if (condition.kind != Condition::WhileStored)
        return {};
    const auto other = std::ranges::find(model.rows, condition.storedId, &ParameterRow::id);
    std::string text = "only while ";
    text += other != model.rows.end() ? other->name : std::to_string(condition.storedId);
    const char* separator = " is ";
    for (int value = 0; value < 32; ++value) {
        if ((condition.storedValues >> value & 1U) == 0)
            continue;
        text += separator + std::to_string(value);
        separator = " or ";
    }
    return text;
}

ParameterInfo describeRow(const ModelDescription& model, const ParameterRow& row) {
    ParameterInfo info{row.id, row.name, {}, row.command != nullptr, row.kind, {}, {}};
    for (const ValueSet::Range& accepted : row.accepts)
        info.accepts.push_back({accepted.low, accepted.high});
    if (row.factory.isKnown)
        info.factoryValue = row.factory.value;
    info.condition = describeCondition(model, row.onlyWhile);
    return info;
}

} // namespace

std::vector<int> listModuleIds() {
    std::vector<int> ids;
    for (const RegistryRow& row : registry)
        ids.push_back(row.moduleId);
    return ids;
}

std::optional<ModelInfo> describeModel(int moduleId) {
    const RegistryRow* row = findModel(moduleId);
    if (row == nullptr)
        return std::nullopt;
    const ModelDescription& model = row->describe();
    ModelInfo info{moduleId, model.className, model.hasPort, {}};
    for (const ParameterRow& parameter : model.rows)
        info.parameters.push_back(describeRow(model, parameter));
    return info;
}

ISensorController* createController(int moduleId) {
    const RegistryRow* row = findModel(moduleId);
    return row != nullptr ? row->create(moduleId) : nullptr;
}

} // namespace sensorcontrol
