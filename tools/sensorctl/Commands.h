#pragma once

#include "ModuleFolder.h"
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

/// Shows the schemes; words: what to do with them first, such as "choose 1".
int schemes(Output& output, const TargetOptions& target, const std::vector<std::string>& words);

/// The pipeline's edge-enhancement record of each strength, and with a plot the drawing of all and of the curve.
int edgeEnhancement(Output& output, const std::vector<int>& strengths, const std::string& plot);

/// Keeps the module up and takes commands from standard input. A script ends at its first failure, whose code is the
/// result; keepGoing: goes on to its end first.
int runCommands(Output& output, const TargetOptions& target, bool keepGoing);

struct DayOptions {
    bool isWanted = false;
    std::string light = "06:30-20:00";
    std::string hours = "00:00-24:00"; ///< the part of the day that is played
    std::string plot;                  ///< file of the drawing; empty: none
};
/// Plays a whole day on a simulated clock and a simulated module and tells what moved when and why.
int playDay(Output& output, const TargetOptions& target, const DayOptions& options);

struct DayNightOptions {
    std::string mode;       ///< to set; empty: none
    std::string ambient;    ///< "dark" or "light" at the simulated block; empty: as it is
    double waitSeconds = 0; ///< for the state to change; 0: does not wait
};
int dayNight(Output& output, const TargetOptions& target, const DayNightOptions& options);
/// A record per change until the user ends it or the time (0: none) is over.
int watch(Output& output, const TargetOptions& target, double seconds);

/// Shows what goes over the wire during a bring-up, then while some parameters are set, then for a time.
int trace(Output& output, const TargetOptions& target, const std::vector<std::string>& assignments, double seconds);
/// Without words from standard input.
int decode(Output& output, int moduleId, const std::vector<std::string>& words);

struct SimulateOptions {
    int moduleId = -1;
    std::string link;
    int baud = -1; ///< negative: the model's own; 0: as fast as it can
    std::vector<std::string> faults;
    std::string stateFile;
};
/// A block on a pseudo-terminal, until standard input ends, a quit or a signal.
int simulate(Output& output, const SimulateOptions& options);

struct UiOptions {
    ModuleSelection selection;
    int language = 1;
    bool explain = false;
    std::string print; ///< style, gui, common or language: this text alone; empty: everything
};
/// What the web interface may show for the module of a configuration folder, and how that came about.
int showUi(Output& output, const UiOptions& options);

// The same on a module that is up, for scripts too.

void showParameters(Output& output, Session& session, const std::vector<std::string>& names);
/// Applies all of them, ascending by id, whatever becomes of one; the code of the first that failed.
int applyParameters(Output& output, Session& session, const std::vector<std::string>& assignments,
                    bool isRecorded = true);
/// Through the one operation with which a host reads everything.
void showAllParameters(Output& output, Session& session);
void flushParameters(Output& output, Session& session);
void resetParameters(Output& output, Session& session, bool toLast);
/// As the command "scheme". Throws Failure.
void workOnSchemes(Output& output, Session& session, const std::vector<std::string>& words);
/// auto, day, night, clock, module. Throws Failure.
void setDayNight(Session& session, const std::string& mode);
void showDayNight(Output& output, Session& session);

} // namespace sensorctl
