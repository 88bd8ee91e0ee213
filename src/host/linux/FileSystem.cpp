// Without it a file with a large inode number cannot be looked at on a 32-bit device.
#define _FILE_OFFSET_BITS 64 // NOLINT(bugprone-reserved-identifier): libc asks for it by this name

#include "host/linux/FileSystem.h"

#include "host/linux/HostSettings.h"

#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sensorhost {

void makeParentFolder(const std::string& hostFile) {
    namespace fs = std::filesystem;
    const std::string root = getRootFolder();
    if (root.empty() || !hostFile.starts_with(root + '/'))
        return;
    std::error_code error; // what cannot be made shows when the file is opened
    const fs::path folder = fs::path(hostFile).parent_path();
    fs::path standing = folder;
    while (!fs::exists(standing, error) && standing.has_relative_path())
        standing = standing.parent_path();
    fs::create_directories(folder, error);
    for (fs::path made = folder; made != standing; made = made.parent_path())
        syncFolder(made.parent_path());
}

bool isDenied(const std::string& hostFile, int flags) {
    const AccessDenial denial = deniedAccess(hostFile);
    const bool reads = (flags & O_ACCMODE) == O_RDONLY;
    return denial == AccessDenial::Both || denial == (reads ? AccessDenial::Reading : AccessDenial::Writing);
}

int openRegularFile(const std::string& hostFile, int flags) {
    if (isDenied(hostFile, flags)) {
        errno = EACCES;
        return -1;
    }
    const int descriptor = ::open(hostFile.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0644);
    struct stat status {};
    if (descriptor < 0 || (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)))
        return descriptor;
    ::close(descriptor);
    errno = EINVAL;
    return -1;
}

void syncFolder(const std::string& hostFolder) {
    const Descriptor folder(::open(hostFolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen())
        ::fsync(folder.get());
}

void syncEntry(const std::string& hostFile) {
    std::error_code error;
    // The entry of a file behind a link stands where the link leads.
    const std::filesystem::path file = std::filesystem::canonical(hostFile, error);
    if (!error)
        syncFolder(file.parent_path());
}

void syncWhole(const std::string& hostFile) {
    const Descriptor file(::open(hostFile.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0)
        return;
    if (S_ISDIR(status.st_mode)) {
        ::syncfs(file.get());
    } else if (S_ISREG(status.st_mode)) {
        ::fdatasync(file.get());
        syncEntry(hostFile);
    }
}

void Descriptor::reset(int value) {
    if (m_nValue >= 0)
        ::close(m_nValue);
    m_nValue = value;
}

} // namespace sensorhost
