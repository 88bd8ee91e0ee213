#pragma once

#include <cstdio>
#include <mutex>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace sensorctl {

class Failure;

/// The program's two voices: records on standard output, everything else on standard error. Any thread may use it.
///
/// The library prints diagnostics to standard output: from construction on they go to standard error if the user wants
/// them, else nowhere, and the records leave through a descriptor of their own.
class Output {
public:
    /// Verbosity 1 adds notes on progress, 2 the library's console.
    Output(bool json, int verbosity);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    bool isJson() const { return m_bJson; }
    bool isVerbose() const { return m_nVerbosity > 0; }
    bool showsConsole() const { return m_nVerbosity > 1; }
    /// Records go to a terminal.
    bool isTerminal() const { return m_bTerminal; }

    /// One record: its text, or with --json its object, on one line.
    void record(const std::string& text, const nlohmann::ordered_json& object);
    /// The bytes as they are, without a line end of their own. Not for --json.
    void bytes(const std::string& text);
    /// One line of --trace: to its file if one is set, else to standard error.
    void traceLine(const std::string& line);
    /// Opens the file of --trace. Throws Failure if that fails.
    void setTraceFile(const std::string& path);

    /// The heading of a table, for eyes only: shown when records go to a terminal.
    void heading(const std::string& text);
    /// A line on standard error.
    void note(const std::string& text);
    void report(const Failure& failure);
    /// A passing line on a terminal, replaced by the next one; empty clears it.
    void status(const std::string& text);
    /// Standard error is a terminal, so that status is seen.
    bool hasStatus() const { return m_bStatus; }

    /// What stands before a line that the user types.
    void prompt(const std::string& text);

    /// While it lives, what others write to standard error goes nowhere, unless the library's console is wanted.
    class Hush {
    public:
        explicit Hush(Output& output);
        ~Hush();
        Hush(const Hush&) = delete;
        Hush& operator=(const Hush&) = delete;

    private:
        int m_nSaved = -1;
    };

    /// False after a record could not be written: a full disk, a reader that left.
    bool isWritable() const;

private:
    void clearStatus();

    const bool m_bJson;
    const int m_nVerbosity;
    const bool m_bTerminal;
    const bool m_bStatus;
    mutable std::mutex m_Mutex;
    std::FILE* m_pRecords;
    std::FILE* m_pNotes;
    std::FILE* m_pTrace = nullptr;
    bool m_bStatusShown = false;
    bool m_bWritable = true;
};

} // namespace sensorctl
