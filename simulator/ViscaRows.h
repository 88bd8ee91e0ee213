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
/// Of models with a wider video system: 00 0E and 01 01 on the wire.
inline constexpr std::array<ValueWord, 2> WideVideoWords{{{0x0e, "NTSC"}, {0x11, "PAL"}}};
inline constexpr std::array<std::uint8_t, 2> WideVideoSystems{0x0e, 0x11};
inline constexpr ViscaRegister WideVideoRow{.code = 0x2472,
                                            .name = "video system",
                                            .payload = 2,
                                            .factory = 0x11,
                                            .listed = WideVideoSystems,
                                            .words = WideVideoWords,
                                            .atRestart = true};

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

/// Rows with some of them changed, each in the place of the row with its code.
template <std::size_t Count, std::size_t Changed>
consteval std::array<ViscaRegister, Count> replaced(std::array<ViscaRegister, Count> rows,
                                                    const std::array<ViscaRegister, Changed>& changes) {
    for (const ViscaRegister& change : changes) {
        const auto it =
            std::find_if(rows.begin(), rows.end(), [&](const ViscaRegister& row) { return row.code == change.code; });
        *it = change; // no constant expression where no row has the code
    }
    return rows;
}

/// Rows without those of some codes.
template <std::size_t Count, std::size_t Left>
consteval std::array<ViscaRegister, Count - Left> without(const std::array<ViscaRegister, Count>& rows,
                                                          const std::array<std::uint32_t, Left>& codes) {
    std::array<ViscaRegister, Count - Left> rest;
    auto next = rest.begin();
    for (const ViscaRegister& row : rows) {
        if (std::find(codes.begin(), codes.end(), row.code) == codes.end()) {
            *next++ = row;
        }
    }
    return next == rest.end() ? rest : throw "a code that no row has";
}

/// Rows and more of them, which have other codes.
template <std::size_t Count, std::size_t Added>
consteval std::array<ViscaRegister, Count + Added> joined(const std::array<ViscaRegister, Count>& rows,
                                                          const std::array<ViscaRegister, Added>& more) {
    std::array<ViscaRegister, Count + Added> all;
    std::copy(more.begin(), more.end(), std::copy(rows.begin(), rows.end(), all.begin()));
    return all;
}

} // namespace camerasim::visca
