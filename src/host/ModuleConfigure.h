#pragma once

#include <string>
#include <utility>

/// What the device says of its camera module: its id and two texts of key=value pairs (ModuleParameterParser).
class ModuleConfigure {
public:
    ModuleConfigure() = default;
    ModuleConfigure(int moduleId, std::string detail, std::string parameters)
        : m_nModuleId(moduleId), m_strDetail(std::move(detail)), m_strParameters(std::move(parameters)) {}

    int getModuleId() const { return m_nModuleId; }
    void setModuleId(int moduleId) { m_nModuleId = moduleId; }

    /// What the hardware is: "RS485" (the port's device), "isInfrared", "generation", "GPIO" and so on.
    const std::string& getDetail() const { return m_strDetail; }
    void setDetail(const std::string& detail) { m_strDetail = detail; }

    /// How to reach it: "RS485" (the line settings), "GUIConfig", "Prefix".
    const std::string& getParameters() const { return m_strParameters; }
    void setParameters(const std::string& parameters) { m_strParameters = parameters; }

private:
    int m_nModuleId = 0;
    std::string m_strDetail;
    std::string m_strParameters;
};
