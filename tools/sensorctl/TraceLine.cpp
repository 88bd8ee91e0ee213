#include "TraceLine.h"

#include "FrameDecoder.h"

#include <charconv>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <sstream>

namespace sensorctl {

namespace {

using Direction = TraceLine::Direction;

const char* nameOf(Direction direction) {
    switch (direction) {
    case Direction::Sent:
        return "tx";
    case Direction::SendFailed:
        return "tx!";
    default:
        return "rx";
    }
}

std::optional<Direction> directionOf(std::string_view word) {
    for (const Direction direction : {Direction::Sent, Direction::SendFailed, Direction::Received})
        if (word == nameOf(direction))
            return direction;
    return std::nullopt;
}

template <class Number>
bool parseAll(std::string_view text, Number& number) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool appendHex(std::string_view word, std::vector<std::uint8_t>& bytes) {
    if (word.size() == 4 && (word.starts_with("0x") || word.starts_with("0X")))
        word.remove_prefix(2);
    if (word.size() % 2 != 0)
        return false;
    for (; !word.empty(); word.remove_prefix(2)) {
        std::uint8_t byte = 0;
        const auto result = std::from_chars(word.data(), word.data() + 2, byte, 16);
        if (result.ec != std::errc() || result.ptr != word.data() + 2)
            return false;
        bytes.push_back(byte);
    }
    return true;
}

std::string timeText(const std::optional<double>& seconds) {
    if (!seconds)
        return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.6f", *seconds);
    return text;
}

} // namespace

std::string hexText(std::span<const std::uint8_t> bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X", byte);
        text += (text.empty() ? "" : " ");
        text += digits;
    }
    return text;
}

std::string TraceLine::text() const { return timeText(seconds) + ' ' + wireText(); }

std::string TraceLine::wireText() const {
    return std::string(nameOf(direction)) + ' ' + (bytes.empty() ? "-" : hexText(bytes)) + " # " + meaning;
}

nlohmann::ordered_json TraceLine::json() const {
    nlohmann::ordered_json object;
    object["seconds"] = seconds ? nlohmann::ordered_json(*seconds) : nlohmann::ordered_json();
    object["direction"] = direction == Direction::Received ? "rx" : "tx";
    object["failed"] = direction == Direction::SendFailed;
    object["bytes"] = hexText(bytes);
    object["meaning"] = meaning;
    return object;
}

void TraceLine::decode(FrameDecoder& decoder) {
    if (!bytes.empty())
        meaning = direction == Direction::Received ? decoder.received(bytes) : decoder.sent(bytes);
}

std::optional<TraceLine> TraceLine::parse(std::string_view text, const FrameDecoder& decoder, std::string& error) {
    TraceLine line;
    if (const std::size_t hash = text.find('#'); hash != std::string_view::npos) {
        line.meaning = text.substr(std::min(text.find_first_not_of(' ', hash + 1), text.size()));
        text = text.substr(0, hash);
    }
    std::istringstream stream{std::string(text)};
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);

    std::size_t next = 0;
    std::optional<Direction> direction = words.empty() ? std::nullopt : directionOf(words[0]);
    if (direction) {
        next = 1;
    } else if (words.size() > 1 && (direction = directionOf(words[1]))) {
        next = 2;
        double seconds = 0;
        if (words[0] != "-" && !parseAll(words[0], seconds)) {
            error = "\"" + words[0] + "\" is no time in seconds";
            return std::nullopt;
        }
        if (words[0] != "-")
            line.seconds = seconds;
    }
    const bool isSilence = direction && words.size() == next + 1 && words[next] == "-";
    for (; !isSilence && next < words.size(); ++next) {
        if (!appendHex(words[next], line.bytes)) {
            error = "\"" + words[next] + "\" is no hex byte, such as 81";
            return std::nullopt;
        }
    }
    if (!isSilence && line.bytes.empty()) {
        error = "there are no bytes";
        return std::nullopt;
    }
    line.direction = direction.value_or(decoder.isReply(line.bytes) ? Direction::Received : Direction::Sent);
    return line;
}

} // namespace sensorctl
