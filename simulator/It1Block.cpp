// Frames of the block, both ways: the length of the whole frame, a body, the sum of all bytes before it (hex):
//
//   08 01 05 01 0A 03 01 1D      read 1 byte of register 0A03; answered 06 01 03 01 7F 8A
//   08 01 05 01 3D 0B 02 59      read 2 bytes, the low one first; answered 07 01 04 01 80 00 8D
//   08 01 05 02 0A 03 7F 9C      write 8 bits; answered 05 01 02 01 09
//   09 01 06 02 0A 0C FA 27 49   write 16 bits, the low byte first; answered the same
//   04 01 01 06                  the block's refusal: no such register
//
// A wrong sum or any other form is not answered. Its first byte is dropped and the rest looked at anew, so a frame that
// was cut off does not take the next one with it.
#include "simulator/It1Block.h"

#include "simulator/HexText.h"
#include "simulator/WireFrame.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <utility>

namespace camerasim {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t ShortCommand = 8;
constexpr std::uint8_t LongCommand = 9;
constexpr std::uint8_t ReadForm = 1;
constexpr std::uint8_t WriteForm = 2;
constexpr std::uint8_t RefusalLength = 4;
constexpr std::uint8_t AcknowledgementLength = 5;
constexpr std::uint8_t LargestRead = 2;
/// Length, two bytes of form, a state, and the sum around the value of an answer.
constexpr std::size_t AnswerFrame = 5;
constexpr std::size_t ValueStart = 4;

constexpr std::uint32_t ModeRegister = 0x0101;
constexpr std::uint32_t NightBit = 0x40;
constexpr std::uint32_t DayThreshold = 0x1411;
constexpr std::uint32_t NightThreshold = 0x1412;
constexpr std::uint32_t LightRegister = 0x3d0b;

constexpr double FullLight = 128;
constexpr double FullLux = 100;
constexpr double LargestLight = 0xffff;

struct Row {
    std::uint32_t address = 0;
    std::string_view name = {};
    unsigned bytes = 1;
    std::uint32_t factory = 0;
    bool readOnly = false;
};

constexpr auto Rows = std::to_array<Row>({
    {.address = ModeRegister, .name = "picture mode", .factory = 0x15},
    {.address = 0x0a01, .name = "shutter and iris mode"},
    {.address = 0x0a03, .name = "brightness", .factory = 0x80},
    {.address = 0x0a08, .name = "longest shutter", .bytes = 2, .factory = 0x27fa},
    {.address = 0x0a0c, .name = "shortest shutter", .bytes = 2, .factory = 0x468d},
    {.address = 0x0a15, .name = "gain limit 1", .factory = 194},
    {.address = 0x0a16, .name = "gain limit 2", .factory = 194},
    {.address = 0x0a27, .name = "iris speed 1", .factory = 8},
    {.address = 0x0a28, .name = "iris speed 2", .factory = 16},
    {.address = 0x0a29, .name = "iris speed 3", .factory = 20},
    {.address = 0x0a2a, .name = "iris speed 4", .factory = 20},
    {.address = 0x0b00, .name = "white balance"},
    {.address = 0x1402, .name = "sharpness 1", .factory = 0x37},
    {.address = 0x1403, .name = "sharpness 2", .factory = 0x47},
    {.address = 0x1410, .name = "night colour", .factory = 50},
    {.address = DayThreshold, .name = "threshold of day", .factory = 50},
    {.address = NightThreshold, .name = "threshold of night", .factory = 184},
    {.address = 0x141f, .name = "chroma RY1", .bytes = 2, .factory = 0x0100},
    {.address = 0x1421, .name = "chroma BY1", .bytes = 2, .factory = 0x0110},
    {.address = 0x1427, .name = "chroma RY2", .bytes = 2, .factory = 0x0120},
    {.address = 0x1429, .name = "chroma BY2", .bytes = 2, .factory = 0x0130},
    {.address = 0x142f, .name = "chroma RY3", .bytes = 2, .factory = 0x0140},
    {.address = 0x1431, .name = "chroma BY3", .bytes = 2, .factory = 0x0150},
    {.address = 0x1437, .name = "chroma RY4", .bytes = 2, .factory = 0x0160},
    {.address = 0x1439, .name = "chroma BY4", .bytes = 2, .factory = 0x0170},
    {.address = 0x1500, .name = "mirror"},
    {.address = 0x1604, .name = "gamma", .factory = 128},
    {.address = 0x1c03, .name = "iris voltage", .factory = 0x60},
    {.address = LightRegister, .name = "light", .bytes = 2, .readOnly = true},
});

std::uint8_t sumOf(Bytes bytes) { return static_cast<std::uint8_t>(std::accumulate(bytes.begin(), bytes.end(), 0U)); }

/// A whole frame with its sum.
bool isWhole(Bytes bytes) {
    return bytes.size() >= RefusalLength && bytes[0] == bytes.size() &&
           sumOf(bytes.first(bytes.size() - 1)) == bytes.back();
}

/// What stands at the head can be a command, as far as it has come.
bool isCommandHead(Bytes bytes) {
    const std::uint8_t length = bytes[0];
    const auto fits = [&](std::size_t index, unsigned low, unsigned high) {
        return bytes.size() <= index || (bytes[index] >= low && bytes[index] <= high);
    };
    return (length == ShortCommand || length == LongCommand) && fits(1, 1, 1) && fits(2, length - 3U, length - 3U) &&
           fits(3, length == ShortCommand ? ReadForm : WriteForm, WriteForm);
}

std::uint32_t addressOf(Bytes command) { return static_cast<std::uint32_t>(command[4] << 8 | command[5]); }

std::uint32_t valueOf(Bytes bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = bytes.size(); i > 0; --i) {
        value = value << 8 | bytes[i - 1];
    }
    return value;
}

} // namespace

