#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sensorctl {

class FrameDecoder;

/// One moment on the wire. As text: seconds, direction, bytes in hex, and behind # the meaning:
///
///   0.104213 tx 81 01 04 4E 00 00 00 08 FF # brightness 08
///   0.114498 rx 90 41 FF # acknowledgement
///   0.514806 rx - # nothing within 0.4 s, 3 bytes wanted
///   0.514911 tx! 81 01 04 4E 00 00 00 08 FF # brightness 08
///
/// tx! is a send that the port did not take. Without a time there stands "-".
struct TraceLine {
    enum class Direction { Sent, SendFailed, Received };

    std::optional<double> seconds;
    Direction direction = Direction::Sent;
    std::vector<std::uint8_t> bytes;
    std::string meaning;

    std::string text() const;
    /// The same without the time.
    std::string wireText() const;
    nlohmann::ordered_json json() const;
    /// Fills in the meaning; lines without bytes keep theirs.
    void decode(FrameDecoder& decoder);

    /// Reads a line of that format, or plain bytes in hex, whose direction the decoder guesses. On bad text nothing,
    /// with the reason in error.
    static std::optional<TraceLine> parse(std::string_view text, const FrameDecoder& decoder, std::string& error);
};

/// "81 01 04", upper case.
std::string hexText(std::span<const std::uint8_t> bytes);

} // namespace sensorctl
