#include "InputLines.h"

#include "Interrupt.h"

#include <cerrno>

#include <unistd.h>

namespace sensorctl {

bool InputLines::takeLine(std::string& line) {
    const std::size_t end = m_strRest.find('\n');
    if (end == std::string::npos && (!m_bEnd || m_strRest.empty()))
        return false;
    line = m_strRest.substr(0, end);
    m_strRest.erase(0, end == std::string::npos ? end : end + 1);
    return true;
}

InputLines::Result InputLines::next(std::string& line, std::chrono::milliseconds span) {
    const auto until = std::chrono::steady_clock::now() + span;
    for (;;) {
        if (Interrupt::isRequested())
            return Result::Nothing;
        if (takeLine(line))
            return Result::Line;
        if (m_bEnd)
            return Result::End;
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        if (!Interrupt::waitInput(STDIN_FILENO, rest))
            return Result::Nothing;
        char bytes[4096];
        const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (count > 0)
            m_strRest.append(bytes, static_cast<std::size_t>(count));
        else if (count == 0 || (errno != EINTR && errno != EAGAIN))
            m_bEnd = true;
    }
}

} // namespace sensorctl
