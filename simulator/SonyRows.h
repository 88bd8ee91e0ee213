#pragma once

#include "simulator/ViscaRows.h"

/// Registers of the Sony EH4300, which its relatives differ from in a few rows.
namespace camerasim::visca {

inline constexpr std::array<std::uint8_t, 5> SonyExposureModes{0x00, 0x03, 0x0a, 0x0b, 0x0d};
// Closed, or an opening.
inline constexpr std::array<std::uint8_t, 14> SonyIrises{0, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};
inline constexpr auto SonyBrights = std::to_array<std::uint8_t>(
    {0, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31});

inline constexpr std::array<ValueWord, 5> SonyExposureWords{
    {{0x00, "automatic"}, {0x03, "manual"}, {0x0a, "shutter priority"}, {0x0b, "iris priority"}, {0x0d, "bright"}}};
inline constexpr std::array<ValueWord, 6> SonyWhiteBalanceWords{
    {{0, "automatic"}, {1, "indoor"}, {2, "outdoor"}, {3, "one push"}, {4, "tracing"}, {5, "manual"}}};
inline constexpr std::array<ValueWord, 1> SonyTriggerWords{{{5, "now"}}};
inline constexpr std::array<ValueWord, 3> SonyFocusTriggerWords{
    {{0, "continuous"}, {1, "interval"}, {2, "after zoom"}}};
inline constexpr std::array<ValueWord, 2> SonyFocusSensitivityWords{{{2, "normal"}, {3, "low"}}};
inline constexpr std::array<ValueWord, 2> SonySyncWords{{{0, "off"}, {1, "on"}}};

inline constexpr std::array<ViscaField, 2> SonyLensFields{
    {{.name = "lens movement", .shift = 8, .bits = 8, .last = 0xff},
     {.name = "lens interval", .bits = 8, .last = 0xff}}};
inline constexpr std::array<ViscaField, 2> SonySpotFields{{{.name = "spot column", .shift = 8}, {.name = "spot line"}}};
// Two bytes behind the last field are always 0.
inline constexpr std::array<ViscaField, 5> SonyWideRangeFields{
    {{.name = "wide range display", .shift = 28, .last = 3},
     {.name = "wide range sensitivity", .shift = 24, .last = 2},
     {.name = "wide range black correction", .shift = 20, .last = 3},
     {.name = "wide range white correction", .shift = 16, .last = 2},
     {.name = "wide range short exposure", .shift = 8, .bits = 8, .first = 1, .last = 150}}};

inline constexpr auto SonyRows = joined(
    CommonRows,
    std::to_array<ViscaRegister>({
        {.code = 0x06, .name = "digital zoom", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x10,
         .name = "white balance trigger",
         .first = 5,
         .last = 5,
         .words = SonyTriggerWords,
         .persistent = false},
        {.code = 0x11, .name = "infrared correction", .last = 1},
        {.code = 0x27, .name = "lens interval times", .payload = 4, .factory = 0x0505, .fields = SonyLensFields},
        {.code = 0x28, .name = "focus near limit", .payload = 4, .factory = 0x7000, .first = 0x1000, .last = 0xf000},
        {.code = 0x29, .name = "spot position", .payload = 4, .factory = 0x0808, .fields = SonySpotFields},
        {.code = 0x2c, .name = "gain limit", .factory = 15, .first = 4, .last = 15},
        {.code = 0x2d,
         .name = "wide range settings",
         .payload = 8,
         .factory = 0x00301400,
         .fields = SonyWideRangeFields},
        {.code = 0x33, .name = "backlight compensation", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x35, .name = "white balance", .factory = 4, .last = 8, .words = SonyWhiteBalanceWords},
        {.code = 0x39, .name = "exposure mode", .listed = SonyExposureModes, .words = SonyExposureWords},
        {.code = 0x3d, .name = "wide dynamic range", .factory = 3, .last = 4},
        {.code = 0x42, .name = "sharpness", .payload = 4, .factory = 10, .last = 15},
        {.code = 0x43, .name = "red gain", .payload = 4, .factory = 203, .last = 255},
        {.code = 0x44, .name = "blue gain", .payload = 4, .factory = 173, .last = 255},
        {.code = 0x4a, .name = "shutter", .payload = 4, .factory = 5, .last = 21},
        {.code = 0x4b, .name = "iris", .payload = 4, .factory = 17, .first = 5, .last = 17, .listed = SonyIrises},
        {.code = 0x4c, .name = "gain", .payload = 4, .factory = 1, .last = 15, .metering = Metering::Gain},
        {.code = 0x4d, .name = "bright", .payload = 4, .factory = 19, .listed = SonyBrights},
        {.code = 0x4f, .name = "hue", .payload = 4, .factory = 7, .last = 14},
        {.code = 0x52, .name = "high resolution", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x53, .name = "noise reduction", .factory = 3, .last = 5},
        {.code = 0x57, .name = "focus trigger", .last = 2, .words = SonyFocusTriggerWords},
        {.code = 0x58,
         .name = "focus sensitivity",
         .factory = 2,
         .first = 2,
         .last = 3,
         .words = SonyFocusSensitivityWords},
        {.code = 0x59, .name = "spot exposure", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x5a, .name = "automatic slow shutter", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x5b, .name = "gamma", .last = 5},
        {.code = 0x5d, .name = "exposure response", .factory = 1, .first = 1, .last = 48},
        {.code = 0x5e, .name = "high sensitivity", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x5f, .name = "chroma suppression", .last = 3},
        {.code = 0x62, .name = "still image", .factory = 3, .first = 2, .last = 3, .words = OnOff, .persistent = false},
        {.code = 0x2456, .name = "inter-sync", .payload = 2, .last = 1, .words = SonySyncWords, .atRestart = true},
    }));

} // namespace camerasim::visca
