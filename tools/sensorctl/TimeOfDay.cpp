#include "TimeOfDay.h"

#include "Failure.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace sensorctl {

namespace {

std::optional<int> twoDigits(const std::string& text, std::size_t at) {
    int value = 0;
    const char* const begin = text.data() + at;
    const auto result = std::from_chars(begin, begin + 2, value);
    return result.ec == std::errc() && result.ptr == begin + 2 && value >= 0 ? std::optional(value) : std::nullopt;
}

} // namespace

std::optional<int> TimeOfDay::parse(const std::string& text) {
    if (text.size() != 5 || text[2] != ':')
        return std::nullopt;
    const std::optional<int> hour = twoDigits(text, 0);
    const std::optional<int> minute = twoDigits(text, 3);
    if (!hour || !minute || *minute > 59 || *hour * 60 + *minute > MinutesPerDay)
        return std::nullopt;
    return *hour * 60 + *minute;
}

std::string TimeOfDay::text(int minutes) {
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d", minutes / 60, minutes % 60);
    return text;
}

std::string TimeOfDay::textOfSecond(int second) {
    char text[16];
    std::snprintf(text, sizeof text, ":%02d", second % 60);
    return TimeOfDay::text(second / 60) + text;
}

DaySpan DaySpan::parse(const std::string& text, const std::string& what) {
    const std::size_t dash = std::min(text.find('-'), text.size());
    const std::optional<int> from = TimeOfDay::parse(text.substr(0, dash));
    const std::optional<int> to = TimeOfDay::parse(text.substr(std::min(dash + 1, text.size())));
    if (!from || !to || *from >= *to)
        throw Failure(Usage, what + ": \"" + text + "\" is no span of a day",
                      {"try: 08:00-12:30, up to 24:00; over midnight takes two"});
    return {*from, *to};
}

} // namespace sensorctl
