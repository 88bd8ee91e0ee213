#pragma once

#include "controller/ISensorController.h"

#include <span>

namespace sensorcontrol {

/// One of a controller's ports and what an exchange on it needs.
struct SerialLine {
    ISensorController& controller; ///< for its log
    IUARTController& port;
    int handle;
    BRMutex& mutex;         ///< held over the whole exchange
    std::span<char> buffer; ///< where replies land first; under the mutex
};

/// How a line is emptied: piece after piece, until one comes short.
struct DrainHabit {
    int piece;                    ///< bytes
    int timeout;                  ///< tenths of a second
    const char* notice = nullptr; ///< said on the console
};

inline constexpr DrainHabit DrainInPieces{.piece = 20, .timeout = 1, .notice = "Clear UART buffer"};

/// Empties the line of what nobody has asked for. Gives up on a port that does not stop, and when the controller's
/// work is to end. The caller holds the line's mutex, or is alone on the line.
void drain(const SerialLine& line, const DrainHabit& habit);

/// Sends without lock, reply or retry. The bytes that went out.
int sendRaw(const SerialLine& line, std::span<const char> command);

} // namespace sensorcontrol
