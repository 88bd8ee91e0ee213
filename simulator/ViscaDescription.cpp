// What ViscaBlock says about the frames on its line.
#include "simulator/HexText.h"
#include "simulator/ViscaBlock.h"
#include "simulator/ViscaRows.h"
#include "simulator/ViscaWire.h"

#include <algorithm>

namespace camerasim {

using namespace visca;

namespace {

std::string refusalText(std::uint8_t error) {
    switch (error) {
    case 0x02:
        return "refused: the frame makes no sense";
    case 0x41:
        return "refused: not executable";
    default:
        return "refused: error " + hexNumber(error);
    }
}

} // namespace

std::string ViscaBlock::valueText(const ViscaRegister& row, std::uint32_t value) {
    if (const std::string_view word = wordOf(row.words, value); !word.empty()) {
        return std::string(word);
    }
    std::string parts;
    for (const ViscaField& field : row.fields) {
        parts += (parts.empty() ? "" : ", ") + std::string(field.name) + ' ' + hexNumber(field.of(value));
    }
    return parts.empty() ? hexNumber(value) : parts;
}

std::string ViscaBlock::describeFrame(Bytes frame) const {
    if (frame.size() == MaskUnit::FrameLength && frame[0] == MaskHeader) {
        return MaskUnit::describe(frame);
    }
    if (frame.size() >= 7 && frame[0] == PrivateHeader) {
        return describePrivate(frame);
    }
    if (frame.size() >= 5 && frame[0] == CommandHeader && frame[2] == PageGroup) {
        return describePage(frame);
    }
    if (frame.size() < 5 || frame[0] != CommandHeader || frame[2] != CameraGroup ||
        (frame[1] != Setting && frame[1] != Inquiry)) {
        return "unknown frame";
    }
    const Bytes payload = frame.subspan(3, frame.size() - 4);
    std::size_t codeLength = 0;
    const std::size_t index = indexOfCommand(payload, codeLength);
    if (frame[1] == Inquiry) {
        if (payload[0] == VersionRegister) {
            return "inquiry version";
        }
        return index < m_Values.size() ? "inquiry " + std::string(m_Model.registers[index].name)
                                       : "inquiry of unknown register " + hexNumber(payload[0]);
    }
    if (m_Model.hasRestartCommand && payload.size() == 2 && (payload[0] << 8 | payload[1]) == RestartCommand) {
        return "restart";
    }
    for (const ViscaStep& step : m_Model.steps) {
        if (payload.size() == 2 && payload[0] == step.code && payload[1] == step.value) {
            return std::string(step.name);
        }
    }
    if (index == m_Values.size()) {
        return "unknown register " + hexNumber(payload[0]);
    }
    const ViscaRegister& row = m_Model.registers[index];
    const Bytes value = payload.subspan(codeLength);
    if (value.size() != row.payload) {
        return std::string(row.name) + " with a wrong length";
    }
    return std::string(row.name) + ' ' + valueText(row, valueOf(row, value));
}

std::string ViscaBlock::describePrivate(Bytes frame) const {
    const std::string sum = sumIsRight(frame) ? "" : " (wrong checksum)";
    if (isPrivateRestart(frame)) {
        return "restart" + sum;
    }
    const std::size_t index = indexOf(PrivateDayNightRegister | frame[4]);
    if (index == m_Values.size()) {
        return "infrared board: unknown selector " + hexNumber(frame[4]) + sum;
    }
    const ViscaRegister& row = m_Model.registers[index];
    return std::string(row.name) + ' ' + valueText(row, frame[5]) + sum;
}

std::string ViscaBlock::describePage(Bytes frame) const {
    if (!m_Model.hasPages) {
        return "unknown frame";
    }
    if (isPageOpening(frame)) {
        return "open the pages";
    }
    if (!isPageSetting(frame) && !isPageInquiry(frame)) {
        return "unknown frame";
    }
    const std::size_t index = indexOf(pageCode(frame));
    if (index == m_Values.size()) {
        const std::string name =
            "unknown register " + hexBytes(frame.subspan(6, 2)) + " of page " + hexNumber(frame[5]);
        return isPageInquiry(frame) ? "inquiry " + name : name + " with " + hexBytes(frame.subspan(8, 2));
    }
    const ViscaRegister& row = m_Model.registers[index];
    return isPageInquiry(frame) ? "inquiry " + std::string(row.name)
                                : std::string(row.name) + ' ' + valueText(row, valueOf(row, frame.subspan(8, 2)));
}

std::size_t ViscaBlock::replyLength(Bytes bytes) const {
    const auto end = std::find(bytes.begin(), bytes.end(), Terminator);
    return end == bytes.end() ? bytes.size() : static_cast<std::size_t>(end - bytes.begin()) + 1;
}

bool ViscaBlock::isReply(Bytes bytes) const { return !bytes.empty() && bytes[0] == ReplyHeader; }

std::string ViscaBlock::describeReply(Bytes reply, Bytes command) const {
    if (!command.empty() && std::equal(reply.begin(), reply.end(), command.begin(), command.end())) {
        return "echo: " + describe(reply);
    }
    if (reply.empty() || reply[0] != ReplyHeader) {
        return "stray bytes " + hexBytes(reply);
    }
    const bool isWhole = reply.back() == Terminator;
    const unsigned kind = reply.size() > 1 ? reply[1] & 0xf0U : 0U;
    // Drivers read three bytes of an answer to a command: of an error that is all but the end.
    if (kind == 0x60 && reply.size() >= 3) {
        return refusalText(reply[2]) + (isWhole ? "" : " (part of a reply)");
    }
    if (!isWhole || reply.size() < 3) {
        return "part of a reply";
    }
    if (kind == 0x40 && reply.size() == 3) {
        return "acknowledgement";
    }
    if (kind == 0x50 && reply.size() == 3) {
        return "completion";
    }
    return reply[1] == 0x50 ? describeAnswer(reply.subspan(2, reply.size() - 3), command) : "unknown reply";
}

std::string ViscaBlock::describeAnswer(Bytes values, Bytes inquiry) const {
    const bool isInquiry = inquiry.size() >= 5 && inquiry[0] == CommandHeader && inquiry[1] == Inquiry;
    std::size_t index = m_Values.size();
    if (isInquiry && inquiry[2] == CameraGroup) {
        if (inquiry[3] == VersionRegister) {
            return "version " + hexBytes(values);
        }
        std::size_t codeLength = 0;
        index = indexOfCommand(inquiry.subspan(3, inquiry.size() - 4), codeLength);
    } else if (isInquiry && m_Model.hasPages && isPageInquiry(inquiry) && values.size() == 4) {
        index = indexOf(pageCode(inquiry));
        values = values.subspan(2);
    }
    if (index == m_Values.size() || values.size() != m_Model.registers[index].payload) {
        return "answer " + hexBytes(values);
    }
    const ViscaRegister& row = m_Model.registers[index];
    const std::uint32_t value = valueOf(row, values);
    return "answer: " + std::string(row.name) + ' ' +
           (row.answersPicture ? std::string(wordOf(DayNightWords, value)) : valueText(row, value));
}

} // namespace camerasim
