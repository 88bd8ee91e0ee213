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

/// Bytes of a text like "90 41 FF".
inline std::vector<std::uint8_t> wire(const std::string& p_strHex) {
    std::istringstream text(p_strHex);
    std::vector<std::uint8_t> bytes;
    for (unsigned nByte = 0; text >> std::hex >> nByte;) {
        bytes.push_back(static_cast<std::uint8_t>(nByte));
    }
    return bytes;
}

/// The text of bytes, as wire reads it.
template <class Bytes>
std::string hexText(const Bytes& p_Bytes) {
    std::string strText;
    for (const std::uint8_t nByte : p_Bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X", nByte);
        strText += (strText.empty() ? "" : " ") + std::string(digits);
    }
    return strText;
}

/// Replies as "90 41 FF|90 51 FF".
inline std::string hexText(const std::vector<WireFrame>& p_Frames) {
    std::string strText;
    for (const WireFrame& frame : p_Frames) {
        strText += (strText.empty() ? "" : "|") + hexText(frame.bytes());
    }
    return strText;
}

/// A clock that moves only when somebody waits.
class ManualClock : public TimeSource {
public:
    std::int64_t nowMicroseconds() override { return m_nNow; }
    void waitMicroseconds(std::int64_t p_nMicroseconds) override { m_nNow += p_nMicroseconds; }

private:
    std::atomic<std::int64_t> m_nNow{1'000'000};
};

} // namespace camerasim
