#include "simulator/MaskUnit.h"

#include <algorithm>

namespace camerasim {

namespace {

enum Operation : std::uint8_t {
    choose = 0x00,
    set = 0x01,
    show = 0x04,
    hide = 0x05,
    clearOne = 0x06,
    clearAll = 0x07,
    resize = 0x20
};

} // namespace

bool MaskUnit::execute(std::span<const std::uint8_t> p_Frame) {
    const std::uint8_t nArgument = p_Frame[2];
    MaskRegion& region = m_Regions[nArgument];
    switch (p_Frame[1]) {
    case choose:
        m_nCurrent = nArgument;
        return true;
    case set:
        region = {.set = true, .shown = true, .width = defaultSize, .height = defaultSize};
        return true;
    case show:
    case hide:
        region.shown = region.set && p_Frame[1] == show;
        return true;
    case clearOne:
        region = {};
        return true;
    case clearAll:
        m_Regions.fill({});
        return true;
    case resize: {
        MaskRegion& current = m_Regions[m_nCurrent];
        if (nArgument < 1 || nArgument > 4) {
            return false;
        }
        if (current.set) {
            int& nSide = nArgument <= 2 ? current.width : current.height;
            nSide = std::clamp(nSide + (nArgument % 2 == 1 ? 1 : -1), 1, largestSize);
        }
        return true;
    }
    default:
        return false;
    }
}

std::string MaskUnit::describe(std::span<const std::uint8_t> p_Frame) {
    const std::string strRegion = std::to_string(p_Frame[2]);
    switch (p_Frame[1]) {
    case choose:
        return "mask: set region " + strRegion;
    case set:
        return "mask: set " + strRegion;
    case show:
        return "mask: show " + strRegion;
    case hide:
        return "mask: hide " + strRegion;
    case clearOne:
        return "mask: clear " + strRegion;
    case clearAll:
        return "mask: clear all";
    case resize: {
        static constexpr std::string_view steps[] = {"increase width", "decrease width", "increase height",
                                                     "decrease height"};
        if (p_Frame[2] >= 1 && p_Frame[2] <= 4) {
            return "mask: " + std::string(steps[p_Frame[2] - 1]);
        }
        break;
    }
    default:
        break;
    }
    return "mask: unknown operation";
}

std::uint32_t MaskUnit::packed(int p_nRegion) const {
    const MaskRegion& mask = region(p_nRegion);
    return (mask.set ? 1U : 0U) | (mask.shown ? 2U : 0U) | static_cast<std::uint32_t>(mask.width) << 8 |
           static_cast<std::uint32_t>(mask.height) << 16;
}

void MaskUnit::setPacked(int p_nRegion, std::uint32_t p_nValue) {
    MaskRegion& mask = m_Regions[static_cast<std::uint8_t>(p_nRegion)];
    mask = {};
    if ((p_nValue & 1U) != 0) {
        mask.set = true;
        mask.shown = (p_nValue & 2U) != 0;
        mask.width = std::clamp(static_cast<int>(p_nValue >> 8 & 0xffU), 1, largestSize);
        mask.height = std::clamp(static_cast<int>(p_nValue >> 16 & 0xffU), 1, largestSize);
    }
}

} // namespace camerasim
