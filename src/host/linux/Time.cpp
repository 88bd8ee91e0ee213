#include "host/BRDeviceTime.h"
#include "host/BreltoTime.h"
#include "host/linux/ActiveClock.h"
#include "host/linux/StopSignal.h"
#include "host/linux/SystemTime.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>

namespace sensorhost {

LocalTime localTime() {
    if (const ClockSource* clock = activeClock())
        return clock->getLocalTime();
    const time_t now = ::time(nullptr);
    struct tm parts {};
    ::localtime_r(&now, &parts);
    return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec};
}

namespace {

// A deadline further away would leave the range of a 32-bit time_t.
constexpr long LongestWait = 100'000'000;

long long inMicroseconds(const BreltoTime& span) {
    const long seconds = std::clamp(span.getSeconds(), -LongestWait, LongestWait);
    const auto rest = static_cast<long long>(span.getMicroseconds());
    return std::min(seconds * 1'000'000LL + std::min(rest, LongestWait * 1'000'000LL), LongestWait * 1'000'000LL);
}

void sleepFor(long long microseconds) {
    timespec until{};
    ::clock_gettime(CLOCK_MONOTONIC, &until);
    const long long nanoseconds = until.tv_nsec + microseconds % 1'000'000 * 1000;
    until.tv_sec += static_cast<time_t>(microseconds / 1'000'000 + nanoseconds / 1'000'000'000);
    until.tv_nsec = static_cast<long>(nanoseconds % 1'000'000'000);
    // A signal handler of the host's must not cut the wait of a protocol short.
    while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) == EINTR) {
    }
}

} // namespace

} // namespace sensorhost

void BreltoTime::wait(const BreltoTime& span) {
    const long long microseconds = sensorhost::inMicroseconds(span);
    if (sensorhost::ClockSource* clock = sensorhost::activeClock())
        clock->wait(microseconds);
    else if (microseconds <= 0)
        return;
    else if (sensorhost::StopSignal* signal = sensorhost::StopSignal::current())
        signal->waitFor(microseconds);
    else
        sensorhost::sleepFor(microseconds);
}

BRDeviceTime BRDeviceTime::getCurrentTime() {
    const sensorhost::LocalTime now = sensorhost::localTime();
    BRDeviceTime time;
    time.m_nHour = now.hour;
    time.m_nMinute = now.minute;
    time.m_nSecond = now.second;
    return time;
}

double BRDeviceTime::getSeconds() {
    if (const sensorhost::ClockSource* clock = sensorhost::activeClock())
        return clock->now();
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
