#pragma once

#include "Parameters.h"

#include <map>
#include <string>
#include <vector>

class ISensorController;

namespace sensorctl {

/// What a bring-up made of the parameter files. Constructed before it.
class RestoreReport {
public:
    RestoreReport();

    /// Lines for the user, after the bring-up; `held` is what the module has taken.
    std::vector<std::string> lines(ISensorController& controller, const Parameters& parameters,
                                   const std::map<int, int>& held);

    /// Path of the parameter file of a scheme (from 0), -1 for the factory file, on this machine.
    static std::string filePath(int scheme);
    /// The factory values in the file; empty without one.
    static std::map<int, int> factoryValues();

private:
    enum class State { Missing, Broken, Whole };
    struct File {
        State state = State::Missing;
        std::map<int, int> values;
    };

    static File look(int scheme);
    std::string fate(int scheme, const File& before, const char* source) const;

    File m_Factory;
    File m_FirstScheme;
};

} // namespace sensorctl
