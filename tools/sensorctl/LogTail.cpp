#include "LogTail.h"

#include <fstream>
#include <utility>

#include <sys/stat.h>

namespace sensorctl {

namespace {

/// Texts of the whole lines from the position on; moves the position.
void readFrom(const std::string& path, off_t& position, std::vector<std::string>& texts) {
    std::ifstream file(path);
    file.seekg(position);
    for (std::string line; std::getline(file, line) && !file.eof();) {
        position += static_cast<off_t>(line.size()) + 1;
        // Date, time and tag come first.
        std::size_t start = 0;
        for (int word = 0; word < 3 && start != std::string::npos; ++word)
            start = line.find(' ', start == 0 ? 0 : start + 1);
        std::string text = start == std::string::npos ? line : line.substr(start + 1);
        if (!text.empty())
            texts.push_back(std::move(text));
    }
}

} // namespace

LogTail::LogTail(std::string path) : m_strPath(std::move(path)) {
    struct stat status {};
    if (::stat(m_strPath.c_str(), &status) == 0) {
        m_nFile = status.st_ino;
        m_nPosition = status.st_size;
    }
}

std::vector<std::string> LogTail::takeNew() {
    std::vector<std::string> texts;
    struct stat status {};
    if (::stat(m_strPath.c_str(), &status) != 0)
        return texts;
    if (status.st_ino != m_nFile) {
        struct stat rotated {};
        const std::string older = m_strPath + ".1";
        if (m_nFile != 0 && ::stat(older.c_str(), &rotated) == 0 && rotated.st_ino == m_nFile)
            readFrom(older, m_nPosition, texts);
        m_nFile = status.st_ino;
        m_nPosition = 0;
    }
    readFrom(m_strPath, m_nPosition, texts);
    return texts;
}

} // namespace sensorctl
