#pragma once

#include "drivers/TableEdits.h"
#include "drivers/regtext/RegisterTextRows.h"

#include <array>

/// The table of the Hitach register map; each model takes it with its differences.
namespace sensorcontrol::hitach {

using regtext::write;
using regtext::writeWord;

inline constexpr int BrightnessId = 1;
inline constexpr int CameraModeId = 6;
inline constexpr int MaxGainId = 7;
inline constexpr int WDRId = 8;
inline constexpr int DNSensitivityId = 9;
inline constexpr int FixShutterId = 10;
inline constexpr int BackLightId = 11;
inline constexpr int MirrorId = 12;
inline constexpr int FocusModeId = 14;
inline constexpr int PicModeId = 15;

/// Shutter, and who decides day and night.
inline constexpr int ExposureRegister = 0xfcc8;
inline constexpr int FixShutterRegister = 0xfcc9;

/// The camera mode that keeps a fixed shutter.
inline constexpr int FixShutterMode = 4;

inline constexpr ValueSet FixShutters = range(0, 14);
inline constexpr ValueMap FixShutterNumber = shifted(2);
inline constexpr ValueMap BrightnessNumber = scaled(255, 100);
inline constexpr ValueMap GainNumber = scaled(4, 1);
inline constexpr ValueMap SharpnessNumber = scaled(63, 100);
inline constexpr std::uint8_t FocusDistances[] = {0x00, 0xf9, 0xf8, 0xf7, 0xf4, 0xf2};

/// Without the fixed shutter, which follows in its mode.
inline constexpr auto CameraModeSteps = std::to_array<Step>({
    {.when = oneOf(0), .frame = write(ExposureRegister, 0x00)},
    {.when = oneOf(1), .frame = write(ExposureRegister, 0x01)},
    {.when = range(0, 1), .frame = write(0xffe6, 0xc0)},
    {.when = oneOf(2), .onlyWhile = whileStored(DNSensitivityId, 3), .frame = write(ExposureRegister, 0x20)},
    {.when = oneOf(2), .onlyWhile = unlessStored(DNSensitivityId, 3), .frame = write(ExposureRegister, 0x10)},
    {.when = oneOf(3), .onlyWhile = whileStored(DNSensitivityId, 3), .frame = write(ExposureRegister, 0x31)},
    {.when = oneOf(3), .onlyWhile = whileStored(DNSensitivityId, 2), .frame = write(ExposureRegister, 0x21)},
    {.when = oneOf(3), .onlyWhile = unlessStored(DNSensitivityId, 2, 3), .frame = write(ExposureRegister, 0x11)},
    {.when = oneOf(FixShutterMode), .frame = write(ExposureRegister, 0x07)},
});

/// What a sensitivity writes in the camera modes 2 and, as a list from 1 on, 3.
constexpr std::array<Step, 3> sensitivitySteps(std::span<const std::uint8_t> inModeThree) {
    return {{
        {.when = range(1, 2), .onlyWhile = whileStored(CameraModeId, 2), .frame = write(ExposureRegister, 0x10)},
        {.when = oneOf(3), .onlyWhile = whileStored(CameraModeId, 2), .frame = write(ExposureRegister, 0x20)},
        {.onlyWhile = whileStored(CameraModeId, 3),
         .frame = write(ExposureRegister),
         .value = lookedUp(1, inModeThree)},
    }};
}

constexpr ParameterRow sensitivityRow(std::span<const Step> steps) {
    return {.id = DNSensitivityId,
            .name = "DNSensitivity",
            .accepts = range(1, 3),
            .onlyWhile = whileStored(CameraModeId, 2, 3),
            .steps = steps,
            .factory = 2};
}

inline constexpr Condition InFirstPicture = whileStored(PicModeId, 0);
inline constexpr Condition InOtherPicture = unlessStored(PicModeId, 0);

inline constexpr Step BrightnessSteps[] = {
    {.onlyWhile = InFirstPicture, .frame = write(0xfd9e), .value = BrightnessNumber},
    {.onlyWhile = InOtherPicture, .frame = write(0xfdae), .value = BrightnessNumber},
};
inline constexpr Step SharpnessSteps[] = {
    {.frame = write(0xfbff, 0x02)},
    {.frame = write(0xfbf9), .value = SharpnessNumber},
};
inline constexpr Step HoriSharpnessSteps[] = {
    {.frame = write(0xfbff, 0x02)},
    {.frame = write(0xfbf6), .value = SharpnessNumber},
};
inline constexpr Step SaturationSteps[] = {
    {.frame = write(0xfc10), .value = scaled(255, 100)},
    {.frame = write(0xfc11), .value = scaled(255, 100)},
};
inline constexpr Step NightColorSteps[] = {
    {.frame = write(0xfc12), .value = scaled(116, 50)},
    {.frame = write(0xfc13), .value = scaled(110, 50)},
    {.frame = write(0xfc14), .value = scaled(92, 50)},
};
inline constexpr Step MaxGainSteps[] = {
    {.frame = writeWord(0xfd46), .value = scaled(32, 1)},
    {.onlyWhile = InFirstPicture, .frame = write(0xfa20), .value = GainNumber},
    {.onlyWhile = InOtherPicture, .frame = write(0xff6d), .value = GainNumber},
};
inline constexpr Step WDRSteps[] = {
    {.when = oneOf(0), .frame = write(0xff4c, 0x00)},
    {.when = anyBut(0), .frame = write(0xff4c, 0x01)},
};
inline constexpr Step BackLightSteps[] = {
    {.when = oneOf(0), .frame = write(0xfece, 0x00)},
    {.when = anyBut(0), .frame = write(0xfece, 0x02)},
};
inline constexpr Step PicModeSteps[] = {
    {.when = oneOf(0), .frame = write(0xff60, 0x01)},
    {.when = anyBut(0), .frame = write(0xff60, 0x02)},
    {.when = oneOf(0), .of = BrightnessId, .frame = write(0xfd9e), .value = BrightnessNumber},
    {.when = anyBut(0), .of = BrightnessId, .frame = write(0xfdae), .value = BrightnessNumber},
    {.when = oneOf(0), .of = MaxGainId, .frame = write(0xfa20), .value = GainNumber},
    {.when = anyBut(0), .of = MaxGainId, .frame = write(0xff6d), .value = GainNumber},
};
inline constexpr std::uint8_t SensitivitiesInModeThree[] = {0x11, 0x21, 0x31};
inline constexpr auto SensitivitySteps = sensitivitySteps(SensitivitiesInModeThree);

/// Ids 1 to 16. `Block` has the operations that a row cannot say.
template <class Block>
inline constexpr auto Rows = std::to_array<ParameterRow>({
    {.id = BrightnessId, .name = "Brightness", .accepts = range(0, 100), .steps = BrightnessSteps, .factory = 56},
    {.id = 2, .name = "Sharpness", .accepts = range(0, 100), .steps = SharpnessSteps, .factory = 36},
    {.id = 3, .name = "Saturation", .accepts = range(0, 100), .steps = SaturationSteps, .factory = 49},
    {.id = 4, .name = "NightColor", .accepts = range(1, 50), .steps = NightColorSteps, .factory = 50},
    {.id = CameraModeId,
     .name = "CameraMode",
     .accepts = range(0, 4),
     .set = call<&Block::setCameraMode>,
     .get = ask<&Block::getCameraMode>},
    {.id = MaxGainId,
     .name = "MaxGain",
     .accepts = AnyValue,
     .onlyWhile = unlessStored(CameraModeId, 2, 3),
     .steps = MaxGainSteps,
     .factory = 28},
    {.id = WDRId,
     .name = "WDR",
     .accepts = AnyValue,
     .onlyWhile = all(unlessStored(BackLightId, 1), unlessStored(CameraModeId, FixShutterMode)),
     .steps = WDRSteps,
     .factory = 0},
    sensitivityRow(SensitivitySteps),
    {.id = FixShutterId,
     .name = "FixShutter",
     .accepts = FixShutters,
     .onlyWhile = whileStored(CameraModeId, FixShutterMode),
     .send = write(FixShutterRegister),
     .value = FixShutterNumber,
     .factory = 5},
    {.id = BackLightId,
     .name = "BackLight",
     .accepts = AnyValue,
     .onlyWhile = unlessStored(WDRId, 1),
     .steps = BackLightSteps,
     .factory = 0},
    regtext::mirrorRow(MirrorId),
    {.id = 13,
     .name = "FocusDistance",
     .accepts = range(0, 5),
     .send = write(0xe1f7),
     .value = lookedUp(FocusDistances),
     .factory = 5},
    {.id = FocusModeId, .name = "FocusMode", .accepts = range(0, 4), .set = call<&Block::setFocusMode>, .factory = 1},
    {.id = PicModeId, .name = "PicMode", .accepts = AnyValue, .steps = PicModeSteps, .factory = 0},
    {.id = 16,
     .name = "HoriSharpness",
     .accepts = range(0, 100),
     .notice = console("setHoriSharpness %d"),
     .steps = HoriSharpnessSteps,
     .factory = 68},
});

} // namespace sensorcontrol::hitach
