#pragma once

#include <span>

namespace sensorcontrol::regtext {

/// A register that tells a part of the video system in force.
struct VideoSystemRead {
    const char* command;
    const char* failure;
};

/// One video system that a block has.
struct VideoSystem {
    int videoSystem; ///< 0 NTSC, 1 PAL
    int width = 0;   ///< 0: whatever the resolution is
    int height = 0;
    const char* notice = nullptr;
    int state[2]{};          ///< what the registers hold while it is in force, as many as are read
    const char* writes[3]{}; ///< what brings it about
};

/// How a block's video system is asked for and changed.
struct VideoSystems {
    std::span<const VideoSystemRead> reads;
    std::span<const VideoSystem> systems;
    const char* changeNotice = nullptr;
    bool writesOn = false; ///< a write that failed does not keep the next ones back
    const char* failure = nullptr;
    const char* restart = nullptr; ///< sent once the writes were taken
};

} // namespace sensorcontrol::regtext
