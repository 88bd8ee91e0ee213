#include "Output.h"

#include "Failure.h"

#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <unistd.h>

namespace sensorctl {

namespace {

std::FILE* copyOf(int descriptor) {
    const int copy = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 3);
    return copy >= 0 ? ::fdopen(copy, "w") : nullptr;
}

} // namespace

Output::Output(bool json, int verbosity)
    : m_bJson(json), m_nVerbosity(verbosity), m_bTerminal(::isatty(STDOUT_FILENO) != 0),
      m_bStatus(::isatty(STDERR_FILENO) != 0) {
    m_pRecords = copyOf(STDOUT_FILENO);
    if (m_pRecords == nullptr)
        throw Failure(Trouble, std::string("standard output: ") + std::strerror(errno));
    m_pNotes = copyOf(STDERR_FILENO);
    if (m_pNotes == nullptr)
        m_pNotes = stderr;
    const int console = verbosity > 1 ? STDERR_FILENO : ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (console >= 0)
        ::dup2(console, STDOUT_FILENO);
    if (console > STDERR_FILENO)
        ::close(console);
    // What the library says belongs between the notes, not behind them.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

Output::~Output() {
    status("");
    std::fclose(m_pRecords);
    if (m_pNotes != stderr)
        std::fclose(m_pNotes);
    if (m_pTrace != nullptr)
        std::fclose(m_pTrace);
}

void Output::clearStatus() {
    if (m_bStatusShown)
        std::fputs("\r\033[K", m_pNotes);
    m_bStatusShown = false;
}

void Output::record(const std::string& text, const nlohmann::ordered_json& object) {
    // Bytes that are no UTF-8 can stand in paths and in what the user typed.
    const std::string line =
        (m_bJson ? object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) : text) + '\n';
    bytes(line);
}

void Output::bytes(const std::string& text) {
    const std::lock_guard guard(m_Mutex);
    clearStatus();
    if (std::fwrite(text.data(), 1, text.size(), m_pRecords) != text.size() || std::fflush(m_pRecords) != 0)
        m_bWritable = false;
}

void Output::traceLine(const std::string& line) {
    const std::lock_guard guard(m_Mutex);
    if (m_pTrace == nullptr)
        clearStatus();
    std::FILE* const file = m_pTrace != nullptr ? m_pTrace : m_pNotes;
    std::fputs((line + '\n').c_str(), file);
    std::fflush(file);
}

void Output::setTraceFile(const std::string& path) {
    m_pTrace = std::fopen(path.c_str(), "we");
    if (m_pTrace == nullptr)
        throw Failure(Trouble, "--trace " + path + ": " + std::strerror(errno), {"try: a file that you may write"});
}

void Output::heading(const std::string& text) {
    if (m_bTerminal && !m_bJson)
        note(text);
}

void Output::note(const std::string& text) {
    const std::lock_guard guard(m_Mutex);
    clearStatus();
    std::fputs((text + '\n').c_str(), m_pNotes);
    std::fflush(m_pNotes);
}

void Output::report(const Failure& failure) {
    std::string text = std::string("sensorctl: ") + failure.what();
    for (const std::string& line : failure.details())
        text += "\n  " + line;
    note(text);
}

void Output::status(const std::string& text) {
    const std::lock_guard guard(m_Mutex);
    clearStatus();
    if (text.empty() || !m_bStatus)
        return;
    std::fputs(text.c_str(), m_pNotes);
    std::fflush(m_pNotes);
    m_bStatusShown = true;
}

void Output::prompt(const std::string& text) {
    const std::lock_guard guard(m_Mutex);
    clearStatus();
    std::fputs(text.c_str(), m_pNotes);
    std::fflush(m_pNotes);
}

Output::Hush::Hush(Output& output) {
    if (output.showsConsole())
        return;
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0)
        return;
    m_nSaved = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    ::dup2(nowhere, STDERR_FILENO);
    ::close(nowhere);
}

Output::Hush::~Hush() {
    if (m_nSaved < 0)
        return;
    ::dup2(m_nSaved, STDERR_FILENO);
    ::close(m_nSaved);
}

bool Output::isWritable() const {
    const std::lock_guard guard(m_Mutex);
    return m_bWritable;
}

} // namespace sensorctl
