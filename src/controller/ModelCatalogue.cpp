#include "controller/ModelCatalogue.h"

#include "controller/BaseParameters.h"

#include <algorithm>

namespace sensorcontrol {

namespace {

const CatalogueRow* find(int moduleId) {
    const auto row = std::ranges::lower_bound(CatalogueRows, moduleId, {}, &CatalogueRow::moduleId);
    return row != CatalogueRows.end() && row->moduleId == moduleId ? &*row : nullptr;
}

} // namespace

std::vector<int> listModuleIds() {
    std::vector<int> ids;
    for (const CatalogueRow& row : CatalogueRows)
        if (row.create != nullptr)
            ids.push_back(row.moduleId);
    return ids;
}

std::optional<ModelInfo> describeModel(int moduleId) {
    const CatalogueRow* row = find(moduleId);
    if (row == nullptr || row->describe == nullptr)
        return std::nullopt;
    ModelInfo info = row->describe(moduleId);
    for (const BaseParameter& parameter : BaseParameters)
        info.parameters.push_back({parameter.id, parameter.name, {}, false, IdManager::Common, parameter.factory, {}});
    std::ranges::sort(info.parameters, {}, &ParameterInfo::id);
    return info;
}

ControllerTraits traitsOf(int moduleId) {
    const CatalogueRow* row = find(moduleId);
    return row != nullptr ? row->traits : ControllerTraits{};
}

ISensorController* createController(int moduleId) {
    const CatalogueRow* row = find(moduleId);
    return row != nullptr && row->create != nullptr ? row->create(moduleId) : nullptr;
}

} // namespace sensorcontrol
