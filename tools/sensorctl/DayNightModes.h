#pragma once

#include "Parameters.h"

#include <optional>
#include <string>
#include <string_view>

namespace sensorctl {

/// Who decides on day and night, as people call it: "auto", "day", "night", "clock", "module". A module takes them as
/// numbers of a parameter, in one of two ways; every module comes with "auto", so the parameter's factory value tells
/// which.
class DayNightModes {
public:
    /// The parameters outlive it.
    explicit DayNightModes(const Parameters& parameters);

    /// The parameter that takes them; null for a module that keeps its day and night to itself.
    const sensorcontrol::ParameterInfo* parameter() const { return m_pParameter; }
    /// Nothing for a mode that the module does not have.
    std::optional<int> valueOf(std::string_view mode) const;
    /// Empty for a value that stands for none.
    std::string_view modeOf(int value) const;
    /// "auto, day, night".
    std::string list() const;

private:
    const sensorcontrol::ParameterInfo* m_pParameter = nullptr;
};

} // namespace sensorctl
