#pragma once

#include "host/Export.h"

#include <cstddef>
#include <string>
#include <vector>

namespace sensorcontrol {

/// What operations of a controller did, parameter by parameter, frame by frame. Filled on request: see ReportScope.
struct OperationReport {
    enum class Outcome {
        Unchanged, ///< the module had the value already; nothing went out
        Applied,
        Kept, ///< remembered, in force once a condition holds; nothing went out
        Refused,
        NotServed, ///< the module has no such parameter
        NoAnswer   ///< the module did not answer, or its port is gone
    };
    struct Parameter {
        int id = 0;
        int value = 0;
        Outcome outcome = Outcome::Applied;
        /// Kept: the condition, "only while ExposalMode is 2". Refused and NoAnswer: why.
        std::string reason = {};
        std::size_t firstFrame = 0; ///< what went out for it stands in `frames` from here ...
        std::size_t frameCount = 0; ///< ... so many of them
    };

    enum class Answer {
        Accepted,
        Refused, ///< an answer came, and was not the one to expect
        Cut,     ///< fewer bytes than the answer has
        None,    ///< nothing came
        PortFailed,
        NotRead ///< sent without waiting for an answer
    };
    /// Each try of an exchange is a frame of its own.
    struct Frame {
        std::string bytes;
        Answer answer = Answer::Accepted;
        std::string reply = {}; ///< as far as it came
    };

    enum class FileState { Missing, Unreadable, Empty, Broken, OtherVersion, Sound };
    /// A parameter file that a start found otherwise than sound.
    struct File {
        std::string path;
        FileState found = FileState::Missing;
        bool isMadeAnew = false;
    };

    std::vector<Parameter> parameters; ///< in the order in which they were looked at
    std::vector<Frame> frames;         ///< in the order of the wire
    std::vector<File> files;
    std::string source; ///< the file whose values a start, a reset or a switch applied
    /// What else went to the two logs meanwhile: nothing that stands in the fields above, and no success.
    std::vector<std::string> messages;

    bool isUp = false; ///< a start has ended, with whatever could not be applied
};

/// "unchanged", "applied", "kept", "refused", "not served", "no answer".
SENSORCONTROL_API const char* toText(OperationReport::Outcome outcome);

/// While it lives, what the calling thread does with controllers is added to a report. Scopes nest: the inner one
/// hears. A report takes memory for what it tells; without one the operations allocate nothing.
class SENSORCONTROL_API ReportScope {
public:
    explicit ReportScope(OperationReport& report);
    ~ReportScope();
    ReportScope(const ReportScope&) = delete;
    ReportScope& operator=(const ReportScope&) = delete;

private:
    OperationReport* m_pOuter;
};

} // namespace sensorcontrol
