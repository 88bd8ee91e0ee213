#pragma once

#include "controller/ModelCatalogue.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace sensorctl {

/// The parameters of a module, by id and by name.
class Parameters {
public:
    /// The module exists.
    explicit Parameters(int moduleId);

    const std::string& className() const { return m_strClassName; }
    /// Ascending by id.
    const std::vector<sensorcontrol::ParameterInfo>& all() const { return m_All; }
    /// By number, or by name in any case. Throws Failure with Usage if there is none.
    const sensorcontrol::ParameterInfo& find(std::string_view idOrName) const;
    const sensorcontrol::ParameterInfo* findId(int id) const;
    std::string nameOf(int id) const;

    /// "Brightness=60 9=2" as values by id: ascending, the last of a repeated id stands. A command needs no value.
    /// Throws Failure with Usage.
    std::map<int, int> parseAssignments(const std::vector<std::string>& words) const;

    /// "0..100", "0,4,9", "any", "command".
    static std::string acceptsText(const sensorcontrol::ParameterInfo& parameter);
    /// "common", "especial", "set-only", "keep-default", "unsaved".
    static std::string kindText(const sensorcontrol::ParameterInfo& parameter);
    /// Remembered and thus readable.
    static bool hasValue(const sensorcontrol::ParameterInfo& parameter);

private:
    std::string m_strClassName;
    std::vector<sensorcontrol::ParameterInfo> m_All;
};

/// A parameter string "(1,50)(2,40)" as values by id; false if it is none.
bool parseParameterString(const std::string& text, std::map<int, int>& values);

} // namespace sensorctl
