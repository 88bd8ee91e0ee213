#include "StateFolder.h"

#include "Failure.h"
#include "host/DevicePaths.h"
#include "host/XmlConfigureTool.h"
#include "host/linux/HostSettings.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace sensorctl {

namespace {

namespace paths = sensorcontrol::paths;
using sensorhost::hostPath;

constexpr const char* Folders[] = {paths::ParameterFolder, paths::LogFolder, paths::ModuleFolder};

bool createSchemeCountFile(int count) {
    XmlConfigureTool tool;
    if (!tool.open(paths::SchemeCountFile, 1, XmlConfigureTool::Create))
        return false;
    tool.setRootNodeName("sensorAbility");
    XmlConfigureNode node("paramScheme");
    XmlConfigureItem item;
    item.setProperty("name", "SchemeNum");
    item.setProperty("value", count);
    node.addItem(item);
    tool.addConfigNode(node);
    return tool.close() != 0;
}

} // namespace

StateFolder::StateFolder(const std::string& folder, int schemes) : m_strFolder(folder) {
    try {
        prepare();
        lock();
    } catch (...) {
        if (m_nLock >= 0)
            ::close(m_nLock);
        throw;
    }
    sensorhost::setRootFolder(m_strFolder);
    const bool isMissing = !std::filesystem::exists(hostPath(paths::SchemeCountFile));
    if ((isMissing || schemes > 0) && !createSchemeCountFile(std::max(schemes, 1)))
        throw Failure(Trouble, hostPath(paths::SchemeCountFile) + " cannot be written");
}

StateFolder::~StateFolder() { ::close(m_nLock); }

std::string StateFolder::parameterFile(int scheme) {
    return hostPath(scheme < 0 ? paths::FactoryFile : paths::SchemeFilePrefix + std::to_string(scheme + 1) + ".cfg");
}

std::string StateFolder::portLink() const { return m_strFolder + "/port"; }

void StateFolder::installTuning(const std::string& file) const {
    const std::filesystem::path target = hostPath(paths::TuningFile);
    std::error_code error;
    std::filesystem::create_directories(target.parent_path(), error);
    std::filesystem::copy_file(file, target, std::filesystem::copy_options::overwrite_existing, error);
    if (error)
        throw Failure(Trouble, "--tuning " + file + ": " + error.message());
}

void StateFolder::prepare() {
    for (const char* const name : Folders) {
        const std::string folder = m_strFolder + name;
        std::error_code error;
        std::filesystem::create_directories(folder, error);
        if (!error && ::access(folder.c_str(), R_OK | W_OK | X_OK) != 0)
            error = std::error_code(errno, std::generic_category());
        if (error)
            throw Failure(Trouble, "the library's files cannot live in " + folder + ": " + error.message(),
                          {"try: --root with a folder that you may write"});
    }
}

void StateFolder::lock() {
    const std::string file = m_strFolder + "/lock";
    m_nLock = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (m_nLock < 0)
        throw Failure(Trouble, file + ": " + std::strerror(errno), {"try: --root with a folder that you may write"});
    // Two controllers on the same files would overwrite each other's.
    if (::flock(m_nLock, LOCK_EX | LOCK_NB) != 0)
        throw Failure(Trouble, "another sensorctl uses " + m_strFolder,
                      {"try: end it, or --root with a folder of its own"});
}

} // namespace sensorctl
