#include "support/TempRoot.h"

#include "host/linux/HostSettings.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

TempRoot::TempRoot(const std::string& name) {
    m_strFolder = std::filesystem::temp_directory_path() / "sensorcontrol-XXXXXX";
    if (mkdtemp(m_strFolder.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    m_strPath = m_strFolder + '/' + name;
    std::filesystem::create_directory(m_strPath);
    sensorhost::setRootFolder(m_strPath);
}

TempRoot::~TempRoot() {
    sensorhost::setRootFolder("");
    std::error_code ignored;
    std::filesystem::remove_all(m_strFolder, ignored);
}

std::string TempRoot::read(const std::string& devicePath) const {
    std::ifstream file(m_strPath + devicePath, std::ios::binary);
    if (!file)
        return "<none>";
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string TempRoot::errorLines() const {
    static constexpr std::string_view Tag = "SensorError ";
    std::istringstream log(read("/mnt/mtd/log/SensorError.log"));
    std::string lines;
    for (std::string line; std::getline(log, line) && line != "<none>";) {
        const std::size_t at = line.find(Tag);
        lines += (lines.empty() ? "" : " | ") + (at == std::string::npos ? line : line.substr(at + Tag.size()));
    }
    return lines;
}

bool TempRoot::exists(const std::string& devicePath) const { return std::filesystem::exists(path(devicePath)); }

void TempRoot::write(const std::string& devicePath, const std::string& text) const {
    const std::filesystem::path path = m_strPath + devicePath;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
}

void TempRoot::remove(const std::string& devicePath) const { std::filesystem::remove_all(m_strPath + devicePath); }

void TempRoot::writeSchemeCount(int count) const {
    write("/hd1/moduleConfig/sensorAbility.xml",
          "<ability><paramScheme><item value=\"" + std::to_string(count) + "\"/></paramScheme></ability>\n");
}
