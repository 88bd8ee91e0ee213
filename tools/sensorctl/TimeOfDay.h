#pragma once

#include <optional>
#include <string>

namespace sensorctl {

/// Minutes of a day as people write them; 24:00 is the end of one.
struct TimeOfDay {
    static constexpr int MinutesPerDay = 24 * 60;

    /// "08:30"; nothing for other text or a time behind 24:00.
    static std::optional<int> parse(const std::string& text);
    static std::string text(int minutes);
    /// "08:30:15".
    static std::string textOfSecond(int second);
};

/// From one time of day to another, the first before the second.
struct DaySpan {
    int from = 0;
    int to = 0;

    /// "08:00-12:00". Throws Failure with Usage, which says `what` it was for.
    static DaySpan parse(const std::string& text, const std::string& what);
    std::string text() const { return TimeOfDay::text(from) + '-' + TimeOfDay::text(to); }
};

} // namespace sensorctl
