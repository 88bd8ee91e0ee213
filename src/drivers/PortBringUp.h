#pragma once

#include "drivers/ModelDescription.h"
#include "host/ModuleParameterParser.h"

#include <string>

class ModuleConfigure;

namespace sensorcontrol {

/// The module's two strings while a controller comes up. Every step that fails says its text and gives 0.
class ModuleKeys {
public:
    /// Failures go to the error log or, where a model has it so, to the console.
    ModuleKeys(ISensorController& controller, const ModuleConfigure& configure, Message::Outlet outlet = Message::Log);

    int parseDetail();
    int parseParameters();

    /// The text of a key; a missing one logs `failure`.
    int detail(const char* key, std::string& value, const char* failure);
    int parameter(const char* key, std::string& value, const char* failure);
    /// The same as a decimal number; text that is none counts as 0.
    int detailNumber(const char* key, int& value, const char* failure);

    /// The same for keys that may be missing: that goes to the console only, if there is a notice, and leaves the value
    /// as it was.
    int optionalDetail(const char* key, std::string& value, const char* notice = nullptr);
    int optionalDetailNumber(const char* key, int& value, const char* notice);

private:
    int fail(const char* text);

    ISensorController& m_Controller;
    const ModuleConfigure& m_Configure;
    Message::Outlet m_Outlet;
    ModuleParameterParser m_Detail;
    ModuleParameterParser m_Parameters;
};

/// A pin and a level of it, from a text "group,pin,level": how many of the three there are.
int parsePin(const std::string& text, int& group, int& pin, int& level);

/// The number that a text begins with, 0 without one, cut to what an int holds.
int toNumber(const std::string& text);

/// Opens a serial device and sets its line from a text "baud,data bits,stop bits,parity". 1 and the handle, or 0.
int openPort(ISensorController& controller, IUARTController& port, const PortRecipe& recipe,
             const std::string& deviceName, const std::string& lineText, int& handle);

} // namespace sensorcontrol
