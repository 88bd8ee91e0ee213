#include "RestoreReport.h"

#include "Explanation.h"
#include "host/DevicePaths.h"
#include "host/linux/HostSettings.h"
#include "params/SensorConfigFile.h"

#include <algorithm>
#include <filesystem>
#include <map>

namespace sensorctl {

namespace {

using FileState = OperationReport::FileState;
using Outcome = OperationReport::Outcome;

std::string nameOf(const std::string& path) { return std::filesystem::path(path).filename().string(); }

const char* stateText(FileState state) {
    switch (state) {
    case FileState::Missing:
        return "missing";
    case FileState::Unreadable:
        return "unreadable";
    case FileState::Empty:
        return "empty";
    case FileState::Broken:
        return "broken";
    case FileState::OtherVersion:
        return "of another version";
    case FileState::Sound:
        return "sound";
    }
    return "";
}

std::string fileLine(const OperationReport::File& file) {
    const std::string line = nameOf(file.path) + (file.isMadeAnew ? " was " : " is ") + stateText(file.found);
    const std::string path = sensorhost::hostPath(file.path);
    if (!file.isMadeAnew)
        return line + ": " + path + (file.found == FileState::Missing ? " could not be made" : " is left as it is") +
               " (to make it anew: sensorctl reset)";
    return line + (file.found == FileState::Missing ? ": made from the " : ": made anew from the ") +
           (file.path == sensorcontrol::paths::FactoryFile ? "module's factory values" : "factory values");
}

void add(std::string& list, const std::string& item) { list += (list.empty() ? "" : ", ") + item; }

/// The values in the factory file; empty without one.
std::map<int, int> factoryValues() {
    std::map<int, int> values;
    SensorConfigFile(sensorcontrol::paths::FactoryFile).readParametersFromFile(values);
    return values;
}

} // namespace

std::vector<std::string> restoreLines(const OperationReport& start, const Parameters& parameters) {
    std::vector<std::string> lines;
    for (const OperationReport::File& file : start.files)
        lines.push_back(fileLine(file));
    if (start.parameters.empty()) {
        lines.push_back("restored nothing: " +
                        (start.source.empty() ? "no file was read" : nameOf(start.source) + " holds no parameters"));
        return lines;
    }

    const std::map<int, int> factory = factoryValues();
    std::map<Outcome, int> counts;
    std::map<std::string, std::string> notTaken; // names by what became of them
    std::string changed;
    int changes = 0;
    for (const OperationReport::Parameter& parameter : start.parameters) {
        const std::string name = parameters.nameOf(parameter.id);
        if (!isTaken(parameter)) {
            add(notTaken[outcomeText(parameter)], name);
            continue;
        }
        ++counts[parameter.outcome];
        const auto original = factory.find(parameter.id);
        if (original == factory.end() || original->second == parameter.value)
            continue;
        ++changes;
        add(changed,
            name + ' ' + std::to_string(parameter.value) + " (factory " + std::to_string(original->second) + ')');
    }
    int taken = 0;
    std::string outcomes;
    for (const auto& [outcome, count] : counts) {
        taken += count;
        add(outcomes, std::to_string(count) + ' ' + toText(outcome));
    }
    std::string restored = "restored " + std::to_string(taken);
    if (!notTaken.empty())
        restored += " of " + std::to_string(start.parameters.size());
    restored += " parameters from " + nameOf(start.source);
    if (taken > 0)
        restored += " (" + outcomes + ')' +
                    (changes > 0 ? ", " + std::to_string(changes) + " unlike the factory's: " + changed
                                 : ", all at their factory values");
    lines.push_back(restored);
    for (const auto& [outcome, names] : notTaken)
        lines.push_back(std::string("not taken by the module (").append(outcome).append("): ").append(names));
    return lines;
}

} // namespace sensorctl
