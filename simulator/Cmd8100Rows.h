#pragma once

#include "simulator/ViscaRows.h"

/// Registers of the CMD8100, which its relatives differ from in a few rows.
namespace camerasim::visca {

inline constexpr std::array<std::uint8_t, 4> Cmd8100ExposureModes{0x00, 0x0a, 0x0b, 0xa0};
inline constexpr std::array<std::uint8_t, 3> Cmd8100WhiteBalanceModes{0x00, 0x04, 0x09};

inline constexpr std::array<ValueWord, 4> Cmd8100ExposureWords{
    {{0x00, "automatic"}, {0x0a, "shutter priority"}, {0x0b, "iris priority"}, {0xa0, "manual"}}};
inline constexpr std::array<ValueWord, 2> CmdFocusTriggerWords{{{0, "continuous"}, {2, "after zoom"}}};

inline constexpr auto Cmd8100Rows =
    joined(CommonRows,
           std::to_array<ViscaRegister>({
               {.code = 0x28, .name = "focus near limit", .payload = 4, .factory = 2, .last = 4},
               {.code = 0x2c, .name = "gain limit", .factory = 12, .last = 15},
               {.code = 0x35, .name = "white balance", .factory = 4, .listed = Cmd8100WhiteBalanceModes},
               {.code = 0x39, .name = "exposure mode", .listed = Cmd8100ExposureModes, .words = Cmd8100ExposureWords},
               {.code = 0x3d, .name = "wide dynamic range", .factory = 3, .first = 2, .last = 3, .words = OnOff},
               {.code = 0x42, .name = "sharpness", .payload = 4, .factory = 5, .last = 14},
               {.code = 0x4a, .name = "shutter", .payload = 4, .last = 18},
               {.code = 0x4b, .name = "iris", .payload = 4, .factory = 16, .first = 5, .last = 17},
               {.code = 0x53, .name = "noise reduction", .factory = 6, .last = 6},
               {.code = 0x57, .name = "focus trigger", .last = 2, .words = CmdFocusTriggerWords},
               {.code = 0x58, .name = "focus sensitivity", .factory = 1, .last = 5},
               {.code = 0xa1, .name = "defog", .factory = 3, .first = 2, .last = 3, .words = OnOff},
               {.code = 0xa2, .name = "photometry", .factory = 2, .first = 2, .last = 3},
               {.code = 0xa3, .name = "shutter limit", .payload = 4, .last = 12},
           }));

} // namespace camerasim::visca
