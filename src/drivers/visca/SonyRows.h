#pragma once

#include "drivers/visca/ViscaFrames.h"
#include "drivers/visca/ViscaRows.h"

#include <array>

/// The table of the Sony blocks; each model takes it with its differences.
namespace sensorcontrol::sony {

using visca::setting;

inline constexpr int MirrorId = 6;
inline constexpr int ExposalModeId = 10;
inline constexpr int BrightId = 13;
inline constexpr int ExpCompId = 17;
inline constexpr int SpotAEId = 19;
inline constexpr int WBModeId = 23;
inline constexpr int DayNightModeId = 26;
inline constexpr int FocusModeId = 30;
inline constexpr int FocusAutoModeId = 32;

/// 0 off, 1 on, as the block has it.
inline constexpr std::uint8_t OnOff[] = {0x03, 0x02};
inline constexpr std::uint8_t LeftRight[] = {0x03, 0x02, 0x02, 0x03};
inline constexpr std::uint8_t UpDown[] = {0x03, 0x03, 0x02, 0x02};
inline constexpr std::uint8_t WideDynamics[] = {0x03, 0x02, 0x00, 0x01, 0x04};
inline constexpr std::uint8_t FocusModes[] = {0x02, 0x03, 0x03};
inline constexpr std::uint8_t Sensitivities[] = {0x02, 0x03};
inline constexpr std::uint8_t Displays[] = {0x00, 0x02, 0x03};

/// Brightness steps as the block counts them: its first ones are not used.
template <std::size_t Steps, std::size_t Unused>
inline constexpr auto BrightSteps = [] {
    std::array<std::uint8_t, Steps + 1> numbers{};
    for (std::size_t step = 1; step <= Steps; ++step)
        numbers[step] = static_cast<std::uint8_t>(step + Unused);
    return numbers;
}();

inline constexpr Step MirrorSteps[] = {
    {.frame = setting(0x61, V), .value = lookedUp(LeftRight)},
    {.frame = setting(0x66, V), .value = lookedUp(UpDown)},
};
inline constexpr Step ExpCompSteps[] = {
    {.when = oneOf(-1), .frame = setting(0x3e, 0x03)},
    {.when = range(0, 14), .frame = setting(0x3e, 0x02)},
    {.when = range(0, 14), .frame = setting(0x4e, 0, 0, 0, V)},
};
inline constexpr Step WBModeSteps[] = {
    {.frame = setting(0x35, V), .value = shifted(-1)},
    {.when = oneOf(4), .frame = setting(0x10, 0x05)},
};
inline constexpr Step FocusModeSteps[] = {
    {.frame = setting(0x38, V), .value = lookedUp(1, FocusModes)},
    {.when = oneOf(3), .frame = setting(0x18, 0x01)},
};

// What a mode sends again.
inline constexpr Resend ByExposalMode[] = {
    {.when = oneOf(0), .ids = {15, 16, ExpCompId, 22, 18}},
    {.when = oneOf(1), .ids = {11, 12, 14}},
    {.when = oneOf(2), .ids = {11, ExpCompId}},
    {.when = oneOf(3), .ids = {12, ExpCompId}},
    {.when = oneOf(4), .ids = {BrightId}},
};
inline constexpr Resend BySpotAE[] = {{.when = oneOf(1), .ids = {20, 21}}};
inline constexpr Resend ByWBMode[] = {{.when = oneOf(6), .ids = {24, 25}}};
inline constexpr Resend ByFocusMode[] = {{.when = oneOf(1), .ids = {FocusAutoModeId, 33}}};
inline constexpr Resend ByFocusAutoMode[] = {{.when = oneOf(1), .ids = {45, 46}}};

/// Only in the automatic exposure mode.
inline constexpr Condition InAutoExposure = whileStored(ExposalModeId, 0);
/// Only while the auto focus runs at intervals.
inline constexpr Conditions AtIntervals = all(whileStored(FocusAutoModeId, 1), whileStored(FocusModeId, 1));

/// One frame for five parameters: display, sensitivity, black and white intensity, short exposure time.
template <class Display, class Sens, class Black, class White, class TimeHigh, class TimeLow>
constexpr FramePattern pictureFrame(Display display, Sens sens, Black black, White white, TimeHigh high, TimeLow low) {
    return setting(0x2d, display, sens, black, white, high, low, 0, 0);
}

/// `Block` has the operations that a row cannot say.
template <class Block>
inline constexpr auto Rows = std::to_array<ParameterRow>({
    {.id = 1,
     .name = "Sharpness",
     .accepts = range(0, 100),
     .refusal = "p_Sharpness(%d) is out of range",
     .send = setting(0x42, 0, 0, 0, V),
     .value = scaled(15, 100),
     .factory = 67},
    {.id = 2,
     .name = "LowLightChromaSuppress",
     .accepts = range(0, 3),
     .refusal = "p_nLowLightChromaSuppress(%d) is out of range",
     .send = setting(0x5f, V),
     .factory = 0},
    {.id = 3,
     .name = "Gamma",
     .accepts = range(0, 5),
     .refusal = "p_nGamma(%d) is out of range",
     .send = setting(0x5b, V),
     .factory = 5},
    {.id = 4,
     .name = "NoiseReduction",
     .accepts = range(0, 5),
     .refusal = "p_nNR(%d) is out of range",
     .send = setting(0x53, V),
     .factory = 3},
    {.id = 5, .name = "HR", .accepts = range(0, 1), .send = setting(0x52, V), .value = lookedUp(OnOff), .factory = 0},
    {.id = MirrorId,
     .name = "Mirror",
     .accepts = range(0, 3),
     .refusal = "p_nMirror(%d) is out of range",
     .steps = MirrorSteps,
     .factory = 0},
    {.id = 7,
     .name = "Threshold",
     .accepts = range(0, 28),
     .refusal = "p_nThreshold(%d) is out of range",
     .send = setting(0x21, 0, 0, HI, LO),
     .factory = 10},
    {.id = 8,
     .name = "StillImage",
     .accepts = range(0, 1),
     .send = setting(0x62, V),
     .value = lookedUp(OnOff),
     .factory = 0},
    {.id = ExposalModeId,
     .name = "ExposalMode",
     .accepts = range(0, 4),
     .set = call<&Block::setExposalMode>,
     .factory = 0},
    {.id = 11,
     .name = "Shutter",
     .accepts = range(0, 21),
     .refusal = "p_nShutter(%d) is out of range",
     .onlyWhile = whileStored(ExposalModeId, 1, 2),
     .send = setting(0x4a, 0, 0, HI, LO),
     .factory = 5},
    {.id = 12,
     .name = "Iri",
     .accepts = oneOf(0) | range(5, 17),
     .refusal = "p_nIri(%d) is out of range",
     .onlyWhile = whileStored(ExposalModeId, 1, 3),
     .send = setting(0x4b, 0, 0, HI, LO),
     .factory = 17},
    {.id = BrightId,
     .name = "Bright",
     .accepts = range(0, 27),
     .refusal = "p_nBright(%d) is out of range",
     .onlyWhile = whileStored(ExposalModeId, 4),
     .send = setting(0x4d, 0, 0, HI, LO),
     .value = lookedUp(BrightSteps<27, 4>),
     .remember = {50, scaled(100, 27)},
     .factory = 15},
    {.id = 14,
     .name = "Gain",
     .accepts = range(0, 15),
     .refusal = "p_nGain(%d) is out of range",
     .onlyWhile = whileStored(ExposalModeId, 1),
     .send = setting(0x4c, 0, 0, 0, V),
     .factory = 1},
    {.id = 15,
     .name = "GainLimit",
     .accepts = range(4, 15),
     .refusal = "p_nGainLimit(%d) is out of range",
     .onlyWhile = InAutoExposure,
     .send = setting(0x2c, V),
     .factory = 15},
    {.id = 16,
     .name = "AutoSlowShutter",
     .accepts = range(0, 1),
     .onlyWhile = beforeRange(InAutoExposure),
     .send = setting(0x5a, V),
     .value = lookedUp(OnOff),
     .factory = 0},
    {.id = ExpCompId,
     .name = "ExpComp",
     .accepts = range(-1, 14),
     .refusal = "p_nExpComp(%d) is out of range",
     .onlyWhile = whileStored(ExposalModeId, 0, 2, 3),
     .steps = ExpCompSteps,
     .factory = -1},
    {.id = 18,
     .name = "AEResponse",
     .accepts = range(1, 48),
     .refusal = "p_nAEResponse(%d) is out of range",
     .onlyWhile = InAutoExposure,
     .send = setting(0x5d, V),
     .factory = 1},
    {.id = SpotAEId,
     .name = "SpotAE",
     .accepts = range(0, 1),
     .send = setting(0x59, V),
     .value = lookedUp(OnOff),
     .then = BySpotAE,
     .factory = 0},
    {.id = 20,
     .name = "SpotAE_X",
     .accepts = range(0, 15),
     .refusal = "p_nX(%d) is out of range",
     .onlyWhile = whileStored(SpotAEId, 1),
     .send = setting(0x29, 0, V, 0, stored(21)),
     .factory = 8},
    {.id = 21,
     .name = "SpotAE_Y",
     .accepts = range(0, 15),
     .refusal = "p_nY(%d) is out of range",
     .onlyWhile = whileStored(SpotAEId, 1),
     .send = setting(0x29, 0, stored(20), 0, V),
     .factory = 8},
    {.id = 22,
     .name = "BackLight",
     .accepts = range(0, 1),
     .onlyWhile = beforeRange(InAutoExposure),
     .send = setting(0x33, V),
     .value = lookedUp(OnOff),
     .factory = 0},
    {.id = WBModeId,
     .name = "WBMode",
     .accepts = range(1, 9),
     .refusal = "p_nWBMode(%d) is out of range",
     .steps = WBModeSteps,
     .then = ByWBMode,
     .factory = 5},
    {.id = 24,
     .name = "RGain",
     .accepts = range(0, 255),
     .refusal = "p_nRGain(%d) is out of range",
     .onlyWhile = whileStored(WBModeId, 6),
     .send = setting(0x43, 0, 0, HI, LO),
     .factory = 203},
    {.id = 25,
     .name = "BGain",
     .accepts = range(0, 255),
     .refusal = "p_nBGain(%d) is out of range",
     .onlyWhile = whileStored(WBModeId, 6),
     .send = setting(0x44, 0, 0, HI, LO),
     .factory = 173},
    {.id = DayNightModeId, .name = "DayNightMode", .set = call<&Block::setDayNightMode>, .factory = 1},
    {.id = 27, .name = "IRCorrection", .accepts = range(0, 1), .send = setting(0x11, V), .factory = 0},
    {.id = 28,
     .name = "WDMode",
     .accepts = range(1, 5),
     .send = setting(0x3d, V),
     .value = lookedUp(1, WideDynamics),
     .factory = 1},
    {.id = 29,
     .name = "DZoom",
     .accepts = range(0, 1),
     .send = setting(0x06, V),
     .value = lookedUp(OnOff),
     .factory = 0},
    {.id = FocusModeId,
     .name = "FocusMode",
     .accepts = range(1, 3),
     .steps = FocusModeSteps,
     .then = ByFocusMode,
     .factory = 1},
    {.id = FocusAutoModeId,
     .name = "FocusAutoMode",
     .accepts = range(0, 2),
     .refusal = "p_nFocusAutoMode(%d) is out of range",
     .onlyWhile = whileStored(FocusModeId, 1),
     .send = setting(0x57, V),
     .then = ByFocusAutoMode,
     .factory = 0},
    {.id = 33,
     .name = "AF_Sensitivity",
     .accepts = range(1, 2),
     .onlyWhile = beforeRange(whileStored(FocusModeId, 1)),
     .send = setting(0x58, V),
     .value = lookedUp(1, Sensitivities),
     .factory = 1},
    {.id = 34,
     .name = "FocusNearLimit",
     .accepts = range(1, 15),
     .refusal = "p_nFocusNearLimit(%d) is out of range",
     .send = setting(0x28, V, 0, 0, 0),
     .get = ask<&Block::getFocusNearLimit>},
    visca::commandRow(37, "OnePushTrigger", run<&Block::OnePushTrigger>),
    {.id = 38,
     .name = "Display",
     .accepts = range(0, 2),
     .refusal = "p_nDisplay(%d) is out of range",
     .send = pictureFrame(V, stored(39), stored(40), stored(41), storedHigh(44), storedLow(44)),
     .value = lookedUp(Displays),
     .factory = 0},
    {.id = 39,
     .name = "Sens",
     .accepts = range(0, 2),
     .refusal = "p_nSens(%d) is out of range",
     .send = pictureFrame(stored(38), V, stored(40), stored(41), storedHigh(44), storedLow(44)),
     .factory = 0},
    {.id = 40,
     .name = "Bintens",
     .accepts = range(0, 3),
     .refusal = "p_nBintens(%d) is out of range",
     .send = pictureFrame(stored(38), stored(39), V, stored(41), storedHigh(44), storedLow(44)),
     .factory = 3},
    {.id = 41,
     .name = "Wintens",
     .accepts = range(0, 2),
     .refusal = "p_nWintens(%d) is out of range",
     .send = pictureFrame(stored(38), stored(39), stored(40), V, storedHigh(44), storedLow(44)),
     .factory = 0},
    {.id = 44,
     .name = "ShortTimeExp",
     .accepts = range(1, 150),
     .refusal = "p_nShortTimeExp(%d) is out of range",
     .send = pictureFrame(stored(38), stored(39), stored(40), stored(41), HI, LO),
     .factory = 20},
    {.id = 45,
     .name = "LensMovement",
     .accepts = range(0, 255),
     .refusal = "p_nMovement(%d) is out of range",
     .onlyWhile = AtIntervals,
     .send = setting(0x27, HI, LO, storedHigh(46), storedLow(46)),
     .factory = 5},
    {.id = 46,
     .name = "LensInterval",
     .accepts = range(0, 255),
     .refusal = "p_nInterval(%d) is out of range",
     .onlyWhile = AtIntervals,
     .send = setting(0x27, storedHigh(45), storedLow(45), HI, LO),
     .factory = 5},
    {.id = 47,
     .name = "Saturation",
     .accepts = range(0, 100),
     .refusal = "p_nSaturation(%d) is out of range",
     .send = setting(0x49, 0, 0, 0, V),
     .value = scaled(14, 100),
     .factory = 29},
    {.id = 48,
     .name = "Hue",
     .accepts = range(0, 100),
     .refusal = "p_nHue(%d) is out of range",
     .send = setting(0x4f, 0, 0, 0, V),
     .value = scaled(14, 100),
     .factory = 50},
    {.id = 49,
     .name = "HighSensitivity",
     .accepts = range(0, 1),
     .send = setting(0x5e, V),
     .value = lookedUp(OnOff),
     .factory = 0},
    {.id = 50,
     .name = "BrightRemoteSensor2",
     .accepts = range(0, 100),
     .set = call<&Block::setBrightRemoteSensor2>,
     .factory = 56},
    filterModeRow(51),
});

/// The brightness of another id, as an exposure compensation.
template <class Block>
constexpr ParameterRow brightnessRow(int id, int factory) {
    return {.id = id,
            .name = "Brightness",
            .accepts = range(0, 100),
            .set = call<&Block::setBrightness>,
            .factory = factory};
}

template <class Block>
inline constexpr auto LensRows = std::to_array<ParameterRow>({
    saying(visca::commandRow(52, "IrisUp", run<&Block::IrisUp>), Silent),
    saying(visca::commandRow(53, "IrisDown", run<&Block::IrisDown>), Silent),
    saying(visca::commandRow(54, "FocusUp", run<&Block::FocusUp>), Silent),
    saying(visca::commandRow(55, "FocusDown", run<&Block::FocusDown>), Silent),
});

/// What the EH blocks have beyond that.
template <class Block>
inline constexpr auto EHRows = std::to_array<ParameterRow>({
    brightnessRow<Block>(56, 50),
    // The lights go out without the model's wait.
    waiting(nearLightRow(57), 0),
    waiting(middleLightRow(58), 0),
    waiting(farLightRow(59), 0),
    visca::hourOfNight(60),
    visca::minuteOfNight(61),
    visca::hourOfDay(62),
    visca::minuteOfDay(63),
    waiting(powerModeRow(64), 0),
});

} // namespace sensorcontrol::sony
