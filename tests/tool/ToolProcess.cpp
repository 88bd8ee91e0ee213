#include "tool/ToolProcess.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Generous: sanitizers and emulators take their time.
constexpr std::chrono::seconds Patience{60};

std::vector<std::string> commandLine(const std::vector<std::string>& arguments) {
    std::vector<std::string> words;
    std::istringstream emulator(SENSORCTL_EMULATOR);
    for (std::string word; std::getline(emulator, word, ';');)
        if (!word.empty())
            words.push_back(word);
    words.emplace_back(SENSORCTL_PATH);
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

void closeOnce(int& descriptor) {
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

/// False at the end of the stream.
bool readInto(int descriptor, std::string& text) {
    std::array<char, 4096> bytes{};
    const ssize_t count = ::read(descriptor, bytes.data(), bytes.size());
    if (count > 0)
        text.append(bytes.data(), static_cast<std::size_t>(count));
    return count > 0;
}

} // namespace

ToolProcess::ToolProcess(const std::string& folder, const std::vector<std::string>& arguments) {
    std::signal(SIGPIPE, SIG_IGN);
    int input[2];
    int output[2];
    int error[2];
    if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0 || ::pipe2(error, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipes");
    std::vector<std::string> words = commandLine(arguments);
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    m_nProcess = ::fork();
    if (m_nProcess == 0) {
        ::dup2(input[0], STDIN_FILENO);
        ::dup2(output[1], STDOUT_FILENO);
        ::dup2(error[1], STDERR_FILENO);
        ::setenv("XDG_STATE_HOME", folder.c_str(), 1);
        ::execvp(pointers[0], pointers.data());
        ::_exit(127);
    }
    ::close(input[0]);
    ::close(output[1]);
    ::close(error[1]);
    m_nInput = input[1];
    m_nOutput = output[0];
    m_nError = error[0];
}

ToolProcess::~ToolProcess() {
    if (m_nProcess > 0) {
        ::kill(m_nProcess, SIGKILL);
        ::waitpid(m_nProcess, nullptr, 0);
    }
    closeInput();
    closeOnce(m_nOutput);
    closeOnce(m_nError);
}

void ToolProcess::write(const std::string& text) {
    [[maybe_unused]] const ssize_t ignored = ::write(m_nInput, text.data(), text.size());
}

void ToolProcess::closeInput() { closeOnce(m_nInput); }

void ToolProcess::signal(int number) const { ::kill(m_nProcess, number); }

bool ToolProcess::readSome(std::chrono::milliseconds span) {
    std::array<pollfd, 2> entries = {{{m_nOutput, POLLIN, 0}, {m_nError, POLLIN, 0}}};
    if (::poll(entries.data(), entries.size(), static_cast<int>(span.count())) <= 0)
        return false;
    if (entries[0].revents != 0 && !readInto(m_nOutput, m_Result.out))
        closeOnce(m_nOutput);
    if (entries[1].revents != 0 && !readInto(m_nError, m_Result.err))
        closeOnce(m_nError);
    return true;
}

bool ToolProcess::await(const std::string& text, const std::string& where) {
    const auto end = std::chrono::steady_clock::now() + Patience;
    while (where.find(text) == std::string::npos) {
        const bool isClosed = m_nOutput < 0 && m_nError < 0;
        if (isClosed || std::chrono::steady_clock::now() > end)
            return false;
        readSome(std::chrono::milliseconds(100));
    }
    return true;
}

bool ToolProcess::awaitOutput(const std::string& text) { return await(text, m_Result.out); }

bool ToolProcess::awaitError(const std::string& text) { return await(text, m_Result.err); }

ToolProcess::Result ToolProcess::wait() {
    const auto end = std::chrono::steady_clock::now() + Patience;
    while ((m_nOutput >= 0 || m_nError >= 0) && std::chrono::steady_clock::now() < end)
        readSome(std::chrono::milliseconds(100));
    if (m_nOutput >= 0 || m_nError >= 0)
        ::kill(m_nProcess, SIGKILL);
    int status = 0;
    ::waitpid(m_nProcess, &status, 0);
    m_nProcess = -1;
    m_Result.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return m_Result;
}

ToolProcess::Result ToolProcess::run(const std::string& folder, const std::vector<std::string>& arguments,
                                     const std::string& input) {
    ToolProcess process(folder, arguments);
    process.write(input);
    process.closeInput();
    return process.wait();
}

TempFolder::TempFolder() {
    std::string name = std::filesystem::temp_directory_path() / "sensorctl.XXXXXX";
    if (::mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    m_strPath = name;
}

TempFolder::~TempFolder() {
    std::error_code error;
    std::filesystem::remove_all(m_strPath, error);
}

std::string TempFolder::read(const std::string& name) const {
    std::ifstream file(m_strPath + '/' + name);
    return {std::istreambuf_iterator<char>(file), {}};
}

void TempFolder::write(const std::string& name, const std::string& text) const {
    std::ofstream(m_strPath + '/' + name) << text;
}
