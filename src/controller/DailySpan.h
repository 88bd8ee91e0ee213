#pragma once

#include "controller/HourMinute.h"

/// Spans of the day as arithmetic. Times are hour * 100 + minute; minutes arrive in tens.
namespace sensorcontrol::span {

/// End of a span whose end has not arrived yet.
inline constexpr int NoEnd = 10000;

/// Why a value does not fit the span that it would make.
enum class Fault {
    None,
    StartAfterEnd, ///< looked for only on request: while a span is put together its halves do not fit
    BeyondMidnight ///< 24:00 is the last time of a day
};

/// A start or an end with one half of it changed.
struct Change {
    int time;
    Fault fault;
};

constexpr Change startHour(int hour, int start, int end, bool isChecked) {
    const int time = hourMinute(hour, start % 100);
    if (isChecked && time > end)
        return {time, Fault::StartAfterEnd};
    return {time, hour == 24 && start % 100 > 0 ? Fault::BeyondMidnight : Fault::None};
}

constexpr Change startMinute(int tensOfMinutes, int start, int end, bool isChecked) {
    const int time = hourMinute(start / 100, tensOfMinutes * 10LL);
    if (isChecked && time > end)
        return {time, Fault::StartAfterEnd};
    return {time, tensOfMinutes > 0 && start / 100 == 24 ? Fault::BeyondMidnight : Fault::None};
}

constexpr Change endHour(int hour, int start, int end, bool isChecked) {
    const int time = hourMinute(hour, end % 100);
    // While no end minute has arrived, the hour alone is compared.
    if (isChecked && (end == NoEnd ? hour < start / 100 : time < start))
        return {time, Fault::StartAfterEnd};
    return {time, hour == 24 && end % 100 > 0 ? Fault::BeyondMidnight : Fault::None};
}

constexpr Change endMinute(int tensOfMinutes, int start, int end, bool isChecked) {
    const int time = hourMinute(end / 100, tensOfMinutes * 10LL);
    if (isChecked && time <= start)
        return {time, Fault::StartAfterEnd};
    return {time, tensOfMinutes > 0 && end / 100 == 24 ? Fault::BeyondMidnight : Fault::None};
}

/// Both ends included.
constexpr bool covers(int start, int end, int time) { return start <= time && time <= end; }

/// From the change to night, included, to the change to day, excluded, over midnight if need be. The two differ.
constexpr bool isNight(int time, int toNight, int toDay) {
    return toNight > toDay ? time < toDay || time >= toNight : time >= toNight && time < toDay;
}

} // namespace sensorcontrol::span
