#include "TemporaryRoot.h"

#include "host/linux/HostSettings.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <signal.h>
#include <stdlib.h>
#include <sys/resource.h>

namespace fs = std::filesystem;

TemporaryRoot::TemporaryRoot(const std::string& name) {
    std::string folder = (fs::temp_directory_path() / "sensorhost-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    m_strFolder = folder;
    m_strRoot = folder + '/' + name;
    fs::create_directory(m_strRoot);
    sensorhost::setRootFolder(m_strRoot);
}

TemporaryRoot::~TemporaryRoot() {
    sensorhost::setRootFolder("");
    std::error_code error;
    fs::remove_all(m_strFolder, error);
}

std::string TemporaryRoot::read(const std::string& devicePath) const {
    std::ifstream file(path(devicePath), std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(missing)";
}

void TemporaryRoot::write(const std::string& devicePath, const std::string& text) const {
    fs::create_directories(fs::path(path(devicePath)).parent_path());
    std::ofstream(path(devicePath), std::ios::binary) << text;
}

bool TemporaryRoot::exists(const std::string& devicePath) const { return fs::exists(path(devicePath)); }

FullDisk::FullDisk(unsigned long limit) : m_nPrevious(0) {
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit size{};
    ::getrlimit(RLIMIT_FSIZE, &size);
    m_nPrevious = size.rlim_cur;
    size.rlim_cur = limit;
    ::setrlimit(RLIMIT_FSIZE, &size);
}

FullDisk::~FullDisk() {
    rlimit size{};
    ::getrlimit(RLIMIT_FSIZE, &size);
    size.rlim_cur = m_nPrevious;
    ::setrlimit(RLIMIT_FSIZE, &size);
    ::signal(SIGXFSZ, SIG_DFL);
}
