#pragma once

#include "controller/ISensorController.h"

#include <span>

namespace sensorcontrol {

/// The port of a controller and what an exchange on it needs.
struct SerialLine {
    ISensorController& controller; ///< for its log, its drain
    IUARTController& port;
    int handle;
    BRMutex& mutex;         ///< held over the whole exchange
    std::span<char> buffer; ///< where replies land first; under the mutex
};

/// How one family asks and checks.
struct ExchangeRule {
    const char* name; ///< of the operation, in the log
    int timeout;      ///< tenths of a second
    int tries = 3;
    /// Whether the reply will do; null: any of the right length.
    bool (*accepts)(ISensorController&, std::span<const char> command, std::span<const char> reply) = nullptr;
    /// Logs a reply that would not do.
    void (*reportRefusal)(ISensorController&, const ExchangeRule&, int attempt, std::span<const char> command,
                          std::span<const char> reply) = nullptr;
};

/// One exchange: command out, exactly `replyLength` bytes in, checked; a failed try drains the port and is followed by
/// the next. `reply` receives the bytes unless it is null; on failure it stays as it was. 1 or 0; a negative length or
/// a reply beyond the buffer is refused and nothing is sent. Blocks for the replies, at worst for every try's timeout
/// and drain. Allocates nothing unless a try fails and is logged.
int exchange(const SerialLine& line, const ExchangeRule& rule, const char* command, int length, int replyLength,
             char* reply = nullptr);

/// Logs a reply that differs from what was expected, with both.
void reportDifference(ISensorController& controller, const ExchangeRule& rule, int attempt,
                      std::span<const char> command, std::span<const char> reply);

} // namespace sensorcontrol
