#include "ViscaDecoder.h"

#include "TraceLine.h"

#include <algorithm>
#include <string_view>

namespace sensorctl {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t Terminator = 0xff;
constexpr std::uint8_t ReplyHeader = 0x90;
constexpr std::string_view PanTiltStop = "MENUON";

/// Length of the frame at the head; the rest if it has no end.
std::size_t headLength(Bytes bytes) {
    if (bytes.size() >= PanTiltStop.size() && std::equal(PanTiltStop.begin(), PanTiltStop.end(), bytes.begin()))
        return PanTiltStop.size();
    const auto end = std::find(bytes.begin(), bytes.end(), Terminator);
    return end == bytes.end() ? bytes.size() : static_cast<std::size_t>(end - bytes.begin()) + 1;
}

void append(std::string& text, const std::string& part) { text += (text.empty() ? "" : "; ") + part; }

std::string errorText(std::uint8_t error) {
    switch (error) {
    case 0x02:
        return "refused: the frame makes no sense";
    case 0x41:
        return "refused: not executable";
    default:
        return "refused: error " + hexText(Bytes(&error, 1));
    }
}

} // namespace

std::string ViscaDecoder::sent(Bytes bytes) {
    std::string text;
    while (!bytes.empty()) {
        const Bytes frame = bytes.first(headLength(bytes));
        m_LastSent.assign(frame.begin(), frame.end());
        append(text, m_pBlock->describe(frame));
        bytes = bytes.subspan(frame.size());
    }
    return text;
}

std::string ViscaDecoder::received(Bytes bytes) {
    std::string text;
    while (!bytes.empty()) {
        const Bytes frame = bytes.first(headLength(bytes));
        append(text, reply(frame));
        bytes = bytes.subspan(frame.size());
    }
    return text;
}

bool ViscaDecoder::isReply(Bytes bytes) const { return !bytes.empty() && bytes[0] == ReplyHeader; }

std::string ViscaDecoder::reply(Bytes frame) const {
    if (std::equal(frame.begin(), frame.end(), m_LastSent.begin(), m_LastSent.end()))
        return "echo: " + m_pBlock->describe(frame);
    if (frame[0] != ReplyHeader)
        return "stray bytes " + hexText(frame);
    const bool isWhole = frame.back() == Terminator;
    const std::uint8_t kind = frame.size() > 1 ? frame[1] & 0xf0U : 0U;
    // Drivers read three bytes of an answer to a command: of an error that is all but the end.
    if (kind == 0x60 && frame.size() >= 3)
        return errorText(frame[2]) + (isWhole ? "" : " (part of a reply)");
    if (!isWhole || frame.size() < 3)
        return "part of a reply";
    if (kind == 0x40 && frame.size() == 3)
        return "acknowledgement";
    if (kind == 0x50 && frame.size() == 3)
        return "completion";
    if (frame[1] == 0x50)
        return answer(frame.subspan(2, frame.size() - 3));
    return "unknown reply";
}

std::string ViscaDecoder::answer(Bytes values) const {
    // An answer holds what the setting command for the same register would hold.
    const Bytes inquiry(m_LastSent);
    if (inquiry.size() < 5 || inquiry[0] != 0x81 || inquiry[1] != 0x09)
        return "answer " + hexText(values);
    if (inquiry[3] == 0x22)
        return "version " + hexText(values);
    std::vector<std::uint8_t> setting(inquiry.begin(), inquiry.end() - 1);
    setting[1] = 0x01;
    setting.insert(setting.end(), values.begin(), values.end());
    setting.push_back(Terminator);
    return "answer: " + m_pBlock->describe(setting);
}

} // namespace sensorctl
