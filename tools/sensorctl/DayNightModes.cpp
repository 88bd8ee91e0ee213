#include "DayNightModes.h"

#include <algorithm>
#include <array>

namespace sensorctl {

namespace {

struct Row {
    std::string_view mode;
    std::optional<int> fromZero; ///< where "auto" is 0
    std::optional<int> fromOne;  ///< where "auto" is 1
};

constexpr auto Rows =
    std::to_array<Row>({{"auto", 0, 1}, {"day", 1, 3}, {"night", 2, 4}, {"clock", 3, 5}, {"module", 4, std::nullopt}});

std::optional<int> valueIn(const Row& row, const sensorcontrol::ParameterInfo& parameter) {
    return parameter.factoryValue == Rows.front().fromZero  ? row.fromZero
           : parameter.factoryValue == Rows.front().fromOne ? row.fromOne
                                                            : std::nullopt;
}

} // namespace

DayNightModes::DayNightModes(const Parameters& parameters) {
    for (const sensorcontrol::ParameterInfo& parameter : parameters.all())
        if (parameter.name == "DayNightMode")
            m_pParameter = &parameter;
}

std::optional<int> DayNightModes::valueOf(std::string_view mode) const {
    const auto row = std::find_if(Rows.begin(), Rows.end(), [&](const Row& other) { return other.mode == mode; });
    return row != Rows.end() && m_pParameter != nullptr ? valueIn(*row, *m_pParameter) : std::nullopt;
}

std::string_view DayNightModes::modeOf(int value) const {
    for (const Row& row : Rows)
        if (m_pParameter != nullptr && valueIn(row, *m_pParameter) == value)
            return row.mode;
    return {};
}

std::string DayNightModes::list() const {
    std::string text;
    for (const Row& row : Rows)
        if (valueOf(row.mode))
            text.append(text.empty() ? "" : ", ").append(row.mode);
    return text;
}

} // namespace sensorctl
