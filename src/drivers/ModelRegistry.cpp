// The models that there are: a row a module id.

#include "controller/ModelCatalogue.h"
#include "drivers/ParameterTable.h"
#include "drivers/onchip/BreltoISPSenseController.h"
#include "drivers/visca/CMD8100SenseController.h"
#include "drivers/visca/ViscaModel.h"

#include <algorithm>
#include <type_traits>

namespace sensorcontrol {

namespace {

ParameterInfo describeRow(const ModelDescription& model, const ParameterRow& row) {
    ParameterInfo info{row.id, row.name, {}, row.command != nullptr, row.kind, {}, {}};
    for (const ValueSet::Range& accepted : row.accepts)
        info.accepts.push_back({accepted.low, accepted.high});
    if (row.factory.isKnown)
        info.factoryValue = row.factory.value;
    info.condition = describe(row.onlyWhile, model);
    return info;
}

const ModelDescription& parametersOf(const ModelDescription& model) { return model; }
const ModelDescription& parametersOf(const ViscaModel& model) { return model.parameters; }

template <class Controller>
ModelInfo describeModelOf(int moduleId) {
    const ModelDescription& model = parametersOf(Controller::model());
    ModelInfo info{moduleId, model.className, model.hasPort, {}};
    for (const ParameterRow& parameter : model.rows)
        info.parameters.push_back(describeRow(model, parameter));
    return info;
}

/// A controller that stands for several modules is told which.
template <class Controller>
ISensorController* make(int moduleId) {
    if constexpr (std::is_constructible_v<Controller, int>)
        return new Controller(moduleId);
    else
        return new Controller;
}

template <class Controller>
constexpr CatalogueRow module(int moduleId, const ControllerTraits& traits = {}) {
    return {moduleId, traits, make<Controller>, describeModelOf<Controller>};
}

constexpr CatalogueRow Rows[] = {
    module<BreltoISPSenseController>(4, {.edgesByTable = false}),
    module<BreltoISPSenseController>(5, {.edgesByTable = false}),
    module<BreltoISPSenseController>(6, {.edgesByTable = false}),
    {11, {.filterOffAtFactory = true}},
    module<CMD8100SenseController>(16, {.filterOffAtFactory = true}),
    {17, {.isParameterAccessClosed = true}},
    {19, {.filterOffAtFactory = true}},
    {21, {.edgesOffWithFilter = true}},
    {24, {.filterOffAtFactory = true}},
};

static_assert(std::ranges::is_sorted(Rows, {}, &CatalogueRow::moduleId));

} // namespace

constinit const std::span<const CatalogueRow> CatalogueRows = Rows;

} // namespace sensorcontrol
