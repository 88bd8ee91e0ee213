#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/types.h>

/// sensorctl as a process, with its standard input, output and error in the test's hands. Its user folder is the
/// test's.
class ToolProcess {
public:
    struct Result {
        int code = -1; ///< 128 and the signal for a process that a signal ended
        std::string out;
        std::string err;
    };

    ToolProcess(const std::string& folder, const std::vector<std::string>& arguments);
    /// Ends it the hard way if it still runs.
    ~ToolProcess();
    ToolProcess(const ToolProcess&) = delete;
    ToolProcess& operator=(const ToolProcess&) = delete;

    void write(const std::string& text);
    void closeInput();
    void signal(int number) const;
    /// Reads on until the text stands in what came on standard output (or error); false after the time.
    bool awaitOutput(const std::string& text);
    bool awaitError(const std::string& text);
    /// The end of the process, and everything it said.
    Result wait();

    /// Runs it to its end.
    static Result run(const std::string& folder, const std::vector<std::string>& arguments,
                      const std::string& input = {});

private:
    bool readSome(std::chrono::milliseconds span);
    bool await(const std::string& text, const std::string& where);

    pid_t m_nProcess = -1;
    int m_nInput = -1;
    int m_nOutput = -1;
    int m_nError = -1;
    Result m_Result;
};

/// A folder that goes with the object.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& path() const { return m_strPath; }
    std::string read(const std::string& name) const;
    void write(const std::string& name, const std::string& text) const;

private:
    std::string m_strPath;
};

/// A case with a folder of its own.
class ToolTest : public ::testing::Test {
protected:
    ToolProcess::Result run(const std::vector<std::string>& arguments, const std::string& input = {}) const {
        return ToolProcess::run(m_Folder.path(), arguments, input);
    }

    TempFolder m_Folder;
};
