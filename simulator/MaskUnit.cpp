#include "simulator/MaskUnit.h"

#include <algorithm>

namespace camerasim {

namespace {

enum Operation : std::uint8_t {
    Choose = 0x00,
    Set = 0x01,
    Show = 0x04,
    Hide = 0x05,
    ClearOne = 0x06,
    ClearAll = 0x07,
    Resize = 0x20
};

} // namespace

bool MaskUnit::execute(std::span<const std::uint8_t> frame) {
    const std::uint8_t argument = frame[2];
    MaskRegion& region = m_Regions[argument];
    switch (frame[1]) {
    case Choose:
        m_nCurrent = argument;
        return true;
    case Set:
        region = {.set = true, .shown = true, .width = DefaultSize, .height = DefaultSize};
        return true;
    case Show:
    case Hide:
        region.shown = region.set && frame[1] == Show;
        return true;
    case ClearOne:
        region = {};
        return true;
    case ClearAll:
        m_Regions.fill({});
        return true;
    case Resize: {
        MaskRegion& current = m_Regions[m_nCurrent];
        if (argument < 1 || argument > 4) {
            return false;
        }
        if (current.set) {
            int& side = argument <= 2 ? current.width : current.height;
            side = std::clamp(side + (argument % 2 == 1 ? 1 : -1), 1, LargestSize);
        }
        return true;
    }
    default:
        return false;
    }
}

std::string MaskUnit::describe(std::span<const std::uint8_t> frame) {
    const std::string region = std::to_string(frame[2]);
    switch (frame[1]) {
    case Choose:
        return "mask: set region " + region;
    case Set:
        return "mask: set " + region;
    case Show:
        return "mask: show " + region;
    case Hide:
        return "mask: hide " + region;
    case ClearOne:
        return "mask: clear " + region;
    case ClearAll:
        return "mask: clear all";
    case Resize: {
        static constexpr std::string_view Steps[] = {"increase width", "decrease width", "increase height",
                                                     "decrease height"};
        if (frame[2] >= 1 && frame[2] <= 4) {
            return "mask: " + std::string(Steps[frame[2] - 1]);
        }
        break;
    }
    default:
        break;
    }
    return "mask: unknown operation";
}

std::uint32_t MaskUnit::packed(int region) const {
    const MaskRegion& mask = m_Regions[static_cast<std::uint8_t>(region)];
    return (mask.set ? 1U : 0U) | (mask.shown ? 2U : 0U) | static_cast<std::uint32_t>(mask.width) << 8 |
           static_cast<std::uint32_t>(mask.height) << 16;
}

void MaskUnit::setPacked(int region, std::uint32_t value) {
    MaskRegion& mask = m_Regions[static_cast<std::uint8_t>(region)];
    mask = {};
    if ((value & 1U) != 0) {
        mask.set = true;
        mask.shown = (value & 2U) != 0;
        mask.width = std::clamp(static_cast<int>(value >> 8 & 0xffU), 1, LargestSize);
        mask.height = std::clamp(static_cast<int>(value >> 16 & 0xffU), 1, LargestSize);
    }
}

} // namespace camerasim
