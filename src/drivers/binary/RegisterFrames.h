#pragma once

#include "drivers/FramePattern.h"

/// The frames of blocks with binary registers: the length of all, 01, the length of what follows it without the sum, 01
/// to read or 02 to write, the register, what is read or written, the sum.
namespace sensorcontrol::binary {

template <class... Items>
constexpr FramePattern registerFrame(int command, Items... items) {
    constexpr int Length = 5 + static_cast<int>(sizeof...(items));
    return FramePattern(Length, 0x01, Length - 3, command, items..., SUM);
}

/// A read; the last item is how many bytes.
template <class... Items>
constexpr FramePattern reading(Items... items) {
    return registerFrame(0x01, items...);
}

/// A write of a byte, the value's unless it is told.
constexpr FramePattern writing(int page, int address) { return registerFrame(0x02, page, address, V); }
constexpr FramePattern writing(int page, int address, int value) { return registerFrame(0x02, page, address, value); }

/// A write of two bytes, the value's low one first.
constexpr FramePattern writingWord(int page, int address) {
    return registerFrame(0x02, page, address, V, Place::Second);
}

} // namespace sensorcontrol::binary
