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

ModuleKeys::ModuleKeys(ISensorController& controller, const ModuleConfigure& configure)
    : m_Controller(controller), m_Configure(configure) {}

int ModuleKeys::parseDetail() {
    if (m_Detail.parse(m_Configure.getDetail()))
        return 1;
    m_Controller.ErrorPrintf("parse detail failed");
    return 0;
}

int ModuleKeys::parseParameters() {
    if (m_Parameters.parse(m_Configure.getParameters()))
        return 1;
    m_Controller.ErrorPrintf("parse senseParameter failed");
    return 0;
}

int ModuleKeys::detail(const char* key, std::string& value, const char* failure) {
    if (m_Detail.getValue(key, value))
        return 1;
    m_Controller.ErrorPrintf("%s", failure);
    return 0;
}

int ModuleKeys::parameter(const char* key, std::string& value, const char* failure) {
    if (m_Parameters.getValue(key, value))
        return 1;
    m_Controller.ErrorPrintf("%s", failure);
    return 0;
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
        controller.ErrorPrintf(recipe.lineTextFailure, count);
        return 0;
    }
    if (recipe.startedAs != nullptr)
        std::printf("%s(%s) param is (%d,%d,%d,%d)\n", recipe.key, deviceName.c_str(), baudRate, dataBits, stopBits,
                    parity);
    handle = port.open(deviceName.c_str());
    if (handle < 0) {
        controller.ErrorPrintf(recipe.openFailure, deviceName.c_str());
        return 0;
    }
    // The port takes parity before stop bits, the text has them the other way round.
    if (port.setParameter(handle, baudRate, dataBits, parity, stopBits))
        return 1;
    if (recipe.settingFailure != nullptr)
        controller.ErrorPrintf(recipe.settingFailure, deviceName.c_str(), baudRate, dataBits, stopBits, parity);
    return 0;
}

} // namespace sensorcontrol
