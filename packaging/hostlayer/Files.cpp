// Files, logs and shell lines. The library's paths are absolute and fixed: what puts them elsewhere is here.
#include "HostLayer.h"
#include "host/BRFile.h"
#include "host/BRLogger.h"
#include "host/DiskManager.h"
#include "host/SystemHelper.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>

#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string& pathPrefix() {
    static std::string prefix;
    return prefix;
}

} // namespace

namespace hostlayer {

void setPathPrefix(const std::string& folder) { pathPrefix() = folder; }

std::string hostPath(const std::string& devicePath) { return pathPrefix() + devicePath; }

} // namespace hostlayer

using hostlayer::hostPath;

struct BRFile::State {
    std::FILE* file = nullptr;
    std::string path;
    std::string written; ///< the name of the new contents until they are whole, empty for reading
};

BRFile::BRFile() : m_pState(std::make_unique<State>()) {}
BRFile::~BRFile() { close(); }

// A power cut must leave the old text or the new one. Here the new text gets a name of its own and takes the place of
// the old one when it is on the disk; a flash file system that has no atomic rename needs another way.
int BRFile::open(const char* path, int mode) {
    close();
    State& state = *m_pState;
    state.path = hostPath(path);
    state.written = mode == Replace ? state.path + ".writing" : "";
    state.file =
        std::fopen(mode == Replace ? state.written.c_str() : state.path.c_str(), mode == Replace ? "wbe" : "rbe");
    struct stat status {};
    if (state.file != nullptr && (::fstat(::fileno(state.file), &status) != 0 || S_ISDIR(status.st_mode)))
        close();
    return state.file != nullptr ? 1 : 0;
}

long long BRFile::getLength() const {
    struct stat status {};
    return m_pState->file != nullptr && ::fstat(::fileno(m_pState->file), &status) == 0 ? status.st_size : -1;
}

int BRFile::read(void* buffer, int length) {
    if (m_pState->file == nullptr)
        return -1;
    return static_cast<int>(std::fread(buffer, 1, static_cast<std::size_t>(length), m_pState->file));
}

int BRFile::write(const void* bytes, int length) {
    State& state = *m_pState;
    if (state.file == nullptr || state.written.empty() ||
        std::fwrite(bytes, 1, static_cast<std::size_t>(length), state.file) != static_cast<std::size_t>(length) ||
        std::fflush(state.file) != 0 || ::fsync(::fileno(state.file)) != 0 ||
        std::rename(state.written.c_str(), state.path.c_str()) != 0)
        return -1;
    return length;
}

void BRFile::close() {
    State& state = *m_pState;
    if (state.file == nullptr)
        return;
    std::fclose(state.file);
    state.file = nullptr;
    if (!state.written.empty())
        ::unlink(state.written.c_str()); // there only if nothing was written
}

int BRFile::isExist(const char* path) { return DiskManager::isFileExist(path); }

int DiskManager::isFileExist(const char* path) { return ::access(hostPath(path).c_str(), F_OK) == 0 ? 1 : 0; }

struct BRLogger::State {
    std::mutex mutex;
    std::string path;
    long size = 0;
    unsigned int count = 0;
};

BRLogger::BRLogger() : m_pState(std::make_unique<State>()) {}
BRLogger::~BRLogger() = default;

int BRLogger::init(const char* path, unsigned int size, unsigned int count) {
    State& state = *m_pState;
    const std::lock_guard guard(state.mutex);
    state.path = hostPath(path);
    state.size = static_cast<long>(size);
    state.count = count;
    std::FILE* const file = std::fopen(state.path.c_str(), "ae");
    return file != nullptr && std::fclose(file) == 0 ? 1 : 0;
}

void BRLogger::writeLog(const char* tag, const char* text) {
    const State& state = *m_pState;
    const std::lock_guard guard(m_pState->mutex);
    struct stat status {};
    if (::stat(state.path.c_str(), &status) == 0 && status.st_size > state.size) {
        for (unsigned int number = state.count - 1; number > 0; --number) {
            const std::string older = state.path + "." + std::to_string(number);
            const std::string newer = number > 1 ? state.path + "." + std::to_string(number - 1) : state.path;
            std::rename(newer.c_str(), older.c_str());
        }
    }
    if (std::FILE* const file = std::fopen(state.path.c_str(), "ae")) {
        std::fprintf(file, "%ld %s %s\n", static_cast<long>(std::time(nullptr)), tag, text);
        std::fclose(file);
    }
}

// The library's lines are a command and absolute paths ("cp /mnt/mtd/... /mnt/mtd/..."), without quotes or blanks in
// them.
int sy_system(const char* command, int timeLimit) {
    std::string line;
    for (const char* at = command; *at != '\0'; ++at) {
        if (*at == '/' && at != command && at[-1] == ' ')
            line += hostPath("");
        line += *at;
    }
    return std::system(("timeout " + std::to_string(timeLimit) + " " + line).c_str());
}

// A product restarts the device here, after this has returned.
int SystemHelper::rebootDevice(const char* reason) {
    std::fprintf(stderr, "restart wanted: %s\n", reason);
    return 1;
}
