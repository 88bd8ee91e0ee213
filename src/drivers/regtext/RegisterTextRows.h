#pragma once

#include "drivers/ParameterRow.h"
#include "drivers/regtext/RegisterTextFrames.h"

/// Rows that models of the register-text family share under other ids.
namespace sensorcontrol::regtext {

inline constexpr Step MirrorSteps[] = {
    {.when = oneOf(0), .frame = write(0xff30, 0x00)}, {.when = oneOf(0), .frame = write(0xff31, 0x00)},
    {.when = oneOf(1), .frame = write(0xff31, 0x01)}, {.when = oneOf(2), .frame = write(0xff31, 0x02)},
    {.when = oneOf(3), .frame = write(0xff31, 0x00)}, {.when = range(1, 3), .frame = write(0xff30, 0x01)},
};

constexpr ParameterRow mirrorRow(int id, const Message& refusal = {}) {
    return {.id = id, .name = "Mirror", .accepts = range(0, 3), .refusal = refusal, .steps = MirrorSteps, .factory = 0};
}

} // namespace sensorcontrol::regtext
