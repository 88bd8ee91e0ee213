#pragma once

#include "drivers/FramePattern.h"
#include "drivers/ParameterRow.h"

#include <span>

namespace sensorcontrol {

/// What the Sony blocks do each in their way.
struct SonyHabits {
    std::span<const Resend> byExposalMode; ///< what each exposure mode sends again
    int brightSteps = 27;                  ///< brightness steps beyond 0
    int nearLimit = 7;                     ///< factory value of the focus limit without infrared board
    FramePattern toNtsc;
    FramePattern toPal;
    const char* gainFailure = "get currentGain failed,nRet=%d"; ///< when the block does not answer
    std::size_t gainBytesTold = 1;                              ///< of a reply that is none
    const char* restartTimeout; ///< said when the block does not answer a restart; null: as a wrong answer
};

} // namespace sensorcontrol
