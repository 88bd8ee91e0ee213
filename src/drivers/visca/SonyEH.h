#pragma once

#include "drivers/TableEdits.h"
#include "drivers/visca/SonyHabits.h"
#include "drivers/visca/SonyRows.h"
#include "drivers/visca/ViscaHabits.h"

/// How the Sony blocks turn their picture, and what the two EH blocks have in common beside their table.
namespace sensorcontrol::sony {

inline constexpr int Second = 1000000; ///< between the two frames of a turn

inline constexpr Step ToDay[] = {{.frame = setting(0x01, 0x03), .pause = Second}, {.frame = setting(0x51, 0x03)}};
inline constexpr Step ToNight[] = {{.frame = setting(0x01, 0x02), .pause = Second}, {.frame = setting(0x51, 0x03)}};
inline constexpr Step ToAuto[] = {{.frame = setting(0x01, 0x03), .pause = Second}, {.frame = setting(0x51, 0x02)}};

inline constexpr ViscaHabits Turns{
    .autoNotice = "enter auto mode", .turnToDay = ToDay, .turnToNight = ToNight, .turnToAuto = ToAuto};

/// The whole table of an EH block.
template <class Block>
inline constexpr auto EHTable = joined(joined(Rows<Block>, LensRows<Block>), EHRows<Block>);

inline constexpr SonyHabits EH{.byExposalMode = ByExposalMode,
                               .toNtsc = setting(0x24, 0x72, 0x00, 0x06),
                               .toPal = setting(0x24, 0x72, 0x00, 0x08),
                               .restartTimeout = "recv time out in restart sensor"};

} // namespace sensorcontrol::sony
