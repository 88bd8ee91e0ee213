#include "host/linux/FileSystem.h"

#include "host/linux/HostSettings.h"

#include <filesystem>

#include <unistd.h>

namespace sensorhost {

void makeParentFolder(const std::string& hostFile) {
    const std::string root = getRootFolder();
    const std::size_t end = hostFile.rfind('/');
    if (root.empty() || end == std::string::npos || hostFile.compare(0, root.size() + 1, root + '/') != 0)
        return;
    std::error_code error; // what cannot be made shows when the file is opened
    std::filesystem::create_directories(hostFile.substr(0, end), error);
}

void Descriptor::reset(int value) {
    if (m_nValue >= 0)
        ::close(m_nValue);
    m_nValue = value;
}

} // namespace sensorhost
