#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace sensorctl {

/// What the program ends with.
enum ExitCode : int {
    Done = 0,
    Usage = 1,         ///< the command line, or a line of a script, makes no sense
    Refused = 2,       ///< refused by the library or by the block
    NoAnswer = 3,      ///< the block says nothing, or nothing whole
    Trouble = 4,       ///< a port or a file
    Interrupted = 130, ///< ended by a signal before it was done
};

/// Why a command could not be done: what was asked and what came of it, then lines on the wire, the reason, what to
/// try.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string& text, std::vector<std::string> details = {})
        : std::runtime_error(text), m_Code(code), m_Details(std::move(details)) {}

    ExitCode code() const { return m_Code; }
    const std::vector<std::string>& details() const { return m_Details; }

private:
    ExitCode m_Code;
    std::vector<std::string> m_Details;
};

} // namespace sensorctl
