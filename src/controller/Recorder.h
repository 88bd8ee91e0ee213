#pragma once

#include "controller/OperationReport.h"

#include <optional>
#include <span>

/// What the calling thread's report hears of. Without a report, and without a parameter in hand, every call costs one
/// look.
namespace sensorcontrol::recorder {

/// The report of the calling thread; null if nobody asked.
OperationReport* report();

/// One parameter on its way to the module. While it lives, frames and texts of the thread count for it.
class ParameterInHand {
public:
    ParameterInHand(int id, int value);
    ~ParameterInHand();
    ParameterInHand(const ParameterInHand&) = delete;
    ParameterInHand& operator=(const ParameterInHand&) = delete;

    /// What became of it by the result of the setting; goes to the report.
    const OperationReport::Parameter& finish(bool isTaken);

private:
    friend void keep(std::string_view condition);
    friend void refuse(const char* reason);
    friend void leaveUnserved();
    friend void message(const char* text);
    friend void frame(std::span<const char>, OperationReport::Answer, std::span<const char>);

    OperationReport::Parameter m_Parameter;
    std::optional<OperationReport::Outcome> m_Decided;
    ParameterInHand* m_pOuter;
};

/// Whether texts for `keep` are worth making.
bool isListening();

/// The value in hand is remembered and counts once the condition holds.
void keep(std::string_view condition);
/// The value in hand is refused; a text that was logged for it meanwhile says it better.
void refuse(const char* reason);
/// The module has no such parameter.
void leaveUnserved();
/// Unchanged: the module holds the value.
void unchanged(int id, int value);

/// A line for one of the logs.
void message(const char* text);
/// A frame that went out, and what came.
void frame(std::span<const char> bytes, OperationReport::Answer answer, std::span<const char> reply);

/// While it lives, log lines of the thread are no messages of its report: they tell what the report has in fields of
/// its own, or nothing that went wrong.
class LogOnly {
public:
    LogOnly();
    ~LogOnly();
    LogOnly(const LogOnly&) = delete;
    LogOnly& operator=(const LogOnly&) = delete;
};

} // namespace sensorcontrol::recorder
