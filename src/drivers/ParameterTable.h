#pragma once

#include "drivers/ModelDescription.h"

#include <span>
#include <string>

class IdManager;

namespace sensorcontrol {

/// When a value is sent, for people: "only while ExposalMode is 2"; empty: always.
std::string describe(const Conditions& conditions, const ModelDescription& model);

/// The one gate of every get and set of every model: status, the base class's ids, look-up, range, conditions, frames,
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

    /// The setter of a row alone, for settings that one parameter sends again for another: range, conditions and
    /// frames without failure text or wait. 1 or 0.
    static int apply(ISensorController& controller, const ModelDescription& model, int id, int value);

    /// Sends again what `then` says for a value: reads the stored values of all its parameters, then applies them in
    /// order; the first failure ends it. 1 or 0.
    static int resend(ISensorController& controller, const ModelDescription& model, std::span<const Resend> then,
                      int value);

    /// Sends the frames that steps have for a value, in order; the first failure ends it. Their conditions are all
    /// looked at before the first one. 1 or 0.
    static int sendSteps(ISensorController& controller, const ModelDescription& model, std::span<const Step> steps,
                         int value);

    /// Keeps a value under an id in both caches, as if it had been set.
    static void keep(ISensorController& controller, int id, int value);

    /// Says a text of a table where it belongs.
    static void say(ISensorController& controller, const Message& message, int value);

private:
    static int apply(ISensorController& controller, const ModelDescription& model, const ParameterRow& row, int value);
    static int transmit(ISensorController& controller, const ModelDescription& model, const ParameterRow& row,
                        int value, std::span<const int> stored);
    static int read(ISensorController& controller, const ModelDescription& model, const Reading& reading, int& value);
};

} // namespace sensorcontrol
