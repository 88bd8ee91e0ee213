#pragma once

#include "Failure.h"
#include "Parameters.h"
#include "TargetOptions.h"
#include "controller/OperationReport.h"

#include <span>
#include <string>
#include <vector>

namespace sensorctl {

using sensorcontrol::OperationReport;

/// The outcome as records name it: "unchanged", "applied", "kept", "refused", "not-served", "no-answer".
std::string resultText(OperationReport::Outcome outcome);
/// In force, or remembered until it can be.
bool isTaken(const OperationReport::Parameter& parameter);
/// The reason, unless it only repeats the outcome.
std::string reasonOf(const OperationReport::Parameter& parameter);
/// "refused, answered 90 61 41".
std::string outcomeText(const OperationReport::Parameter& parameter);

/// Why an operation did not succeed: the parameters that were not taken, or else what the library said. A few lines.
std::vector<std::string> reasonsOf(const OperationReport& report, const Parameters& parameters);

/// Makes failures of what the library reports of a module: the reasons, what went over the wire, what to try.
class Explanation {
public:
    /// Both outlive it.
    Explanation(const TargetOptions& options, const Parameters& parameters)
        : m_Options(options), m_Parameters(parameters) {}

    /// A parameter of the report that was not taken.
    Failure ofParameter(const OperationReport& report, const OperationReport::Parameter& parameter) const;
    /// An operation that failed. The code is for one whose frames, if any, were all answered well.
    Failure ofOperation(const std::string& what, const OperationReport& report, ExitCode unsentCode,
                        const std::string& hint) const;

    /// The last frames as lines.
    std::vector<std::string> wire(std::span<const OperationReport::Frame> frames) const;
    std::string silenceHint() const;

private:
    struct Verdict;

    Verdict verdictOf(OperationReport::Answer answer, const Verdict& unsent) const;
    Verdict verdictOf(const OperationReport& report, const OperationReport::Parameter& parameter) const;

    const TargetOptions& m_Options;
    const Parameters& m_Parameters;
};

} // namespace sensorctl
