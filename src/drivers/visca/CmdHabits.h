#pragma once

#include "drivers/visca/CmdRows.h"
#include "drivers/visca/ViscaHabits.h"

/// How the CMD8100 and its relatives turn their picture and change their video system.
namespace sensorcontrol::cmd {

inline constexpr Step ToDay[] = {{.frame = setting(0x51, 0x03)}, {.frame = setting(0x01, 0x03)}};
inline constexpr Step ToNight[] = {{.frame = setting(0x51, 0x03)}, {.frame = setting(0x01, 0x02)}};
inline constexpr Step ToAuto[] = {{.frame = setting(0x51, 0x02)}};

inline constexpr ViscaHabits Turns{
    .statusFailure = "get dn failed ", .turnToDay = ToDay, .turnToNight = ToNight, .turnToAuto = ToAuto};

/// Restarts the block without an answer.
inline constexpr FramePattern Restart(0xfe, 0x05, 0x03, 0x01, 0x01, 0x0a, 0xff);

inline constexpr ViscaVideoSystem VideoSystems{
    .wanted = {0x06, 0x08, 0x00},
    .write = {setting(0x24, 0x72, 0x00, 0x06), setting(0x24, 0x72, 0x00, 0x08), setting(0x24, 0x72, 0x00, 0x00)},
    .restart = Restart};

} // namespace sensorcontrol::cmd
