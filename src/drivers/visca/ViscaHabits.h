#pragma once

#include "drivers/FramePattern.h"
#include "drivers/ParameterRow.h"

#include <span>

namespace sensorcontrol {

/// What the models of the VISCA family do each in their way.
struct ViscaHabits {
    const char* statusFailure = "get dn failed";
    const char* autoNotice = nullptr; ///< said on the console when the block gets the day/night choice

    // Without infrared board: sent in order, each only if the one before succeeded.
    std::span<const Step> turnToDay;
    std::span<const Step> turnToNight;
    std::span<const Step> turnToAuto;
};

/// The video system of the CMD blocks: what stands in register 24 72, and what makes a new value count.
struct ViscaVideoSystem {
    int ntsc;
    int pal;
    FramePattern restart; ///< sent without waiting for a reply
};

} // namespace sensorcontrol
