#pragma once

#include "simulator/TimeSource.h"
#include "simulator/WireFrame.h"

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace camerasim {

/// A table written as text: rows parted by '|', their cells by '='.
inline std::vector<std::vector<std::string>> table(const std::string& text) {
    std::vector<std::vector<std::string>> rows{{""}};
    for (const char c : text)
        if (c == '|')
            rows.push_back({""});
        else if (c == '=')
            rows.back().emplace_back();
        else
            rows.back().back() += c;
    return rows;
}

/// Bytes of a text like "90 41 FF".
inline std::vector<std::uint8_t> wire(const std::string& hex) {
    std::istringstream text(hex);
    std::vector<std::uint8_t> bytes;
    for (unsigned byte = 0; text >> std::hex >> byte;)
        bytes.push_back(static_cast<std::uint8_t>(byte));
    return bytes;
}

/// The text of bytes, as wire reads it.
template <class Bytes>
std::string hexText(const Bytes& bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, text.empty() ? "%02X" : " %02X", byte);
        text += digits;
    }
    return text;
}

/// Characters as the hex text of their bytes: ":W" gives "3A 57".
inline std::string characters(const std::string& text) {
    return hexText(std::vector<std::uint8_t>(text.begin(), text.end()));
}

/// Replies as "90 41 FF;90 51 FF".
inline std::string hexText(const std::vector<WireFrame>& frames) {
    std::string text;
    for (const WireFrame& frame : frames)
        text += (text.empty() ? "" : ";") + hexText(frame.bytes());
    return text;
}

/// A clock that moves only when somebody waits.
class ManualClock : public TimeSource {
public:
    std::int64_t nowMicroseconds() override { return m_nNow; }
    void waitMicroseconds(std::int64_t microseconds) override { m_nNow += microseconds; }

private:
    std::atomic<std::int64_t> m_nNow{1'000'000};
};

} // namespace camerasim