It1Block::It1Block(const BlockSettings& settings) : CameraBlock(settings), m_Values(Rows.size()) {
    It1Block::resetRegisters(true);
}

std::size_t It1Block::indexOf(std::uint32_t address) const {
    const auto row =
        std::find_if(Rows.begin(), Rows.end(), [address](const Row& one) { return one.address == address; });
    return static_cast<std::size_t>(row - Rows.begin());
}

std::optional<std::uint32_t> It1Block::registerValue(std::uint32_t address) const {
    const std::size_t index = indexOf(address);
    return index < m_Values.size() ? std::optional(m_Values[index]) : std::nullopt;
}

bool It1Block::setRegister(std::uint32_t address, std::uint32_t value) {
    const std::size_t index = indexOf(address);
    if (index == m_Values.size()) {
        return false;
    }
    m_Values[index] = value;
    return true;
}

std::vector<RegisterState> It1Block::registers() const {
    std::vector<RegisterState> states;
    for (std::size_t i = 0; i < m_Values.size(); ++i) {
        states.push_back({Rows[i].address, std::string(Rows[i].name), m_Values[i], !Rows[i].readOnly});
    }
    return states;
}

Picture It1Block::picture() const {
    return (m_Values[indexOf(ModeRegister)] & NightBit) != 0 ? Picture::Night : Picture::Day;
}

bool It1Block::decidesDayNight() const {
    return m_Values[indexOf(DayThreshold)] != 0 || m_Values[indexOf(NightThreshold)] != 0;
}

void It1Block::lightChanged() {
    const double lux = std::max(light(), FullLux * FullLight / LargestLight);
    const double value = std::max(FullLight * FullLux / lux, FullLight);
    m_Values[indexOf(LightRegister)] = static_cast<std::uint32_t>(std::lround(value));
    if (!decidesDayNight()) {
        return;
    }
    constexpr double StepsPerHalving = 32;
    const double index = std::log2(value / FullLight) * StepsPerHalving;
    std::uint32_t& mode = m_Values[indexOf(ModeRegister)];
    if (index < m_Values[indexOf(DayThreshold)]) {
        mode &= ~NightBit;
    } else if (index > m_Values[indexOf(NightThreshold)]) {
        mode |= NightBit;
    }
}

CameraBlock::Cut It1Block::cut(Bytes bytes) const {
    if (!isCommandHead(bytes)) {
        return {Cut::Kind::Garbage, 1};
    }
    if (bytes.size() < bytes[0]) {
        return {Cut::Kind::Unfinished, 0};
    }
    return isWhole(bytes.first(bytes[0])) ? Cut{Cut::Kind::Frame, bytes[0]} : Cut{Cut::Kind::Garbage, 1};
}

std::size_t It1Block::indexOfByte(std::uint32_t address) const {
    const auto row = std::find_if(Rows.begin(), Rows.end(), [address](const Row& one) {
        return address >= one.address && address < one.address + one.bytes;
    });
    return static_cast<std::size_t>(row - Rows.begin());
}

void It1Block::executeFrame(Bytes frame, std::int64_t) {
    if (frame[3] == ReadForm) {
        read(addressOf(frame), frame[6]);
    } else {
        write(addressOf(frame), frame.subspan(6, frame.size() - 7));
    }
}

void It1Block::read(std::uint32_t address, std::uint8_t count) {
    std::array<std::uint8_t, 3 + LargestRead> body{1, static_cast<std::uint8_t>(count + 2), 1};
    if (count == 0 || count > LargestRead) {
        refuseFrame({});
        return;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t index = indexOfByte(address + i);
        if (index == m_Values.size()) {
            refuseFrame({});
            return;
        }
        body[3 + i] = static_cast<std::uint8_t>(m_Values[index] >> 8 * (address + i - Rows[index].address));
    }
    send(Bytes(body).first(3U + count));
}

