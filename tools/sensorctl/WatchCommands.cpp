#include "Commands.h"
#include "DayNightModes.h"
#include "Failure.h"
#include "InputLines.h"
#include "Interrupt.h"
#include "Output.h"
#include "Session.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <sstream>

namespace sensorctl {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds PollSpan{250};
/// The answer to the last inquiry of a bring-up is still in the port: the first readings may stumble over it.
constexpr int FirstReadings = 12;

const char* stateText(int status) { return status == 1 ? "day" : "night"; }

/// The state, also where readings fail at first; throws the last Failure.
int settledState(Session& session) {
    for (int reading = 1;; ++reading) {
        try {
            return session.dayNightStatus();
        } catch (const Failure&) {
            if (reading == FirstReadings || !Interrupt::sleep(PollSpan))
                throw;
        }
    }
}

milliseconds toSpan(double seconds) {
    return seconds <= 0 ? InputLines::Forever : milliseconds(std::llround(seconds * 1000));
}

/// Runs block commands from standard input until the time comes; without a block it waits.
class BlockInput {
public:
    BlockInput(Output& output, Session& session) : m_Output(output), m_pConsole(session.console()) {}

    /// False when the user wants to end.
    bool waitUntil(Clock::time_point end);

private:
    void execute(const std::string& line);

    Output& m_Output;
    const std::unique_ptr<ModuleConsole> m_pConsole;
    InputLines m_Input;
    bool m_bOpen = true;
};

bool BlockInput::waitUntil(Clock::time_point end) {
    while (!Interrupt::isRequested()) {
        const auto rest = std::chrono::ceil<milliseconds>(end - Clock::now());
        if (rest <= milliseconds(0))
            return true;
        std::string line;
        if (m_pConsole == nullptr || !m_bOpen)
            Interrupt::sleep(rest);
        else if (const InputLines::Result result = m_Input.next(line, rest); result == InputLines::Result::Line)
            execute(line);
        else if (result == InputLines::Result::End)
            m_bOpen = false;
    }
    return false;
}

void BlockInput::execute(const std::string& line) {
    std::istringstream stream(line);
    std::string command;
    if (!(stream >> command))
        return;
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    try {
        if (!m_pConsole->knows(command))
            throw Failure(Usage, '"' + command + "\" is no command of the simulated module",
                          {"there are:\n" + m_pConsole->help()});
        m_pConsole->execute(command, words);
    } catch (const Failure& failure) {
        m_Output.report(failure);
    }
}

void recordChange(Output& output, Clock::duration time, const std::string& what, const nlohmann::ordered_json& value) {
    const double seconds = std::max(0.0, std::round(std::chrono::duration<double>(time).count() * 1000) / 1000);
    char text[32];
    std::snprintf(text, sizeof text, "%.3f ", seconds);
    nlohmann::ordered_json object;
    object["seconds"] = seconds;
    object["what"] = what;
    object["value"] = value;
    output.record(text + what + ' ' + (value.is_string() ? value.get<std::string>() : value.dump()), object);
}

void recordEvent(Output& output, Clock::time_point start, const ControllerEvents::Event& event) {
    switch (event.kind) {
    case ControllerEvents::Kind::DayNight:
        recordChange(output, event.when - start, "daynight", stateText(event.value));
        break;
    case ControllerEvents::Kind::Scheme:
        recordChange(output, event.when - start, "scheme", event.value);
        break;
    case ControllerEvents::Kind::Port:
        recordChange(output, event.when - start, "port", event.value != 0 ? "back" : "lost");
        break;
    }
}

} // namespace

void setDayNight(Session& session, const std::string& mode) {
    const DayNightModes modes(session.parameters());
    if (modes.parameter() == nullptr)
        throw Failure(Usage, "daynight: " + session.parameters().className() + " has no parameter for it",
                      {"try: sensorctl list, for one of the module's own"});
    const std::optional<int> value = modes.valueOf(mode);
    if (!value)
        throw Failure(Usage, "daynight: \"" + mode + "\" is no mode", {"there are: " + modes.list()});
    const OperationReport report = session.set({{modes.parameter()->id, *value}});
    for (const OperationReport::Parameter& parameter : report.parameters)
        if (!isTaken(parameter))
            throw session.explain(report, parameter);
}

void showDayNight(Output& output, Session& session) {
    const DayNightModes modes(session.parameters());
    nlohmann::ordered_json object;
    object["state"] = stateText(settledState(session));
    object["mode"] = nullptr;
    std::string name = "-";
    if (modes.parameter() != nullptr) {
        const int mode = session.readValue(*modes.parameter());
        name = modes.modeOf(mode);
        if (name.empty())
            name = std::to_string(mode);
        object["mode"] = name;
    }
    output.record("daynight " + object["state"].get<std::string>() + " mode " + name, object);
}

int dayNight(Output& output, const TargetOptions& target, const DayNightOptions& options) {
    target.check(true);
    if (!options.ambient.empty() && !target.isSimulated())
        throw Failure(Usage, "--ambient drives a simulated block only", {"try: --simulated"});
    if (options.waitSeconds < 0)
        throw Failure(Usage, "--wait: a span is not negative");
    Session session(output, target);
    session.bringUp();
    const int before = options.waitSeconds > 0 ? settledState(session) : -1;
    if (!options.mode.empty())
        setDayNight(session, options.mode);
    if (!options.ambient.empty())
        session.console()->execute(options.ambient, {});
    if (options.waitSeconds > 0) {
        const auto end = Clock::now() + toSpan(options.waitSeconds);
        while (settledState(session) == before) {
            if (Clock::now() >= end)
                throw Failure(NoAnswer,
                              std::string("day/night is still ") + stateText(before) + " after the time waited",
                              {"try: a longer --wait; the mode (sensorctl daynight) may forbid a switch"});
            if (!Interrupt::sleep(PollSpan))
                return Interrupted;
        }
    }
    showDayNight(output, session);
    return Done;
}

int watch(Output& output, const TargetOptions& target, double seconds) {
    target.check(true);
    Session session(output, target);
    session.bringUp();
    BlockInput input(output, session);
    const auto start = Clock::now();
    const auto end = start + toSpan(seconds);
    std::map<int, int> values = session.values();
    std::map<std::string, double> readings;
    while (output.isWritable()) {
        for (const ControllerEvents::Event& event : session.takeEvents())
            recordEvent(output, start, event);
        for (const auto& [id, value] : session.values()) {
            const auto old = values.find(id);
            if (old == values.end() || old->second != value)
                recordChange(output, Clock::now() - start, session.parameters().nameOf(id), value);
            values[id] = value;
        }
        for (const auto& [name, value] : session.pipelineReadings()) {
            const auto [entry, isNew] = readings.try_emplace(name, value);
            if (isNew || entry->second != value)
                recordChange(output, Clock::now() - start, name, readingJson(value));
            entry->second = value;
        }
        const auto next = std::min(end, Clock::now() + PollSpan);
        if (!input.waitUntil(next) || next == end)
            break;
    }
    return Done;
}

} // namespace sensorctl
