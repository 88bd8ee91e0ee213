#pragma once

#include "host/Export.h"

#include <cstddef>
#include <string>
#include <vector>

/// What the host classes did and do, for a program that embeds the library and wants to check it. Any thread may ask.
namespace sensorhost {

/// The full names of the GThreads that run now, in the order of their starts: each from a successful start until its
/// stop has ended.
SENSORHOST_API std::vector<std::string> runningThreads();

/// A shell line that sy_system got.
struct CommandRecord {
    std::string line; ///< as the caller gave it, with the device's paths
    int result;       ///< what sy_system returned
};

/// More lines push the oldest ones out.
constexpr std::size_t MostCommandRecords = 1000;

/// Switches the recording of shell lines on or off; it starts off. Switching it on forgets what was recorded before.
SENSORHOST_API void recordCommands(bool on);
/// The lines recorded so far, in the order in which they ended.
SENSORHOST_API std::vector<CommandRecord> getCommands();

} // namespace sensorhost
