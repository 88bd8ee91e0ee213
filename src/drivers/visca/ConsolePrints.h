#pragma once

#include "host/Export.h"

/// Console prints of the family; each controller has them in a namespace of its own name.
namespace sensorcontrol::visca {

/// Prints bytes, or numbers, as hex on the console.
SENSORCONTROL_API void printArray(const char* bytes, int length);
SENSORCONTROL_API void printIntArray(const int* values, int length);

} // namespace sensorcontrol::visca
