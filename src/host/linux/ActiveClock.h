#pragma once

#include "host/linux/ClockSource.h"

#include <atomic>
#include <memory>

namespace sensorhost {

extern std::atomic<ClockSource*> g_pActiveClock;

/// The clock that the program installed, null for the machine's own.
inline ClockSource* activeClock() { return g_pActiveClock.load(std::memory_order_acquire); }

/// The same, held.
std::shared_ptr<ClockSource> holdActiveClock();

} // namespace sensorhost
