#include "drivers/PortBringUp.h"

#include "host/ModuleConfigure.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>

// The recipes' texts are the models'.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"

namespace sensorcontrol {

namespace {

/// Says a text of a start where the model has it.
template <class... Values>
void say(ISensorController& controller, Message::Outlet outlet, const char* text, Values... values) {
    if (outlet == Message::Console) {
        std::printf(text, values...);
        std::puts("");
    } else {
        controller.ErrorPrintf(text, values...);
    }
}

} // namespace

ModuleKeys::ModuleKeys(ISensorController& controller, const ModuleConfigure& configure, Message::Outlet outlet)
    : m_Controller(controller), m_Configure(configure), m_Outlet(outlet) {}

int ModuleKeys::fail(const char* text) {
    say(m_Controller, m_Outlet, "%s", text);
    return 0;
}

int ModuleKeys::parseDetail() { return m_Detail.parse(m_Configure.getDetail()) ? 1 : fail("parse detail failed"); }

int ModuleKeys::parseParameters() {
    return m_Parameters.parse(m_Configure.getParameters()) ? 1 : fail("parse senseParameter failed");
}

int ModuleKeys::detail(const char* key, std::string& value, const char* failure) {
    return m_Detail.getValue(key, value) ? 1 : fail(failure);
}

int ModuleKeys::parameter(const char* key, std::string& value, const char* failure) {
    return m_Parameters.getValue(key, value) ? 1 : fail(failure);
}

int ModuleKeys::detailNumber(const char* key, int& value, const char* failure) {
    std::string text;
    const int isThere = detail(key, text, failure);
    value = toNumber(text);
    return isThere;
}

int ModuleKeys::optionalDetail(const char* key, std::string& value, const char* notice) {
    if (m_Detail.getValue(key, value))
        return 1;
    if (notice != nullptr)
        std::puts(notice);
    return 0;
}

int ModuleKeys::optionalDetailNumber(const char* key, int& value, const char* notice) {
    std::string text;
    if (!optionalDetail(key, text, notice))
        return 0;
    value = toNumber(text);
    return 1;
}

int parsePin(const std::string& text, int& group, int& pin, int& level) {
    return std::sscanf(text.c_str(), "%d,%d,%d", &group, &pin, &level);
}

int toNumber(const std::string& text) {
    const long number = std::strtol(text.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
}

int openPort(ISensorController& controller, IUARTController& port, const PortRecipe& recipe,
             const std::string& deviceName, const std::string& lineText, int& handle) {
    int baudRate = 0;
    int dataBits = 0;
    int stopBits = 0;
    int parity = 0;
    const int count = std::sscanf(lineText.c_str(), "%d,%d,%d,%d", &baudRate, &dataBits, &stopBits, &parity);
    if (count < 4) {
        say(controller, recipe.outlet, recipe.lineTextFailure, count);
        return 0;
    }
    if (recipe.startedAs != nullptr)
        std::printf("%s(%s) param is (%d,%d,%d,%d)\n", recipe.key, deviceName.c_str(), baudRate, dataBits, stopBits,
                    parity);
    handle = port.open(deviceName.c_str());
    if (handle < 0) {
        say(controller, recipe.outlet, recipe.openFailure, deviceName.c_str());
        return 0;
    }
    // The port takes parity before stop bits, the text has them the other way round.
    if (port.setParameter(handle, baudRate, dataBits, parity, stopBits))
        return 1;
    if (recipe.settingFailure != nullptr)
        say(controller, recipe.outlet, recipe.settingFailure, deviceName.c_str(), baudRate, dataBits, stopBits, parity);
    return 0;
}

} // namespace sensorcontrol
