#pragma once

#include "simulator/ViscaModel.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

/// Words and rows that several models of the VISCA family have alike.
namespace camerasim::visca {

inline constexpr std::array<ValueWord, 2> OnOff{{{2, "on"}, {3, "off"}}};
inline constexpr std::array<ValueWord, 2> FocusWords{{{2, "automatic"}, {3, "manual"}}};
inline constexpr std::array<ValueWord, 2> DayNightWords{{{2, "night"}, {3, "day"}}};
inline constexpr std::array<ValueWord, 2> DayNightModeWords{{{2, "automatic"}, {3, "manual"}}};
inline constexpr std::array<ValueWord, 3> PrivateDayNightWords{{{0, "automatic"}, {1, "night"}, {2, "day"}}};
inline constexpr std::array<ValueWord, 2> VideoWords{{{6, "NTSC"}, {8, "PAL"}}};
inline constexpr std::array<std::uint8_t, 3> VideoSystems{0x00, 0x06, 0x08};

inline constexpr auto CommonRows = std::to_array<ViscaRegister>({
    {.code = 0x01, .name = "day/night", .factory = 3, .first = 2, .last = 3, .words = DayNightWords},
    {.code = 0x21, .name = "day/night threshold", .payload = 4, .factory = 10, .last = 28},
    {.code = 0x38, .name = "focus mode", .factory = 2, .first = 2, .last = 3, .words = FocusWords},
    {.code = 0x3e, .name = "exposure compensation", .factory = 3, .first = 2, .last = 3, .words = OnOff},
    {.code = 0x48,
     .name = "focus position",
     .payload = 4,
     .factory = 0x1000,
     .first = 0x1000,
     .last = 0xc000,
     .persistent = false,
     .readOnly = true},
    {.code = 0x49, .name = "saturation", .payload = 4, .factory = 12, .last = 14},
    {.code = 0x4e, .name = "brightness", .payload = 4, .factory = 7, .last = 14},
    {.code = 0x51, .name = "day/night mode", .factory = 2, .first = 2, .last = 3, .words = DayNightModeWords},
    {.code = 0x61, .name = "mirror LR", .factory = 3, .first = 2, .last = 3, .words = OnOff},
    {.code = 0x66, .name = "mirror UD", .factory = 3, .first = 2, .last = 3, .words = OnOff},
    {.code = 0x2472,
     .name = "video system",
     .payload = 2,
     .factory = 8,
     .listed = VideoSystems,
     .words = VideoWords,
     .atRestart = true},
    {.code = 0xfe00, .name = "infrared board: day/night", .last = 2, .words = PrivateDayNightWords},
    {.code = 0xfe01, .name = "infrared board: power mode", .last = 1},
    {.code = 0xfe06, .name = "infrared board: near light", .factory = 50, .last = 100},
    {.code = 0xfe07, .name = "infrared board: middle light", .factory = 50, .last = 100},
    {.code = 0xfe08, .name = "infrared board: far light", .factory = 50, .last = 100},
});

inline constexpr std::array<std::uint32_t, 3> BoardLamps{0xfe06, 0xfe07, 0xfe08};

inline constexpr auto LensSteps = std::to_array<ViscaStep>({
    {.code = 0x0b, .value = 2, .name = "iris up", .target = 0x4b, .delta = 1},
    {.code = 0x0b, .value = 3, .name = "iris down", .target = 0x4b, .delta = -1},
    {.code = 0x08, .value = 2, .name = "focus far", .target = 0x48, .delta = -0x100},
    {.code = 0x08, .value = 3, .name = "focus near", .target = 0x48, .delta = 0x100},
    {.code = 0x18, .value = 1, .name = "one-push trigger", .target = 0x48, .position = 0x2a00},
});

/// The common rows and a model's own, which have other codes.
template <std::size_t Common, std::size_t Own>
constexpr std::array<ViscaRegister, Common + Own> joined(const std::array<ViscaRegister, Common>& common,
                                                         const std::array<ViscaRegister, Own>& own) {
    std::array<ViscaRegister, Common + Own> rows;
    std::copy(own.begin(), own.end(), std::copy(common.begin(), common.end(), rows.begin()));
    return rows;
}

} // namespace camerasim::visca
