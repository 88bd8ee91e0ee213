#define _FILE_OFFSET_BITS 64 // NOLINT(bugprone-reserved-identifier): libc asks for it by this name

#include "host/BRLogger.h"

#include "host/BRDeviceTime.h"
#include "host/linux/FileSystem.h"
#include "host/linux/HostSettings.h"
#include "host/linux/SystemTime.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

struct BRLogger::State {
    std::mutex mutex;
    std::string path; ///< on this machine; empty before init
    std::size_t size = 0;
    unsigned int count = 0;
    bool failed = false; ///< the last line, or the start of the log
    double failedAt = 0; ///< seconds of the host's clock

    /// A log that cannot be written must cost nothing: whoever logs an error does so again and again.
    bool isLeftAlone() const {
        constexpr double Pause = 60;
        const double since = failed ? BRDeviceTime::getSeconds() - failedAt : Pause;
        return since >= 0 && since < Pause;
    }

    void setFailed(bool value) {
        failed = value;
        failedAt = value ? BRDeviceTime::getSeconds() : 0;
    }

    std::string nameOf(unsigned int number) const { return number == 0 ? path : path + '.' + std::to_string(number); }

    void rotate() const {
        ::unlink(nameOf(count - 1).c_str());
        for (unsigned int number = count - 1; number > 0; --number)
            ::rename(nameOf(number - 1).c_str(), nameOf(number).c_str());
    }

    int openFile() const {
        constexpr int Flags = O_WRONLY | O_APPEND | O_CREAT;
        const int descriptor = sensorhost::openRegularFile(path, Flags);
        if (descriptor >= 0 || errno != ENOENT)
            return descriptor;
        sensorhost::makeParentFolder(path);
        return sensorhost::openRegularFile(path, Flags);
    }

    bool isLogOpen() const;
    /// Where the log ends, -1 without one.
    off_t reopen() {
        file.reset(openFile());
        return findEnd();
    }
    off_t findEnd() const { return file.isOpen() ? ::lseek(file.get(), 0, SEEK_END) : -1; }
    /// False if the whole line is not in the log.
    bool append();

    sensorhost::Descriptor file;
    std::string line; ///< in hand; its memory stays, so that a line costs none
};

// Several loggers of a process may share a log, and whoever rotates or deletes it must not leave the others writing
// into a file that is out of sight.
bool BRLogger::State::isLogOpen() const {
    struct stat own {};
    struct stat named {};
    return file.isOpen() && !sensorhost::isDenied(path, O_WRONLY) && ::fstat(file.get(), &own) == 0 &&
           ::stat(path.c_str(), &named) == 0 && own.st_dev == named.st_dev && own.st_ino == named.st_ino;
}

bool BRLogger::State::append() {
    off_t end = isLogOpen() ? findEnd() : reopen();
    const auto isFull = [&] { return end > 0 && static_cast<std::size_t>(end) + line.size() > size; };
    if (isFull()) {
        rotate();
        end = reopen();
    }
    // A log that does not rotate must not grow.
    if (end < 0 || isFull())
        return false;
    const ssize_t written = ::write(file.get(), line.data(), line.size());
    // On a full disk half a line would run into the next one.
    if (written > 0 && static_cast<std::size_t>(written) < line.size()) [[maybe_unused]]
        const int ignored = ::ftruncate(file.get(), end);
    return written == static_cast<ssize_t>(line.size());
}

BRLogger::BRLogger() : m_pState(std::make_unique<State>()) {}

BRLogger::~BRLogger() = default;

int BRLogger::init(const char* path, unsigned int size, unsigned int count) {
    State& s = *m_pState;
    const std::lock_guard guard(s.mutex);
    s.path.clear();
    s.file.reset();
    if (path == nullptr || *path == '\0' || size == 0 || count == 0)
        return 0;
    s.path = sensorhost::hostPath(path);
    s.size = size;
    s.count = count;
    const bool isOpen = s.reopen() >= 0;
    s.setFailed(!isOpen);
    return isOpen ? 1 : 0;
}

void BRLogger::writeLog(const char* tag, const char* text) {
    State& s = *m_pState;
    const std::lock_guard guard(s.mutex);
    if (s.path.empty() || s.isLeftAlone())
        return;
    const sensorhost::LocalTime now = sensorhost::localTime();
    std::array<char, 64> time{};
    std::snprintf(time.data(), time.size(), "%04d-%02d-%02d %02d:%02d:%02d ", now.year, now.month, now.day, now.hour,
                  now.minute, now.second);
    std::string& line = s.line;
    line = time.data();
    line += tag != nullptr ? tag : "";
    line += ' ';
    line.append(text != nullptr ? text : "", ::strnlen(text != nullptr ? text : "", s.size));
    if (line.back() == '\n')
        line.pop_back();
    if (line.size() >= s.size)
        line.resize(s.size - 1);
    line += '\n';
    s.setFailed(!s.append());
}
