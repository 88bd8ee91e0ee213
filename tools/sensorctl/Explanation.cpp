#include "Explanation.h"

#include "FrameDecoder.h"
#include "TraceLine.h"

#include <algorithm>
#include <memory>

namespace sensorctl {

using Answer = OperationReport::Answer;
using Outcome = OperationReport::Outcome;

namespace {

constexpr std::size_t ShownFrames = 3; // a command with its retries
constexpr std::size_t ShownReasons = 6;

void append(std::vector<std::string>& lines, const std::vector<std::string>& more) {
    lines.insert(lines.end(), more.begin(), more.end());
}

std::span<const OperationReport::Frame> framesOf(const OperationReport& report,
                                                 const OperationReport::Parameter& parameter) {
    return std::span(report.frames).subspan(parameter.firstFrame, parameter.frameCount);
}

std::string settingText(const std::string& name, const OperationReport::Parameter& parameter) {
    return name + '=' + std::to_string(parameter.value) + " (id " + std::to_string(parameter.id) + ')';
}

} // namespace

std::string resultText(Outcome outcome) {
    std::string text = toText(outcome);
    std::replace(text.begin(), text.end(), ' ', '-');
    return text;
}

bool isTaken(const OperationReport::Parameter& parameter) {
    return parameter.outcome == Outcome::Unchanged || parameter.outcome == Outcome::Applied ||
           parameter.outcome == Outcome::Kept;
}

std::string reasonOf(const OperationReport::Parameter& parameter) {
    return parameter.reason == toText(parameter.outcome) ? "" : parameter.reason;
}

std::string outcomeText(const OperationReport::Parameter& parameter) {
    const std::string reason = reasonOf(parameter);
    return toText(parameter.outcome) + (reason.empty() ? "" : ", " + reason);
}

std::vector<std::string> reasonsOf(const OperationReport& report, const Parameters& parameters) {
    std::vector<std::string> reasons;
    for (const OperationReport::Parameter& parameter : report.parameters)
        if (!isTaken(parameter))
            reasons.push_back("reason: " + settingText(parameters.nameOf(parameter.id), parameter) + ' ' +
                              outcomeText(parameter));
    if (reasons.empty())
        for (const std::string& message : report.messages)
            reasons.push_back("reason: " + message);
    if (reasons.size() > ShownReasons) {
        const std::size_t rest = reasons.size() - ShownReasons;
        reasons.resize(ShownReasons);
        reasons.push_back("and " + std::to_string(rest) + " more");
    }
    return reasons;
}

/// What became of a command or of an operation.
struct Explanation::Verdict {
    ExitCode code;
    const char* text;
    std::string hint; ///< stands for the operation's own; empty: that one
};

Explanation::Verdict Explanation::verdictOf(Answer answer, const Verdict& unsent) const {
    switch (answer) {
    case Answer::None:
    case Answer::Cut:
        return {NoAnswer, "no answer from the block", silenceHint()};
    case Answer::PortFailed:
        return {Trouble, "the port failed", "try: is the adapter still plugged in?"};
    case Answer::Refused:
        return {Refused, "refused", ""};
    default:
        return unsent;
    }
}

Explanation::Verdict Explanation::verdictOf(const OperationReport& report,
                                            const OperationReport::Parameter& parameter) const {
    const Verdict verdict{Refused, toText(parameter.outcome), ""};
    return parameter.outcome == Outcome::NoAnswer ? verdictOf(framesOf(report, parameter).back().answer, verdict)
                                                  : verdict;
}

std::vector<std::string> Explanation::wire(std::span<const OperationReport::Frame> frames) const {
    std::vector<std::string> lines;
    const std::unique_ptr<FrameDecoder> decoder = makeDecoder(m_Options.moduleId);
    const auto add = [&](TraceLine::Direction direction, const std::string& bytes, const char* meaning) {
        TraceLine line;
        line.direction = direction;
        line.bytes.assign(bytes.begin(), bytes.end());
        line.meaning = meaning;
        if (decoder != nullptr)
            line.decode(*decoder);
        lines.push_back("wire: " + line.wireText());
    };
    for (const OperationReport::Frame& frame : frames.last(std::min(frames.size(), ShownFrames))) {
        add(TraceLine::Direction::Sent, frame.bytes, "");
        if (frame.answer != Answer::NotRead)
            add(TraceLine::Direction::Received, frame.reply,
                frame.answer == Answer::PortFailed ? "the port failed" : "nothing came in time");
    }
    return lines;
}

std::string Explanation::silenceHint() const {
    return "try: cable and power of the block, a longer wait after power-up, another --line (now it is " +
           m_Options.lineText() + ')';
}

Failure Explanation::ofParameter(const OperationReport& report, const OperationReport::Parameter& parameter) const {
    const sensorcontrol::ParameterInfo& info = *m_Parameters.findId(parameter.id);
    const Verdict verdict = verdictOf(report, parameter);
    std::vector<std::string> details;
    if (const std::string reason = reasonOf(parameter); !reason.empty() && reason != verdict.text)
        details.push_back("reason: " + reason);
    append(details, wire(framesOf(report, parameter)));
    if (parameter.frameCount == 0)
        details.emplace_back("wire: nothing was sent");
    details.push_back(verdict.hint.empty() ? "accepted: " + Parameters::acceptsText(info) : verdict.hint);
    return {verdict.code, "set " + settingText(info.name, parameter) + ": " + verdict.text, details};
}

Failure Explanation::ofOperation(const std::string& what, const OperationReport& report, ExitCode unsentCode,
                                 const std::string& hint) const {
    Verdict verdict{unsentCode, unsentCode == Refused ? "refused" : "failed", ""};
    std::span<const OperationReport::Frame> frames = report.frames;
    const auto culprit = std::find_if_not(report.parameters.begin(), report.parameters.end(), isTaken);
    if (culprit != report.parameters.end()) {
        verdict = verdictOf(report, *culprit);
        frames = framesOf(report, *culprit);
    } else if (!frames.empty()) {
        verdict = verdictOf(frames.back().answer, verdict);
    }
    std::vector<std::string> details = reasonsOf(report, m_Parameters);
    append(details, wire(frames));
    if (const std::string& line = verdict.hint.empty() ? hint : verdict.hint; !line.empty())
        details.push_back(line);
    return {verdict.code, what + ": " + verdict.text, details};
}

} // namespace sensorctl
