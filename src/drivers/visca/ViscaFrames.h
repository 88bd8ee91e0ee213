#pragma once

#include "drivers/FramePattern.h"

namespace sensorcontrol::visca {

/// A setting command: 81 01 04, the items, FF.
template <class... Items>
constexpr FramePattern setting(Items... items) {
    return FramePattern(0x81, 0x01, 0x04, items..., 0xff);
}

/// An inquiry: 81 09 04, the items, FF.
template <class... Items>
constexpr FramePattern inquiry(Items... items) {
    return FramePattern(0x81, 0x09, 0x04, items..., 0xff);
}

/// A frame of the infrared board: FE 01 1E 02, selector and value, the sum of the bytes between FE and it, FF.
constexpr FramePattern infraredFrame(int selector, int value) {
    return FramePattern(0xfe, 0x01, 0x1e, 0x02, selector, value, 0x01 + 0x1e + 0x02 + selector + value, 0xff);
}

} // namespace sensorcontrol::visca
