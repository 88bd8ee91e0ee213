#pragma once

#include "drivers/ModelDescription.h"

#include <string>

class IdManager;

namespace sensorcontrol {

/// When a value is sent, for people: "only while ExposalMode is 2"; empty: always.
std::string describe(const Condition& condition, const ModelDescription& model);

/// The one gate of every get and set of every model: status, the base class's ids, look-up, range, condition, frame,
/// failure text, wait. Blocks for the module's exchanges and its wait. Any thread may use it.
class ParameterTable {
public:
    /// Registers the ids of all rows.
    static void registerIds(IdManager& ids, const ModelDescription& model);

    /// 1, 0, or the model's result for an id that it does not serve.
    static int set(ISensorController& controller, const ModelDescription& model, int id, int value);
    static int get(ISensorController& controller, const ModelDescription& model, int id, int& value);

    /// The factory value of an id; 0 without one.
    static int factoryValue(const ModelDescription& model, int id, int& value);

    /// The setter of a row alone, for settings that one parameter sends again for another: range, condition and frame
    /// without failure text or wait. 1 or 0.
    static int apply(ISensorController& controller, const ModelDescription& model, int id, int value);

    /// Writes a text of a table, with at most one %d, to the error log.
    static void log(ISensorController& controller, const char* text, int value);

private:
    static int apply(ISensorController& controller, const ModelDescription& model, const ParameterRow& row, int value);
};

} // namespace sensorcontrol
