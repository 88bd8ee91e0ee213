#pragma once

#include <cstdint>

namespace sensorcontrol {

/// A text of a table, with at most one %d, and where it goes.
struct Message {
    enum Outlet : std::uint8_t {
        Regular,          ///< no text here: the model's own, if it has one
        Log,              ///< the error log
        Console,          ///< the console
        ConsoleIfPrinting ///< the console, while the host's print flag is on
    };

    constexpr Message() = default;
    constexpr Message(const char* line, Outlet where = Log) // NOLINT(google-explicit-constructor)
        : text(line), outlet(where) {}

    const char* text = "";
    Outlet outlet = Regular;

    constexpr bool isRegular() const { return outlet == Regular; }
    constexpr bool isSilent() const { return *text == '\0'; }
};

/// Says nothing.
inline constexpr Message Silent{"", Message::Log};

constexpr Message console(const char* line) { return {line, Message::Console}; }
constexpr Message consoleIfPrinting(const char* line) { return {line, Message::ConsoleIfPrinting}; }

} // namespace sensorcontrol
