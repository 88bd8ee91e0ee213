// The models that there are: a row a module id.

#include "controller/ModelCatalogue.h"
#include "drivers/ParameterTable.h"
#include "drivers/binary/IT1SenseController.h"
#include "drivers/binary/IT1ZoomModuleSenseController.h"
#include "drivers/onchip/BreltoISPSenseController.h"
#include "drivers/regtext/CMD7200SenseController.h"
#include "drivers/regtext/HitachCompatSenseController.h"
#include "drivers/regtext/HitachSenseController.h"
#include "drivers/regtext/SC110N_CSenseController.h"
#include "drivers/visca/CMD7300SenseController.h"
#include "drivers/visca/CMD8100SenseController.h"
#include "drivers/visca/CMD8100_OldSenseController.h"
#include "drivers/visca/CMD8300SenseController.h"
#include "drivers/visca/NoSensorUIController.h"
#include "drivers/visca/SONYCH3310SenseController.h"
#include "drivers/visca/SONYCV7500SenseController.h"
#include "drivers/visca/SONYEH4300SenseController.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <type_traits>

namespace sensorcontrol {

namespace {

ParameterInfo describeRow(const ModelDescription& model, const ParameterRow& row) {
    ParameterInfo info{row.id, row.name, {}, row.isCommand(), row.kind, {}, {}};
    for (const ValueSet::Range& accepted : row.accepts)
        info.accepts.push_back({accepted.low, accepted.high});
    if (row.factory.isKnown)
        info.factoryValue = row.factory.value;
    info.condition = describe(row.onlyWhile, model);
    return info;
}

template <class Controller>
ModelInfo describeModelOf(int moduleId) {
    const ModelDescription& model = Controller::model();
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

/// The rows of all module ids of the classes, ascending.
template <class... Controllers>
consteval auto catalogue() {
    std::array<CatalogueRow, (std::size(Controllers::ModuleIds) + ...)> rows{};
    std::size_t count = 0;
    const auto add = [&]<class Controller>(std::type_identity<Controller>) {
        for (const int moduleId : Controller::ModuleIds)
            rows[count++] = {moduleId, Controller::Traits, make<Controller>, describeModelOf<Controller>};
    };
    (add(std::type_identity<Controllers>{}), ...);
    std::ranges::sort(rows, {}, &CatalogueRow::moduleId);
    return rows;
}

constexpr auto Rows =
    catalogue<BreltoISPSenseController, CMD7200SenseController, CMD7300SenseController, CMD8100SenseController,
              CMD8100_OldSenseController, CMD8300SenseController, HitachCompatSenseController, HitachSenseController,
              IT1SenseController, IT1ZoomModuleSenseController, NoSensorUIController, SC110N_CSenseController,
              SONYCH3310SenseController, SONYCV7500SenseController, SONYEH4300SenseController>();

} // namespace

constinit const std::span<const CatalogueRow> CatalogueRows = Rows;

} // namespace sensorcontrol
