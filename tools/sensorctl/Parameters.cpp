#include "Parameters.h"

#include "Failure.h"
#include "host/SensorParameterParser.h"
#include "params/IdManager.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include <strings.h>

namespace sensorctl {

namespace {

using sensorcontrol::ParameterInfo;

std::optional<int> numberOf(std::string_view text) {
    int value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

std::string noNumber(const std::string& text, const std::string& word) {
    return '"' + text + "\" in \"" + word + "\" is no whole number";
}

} // namespace

Parameters::Parameters(int moduleId) {
    sensorcontrol::ModelInfo model = *sensorcontrol::describeModel(moduleId);
    m_strClassName = model.className;
    m_All = std::move(model.parameters);
}

const ParameterInfo* Parameters::findId(int id) const {
    const auto found =
        std::find_if(m_All.begin(), m_All.end(), [id](const ParameterInfo& parameter) { return parameter.id == id; });
    return found != m_All.end() ? &*found : nullptr;
}

const ParameterInfo& Parameters::find(std::string_view idOrName) const {
    const std::string name(idOrName);
    if (const std::optional<int> id = numberOf(idOrName)) {
        if (const ParameterInfo* const found = findId(*id))
            return *found;
        throw Failure(Usage, m_strClassName + " has no parameter " + name, {"try: sensorctl list"});
    }
    const auto found = std::find_if(m_All.begin(), m_All.end(), [&](const ParameterInfo& parameter) {
        return ::strcasecmp(parameter.name.c_str(), name.c_str()) == 0;
    });
    if (found != m_All.end())
        return *found;
    std::vector<std::string> details;
    std::string similar;
    for (const ParameterInfo& parameter : m_All)
        if (!name.empty() &&
            ::strncasecmp(parameter.name.c_str(), name.c_str(), std::min<std::size_t>(3, name.size())) == 0)
            similar += (similar.empty() ? "" : ", ") + parameter.name;
    if (!similar.empty())
        details.push_back("similar: " + similar);
    details.emplace_back("try: sensorctl list");
    throw Failure(Usage, m_strClassName + " has no parameter \"" + name + '"', details);
}

std::string Parameters::nameOf(int id) const {
    const ParameterInfo* const parameter = findId(id);
    return parameter != nullptr ? parameter->name : std::to_string(id);
}

std::map<int, int> Parameters::parseAssignments(const std::vector<std::string>& words) const {
    std::map<int, int> values;
    for (const std::string& word : words) {
        const std::size_t equals = word.find('=');
        const ParameterInfo& parameter = find(std::string_view(word).substr(0, equals));
        if (equals == std::string::npos && !parameter.isCommand)
            throw Failure(Usage, '"' + word + "\" has no value", {"try: " + word + "=VALUE"});
        const std::string text = equals == std::string::npos ? "0" : word.substr(equals + 1);
        const std::optional<int> value = numberOf(text);
        if (!value)
            throw Failure(Usage, noNumber(text, word), {"accepted: " + acceptsText(parameter)});
        values[parameter.id] = *value;
    }
    return values;
}

std::string Parameters::acceptsText(const ParameterInfo& parameter) {
    if (parameter.isCommand)
        return "command";
    std::string text;
    for (const sensorcontrol::ValueRange& range : parameter.accepts) {
        text += (text.empty() ? "" : ",") + std::to_string(range.low);
        if (range.high != range.low)
            text += ".." + std::to_string(range.high);
    }
    return text.empty() ? "any" : text;
}

std::string Parameters::kindText(const ParameterInfo& parameter) {
    switch (parameter.kind) {
    case IdManager::Common:
        return "common";
    case IdManager::Especial:
        return "especial";
    case IdManager::SetOnly:
        return "set-only";
    case IdManager::KeepDefault:
        return "keep-default";
    default:
        return "unsaved";
    }
}

bool Parameters::hasValue(const ParameterInfo& parameter) {
    return parameter.kind == IdManager::Common || parameter.kind == IdManager::Especial ||
           parameter.kind == IdManager::KeepDefault;
}

bool parseParameterString(const std::string& text, std::map<int, int>& values) {
    return SensorParameterParser::parseSensorParameter(text, values) != 0;
}

} // namespace sensorctl
