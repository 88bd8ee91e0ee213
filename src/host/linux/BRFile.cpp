// Without it a file with a large inode number cannot be asked for its size on a 32-bit device.
#define _FILE_OFFSET_BITS 64 // NOLINT(bugprone-reserved-identifier): libc asks for it by this name

#include "host/BRFile.h"

#include "host/DiskManager.h"
#include "host/linux/FileSystem.h"
#include "host/linux/HostSettings.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// All bytes at the offset. False with errno set if not all of them could be written.
bool writeAt(int descriptor, const char* bytes, std::size_t length, off_t offset) {
    while (length > 0) {
        const ssize_t written = ::pwrite(descriptor, bytes, length, offset);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes += written;
        length -= static_cast<std::size_t>(written);
        offset += written;
    }
    return true;
}

/// Bytes read, fewer than asked at the end of the file, -1 on failure.
ssize_t readAt(int descriptor, char* buffer, std::size_t length, off_t offset) {
    std::size_t done = 0;
    while (done < length) {
        const ssize_t got = ::pread(descriptor, buffer + done, length - done, offset + static_cast<off_t>(done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return -1;
        if (got == 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return static_cast<ssize_t>(done);
}

/// Makes sure that a file of `from` bytes can hold `to` bytes, which read as zero. False on a full disk.
bool reserve(int descriptor, off_t from, off_t to) {
    int result = 0;
    do
        result = ::fallocate(descriptor, 0, 0, to);
    while (result != 0 && errno == EINTR);
    if (result == 0 || (errno != EOPNOTSUPP && errno != ENOSYS))
        return result == 0;
    const std::vector<char> zeros(static_cast<std::size_t>(to - from), '\0');
    return writeAt(descriptor, zeros.data(), zeros.size(), from);
}

bool truncateTo(int descriptor, off_t length) {
    int result = 0;
    do
        result = ::ftruncate(descriptor, length);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

} // namespace

struct BRFile::State {
    sensorhost::Descriptor descriptor;
    std::string path;
    bool replaces = false;
    bool created = false; ///< by open, and nothing was written yet
    bool isNew = false;   ///< its entry in the folder is younger than this open
    bool written = false;
    off_t position = 0;

    bool openForReplacing();
    bool replaceBy(const char* bytes, std::size_t length);
};

bool BRFile::State::openForReplacing() {
    descriptor.reset(sensorhost::openRegularFile(path, O_RDWR));
    if (descriptor.isOpen() || errno != ENOENT)
        return descriptor.isOpen();
    sensorhost::makeParentFolder(path);
    descriptor.reset(sensorhost::openRegularFile(path, O_RDWR | O_CREAT | O_EXCL));
    created = descriptor.isOpen();
    isNew = true;
    // Somebody else made it meanwhile, or it is a link to a file that is missing.
    if (!created && errno == EEXIST)
        descriptor.reset(sensorhost::openRegularFile(path, O_RDWR | O_CREAT));
    return descriptor.isOpen();
}

// A process can be killed between any two system calls, and readers take a text up to its first zero byte. So the file
// first grows by zeros, which leaves the old text, then one write puts the new text and zeros up to the old end in
// place, then the zeros are cut off. The file stays the same one, at no moment is it empty, and a full disk shows
// before anything of the old text is overwritten.
bool BRFile::State::replaceBy(const char* bytes, std::size_t length) {
    const int file = descriptor.get();
    struct stat status {};
    if (::fstat(file, &status) != 0)
        return false;
    const auto oldLength = static_cast<std::size_t>(status.st_size);
    const auto newEnd = static_cast<off_t>(length);

    std::string old(oldLength, '\0');
    if (readAt(file, old.data(), oldLength, 0) != static_cast<ssize_t>(oldLength))
        return false;

    // Most saves change nothing, above all those of a start, and flash wears.
    if (!created && old == std::string_view(bytes, length))
        return true;
    written = true;
    if (length > oldLength && !reserve(file, status.st_size, newEnd)) {
        truncateTo(file, status.st_size);
        return false;
    }

    std::string padded;
    if (length < oldLength) {
        padded.reserve(oldLength);
        padded.assign(bytes, length);
        padded.resize(oldLength, '\0');
        bytes = padded.data();
    }
    if (!writeAt(file, bytes, std::max(length, oldLength), 0)) {
        writeAt(file, old.data(), oldLength, 0);
        truncateTo(file, status.st_size);
        return false;
    }
    return length >= oldLength || truncateTo(file, newEnd);
}

BRFile::BRFile() : m_pState(std::make_unique<State>()) {}

BRFile::~BRFile() { close(); }

int BRFile::open(const char* path, int mode) {
    close();
    if (path == nullptr || *path == '\0' || (mode != Read && mode != Replace))
        return 0;
    State& s = *m_pState;
    s.path = sensorhost::hostPath(path);
    s.replaces = mode == Replace;
    if (s.replaces)
        s.openForReplacing();
    else
        s.descriptor.reset(sensorhost::openRegularFile(s.path, O_RDONLY));
    return s.descriptor.isOpen() ? 1 : 0;
}

long long BRFile::getLength() const {
    struct stat status {};
    if (!m_pState->descriptor.isOpen() || ::fstat(m_pState->descriptor.get(), &status) != 0)
        return -1;
    return status.st_size;
}

int BRFile::read(void* buffer, int length) {
    State& s = *m_pState;
    if (!s.descriptor.isOpen() || length < 0 || (buffer == nullptr && length > 0))
        return -1;
    const ssize_t got =
        readAt(s.descriptor.get(), static_cast<char*>(buffer), static_cast<std::size_t>(length), s.position);
    if (got > 0)
        s.position += got;
    return static_cast<int>(got);
}

int BRFile::write(const void* bytes, int length) {
    State& s = *m_pState;
    if (!s.descriptor.isOpen() || !s.replaces || length < 0 || (bytes == nullptr && length > 0))
        return -1;
    if (!s.replaceBy(static_cast<const char*>(bytes), static_cast<std::size_t>(length))) {
        if (s.created && getLength() == 0)
            s.written = ::unlink(s.path.c_str()) != 0;
        return -1;
    }
    s.created = false;
    return length;
}

void BRFile::close() {
    State& s = *m_pState;
    if (s.written)
        ::fdatasync(s.descriptor.get());
    if (s.written && s.isNew)
        sensorhost::syncEntry(s.path);
    s.descriptor.reset();
    s.created = false;
    s.isNew = false;
    s.written = false;
    s.position = 0;
}

int BRFile::isExist(const char* path) {
    struct stat status {};
    if (path == nullptr || *path == '\0')
        return 0;
    return ::stat(sensorhost::hostPath(path).c_str(), &status) == 0 && !S_ISDIR(status.st_mode) ? 1 : 0;
}

int DiskManager::isFileExist(const char* path) { return BRFile::isExist(path); }
