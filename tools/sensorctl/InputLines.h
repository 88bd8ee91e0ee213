#pragma once

#include <chrono>
#include <string>

namespace sensorctl {

/// Lines of standard input, read so that a wish to end or the end of a span comes through at once.
class InputLines {
public:
    enum class Result { Line, Nothing, End };

    static constexpr std::chrono::milliseconds Forever = std::chrono::hours(24 * 365);

    /// Waits for a line. Nothing: the span is over or the user wants to end. A last line may lack its line end.
    Result next(std::string& line, std::chrono::milliseconds span = Forever);

private:
    bool takeLine(std::string& line);

    std::string m_strRest;
    bool m_bEnd = false;
};

} // namespace sensorctl
