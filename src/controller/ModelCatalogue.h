#pragma once

#include "controller/ControllerTraits.h"
#include "controller/SchemeParameters.h"
#include "host/Export.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

class ISensorController;

namespace sensorcontrol {

/// A range of accepted values, both ends included.
struct ValueRange {
    int low;
    int high;
};

/// What is known of one parameter of a model.
struct ParameterInfo {
    int id;
    std::string name;
    /// The accepted values, ascending. None: every value is taken.
    std::vector<ValueRange> accepts;
    /// The value is not looked at: the parameter is a command.
    bool isCommand;
    /// IdManager::Kind; 0 for a parameter that is served but never remembered or saved.
    int kind;
    /// Absent if it is read from the module, or if the parameter cannot be read.
    std::optional<int> factoryValue;
    /// When the value is sent, for example "only while ExposalMode is 2"; empty: always.
    std::string condition;
};

/// What is known of one module id.
struct ModelInfo {
    int moduleId;
    std::string className;
    bool hasPort; ///< a camera block on a serial port; otherwise the on-chip pipeline
    /// Ascending by id, those that every module has (scheme::ParameterId) included.
    std::vector<ParameterInfo> parameters;
};

/// The module ids that name a module, ascending.
SENSORCONTROL_API std::vector<int> listModuleIds();

/// The model of a module id; nothing for an id that names no module.
SENSORCONTROL_API std::optional<ModelInfo> describeModel(int moduleId);

/// What the framework does otherwise for a module id.
ControllerTraits traitsOf(int moduleId);

/// A new controller, null for an id that names no module. Use SenseControllerFactory.
ISensorController* createController(int moduleId);

/// One module id as the drivers' list has it.
struct CatalogueRow {
    int moduleId;
    ControllerTraits traits = {};
    ISensorController* (*create)(int moduleId) = nullptr; ///< null: known by its traits alone
    ModelInfo (*describe)(int moduleId) = nullptr;
};

/// The drivers' list, ascending: data that the layer above lays down, so that nothing here calls up.
extern const std::span<const CatalogueRow> CatalogueRows;

} // namespace sensorcontrol
