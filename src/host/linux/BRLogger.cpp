#define _FILE_OFFSET_BITS 64 // NOLINT(bugprone-reserved-identifier): libc asks for it by this name

#include "host/BRLogger.h"

#include "host/linux/FileSystem.h"
#include "host/linux/HostSettings.h"
#include "host/linux/SystemTime.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>

#include <fcntl.h>
#include <unistd.h>

struct BRLogger::State {
    std::mutex mutex;
    std::string path; ///< on this machine; empty before init
    std::size_t size = 0;
    unsigned int count = 0;

    std::string nameOf(unsigned int number) const { return number == 0 ? path : path + '.' + std::to_string(number); }

    void rotate() const {
        ::unlink(nameOf(count - 1).c_str());
        for (unsigned int number = count - 1; number > 0; --number)
            ::rename(nameOf(number - 1).c_str(), nameOf(number).c_str());
    }

    int openFile() const { return ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, 0644); }

    void append(const std::string& line) const;
};

// The file is opened for each line: several loggers of a process may share a log, and whoever rotates or deletes it
// must not leave the others writing into a file that is out of sight. Errors are rare enough for that.
void BRLogger::State::append(const std::string& line) const {
    sensorhost::Descriptor file(openFile());
    off_t end = file.isOpen() ? ::lseek(file.get(), 0, SEEK_END) : -1;
    if (end > 0 && static_cast<std::size_t>(end) + line.size() > size) {
        rotate();
        file.reset(openFile());
        end = file.isOpen() ? ::lseek(file.get(), 0, SEEK_END) : -1;
    }
    if (end < 0)
        return;
    const ssize_t written = ::write(file.get(), line.data(), line.size());
    // On a full disk half a line would run into the next one.
    if (written >= 0 && static_cast<std::size_t>(written) < line.size()) [[maybe_unused]]
        const int ignored = ::ftruncate(file.get(), end);
}

BRLogger::BRLogger() : m_pState(std::make_unique<State>()) {}

BRLogger::~BRLogger() = default;

int BRLogger::init(const char* path, unsigned int size, unsigned int count) {
    State& s = *m_pState;
    const std::lock_guard guard(s.mutex);
    s.path.clear();
    if (path == nullptr || *path == '\0' || size == 0 || count == 0)
        return 0;
    s.path = sensorhost::hostPath(path);
    s.size = size;
    s.count = count;
    sensorhost::makeParentFolder(s.path);
    const sensorhost::Descriptor file(s.openFile());
    if (!file.isOpen())
        s.path.clear();
    return file.isOpen() ? 1 : 0;
}

void BRLogger::writeLog(const char* tag, const char* text) {
    State& s = *m_pState;
    const sensorhost::LocalTime now = sensorhost::localTime();
    std::array<char, 64> time{};
    std::snprintf(time.data(), time.size(), "%04d-%02d-%02d %02d:%02d:%02d ", now.year, now.month, now.day, now.hour,
                  now.minute, now.second);

    const std::lock_guard guard(s.mutex);
    if (s.path.empty())
        return;
    std::string line = time.data();
    line += tag != nullptr ? tag : "";
    line += ' ';
    line.append(text != nullptr ? text : "", ::strnlen(text != nullptr ? text : "", s.size));
    if (line.back() == '\n')
        line.pop_back();
    if (line.size() >= s.size)
        line.resize(s.size - 1);
    line += '\n';
    s.append(line);
}
