#include "simulator/It1ZoomBlock.h"

#include <array>

namespace camerasim {

namespace {

constexpr std::array<ValueWord, 5> LensWords{
    {{0, "at 1 m"}, {1, "at 2 m"}, {2, "at 3 m"}, {3, "adjusted"}, {4, "at 5 cm"}}};
constexpr std::array<ValueWord, 2> FocusWords{{{2, "automatic"}, {3, "one push"}}};

constexpr auto RegisterTable = std::to_array<ViscaRegister>({
    {.code = 0x38, .name = "focus mode", .factory = 3, .first = 2, .last = 3, .words = FocusWords, .persistent = false},
    {.code = 0xb1, .name = "lens", .factory = 3, .last = 4, .words = LensWords, .persistent = false},
});

constexpr auto StepTable = std::to_array<ViscaStep>({
    {.code = 0x18, .value = 1, .name = "one-push trigger", .target = 0x38, .position = 3},
});

constexpr ViscaModel LensMotor{.name = "lens_motor", .registers = RegisterTable, .steps = StepTable, .isMute = true};

} // namespace

LensMotorBlock::LensMotorBlock(const BlockSettings& settings) : ViscaBlock(LensMotor, settings) {}

} // namespace camerasim
