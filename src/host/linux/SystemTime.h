#pragma once

#include "host/linux/ClockSource.h"

namespace sensorhost {

/// Date and time of day of the clock in force.
LocalTime localTime();

} // namespace sensorhost
