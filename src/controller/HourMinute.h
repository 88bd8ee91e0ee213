#pragma once

#include <algorithm>
#include <limits>

namespace sensorcontrol {

/// Hour and minute as one number, hour * 100 + minute. Parts that make no time are taken as they come; what no int
/// holds ends at the limit.
constexpr int hourMinute(long long hour, long long minute) {
    return static_cast<int>(
        std::clamp<long long>(hour * 100 + minute, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

} // namespace sensorcontrol
