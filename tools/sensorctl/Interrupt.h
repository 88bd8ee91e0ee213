#pragma once

#include <chrono>

namespace sensorctl {

/// The wish to end: SIGINT, SIGTERM and SIGHUP. The first one is noted, the second one ends the process at once.
class Interrupt {
public:
    static void install();
    static bool isRequested();

    /// Waits for input on the descriptor (negative: none), for the wish to end or for the end of the span, whichever is
    /// first. True if there is input or its end.
    static bool waitInput(int descriptor, std::chrono::milliseconds span);
    /// Waits; false if the wish to end came.
    static bool sleep(std::chrono::milliseconds span);
};

} // namespace sensorctl
