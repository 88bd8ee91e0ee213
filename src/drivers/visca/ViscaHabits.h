#pragma once

#include "drivers/FramePattern.h"
#include "drivers/ParameterRow.h"

#include <span>

namespace sensorcontrol {

/// What the models of the VISCA family do each in their way.
struct ViscaHabits {
    const char* statusFailure = "get dn failed";
    bool isStatusToldWhole = false;   ///< an unknown status: the four bytes of the reply, not the one alone
    const char* autoNotice = nullptr; ///< said on the console when the block gets the day/night choice

    // Without infrared board: sent in order, each only if the one before succeeded.
    std::span<const Step> turnToDay;
    std::span<const Step> turnToNight;
    std::span<const Step> turnToAuto;
};

/// The video system of the CMD blocks: what stands in register 24 72, what writes it, and what makes a new value count.
/// Each for NTSC, PAL and whatever else is asked for.
struct ViscaVideoSystem {
    int wanted[3];
    FramePattern write[3];
    FramePattern restart;     ///< sent without waiting for a reply
    int secondsToRestart = 0; ///< waited before it
};

} // namespace sensorcontrol
