#pragma once

#include <span>
#include <string>

namespace sensorctl {

/// What a user can do to the surroundings of a simulated module while it runs.
class ModuleConsole {
public:
    virtual ~ModuleConsole() = default;

    virtual bool knows(const std::string& command) const = 0;
    /// A line for each command.
    virtual std::string help() const = 0;
    /// Throws Failure.
    virtual void execute(const std::string& command, std::span<const std::string> words) = 0;
};

} // namespace sensorctl
