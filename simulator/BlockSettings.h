#pragma once

#include <cstdint>

namespace camerasim {

/// How a block answers a setting command, where its protocol leaves a choice.
enum class ReplyHabit {
    Acknowledge,             ///< one acknowledgement
    AcknowledgeThenComplete, ///< an acknowledgement, then a completion after `completionDelay`
    Complete                 ///< a completion only
};

/// Light at the block's own sensor.
enum class Ambient { Light, Dark };

/// What can differ from one block of a model to the next. All times are in microseconds.
struct BlockSettings {
    ReplyHabit habit = ReplyHabit::Acknowledge;
    /// From the end of a command to its first reply byte.
    std::int64_t reactionTime = 0;
    /// From the acknowledgement to the completion.
    std::int64_t completionDelay = 50'000;
    /// Silence after a restart or power-up.
    std::int64_t bootTime = 8'000'000;
    /// A frame whose next byte does not come within this time is dropped.
    std::int64_t interByteTimeout = 50'000;
};

} // namespace camerasim
