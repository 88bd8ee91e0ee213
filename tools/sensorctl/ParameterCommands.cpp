#include "Commands.h"
#include "Failure.h"
#include "Output.h"
#include "Session.h"
#include "simulator/BlockRegistry.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <nlohmann/json.hpp>

namespace sensorctl {

namespace {

using sensorcontrol::ParameterInfo;
using Json = nlohmann::ordered_json;

/// A cell of a line; a negative width aligns to the left, 0 takes what it needs.
struct Cell {
    std::string text;
    int width = 0;
};

std::string lineOf(std::initializer_list<Cell> cells) {
    std::string line;
    for (const Cell& cell : cells) {
        const std::size_t width = static_cast<std::size_t>(std::abs(cell.width));
        const std::string padding(width - std::min(width, cell.text.size()), ' ');
        line += (line.empty() ? "" : "  ") + (cell.width < 0 ? cell.text + padding : padding + cell.text);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

std::string numberText(const std::optional<int>& value) { return value ? std::to_string(*value) : "-"; }

Json numberJson(const std::optional<int>& value) { return value ? Json(*value) : Json(); }

/// The scheme in force, where there is a choice; the values that a scheme has of its own belong to it.
class SchemeColumn {
public:
    SchemeColumn() = default;
    explicit SchemeColumn(Session& session) {
        const SchemeDesk desk = session.schemes();
        m_bHasChoice = desk.count() > 1;
        if (desk.inForce() >= 0)
            m_Scheme = desk.inForce();
    }

    std::optional<int> of(const ParameterInfo& parameter) const {
        return parameter.kind == IdManager::Common ? m_Scheme : std::nullopt;
    }
    std::string text(const ParameterInfo& parameter) const {
        const std::optional<int> scheme = of(parameter);
        return m_bHasChoice && scheme ? "scheme " + std::to_string(*scheme) : std::string();
    }

private:
    std::optional<int> m_Scheme;
    bool m_bHasChoice = false;
};

void recordValue(Output& output, const SchemeColumn& scheme, const ParameterInfo& parameter, int value) {
    Json object;
    object["id"] = parameter.id;
    object["name"] = parameter.name;
    object["value"] = value;
    object["scheme"] = numberJson(scheme.of(parameter));
    std::string text = std::to_string(parameter.id) + ' ' + parameter.name + ' ' + std::to_string(value);
    if (const std::string column = scheme.text(parameter); !column.empty())
        text += ' ' + column;
    output.record(text, object);
}

void recordSetting(Output& output, const ParameterInfo& parameter, int value, const std::string& result,
                   const std::string& reason) {
    Json object;
    object["id"] = parameter.id;
    object["name"] = parameter.name;
    object["value"] = value;
    object["result"] = result;
    object["reason"] = reason;
    output.record(std::to_string(parameter.id) + ' ' + parameter.name + ' ' + std::to_string(value) + ' ' + result +
                      (reason.empty() ? "" : ": " + reason),
                  object);
}

std::string listLine(const std::string& id, const std::string& name, const std::string& accepts,
                     const std::string& factory, const std::string& kind, const std::string& value,
                     const std::string& scheme, const std::string& condition) {
    std::string rest = scheme;
    if (!scheme.empty() && !condition.empty())
        rest += "  ";
    rest += condition;
    return lineOf({{id, 4}, {name, -16}, {accepts, -8}, {factory, 7}, {kind, -12}, {value, 5}, {rest}});
}

std::string moduleLine(const std::string& id, const std::string& name, const std::string& count,
                       const std::string& simulated) {
    return lineOf({{id, 2}, {name, -28}, {count, 10}, {simulated}});
}

void recordParameter(Output& output, const SchemeColumn& scheme, const ParameterInfo& parameter,
                     const std::optional<int>& value) {
    Json object;
    object["id"] = parameter.id;
    object["name"] = parameter.name;
    object["accepts"] = Json::array();
    for (const sensorcontrol::ValueRange& range : parameter.accepts)
        object["accepts"].push_back({range.low, range.high});
    object["command"] = parameter.isCommand;
    object["factory"] = numberJson(parameter.factoryValue);
    object["kind"] = Parameters::kindText(parameter);
    object["value"] = numberJson(value);
    object["scheme"] = numberJson(scheme.of(parameter));
    object["condition"] = parameter.condition;
    output.record(listLine(std::to_string(parameter.id), parameter.name, Parameters::acceptsText(parameter),
                           numberText(parameter.factoryValue), Parameters::kindText(parameter), numberText(value),
                           scheme.text(parameter), parameter.condition),
                  object);
}

} // namespace

int listModules(Output& output) {
    output.heading(moduleLine("id", "class", "parameters", "simulated block"));
    for (const int id : sensorcontrol::listModuleIds()) {
        const Parameters parameters(id);
        const auto blocks = camerasim::blockEntries();
        const auto block = std::find_if(blocks.begin(), blocks.end(),
                                        [id](const camerasim::BlockEntry& entry) { return entry.moduleId == id; });
        std::string name = block != blocks.end() ? std::string(block->name) : "-";
        if (!sensorcontrol::describeModel(id)->hasPort)
            name = "pipeline"; // there is no other in this process
        Json object;
        object["id"] = id;
        object["class"] = parameters.className();
        object["parameters"] = parameters.all().size();
        object["simulated"] = name != "-" ? Json(name) : Json();
        output.record(
            moduleLine(std::to_string(id), parameters.className(), std::to_string(parameters.all().size()), name),
            object);
    }
    return Done;
}

int listParameters(Output& output, const TargetOptions& target, bool catalogueOnly) {
    target.check(false);
    std::map<int, int> values;
    std::unique_ptr<Session> session;
    SchemeColumn scheme;
    if (target.hasPort() && !catalogueOnly) {
        session = std::make_unique<Session>(output, target);
        session->bringUp();
        values = session->values();
        scheme = SchemeColumn(*session);
    }
    output.heading(listLine("id", "name", "accepts", "factory", "kind", "value", "", "condition"));
    const Parameters parameters(target.moduleId);
    for (const ParameterInfo& parameter : parameters.all()) {
        const auto held = values.find(parameter.id);
        recordParameter(output, scheme, parameter, held != values.end() ? std::optional(held->second) : std::nullopt);
    }
    return Done;
}

void showParameters(Output& output, Session& session, const std::vector<std::string>& names) {
    const SchemeColumn scheme(session);
    if (names.empty()) {
        for (const auto& [id, value] : session.values())
            recordValue(output, scheme, *session.parameters().findId(id), value);
        return;
    }
    std::vector<const ParameterInfo*> wanted;
    wanted.reserve(names.size());
    for (const std::string& name : names)
        wanted.push_back(&session.parameters().find(name));
    for (const ParameterInfo* const parameter : wanted)
        recordValue(output, scheme, *parameter, session.readValue(*parameter));
}

void showAllParameters(Output& output, Session& session) {
    const SchemeColumn scheme(session);
    for (const auto& [id, value] : session.readAll())
        if (const ParameterInfo* const parameter = session.parameters().findId(id))
            recordValue(output, scheme, *parameter, value);
}

int applyParameters(Output& output, Session& session, const std::vector<std::string>& assignments, bool isRecorded) {
    int code = Done;
    const OperationReport report = session.set(session.parameters().parseAssignments(assignments));
    for (const OperationReport::Parameter& parameter : report.parameters) {
        if (isRecorded)
            recordSetting(output, *session.parameters().findId(parameter.id), parameter.value,
                          resultText(parameter.outcome), reasonOf(parameter));
        if (isTaken(parameter))
            continue;
        const Failure failure = session.explain(report, parameter);
        output.report(failure);
        code = code == Done ? failure.code() : code;
    }
    return code;
}

void flushParameters(Output& output, Session& session) {
    const std::string path = session.flush();
    Json object;
    object["flushed"] = path;
    output.record("flushed " + path, object);
}

void resetParameters(Output& output, Session& session, bool toLast) {
    const std::map<int, int> before = session.values();
    toLast ? session.resetToLast() : session.reset();
    for (const auto& [id, value] : session.values()) {
        const auto old = before.find(id);
        if (old == before.end() || old->second != value)
            recordSetting(output, *session.parameters().findId(id), value, "reset", "");
    }
}

int getParameters(Output& output, const TargetOptions& target, const std::vector<std::string>& names) {
    target.check(true);
    const Parameters parameters(target.moduleId);
    for (const std::string& name : names)
        parameters.find(name);
    Session session(output, target);
    session.bringUp();
    showParameters(output, session, names);
    return Done;
}

int setParameters(Output& output, const TargetOptions& target, const std::vector<std::string>& assignments,
                  bool flush) {
    target.check(true);
    // A mistake in the last word must not cost a bring-up, nor leave the first one applied.
    Parameters(target.moduleId).parseAssignments(assignments);
    Session session(output, target);
    session.bringUp();
    const int code = applyParameters(output, session, assignments);
    if (flush)
        flushParameters(output, session);
    return code;
}

int resetParameters(Output& output, const TargetOptions& target, bool toLast) {
    target.check(true);
    Session session(output, target);
    session.bringUp();
    resetParameters(output, session, toLast);
    return Done;
}

} // namespace sensorctl
