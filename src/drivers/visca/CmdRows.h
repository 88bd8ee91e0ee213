#pragma once

#include "drivers/visca/ViscaFrames.h"
#include "drivers/visca/ViscaRows.h"

#include <array>

/// The table of the CMD8100 and its relatives; each model takes it with its differences.
namespace sensorcontrol::cmd {

using visca::setting;

inline constexpr int ExposalModeId = 0;
inline constexpr int MirrorId = 4;
inline constexpr int IrisId = 5;
inline constexpr int ShutterId = 7;
inline constexpr int FocusModeId = 15;

/// Maximum gain 0 to 38 in the block's 16 steps.
inline constexpr std::uint8_t GainSteps[] = {
    0, 1, 1, 1, 2,  2,  3,  3,  3,  4,  4,  5,  5,  5,  6,  6,  7,  7,  7,  8,
    8, 9, 9, 9, 10, 10, 11, 11, 11, 12, 12, 13, 13, 13, 14, 14, 15, 15, 15,
};

/// 0 automatic after zooming, 1 always automatic, 2 manual; other values do nothing.
inline constexpr Step FocusModes[] = {
    {.when = range(0, 1), .frame = setting(0x38, 0x02)},
    {.when = oneOf(0), .frame = setting(0x57, 0x02)},
    {.when = oneOf(1), .frame = setting(0x57, 0x00)},
    {.when = oneOf(2), .frame = setting(0x38, 0x03)},
};

inline constexpr std::uint8_t ExposalModes[] = {0x00, 0x0a, 0x0b, 0xa0};
/// What an exposure mode sends again.
inline constexpr Resend ByExposalMode[] = {
    {.when = oneOf(1), .ids = {ShutterId}},
    {.when = oneOf(2), .ids = {IrisId}},
};

/// `Block` has the operations that a row cannot say.
template <class Block>
inline constexpr auto Rows = std::to_array<ParameterRow>({
    {.id = ExposalModeId,
     .name = "ExposalMode",
     .accepts = range(0, 3),
     .send = setting(0x39, V),
     .value = lookedUp(ExposalModes),
     .then = ByExposalMode,
     .factory = 0},
    {.id = 1,
     .name = "Brightness",
     .accepts = range(0, 100),
     .refusal = "p_nBrightness(%d) is out of range",
     .send = setting(0x4e, 0, 0, 0, V),
     .value = scaled(14, 100),
     .factory = 50},
    {.id = 2,
     .name = "Sharpness",
     .accepts = range(0, 100),
     .refusal = "p_Sharpness(%d) is out of range",
     .send = setting(0x42, 0, 0, 0, V),
     .value = scaled(14, 100),
     .factory = 40},
    {.id = 3,
     .name = "Saturation",
     .accepts = range(0, 100),
     .refusal = "p_nSaturation(%d) is out of range",
     .send = setting(0x49, 0, 0, 0, V),
     .value = scaled(14, 100),
     .factory = 90},
    {.id = MirrorId,
     .name = "Mirror",
     .accepts = range(0, 3),
     .refusal = "p_nMirror(%d) is out of range",
     .set = call<&Block::setMirror>,
     .factory = 0},
    {.id = IrisId,
     .name = "Iris",
     .accepts = range(5, 17),
     .refusal = "p_nIris(%d) is out of range",
     .onlyWhile = whileStored(ExposalModeId, 2),
     .send = setting(0x4b, 0, 0, HI, LO),
     .factory = 16},
    {.id = 6,
     .name = "Photometry",
     .accepts = range(2, 3),
     .refusal = "setPhotometry(%d) out of range",
     .send = setting(0xa2, V),
     .factory = 2},
    {.id = ShutterId,
     .name = "Shutter",
     .accepts = range(0, 18),
     .refusal = "p_nShutter(%d) is out of range",
     .onlyWhile = whileStored(ExposalModeId, 1),
     .send = setting(0x4a, 0, 0, HI, LO),
     .factory = 0},
    {.id = 9,
     .name = "WDRMode",
     .accepts = range(2, 3),
     .refusal = "p_nWD(%d) is out of range",
     .send = setting(0x3d, V),
     .factory = 3},
    {.id = 10,
     .name = "DeFog",
     .accepts = range(2, 3),
     .refusal = "p_nDeFog(%d) is out of range",
     .send = setting(0xa1, V),
     .factory = 3},
    {.id = 11,
     .name = "NoiseReduction",
     .accepts = range(0, 6),
     .refusal = "p_nNR(%d) is out of range",
     .send = setting(0x53, V),
     .factory = 6},
    {.id = 12, .name = "DayNightMode", .set = call<&Block::setDayNightMode>, .factory = factory::DayNightMode},
    {.id = 13,
     .name = "Threshold",
     .accepts = range(0, 28),
     .refusal = "p_nThreshold(%d) is out of range",
     .onlyWhile = WithoutInfrared,
     .send = setting(0x21, 0, 0, HI, LO),
     .factory = 10},
    {.id = 14,
     .name = "MaxGain",
     .accepts = range(0, 38),
     .refusal = "p_nMaxGain(%d) is out of range",
     .send = setting(0x2c, V),
     .value = lookedUp(GainSteps),
     .factory = 30,
     .getFailure = "getGainLimit error,value is %d"},
    {.id = FocusModeId, .name = "FocusMode", .accepts = AnyValue, .steps = FocusModes, .factory = 1},
    {.id = 16,
     .name = "FocusNearLimit",
     .accepts = range(0, 4),
     .refusal = "p_nFocusNearLimit(%d) is out of range",
     .send = setting(0x28, 0, 0, 0, V),
     .factory = 2},
    {.id = 17,
     .name = "Sensitivity",
     .accepts = range(1, 6),
     .refusal = "setSensitivity(%d) out of range",
     .send = setting(0x58, V),
     .value = shifted(-1),
     .factory = 2},
    {.id = 19,
     .name = "WBMode",
     .accepts = oneOf(0, 4, 9),
     .refusal = "setWBMode(%d) out of range",
     .send = setting(0x35, V),
     .factory = 4},
    {.id = 20,
     .name = "ShutDownLimit",
     .accepts = range(0, 12),
     .refusal = "setShutDownLimit(%d) is out of range",
     .send = setting(0xa3, 0, 0, HI, LO),
     .factory = 0},
    visca::commandRow(52, "IrisUp", run<&Block::IrisUp>),
    visca::commandRow(53, "IrisDown", run<&Block::IrisDown>),
    visca::commandRow(54, "FocusUp", run<&Block::FocusUp>),
    visca::commandRow(55, "FocusDown", run<&Block::FocusDown>),
    powerModeRow(56),
    nearLightRow(57),
    middleLightRow(58),
    farLightRow(59),
    visca::hourOfNight(60),
    visca::minuteOfNight(61),
    visca::hourOfDay(62),
    visca::minuteOfDay(63),
    saying(visca::commandRow(64, "OnePushTrigger", run<&Block::OnePushTrigger>), "OnePushTrigger failed\n"),
});

} // namespace sensorcontrol::cmd
