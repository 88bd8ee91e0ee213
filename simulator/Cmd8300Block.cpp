#include "simulator/Cmd8300Block.h"

#include "simulator/ViscaRows.h"

namespace camerasim {

using namespace visca;

namespace {

constexpr auto ExposureModes = std::to_array<std::uint8_t>({0x00, 0x03, 0x0a, 0x0b, 0x0d});
constexpr auto WhiteBalanceModes = std::to_array<std::uint8_t>({0, 1, 2, 3, 4, 5, 8, 9});
constexpr auto Brights = std::to_array<std::uint8_t>(
    {0, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31});

constexpr std::array<ValueWord, 5> ExposureWords{
    {{0x00, "automatic"}, {0x03, "manual"}, {0x0a, "shutter priority"}, {0x0b, "iris priority"}, {0x0d, "bright"}}};
constexpr std::array<ValueWord, 2> FocusTriggerWords{{{0, "continuous"}, {2, "after zoom"}}};
constexpr std::array<ValueWord, 2> SwitchWords{{{2, "left open"}, {3, "night"}}};
constexpr std::array<ValueWord, 2> OpenWords{{{2, "day"}, {3, "by the light"}}};

constexpr std::array<std::uint32_t, 4> Missing{0x21, 0x3e, 0x49, 0x4e};

constexpr auto Rows = joined(
    replaced(without(CommonRows, Missing),
             std::to_array<ViscaRegister>({
                 {.code = 0x01,
                  .name = "day/night",
                  .factory = 3,
                  .first = 2,
                  .last = 3,
                  .words = OpenWords,
                  .answersPicture = true},
                 {.code = 0x51, .name = "day/night mode", .factory = 2, .first = 2, .last = 3, .words = SwitchWords},
             })),
    std::to_array<ViscaRegister>({
        {.code = 0x06, .name = "digital zoom", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x28, .name = "focus near limit", .payload = 4, .factory = 0x3000, .last = 0x4000},
        {.code = 0x2c, .name = "gain limit", .factory = 15, .first = 4, .last = 15},
        {.code = 0x33, .name = "backlight compensation", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x35, .name = "white balance", .listed = WhiteBalanceModes},
        {.code = 0x39, .name = "exposure mode", .listed = ExposureModes, .words = ExposureWords},
        {.code = 0x3d, .name = "wide dynamic range", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x42, .name = "sharpness", .payload = 4, .factory = 4, .last = 15},
        {.code = 0x43, .name = "red gain", .payload = 4, .factory = 38, .last = 255},
        {.code = 0x44, .name = "blue gain", .payload = 4, .factory = 34, .last = 255},
        {.code = 0x4a, .name = "shutter", .payload = 4, .wholeByte = true, .factory = 5, .last = 21},
        {.code = 0x4b, .name = "iris", .payload = 4, .factory = 10, .last = 13},
        {.code = 0x4c, .name = "gain", .payload = 4, .last = 15},
        {.code = 0x4d, .name = "bright", .payload = 4, .factory = 11, .listed = Brights},
        // Any strength is taken.
        {.code = 0x53, .name = "noise reduction", .factory = 1},
        {.code = 0x57, .name = "focus trigger", .last = 2, .words = FocusTriggerWords},
        {.code = 0x58, .name = "focus sensitivity", .factory = 2, .first = 1, .last = 3},
        {.code = 0x5a, .name = "automatic slow shutter", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x5b, .name = "gamma", .factory = 1, .last = 5},
        {.code = 0x62, .name = "still image", .factory = 3, .first = 2, .last = 3, .words = OnOff, .persistent = false},
        {.code = 0xa1, .name = "saturation", .payload = 4, .factory = 12, .last = 15},
        {.code = 0xa2, .name = "contrast", .payload = 4, .factory = 4, .last = 15},
        {.code = 0xa3, .name = "defog", .last = 15},
        {.code = 0xa4, .name = "brightness", .payload = 4, .factory = 11, .first = 1, .last = 15},
        {.code = 0xa5, .name = "noise reduction mode", .last = 1},
        {.code = 0xa6, .name = "highlight hold", .last = 1},
        {.code = 0x2100, .name = "threshold night to day", .payload = 3, .factory = 5, .first = 5, .last = 116},
        {.code = 0x2101, .name = "threshold day to night", .payload = 3, .factory = 15, .first = 15, .last = 126},
    }));

constexpr auto Steps = [] {
    std::array<ViscaStep, LensSteps.size() + 1> steps;
    *std::copy(LensSteps.begin(), LensSteps.end(), steps.begin()) = {
        .code = 0x18, .value = 2, .name = "focus to infinity", .target = 0x48, .position = 0x1000};
    return steps;
}();

constexpr ViscaModel Cmd8300{.name = "cmd8300",
                             .registers = Rows,
                             .steps = Steps,
                             .version = {0x00, 0x20, 0x01, 0x83},
                             .hasRestartCommand = true,
                             .lamps = BoardLamps};

} // namespace

Cmd8300Block::Cmd8300Block(const BlockSettings& settings) : ViscaBlock(Cmd8300, settings) {}

} // namespace camerasim