void It1Block::write(std::uint32_t address, Bytes bytes) {
    for (std::uint32_t i = 0; i < bytes.size(); ++i) {
        const std::size_t index = indexOfByte(address + i);
        if (index == m_Values.size() || Rows[index].readOnly) {
            refuseFrame({});
            return;
        }
    }
    for (std::uint32_t i = 0; i < bytes.size(); ++i) {
        const std::size_t index = indexOfByte(address + i);
        const unsigned shift = 8 * (address + i - Rows[index].address);
        m_Values[index] = (m_Values[index] & ~(0xffU << shift)) | static_cast<std::uint32_t>(bytes[i]) << shift;
    }
    lightChanged(); // a threshold may have changed
    send(std::array<std::uint8_t, 3>{1, 2, 1});
}

void It1Block::refuseFrame(Bytes) { send(std::array<std::uint8_t, 2>{1, 1}); }

void It1Block::send(Bytes body) {
    WireFrame frame;
    frame.append(static_cast<std::uint8_t>(body.size() + 2));
    for (const std::uint8_t byte : body) {
        frame.append(byte);
    }
    frame.append(sumOf(std::as_const(frame).bytes()));
    reply(std::as_const(frame).bytes());
}

void It1Block::resetRegisters(bool loseState) {
    for (std::size_t i = 0; loseState && i < Rows.size(); ++i) {
        m_Values[i] = Rows[i].factory;
    }
    It1Block::lightChanged();
}

std::string It1Block::describeRegister(std::uint32_t address, std::size_t count) const {
    const std::size_t index = indexOf(address);
    if (index < m_Values.size() && Rows[index].bytes == count) {
        return std::string(Rows[index].name);
    }
    return (indexOfByte(address) < m_Values.size() ? "part of the registers at " : "unknown register ") +
           hexNumber(address, 4);
}

std::string It1Block::describeFrame(Bytes frame) const {
    const bool hasForm = (frame.size() == ShortCommand || frame.size() == LongCommand) && frame[0] == frame.size() &&
                         isCommandHead(frame);
    if (!hasForm) {
        return "unknown frame";
    }
    const std::string sum = isWhole(frame) ? "" : " (wrong checksum)";
    if (frame[3] == ReadForm) {
        return "inquiry " + describeRegister(addressOf(frame), frame[6]) + sum;
    }
    const Bytes value = frame.subspan(6, frame.size() - 7);
    return describeRegister(addressOf(frame), value.size()) + ' ' +
           hexNumber(valueOf(value), static_cast<int>(2 * value.size())) + sum;
}

std::size_t It1Block::replyLength(Bytes bytes) const {
    return bytes[0] >= RefusalLength && bytes[0] <= bytes.size() ? bytes[0] : bytes.size();
}

bool It1Block::isReply(Bytes bytes) const {
    return !bytes.empty() && bytes[0] >= RefusalLength && bytes[0] < ShortCommand;
}

std::string It1Block::describeReply(Bytes reply, Bytes command) const {
    if (!command.empty() && std::equal(reply.begin(), reply.end(), command.begin(), command.end())) {
        return "echo: " + describe(reply);
    }
    // A host reads the length first and the rest by it.
    if (reply.size() == 1 && isReply(reply)) {
        return "head of a reply of " + std::to_string(reply[0]) + " bytes";
    }
    WireFrame whole;
    whole.append(static_cast<std::uint8_t>(reply.size() + 1));
    for (const std::uint8_t byte : reply) {
        whole.append(byte);
    }
    const Bytes joined = std::as_const(whole).bytes();
    if (!isWhole(reply) && isWhole(joined) && isReply(joined)) {
        return describeReply(joined, command);
    }
    if (reply.size() < RefusalLength || reply[0] != reply.size() || !isReply(reply)) {
        return "stray bytes " + hexBytes(reply);
    }
    if (!isWhole(reply)) {
        return "reply with a wrong checksum";
    }
    if (reply.size() == RefusalLength) {
        return "refused";
    }
    if (reply.size() == AcknowledgementLength) {
        return "acknowledgement";
    }
    const Bytes value = reply.subspan(ValueStart, reply.size() - AnswerFrame);
    const std::string text = hexNumber(valueOf(value), static_cast<int>(2 * value.size()));
    const bool isAsked = command.size() == ShortCommand && isCommandHead(command) && command[3] == ReadForm;
    return isAsked ? "answer: " + describeRegister(addressOf(command), value.size()) + ' ' + text : "answer " + text;
}

} // namespace camerasim
