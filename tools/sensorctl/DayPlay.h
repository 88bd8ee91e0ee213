#pragma once

#include "DayWorld.h"
#include "SchemeDesk.h"

#include <string>
#include <vector>

namespace sensorctl {

/// One thing that happened in a day, and why.
struct DayEvent {
    int second; ///< of the day
    std::string what;
    std::string value;
    std::string why;
};

/// A day as it went.
struct DayRecord {
    struct Moment {
        int second;
        Sight sight;
        int scheme; ///< -1: none
    };
    std::vector<DayEvent> events;
    std::vector<Moment> moments; ///< the first, then one for each change and each minute
    std::vector<SchemeDesk::Scheme> schemes;
};

/// Draws it. Throws Failure if the file cannot be written.
void drawDay(const DayRecord& day, const std::string& title, const std::string& path);

} // namespace sensorctl
