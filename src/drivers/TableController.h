#pragma once

#include "controller/ISensorController.h"

#include <span>
#include <string>

namespace sensorcontrol {

class ModuleKeys;
struct ModelDescription;
struct Resend;

/// A controller whose parameters stand in a table, on top of either base class.
template <class Base>
class SENSORCONTROL_API TableController : public Base {
public:
    ~TableController() override;

    int getMirrorValue(int& value) override;
    int setFocusMode(int mode) override;
    int getFocusMode(int& mode) override;
    int getDayNightMode(int& mode) override;
    int getParameterFromSensor(int id, int& value) override;
    int setParameterToSensor(int id, int value) override;

protected:
    /// The model must outlive the controller.
    TableController(int moduleType, const ModelDescription& model);

    /// The setter of another row, for what one setting sends again: without failure text and wait.
    SENSORCONTROL_LOCAL int apply(int id, int value);
    /// Sends again what a table says for a value.
    SENSORCONTROL_LOCAL int resend(std::span<const Resend> then, int value);

    /// The filter's pin from the text of "GPIO". 1, or 0 with the reason in the log.
    SENSORCONTROL_LOCAL int parseFilterPin(const std::string& text);
    /// "isNewInfrared", and the pins of the lights and of the light sensor. The console hears of a missing one.
    SENSORCONTROL_LOCAL void readInfraredKeys(ModuleKeys& keys);

    const ModelDescription& m_Model;
};

} // namespace sensorcontrol
