#include "simulator/Cmd8100Block.h"

#include <array>

namespace camerasim {

namespace {

constexpr std::array<std::uint8_t, 4> ExposureModes{0x00, 0x0a, 0x0b, 0xa0};
constexpr std::array<std::uint8_t, 3> VideoSystems{0x00, 0x06, 0x08};
constexpr std::array<std::uint8_t, 3> WhiteBalanceModes{0x00, 0x04, 0x09};

constexpr std::array<ViscaWord, 2> OnOff{{{2, "on"}, {3, "off"}}};
constexpr std::array<ViscaWord, 4> ExposureWords{
    {{0x00, "automatic"}, {0x0a, "shutter priority"}, {0x0b, "iris priority"}, {0xa0, "manual"}}};
constexpr std::array<ViscaWord, 2> FocusWords{{{2, "automatic"}, {3, "manual"}}};
constexpr std::array<ViscaWord, 2> FocusTriggerWords{{{0, "continuous"}, {2, "after zoom"}}};
constexpr std::array<ViscaWord, 2> DayNightWords{{{2, "night"}, {3, "day"}}};
constexpr std::array<ViscaWord, 2> DayNightModeWords{{{2, "automatic"}, {3, "manual"}}};
constexpr std::array<ViscaWord, 2> VideoWords{{{6, "NTSC"}, {8, "PAL"}}};
constexpr std::array<ViscaWord, 3> PrivateDayNightWords{{{0, "automatic"}, {1, "night"}, {2, "day"}}};

constexpr auto RegisterTable = std::to_array<ViscaRegister>({
    {.code = 0x01, .name = "day/night", .factory = 3, .first = 2, .last = 3, .words = DayNightWords},
    {.code = 0x21, .name = "day/night threshold", .payload = 4, .factory = 10, .last = 28},
    {.code = 0x28, .name = "focus near limit", .payload = 4, .factory = 2, .last = 4},
    {.code = 0x2c, .name = "gain limit", .factory = 12, .last = 15},
    {.code = 0x35, .name = "white balance", .factory = 4, .listed = WhiteBalanceModes},
    {.code = 0x38, .name = "focus mode", .factory = 2, .first = 2, .last = 3, .words = FocusWords},
    {.code = 0x39, .name = "exposure mode", .listed = ExposureModes, .words = ExposureWords},
    {.code = 0x3d, .name = "wide dynamic range", .factory = 3, .first = 2, .last = 3, .words = OnOff},
    {.code = 0x3e, .name = "exposure compensation", .factory = 3, .first = 2, .last = 3, .words = OnOff},
    {.code = 0x42, .name = "sharpness", .payload = 4, .factory = 5, .last = 14},
    {.code = 0x48,
     .name = "focus position",
     .payload = 4,
     .factory = 0x1000,
     .first = 0x1000,
     .last = 0xc000,
     .persistent = false,
     .readOnly = true},
    {.code = 0x49, .name = "saturation", .payload = 4, .factory = 12, .last = 14},
    {.code = 0x4a, .name = "shutter", .payload = 4, .last = 18},
    {.code = 0x4b, .name = "iris", .payload = 4, .factory = 16, .first = 5, .last = 17},
    {.code = 0x4e, .name = "brightness", .payload = 4, .factory = 7, .last = 14},
    {.code = 0x51, .name = "day/night mode", .factory = 2, .first = 2, .last = 3, .words = DayNightModeWords},
    {.code = 0x53, .name = "noise reduction", .factory = 6, .last = 6},
    {.code = 0x57, .name = "focus trigger", .last = 2, .words = FocusTriggerWords},
    {.code = 0x58, .name = "focus sensitivity", .factory = 1, .last = 5},
    {.code = 0x61, .name = "mirror LR", .factory = 3, .first = 2, .last = 3, .words = OnOff},
    {.code = 0x66, .name = "mirror UD", .factory = 3, .first = 2, .last = 3, .words = OnOff},
    {.code = 0xa1, .name = "defog", .factory = 3, .first = 2, .last = 3, .words = OnOff},
    {.code = 0xa2, .name = "photometry", .factory = 2, .first = 2, .last = 3},
    {.code = 0xa3, .name = "shutter limit", .payload = 4, .last = 12},
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

constexpr auto StepTable = std::to_array<ViscaStep>({
    {.code = 0x0b, .value = 2, .name = "iris up", .target = 0x4b, .delta = 1},
    {.code = 0x0b, .value = 3, .name = "iris down", .target = 0x4b, .delta = -1},
    {.code = 0x08, .value = 2, .name = "focus far", .target = 0x48, .delta = -0x100},
    {.code = 0x08, .value = 3, .name = "focus near", .target = 0x48, .delta = 0x100},
    {.code = 0x18, .value = 1, .name = "one-push trigger", .target = 0x48, .position = 0x2a00},
});

constexpr ViscaModel Cmd8100{.name = "cmd8100",
                             .registers = RegisterTable,
                             .steps = StepTable,
                             .version = {0x00, 0x20, 0x01, 0x08},
                             .hasMaskUnit = true,
                             .hasPrivateRestart = true};

} // namespace

Cmd8100Block::Cmd8100Block(const BlockSettings& settings) : ViscaBlock(Cmd8100, settings) {}

const ViscaModel& Cmd8100Block::model() { return Cmd8100; }

} // namespace camerasim
