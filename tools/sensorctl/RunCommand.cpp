#include "Commands.h"
#include "Failure.h"
#include "InputLines.h"
#include "Interrupt.h"
#include "Output.h"
#include "Session.h"

#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include <unistd.h>

namespace sensorctl {

namespace {

constexpr const char* Help = R"(  get [ID|NAME...]        values, all without a name
  set ID|NAME=VALUE...    set parameters, ascending by id; a command needs no value
  all                     everything that the module holds, read as a host reads it
  flush                   save what is in force
  reset                   factory values, saved
  last                    the values saved last
  daynight [MODE]         state and mode; auto, day, night, clock or module sets the mode
  scheme [WORDS]          the schemes; auto, manual, choose N, span N 08:00-12:30, enable N,
                          disable N, copy FROM TO change them
  frames [N]              the last N lines of the wire, by default 20
  wait SECONDS            wait
  help                    this text
  quit                    end
)";

class Interpreter {
public:
    Interpreter(Output& output, Session& session)
        : m_Output(output), m_Session(session), m_pConsole(session.console()) {}

    /// The exit code of the line; throws Failure. False in isWanted after quit.
    int execute(const std::string& line);
    bool isWanted() const { return m_bWanted; }

private:
    void frames(const std::vector<std::string>& words);
    void wait(const std::vector<std::string>& words);
    void daynight(const std::vector<std::string>& words);
    void refuseWords(const std::string& command, const std::vector<std::string>& words);

    Output& m_Output;
    Session& m_Session;
    const std::unique_ptr<ModuleConsole> m_pConsole;
    bool m_bWanted = true;
};

int Interpreter::execute(const std::string& line) {
    std::istringstream stream(line.substr(0, line.find('#')));
    std::string command;
    if (!(stream >> command))
        return Done;
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);

    if (command == "get") {
        showParameters(m_Output, m_Session, words);
        return Done;
    }
    if (command == "set") {
        if (words.empty())
            throw Failure(Usage, "set: what?", {"try: set Brightness=60"});
        return applyParameters(m_Output, m_Session, words);
    }
    if (command == "frames") {
        frames(words);
        return Done;
    }
    if (command == "wait") {
        wait(words);
        return Done;
    }
    if (command == "daynight") {
        daynight(words);
        return Done;
    }
    if (command == "scheme") {
        workOnSchemes(m_Output, m_Session, words);
        return Done;
    }
    if (m_pConsole != nullptr && m_pConsole->knows(command)) {
        m_pConsole->execute(command, words);
        return Done;
    }
    if (command == "all") {
        refuseWords(command, words);
        showAllParameters(m_Output, m_Session);
    } else if (command == "flush") {
        refuseWords(command, words);
        flushParameters(m_Output, m_Session);
    } else if (command == "reset" || command == "last") {
        refuseWords(command, words);
        resetParameters(m_Output, m_Session, command == "last");
    } else if (command == "help") {
        m_Output.note(Help + (m_pConsole != nullptr ? m_pConsole->help() : std::string()));
    } else if (command == "quit" || command == "exit") {
        m_bWanted = false;
    } else {
        throw Failure(Usage, '"' + command + "\" is no command", {"try: help"});
    }
    return Done;
}

void Interpreter::refuseWords(const std::string& command, const std::vector<std::string>& words) {
    if (!words.empty())
        throw Failure(Usage, command + " takes no further words, not \"" + words[0] + '"');
}

void Interpreter::frames(const std::vector<std::string>& words) {
    std::size_t count = 20;
    if (!words.empty()) {
        const std::string& text = words[0];
        const auto result = std::from_chars(text.data(), text.data() + text.size(), count);
        if (words.size() > 1 || result.ec != std::errc() || result.ptr != text.data() + text.size())
            throw Failure(Usage, "frames: \"" + text + "\" is no count");
    }
    for (const TraceLine& line : m_Session.trace().lastLines(count))
        m_Output.record(line.text(), line.json());
}

void Interpreter::wait(const std::vector<std::string>& words) {
    double seconds = 0;
    if (words.size() == 1) {
        const std::string& text = words[0];
        const auto result = std::from_chars(text.data(), text.data() + text.size(), seconds);
        if (result.ec == std::errc() && result.ptr == text.data() + text.size() && seconds >= 0 && seconds < 1e6) {
            Interrupt::sleep(std::chrono::milliseconds(std::lround(seconds * 1000)));
            return;
        }
    }
    throw Failure(Usage, "wait: how many seconds?", {"try: wait 2.5"});
}

void Interpreter::daynight(const std::vector<std::string>& words) {
    if (words.size() > 1)
        refuseWords("daynight MODE", {words.begin() + 1, words.end()});
    if (!words.empty())
        setDayNight(m_Session, words[0]);
    showDayNight(m_Output, m_Session);
}

} // namespace

int runCommands(Output& output, const TargetOptions& target, bool keepGoing) {
    target.check(true);
    Session session(output, target);
    session.bringUp();

    const bool isPrompted = ::isatty(STDIN_FILENO) != 0;
    Interpreter interpreter(output, session);
    InputLines input;
    int code = Done;
    int number = 0;
    if (isPrompted)
        output.note("\"help\" lists the commands");
    while (interpreter.isWanted() && output.isWritable()) {
        if (isPrompted)
            output.prompt("sensorctl> ");
        std::string line;
        if (input.next(line) != InputLines::Result::Line)
            break;
        ++number;
        int lineCode = Done;
        try {
            lineCode = interpreter.execute(line);
        } catch (const Failure& failure) {
            output.report(failure);
            lineCode = failure.code();
        }
        if (lineCode == Done || isPrompted)
            continue;
        code = code == Done ? lineCode : code;
        if (!keepGoing) {
            output.note("sensorctl: ended at line " + std::to_string(number) + " of the script: " + line);
            break;
        }
    }
    return Interrupt::isRequested() && !isPrompted ? static_cast<int>(Interrupted) : code;
}

} // namespace sensorctl
