#pragma once

#include "drivers/SerialLine.h"

#include <span>

namespace sensorcontrol {

/// What became of one try.
enum class Outcome {
    Done,
    ShortSend, ///< not all of the command went out
    NoReply,   ///< nothing came
    Short,     ///< the reply ended too early
    TooLong,   ///< the reply says that it is longer than the room for it
    Refused,   ///< the reply came whole and would not do
};

/// How many bytes a reply has, as far as those that came tell: as long as this is more than came, the rest is
/// received in one go and the question put again. `asked` is what the caller of the exchange expects.
using Framing = int(std::span<const char> soFar, int asked);

/// Exactly what was asked for.
constexpr int exactLength(std::span<const char>, int asked) { return asked; }
/// The first byte counts all, itself included.
constexpr int lengthFirst(std::span<const char> soFar, int) {
    return soFar.empty() ? 1 : static_cast<unsigned char>(soFar[0]);
}

/// Whether a whole reply will do.
using Check = bool(std::span<const char> command, std::span<const char> reply);

constexpr bool isAny(std::span<const char>, std::span<const char>) { return true; }
/// The command comes back.
bool isEcho(std::span<const char> command, std::span<const char> reply);
/// The last byte is the low 8 bits of the sum of those before it.
bool isSumRight(std::span<const char> command, std::span<const char> reply);

/// A family's wire: how it answers. None of the functions can be missing.
struct Link {
    int timeout; ///< tenths of a second, for the first byte and between bytes
    Framing& framing = exactLength;
    Check& accepts = isAny;
    bool clearsBuffer = false; ///< so that nothing of an earlier reply passes for a part of this one
    int receives = 1;          ///< how often the reply's first piece is asked for while nothing comes
};

/// One try: the command out, the reply in, checked.
struct Attempt {
    Outcome outcome;
    int count;                   ///< what the last send or receive gave
    std::span<const char> reply; ///< in the line's buffer; what came of it
};

/// Whether a command and a reply of these lengths can be exchanged; the log hears of those that can not. A port's -1
/// would pass for all of -1 bytes.
bool isExchangeable(const SerialLine& line, const char* name, int length, int asked);

/// Makes one try and says nothing of it. The caller holds the line's mutex. Blocks for the reply or the timeouts.
Attempt attempt(const SerialLine& line, const Link& link, std::span<const char> command, int asked);

struct ExchangeRule;

/// Logs a try that failed: what was done, the command, what came.
void reportAttempt(const SerialLine& line, const ExchangeRule& rule, int number, std::span<const char> command,
                   const Attempt& failed);

/// Says that a try begins; most families do not.
using Announce = void(const SerialLine& line, int number, std::span<const char> command);
constexpr void announceNothing(const SerialLine&, int, std::span<const char>) {}

/// How an operation of a family asks again.
struct ExchangeRule {
    Link link;
    const char* name;               ///< of the operation, in the log
    const char* sendName = nullptr; ///< the same where the command did not go out, if it is another
    int tries = 3;
    Announce& announce = announceNothing;
    decltype(reportAttempt)& report = reportAttempt;
    DrainHabit drain = DrainInPieces; ///< after every failed try
};

/// One exchange under the line's mutex: up to `tries` tries. `reply` receives the `asked` bytes unless it is null; on
/// failure it stays as it was. A negative length or a reply beyond the buffer is refused and nothing is sent. Blocks
/// at worst for every try's timeout and drain. Allocates nothing unless a try fails and is logged. 1 or 0.
int exchange(const SerialLine& line, const ExchangeRule& rule, const char* command, int length, int asked,
             char* reply = nullptr);

} // namespace sensorcontrol
