#pragma once

#include "drivers/Exchange.h"
#include "drivers/ModelDescription.h"

#include <span>

namespace sensorcontrol {

/// What tells the models of the VISCA family from each other.
struct ViscaModel {
    ModelDescription parameters;

    const char* portTextFailure = "get RS232Parameter from senseParameter failed";
    const char* statusFailure = "get dn failed ";

    // Without infrared board: sent in order, each only if the one before succeeded.
    std::span<const FramePattern> turnToDay;
    std::span<const FramePattern> turnToNight;
    std::span<const FramePattern> turnToAuto;
};

/// The video system of the CMD blocks: what stands in register 24 72, and what makes a new value count.
struct ViscaVideoSystem {
    int ntsc;
    int pal;
    FramePattern restart; ///< sent without waiting for a reply
};

} // namespace sensorcontrol
