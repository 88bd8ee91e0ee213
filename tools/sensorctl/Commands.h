#pragma once

#include "TargetOptions.h"

#include <string>
#include <vector>

namespace sensorctl {

class Output;
class Session;

// The subcommands. Each gives the exit code, or throws Failure for what stops it.

int listModules(Output& output);
int listParameters(Output& output, const TargetOptions& target, bool catalogueOnly);
/// No names: everything that has a value.
int getParameters(Output& output, const TargetOptions& target, const std::vector<std::string>& names);
int setParameters(Output& output, const TargetOptions& target, const std::vector<std::string>& assignments, bool flush);
int resetParameters(Output& output, const TargetOptions& target, bool toLast);

// The same on a module that is up, for scripts too.

void showParameters(Output& output, Session& session, const std::vector<std::string>& names);
/// Applies all of them, ascending by id, whatever becomes of one; the code of the first that failed.
int applyParameters(Output& output, Session& session, const std::vector<std::string>& assignments);
void flushParameters(Output& output, Session& session);
void resetParameters(Output& output, Session& session, bool toLast);

} // namespace sensorctl
