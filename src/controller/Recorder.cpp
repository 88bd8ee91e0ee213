#include "controller/Recorder.h"

#include <cstdio>

namespace sensorcontrol {

namespace {

using Outcome = OperationReport::Outcome;
using Answer = OperationReport::Answer;
using recorder::ParameterInHand;

constinit thread_local OperationReport* t_pReport = nullptr;
constinit thread_local ParameterInHand* t_pInHand = nullptr;
constinit thread_local int t_nLogOnlyDepth = 0;

std::string toHex(std::span<const char> bytes) {
    std::string text;
    for (const char byte : bytes) {
        char item[4];
        std::snprintf(item, sizeof item, text.empty() ? "%02X" : " %02X", static_cast<unsigned char>(byte));
        text += item;
    }
    return text;
}

} // namespace

const char* toText(Outcome outcome) {
    switch (outcome) {
    case Outcome::Unchanged:
        return "unchanged";
    case Outcome::Applied:
        return "applied";
    case Outcome::Kept:
        return "kept";
    case Outcome::Refused:
        return "refused";
    case Outcome::NotServed:
        return "not served";
    case Outcome::NoAnswer:
        return "no answer";
    }
    return "";
}

ReportScope::ReportScope(OperationReport& report) : m_pOuter(t_pReport) { t_pReport = &report; }

ReportScope::~ReportScope() { t_pReport = m_pOuter; }

namespace recorder {

OperationReport* report() { return t_pReport; }

ParameterInHand::ParameterInHand(int id, int value) : m_pOuter(t_pInHand) {
    m_Parameter.id = id;
    m_Parameter.value = value;
    m_Parameter.firstFrame = t_pReport != nullptr ? t_pReport->frames.size() : 0;
    t_pInHand = this;
}

ParameterInHand::~ParameterInHand() { t_pInHand = m_pOuter; }

const OperationReport::Parameter& ParameterInHand::finish(bool isTaken) {
    if (!isTaken)
        m_Parameter.outcome = m_Decided == Outcome::Kept ? Outcome::Refused : m_Decided.value_or(Outcome::Refused);
    else if (m_Decided == Outcome::Kept)
        m_Parameter.outcome = Outcome::Kept;
    // What was said on the way to a success is none of its reasons.
    if (m_Parameter.outcome == Outcome::Applied)
        m_Parameter.reason.clear();
    if (t_pReport != nullptr) {
        m_Parameter.frameCount = t_pReport->frames.size() - m_Parameter.firstFrame;
        t_pReport->parameters.push_back(m_Parameter);
    }
    return m_Parameter;
}

bool isListening() { return t_pReport != nullptr && t_pInHand != nullptr; }

void keep(std::string_view condition) {
    if (t_pInHand == nullptr)
        return;
    t_pInHand->m_Decided = Outcome::Kept;
    t_pInHand->m_Parameter.reason = condition;
}

void refuse(const char* reason) {
    if (t_pInHand == nullptr)
        return;
    t_pInHand->m_Decided = Outcome::Refused;
    if (t_pInHand->m_Parameter.reason.empty())
        t_pInHand->m_Parameter.reason = reason;
}

void leaveUnserved() {
    if (t_pInHand != nullptr)
        t_pInHand->m_Decided = Outcome::NotServed;
}

void unchanged(int id, int value) {
    if (t_pReport != nullptr)
        t_pReport->parameters.push_back({id, value, Outcome::Unchanged, {}, t_pReport->frames.size(), 0});
}

void message(const char* text) {
    if (t_nLogOnlyDepth > 0)
        return;
    std::string_view line = text;
    while (line.ends_with('\n'))
        line.remove_suffix(1);
    if (t_pReport != nullptr)
        t_pReport->messages.emplace_back(line);
    if (t_pInHand != nullptr && t_pInHand->m_Parameter.reason.empty())
        t_pInHand->m_Parameter.reason = line;
}

void frame(std::span<const char> bytes, Answer answer, std::span<const char> reply) {
    if (t_pReport != nullptr)
        t_pReport->frames.push_back({{bytes.begin(), bytes.end()}, answer, {reply.begin(), reply.end()}});
    if (t_pInHand == nullptr)
        return;
    OperationReport::Parameter& parameter = t_pInHand->m_Parameter;
    switch (answer) {
    case Answer::Accepted:
    case Answer::NotRead:
        // A try that got through takes back what the tries before it had failed with.
        t_pInHand->m_Decided.reset();
        parameter.reason.clear();
        break;
    case Answer::Refused:
        t_pInHand->m_Decided = Outcome::Refused;
        parameter.reason = "answered " + toHex(reply);
        break;
    case Answer::Cut:
        t_pInHand->m_Decided = Outcome::NoAnswer;
        parameter.reason = "answer cut short: " + toHex(reply);
        break;
    case Answer::None:
        t_pInHand->m_Decided = Outcome::NoAnswer;
        parameter.reason = "no answer";
        break;
    case Answer::PortFailed:
        t_pInHand->m_Decided = Outcome::NoAnswer;
        parameter.reason = "the port failed";
        break;
    }
}

LogOnly::LogOnly() { ++t_nLogOnlyDepth; }

LogOnly::~LogOnly() { --t_nLogOnlyDepth; }

} // namespace recorder

} // namespace sensorcontrol
