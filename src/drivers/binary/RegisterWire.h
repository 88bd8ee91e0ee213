#pragma once

#include "drivers/SerialLine.h"

/// Habits of the blocks with binary registers on their line.
namespace sensorcontrol::binary {

/// A line is emptied byte by byte, until a receive gives none. The timeout is the block's, in tenths of a second.
constexpr DrainHabit byteByByte(int timeout) { return {.piece = 1, .timeout = timeout}; }

/// Prints a frame on the console, in hexadecimal digits and a line of its own.
void printFrame(std::span<const char> frame);

} // namespace sensorcontrol::binary
