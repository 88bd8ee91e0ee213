#include "host/SystemHelper.h"
#include "host/linux/FileSystem.h"
#include "host/linux/HostRecords.h"
#include "host/linux/HostSettings.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <ctime>
#include <deque>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using sensorhost::hostPath;

constexpr std::string_view Blanks = " \t\n";
constexpr std::string_view Operators = ";|&<>()";

std::string quote(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'')
            quoted += "'\\''";
        else
            quoted += c;
    }
    return quoted + "'";
}

/// A word of a shell line as it is written, with its quotes: the end of the one that starts at `start`.
std::size_t findWordEnd(std::string_view line, std::size_t start) {
    char open = '\0';
    std::size_t i = start;
    for (; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '\\' && open != '\'')
            ++i;
        else if (open != '\0')
            open = c == open ? '\0' : open;
        else if (c == '\'' || c == '"')
            open = c;
        else if (Blanks.find(c) != std::string_view::npos || Operators.find(c) != std::string_view::npos)
            break;
    }
    return std::min(i, line.size());
}

bool isPlain(std::string_view word) { return word.find_first_of("'\"\\$`") == std::string_view::npos; }

bool leadsUp(std::string_view word) { return word.find("..") != std::string_view::npos; }

struct Rewriting {
    std::string line;
    std::vector<std::string> files; ///< where the absolute paths that are written without quotes lie
    bool refused = false;
};

// The shell joins what is written side by side, so the root is put, quoted, before a path that keeps its own quotes,
// wildcards and variables.
void rewriteWord(std::string_view word, const std::string& root, Rewriting& result) {
    const std::size_t equals = isPlain(word) ? word.find("=/") : std::string_view::npos;
    const std::size_t start = equals != std::string_view::npos && word.front() != '/' ? equals + 1 : 0;
    const std::string_view path = word.substr(start);
    const std::size_t first = path.find_first_not_of("'\"");
    result.line += word.substr(0, start);
    if (first == std::string_view::npos || path[first] != '/' || path == "/dev/null") {
        result.line += path;
        return;
    }
    if (isPlain(path)) {
        const std::string file = hostPath(std::string(path));
        const std::string_view tail = std::string_view(file).substr(std::min(root.size(), file.size()));
        result.line += quote(root);
        result.line += tail.empty() ? "/" : tail;
        if (path.back() == '/' && !tail.empty())
            result.line += '/';
        result.files.push_back(file);
    } else {
        result.refused = result.refused || leadsUp(path);
        result.line += quote(root);
        result.line += path;
    }
}

Rewriting rewrite(std::string_view line, const std::string& root) {
    Rewriting result;
    for (std::size_t i = 0; i < line.size();) {
        const std::size_t end = findWordEnd(line, i);
        if (end == i) {
            result.line += line[i++];
            continue;
        }
        rewriteWord(line.substr(i, end - i), root, result);
        i = end;
    }
    return result;
}

/// The shell that runs the line, in a process group of its own; -1 if it cannot be started.
pid_t startShell(const std::string& line) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawnattr_init(&attributes);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);

    sigset_t signals;
    ::sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&attributes, &signals);
    ::sigfillset(&signals);
    ::posix_spawnattr_setsigdefault(&attributes, &signals);
    ::posix_spawnattr_setpgroup(&attributes, 0);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    std::string shell = "sh";
    std::string option = "-c";
    std::string text = line;
    char* const arguments[] = {shell.data(), option.data(), text.data(), nullptr};
    pid_t process = -1;
    if (::posix_spawn(&process, "/bin/sh", &actions, &attributes, arguments, ::environ) != 0)
        process = -1;
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&actions);
    return process;
}

/// 1 when the process has ended, 0 if it has not, -1 if nothing can be learnt of it.
int poll(pid_t process, int options, int& status) {
    pid_t result = 0;
    do
        result = ::waitpid(process, &status, options);
    while (result < 0 && errno == EINTR);
    return result == process ? 1 : static_cast<int>(result);
}

void pause(std::chrono::microseconds span) {
    timespec rest{0, static_cast<long>(span.count()) * 1000};
    while (::nanosleep(&rest, &rest) != 0 && errno == EINTR) {
    }
}

int runShell(const std::string& line, int timeLimit) {
    using namespace std::chrono;
    const pid_t process = startShell(line);
    if (process < 0)
        return -1;
    const auto end = steady_clock::now() + seconds(timeLimit);
    microseconds span(500);
    int status = 0;
    int ended = 0;
    // There is no portable wait with a limit that leaves the host's signals alone. These lines take milliseconds.
    while ((ended = poll(process, WNOHANG, status)) == 0 && steady_clock::now() < end) {
        pause(span);
        span = std::min(span * 2, microseconds(20'000));
    }
    if (ended == 0) {
        ::kill(-process, SIGKILL);
        poll(process, 0, status);
        return -1;
    }
    if (ended < 0)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// What a cp or mv line made has to outlive a power cut as what BRFile wrote does.
void syncCopies(const std::vector<std::string>& files, bool isMove) {
    namespace fs = std::filesystem;
    if (files.size() < 2)
        return;
    std::error_code error;
    const fs::path target = files.back();
    const bool isFolder = fs::is_directory(target, error);
    for (std::size_t i = 0; i + 1 < files.size(); ++i) {
        const fs::path source = files[i];
        sensorhost::syncWhole(isFolder ? target / source.filename() : target);
        if (isMove && source.parent_path() != target.parent_path())
            sensorhost::syncFolder(source.parent_path());
    }
}

int runLine(const char* command, int timeLimit) {
    if (command == nullptr || timeLimit <= 0)
        return -1;
    const std::string root = sensorhost::getRootFolder();
    const Rewriting rewriting = rewrite(command, root);
    if (rewriting.refused && !root.empty())
        return -1;
    const bool isMove = std::string_view(command).starts_with("mv ");
    const bool places = isMove || std::string_view(command).starts_with("cp ");
    if (places && !rewriting.files.empty())
        sensorhost::makeParentFolder(rewriting.files.back());
    const int status = runShell(root.empty() ? command : rewriting.line, timeLimit);
    if (places && status == 0)
        syncCopies(rewriting.files, isMove);
    return status;
}

struct Records {
    std::mutex mutex;
    bool isOn = false;
    std::deque<sensorhost::CommandRecord> commands;
};

// Never destroyed: threads of the host may outlive the static objects.
Records& records() {
    static Records* const Instance = new Records;
    return *Instance;
}

} // namespace

namespace sensorhost {

void recordCommands(bool on) {
    Records& r = records();
    const std::lock_guard guard(r.mutex);
    if (on && !r.isOn)
        r.commands.clear();
    r.isOn = on;
}

std::vector<CommandRecord> getCommands() {
    Records& r = records();
    const std::lock_guard guard(r.mutex);
    return {r.commands.begin(), r.commands.end()};
}

} // namespace sensorhost

int sy_system(const char* command, int timeLimit) {
    const int result = runLine(command, timeLimit);
    Records& r = records();
    const std::lock_guard guard(r.mutex);
    if (!r.isOn)
        return result;
    if (r.commands.size() == sensorhost::MostCommandRecords)
        r.commands.pop_front();
    r.commands.push_back({command != nullptr ? command : "", result});
    return result;
}
