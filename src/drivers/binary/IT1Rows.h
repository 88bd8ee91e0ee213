#pragma once

#include "drivers/RowMakers.h"
#include "drivers/binary/IT1Model.h"
#include "drivers/binary/RegisterFrames.h"

#include <array>

/// The parameters of the IT1 blocks.
namespace sensorcontrol::it1 {

using binary::reading;
using binary::writing;

inline int takeAny(ISensorController&, int) { return 1; }

inline constexpr BitField InvertedIrisDrive{Shadows::of0A01, 1, 1};

/// The bytes of iris speeds 1 to 6.
inline constexpr std::uint8_t IrisValues[][6] = {
    {5, 8, 10, 12, 16, 20}, {10, 16, 20, 24, 30, 40}, {16, 20, 32, 40, 50, 64}, {16, 20, 32, 40, 50, 64}};
inline constexpr Step IrisSpeeds[] = {
    {.frame = writing(0x0a, 0x27), .value = lookedUp(1, IrisValues[0]), .failure = "setIrisValue1 failed"},
    {.frame = writing(0x0a, 0x28), .value = lookedUp(1, IrisValues[1]), .failure = "setIrisValue2 failed"},
    {.frame = writing(0x0a, 0x29), .value = lookedUp(1, IrisValues[2]), .failure = "setIrisValue3 failed"},
    {.frame = writing(0x0a, 0x2a), .value = lookedUp(1, IrisValues[3]), .failure = "setIrisValue4 failed"},
};
inline constexpr Step Sharpnesses[] = {
    {.frame = writing(0x14, 0x02),
     .value = scaled(15, 100),
     .field = {Shadows::of1402, 0, 4},
     .failure = "set p_nSharpness(%d) failed"},
    {.frame = writing(0x14, 0x03),
     .value = scaled(15, 100),
     .field = {Shadows::of1403, 0, 4},
     .failure = "set p_nSharpness(%d) failed"},
};
inline constexpr Step MaxGains[] = {{.frame = writing(0x0a, 0x15)}, {.frame = writing(0x0a, 0x16)}};
inline constexpr Step Gammas[] = {{.frame = writing(0x16, 0x04), .failure = "set setGama(%d) failed\n"}};
inline constexpr std::uint8_t BalanceModes[] = {0x00, 0x22};
inline constexpr Step Balances[] = {
    {.frame = writing(0x0b, 0x00), .value = lookedUp(1, BalanceModes), .failure = "set White Balance failed"}};

inline constexpr auto Rows = std::to_array<ParameterRow>({
    {.id = 1,
     .name = "Brightness",
     .accepts = range(0, 100),
     .refusal = "p_nBrightness(%d) is out of range",
     .send = writing(0x0a, 0x03),
     .value = scaled(255, 100),
     .read = {.inquiry = reading(0x0a, 0x03, 1), .value = scaled(100, 255)}},
    {.id = 2,
     .name = "Sharpness",
     .accepts = range(0, 100),
     .refusal = "p_nSharpness(%d) is out of range",
     .steps = Sharpnesses,
     .get = ask<&Block::getSharpness>},
    {.id = MirrorId,
     .name = "Mirror",
     .accepts = range(0, 3),
     .send = writing(0x15, 0x00),
     .field = {Shadows::of1500, 0, 2},
     .get = ask<&Block::getMirror>},
    {.id = 4, .name = "DayNightSetup", .accepts = range(0, 2), .set = call<&Block::setDayNightSetup>, .factory = 0},
    // What these two accept ends at each other.
    {.id = DayToNightId, .name = "DayToNightTransition", .set = call<&Block::setDayToNightTransition>, .factory = 184},
    {.id = NightToDayId, .name = "NightToDayTransition", .set = call<&Block::setNightToDayTransition>, .factory = 50},
    {.id = 7, .name = "VideoOutSetup", .kind = IdManager::Unknown, .set = takeAny, .factory = 0},
    {.id = MinShutterId,
     .name = "MinShutterValue",
     .accepts = range(1, 8),
     .refusal = Silent,
     .onlyWhile = beforeRange(unlessStored(ShutterModeId, 1)),
     .set = call<&Block::setMinShutterValue>,
     .factory = 8},
    {.id = 9,
     .name = "MaxAGCValue",
     .accepts = range(25, 255),
     .refusal = console("invalid value "),
     .steps = MaxGains,
     .factory = 194},
    {.id = 10,
     .name = "IrisDriveMode",
     .accepts = range(0, 1),
     .send = writing(0x0a, 0x01),
     .value = scaled(-1, 1, 1),
     .field = InvertedIrisDrive,
     .read = {.inquiry = reading(0x0a, 0x01, 1), .value = scaled(-1, 1, 1), .field = InvertedIrisDrive}},
    {.id = MaxShutterId,
     .name = "MaxShutterValue",
     .accepts = range(2, 13),
     .refusal = Silent,
     .onlyWhile = beforeRange(unlessStored(ShutterModeId, 1)),
     .set = call<&Block::setMaxShutterValue>,
     .factory = 5},
    {.id = 12,
     .name = "Gama",
     .accepts = range(96, 160),
     .refusal = console("setGama(%d) is out of range"),
     .steps = Gammas,
     .read = {.inquiry = reading(0x16, 0x04, 1)},
     .getFailure = "get setGama(%d) failed\n"},
    {.id = 13, .name = "Chroma", .accepts = AnyValue, .set = call<&Block::setChroma>, .get = ask<&Block::getChroma>},
    {.id = 14,
     .name = "WhiteBalance",
     .accepts = range(1, 2),
     .refusal = "setWhiteBalance failed p_nWBValue=%d",
     .steps = Balances,
     .get = ask<&Block::getWhiteBalance>,
     .getFailure = "get White Balance failed"},
    {.id = 15,
     .name = "NightColor",
     .accepts = AnyValue,
     .send = writing(0x14, 0x10),
     .setFailure = "setNightColor failed",
     .read = {.inquiry = reading(0x14, 0x10, 1)},
     .getFailure = "getNightColor failed"},
    {.id = 16,
     .name = "IrisVoltage",
     .accepts = AnyValue,
     .send = writing(0x1c, 0x03),
     .setFailure = "setIrisVoltage failed",
     .read = {.inquiry = reading(0x1c, 0x03, 1)},
     .getFailure = "getIrisVoltage failed"},
    {.id = 17,
     .name = "IrisSpeed",
     .accepts = range(1, 6),
     .refusal = "invalid iris speed value (%d)",
     .steps = IrisSpeeds,
     .factory = 2},
    {.id = FixedShutterId,
     .name = "FixedShutter",
     .accepts = range(0, 7),
     .refusal = Silent,
     .onlyWhile = beforeRange(unlessStored(ShutterModeId, 0)),
     .keptText = console("set fixed shutter failed : current is shutter mode is auto"),
     .set = call<&Block::base_setFixedShutter>,
     .factory = 0},
    {.id = ShutterModeId, .name = "ShutterMode", .set = call<&Block::setShutterMode>, .factory = 0},
    filterModeRow(20),
    {.id = 22, .name = "Infrared", .accepts = range(0, 2), .set = call<&Block::setInfrared>, .factory = 0},
});

} // namespace sensorcontrol::it1
