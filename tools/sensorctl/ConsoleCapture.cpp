#include "ConsoleCapture.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace sensorctl {

ConsoleCapture::ConsoleCapture() : m_pFile(std::tmpfile()) {
    std::fflush(stdout);
    m_nSaved = m_pFile != nullptr ? ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3) : -1;
    if (m_nSaved < 0 || ::dup2(::fileno(m_pFile), STDOUT_FILENO) < 0)
        m_strFault = std::string("what the library says is not kept: ") + std::strerror(errno);
}

ConsoleCapture::~ConsoleCapture() {
    restore();
    if (m_pFile != nullptr)
        std::fclose(m_pFile);
}

void ConsoleCapture::restore() {
    if (m_nSaved < 0)
        return;
    std::fflush(stdout);
    ::dup2(m_nSaved, STDOUT_FILENO);
    ::close(m_nSaved);
    m_nSaved = -1;
}

std::vector<std::string> ConsoleCapture::finish() {
    restore();
    if (!m_strFault.empty())
        return {m_strFault};
    std::vector<std::string> lines;
    std::rewind(m_pFile);
    std::string line;
    for (int c = 0; (c = std::fgetc(m_pFile)) != EOF || !line.empty();) {
        if (c != '\n' && c != EOF) {
            line += static_cast<char>(c);
            continue;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        if (!line.empty())
            lines.push_back(line);
        line.clear();
    }
    return lines;
}

} // namespace sensorctl
