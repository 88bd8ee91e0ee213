// Texts of the family, as the block sees them; plain characters, no terminator, no sum:
//
//   :WFD9E7F       write 7F to the 8-bit register FD9E; answered by the same text
//   :wFD460120     the same for a 16-bit register
//   :RFD9E00       read; answered :RFD9E7F
//   :RFB380000     read of a 16-bit register; answered :RFB380120
//   :rE1ED0000     store the settings, never answered
//
// Digits are upper case. Only the register tells how long a read is. A text starts at its colon: what comes before, or
// is cut off by the next colon, is dropped. An unknown register is not answered; a refusal is the command with a
// question mark for the colon.
#include "simulator/RegisterTextBlock.h"

#include "simulator/HexText.h"

#include <algorithm>

namespace camerasim {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::string_view StoreCommand = ":rE1ED0000";
constexpr std::size_t AddressStart = 2;
constexpr std::size_t ValueStart = 6;
constexpr std::size_t ShortText = 8;
constexpr std::size_t LongText = 10;
constexpr std::uint32_t InForceOffset = 0x10000;
constexpr std::uint32_t StoredOffset = 0x20000;
constexpr char Refused = '?';

bool isDigit(std::uint8_t byte) { return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'F'); }
bool isHead(std::uint8_t byte) { return byte == ':' || byte == Refused; }

std::uint32_t number(Bytes digits) {
    std::uint32_t value = 0;
    for (const std::uint8_t digit : digits) {
        value = value << 4 | static_cast<std::uint32_t>(digit <= '9' ? digit - '0' : digit - 'A' + 10);
    }
    return value;
}

std::string textOf(Bytes bytes) { return {bytes.begin(), bytes.end()}; }

Bytes bytesOf(const std::string& text) { return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}; }

} // namespace

struct RegisterTextBlock::Text {
    char form = 0;
    std::uint32_t address = 0;
    std::uint32_t value = 0;
    unsigned digits = 0;

    bool isWrite() const { return form == 'W' || form == 'w'; }
};

RegisterTextBlock::RegisterTextBlock(const RegisterTextModel& model, const BlockSettings& settings)
    : CameraBlock(settings), m_Model(model), m_Values(model.registers.size()), m_Stored(model.registers.size()) {
    RegisterTextBlock::resetRegisters(true);
}

std::size_t RegisterTextBlock::checkByteIndex(Bytes reply) const {
    // There is no sum. The last digit of the address is what a host compares in an echo and in an answer.
    return std::min(ValueStart - 1, reply.empty() ? 0 : reply.size() - 1);
}

std::size_t RegisterTextBlock::indexOf(std::uint32_t address) const {
    const auto row = std::find_if(m_Model.registers.begin(), m_Model.registers.end(),
                                  [address](const TextRegister& one) { return one.address == address; });
    return static_cast<std::size_t>(row - m_Model.registers.begin());
}

std::optional<std::uint32_t> RegisterTextBlock::registerValue(std::uint32_t address) const {
    if (const std::size_t index = indexOf(address); index < m_Values.size()) {
        return m_Values[index];
    }
    if (m_Model.videoSystem != 0 && address == m_Model.videoSystem + InForceOffset) {
        return m_nVideoSystem;
    }
    const std::size_t index = indexOf(address - StoredOffset);
    return index < m_Values.size() && !m_Model.registers[index].readOnly ? std::optional(m_Stored[index])
                                                                         : std::nullopt;
}

bool RegisterTextBlock::setRegister(std::uint32_t address, std::uint32_t value) {
    std::size_t index = indexOf(address);
    if (m_Model.videoSystem != 0 && address == m_Model.videoSystem + InForceOffset) {
        m_nVideoSystem = value;
        return true;
    }
    if (index == m_Values.size()) {
        index = indexOf(address - StoredOffset);
        if (index == m_Values.size() || m_Model.registers[index].readOnly) {
            return false;
        }
        m_Stored[index] = value;
    }
    m_Values[index] = value;
    if (address == m_Model.videoSystem + StoredOffset) {
        m_nVideoSystem = value;
    }
    registersChanged();
    return true;
}

std::vector<RegisterState> RegisterTextBlock::registers() const {
    std::vector<RegisterState> states;
    for (std::size_t i = 0; i < m_Values.size(); ++i) {
        const TextRegister& row = m_Model.registers[i];
        const std::string name(row.name);
        states.push_back({row.address, name, m_Values[i], false});
        if (row.address == m_Model.videoSystem) {
            states.push_back({row.address + InForceOffset, name + " in force", m_nVideoSystem, false});
        }
        if (!row.readOnly) {
            states.push_back({row.address + StoredOffset, name + " stored", m_Stored[i], true});
        }
    }
    std::sort(states.begin(), states.end(),
              [](const RegisterState& a, const RegisterState& b) { return a.address < b.address; });
    return states;
}

std::string RegisterTextBlock::videoSystem() const {
    const std::size_t index = indexOf(m_Model.videoSystem);
    return index < m_Values.size() ? valueText(index, m_nVideoSystem) : "";
}

bool RegisterTextBlock::setVideoSystem(std::string_view text) {
    const std::size_t index = indexOf(m_Model.videoSystem);
    if (index == m_Values.size()) {
        return false;
    }
    for (const ValueWord& word : m_Model.registers[index].words) {
        if (word.text == text) {
            return setRegister(m_Model.videoSystem + StoredOffset, word.value);
        }
    }
    return false;
}

std::size_t RegisterTextBlock::frameSize(Bytes bytes) const {
    switch (bytes.size() > 1 ? bytes[1] : 0) {
    case 'W':
        return ShortText;
    case 'w':
    case 'r':
        return LongText;
    case 'R': {
        const bool hasAddress = bytes.size() >= ValueStart &&
                                std::all_of(bytes.begin() + AddressStart, bytes.begin() + ValueStart, isDigit);
        const std::size_t index =
            hasAddress ? indexOf(number(bytes.subspan(AddressStart, ValueStart - AddressStart))) : m_Values.size();
        return index < m_Values.size() && m_Model.registers[index].digits == 4 ? LongText : ShortText;
    }
    default:
        return 0;
    }
}

CameraBlock::Cut RegisterTextBlock::cut(Bytes bytes) const {
    constexpr Cut Unfinished{Cut::Kind::Unfinished, 0};
    if (bytes[0] != ':') {
        const auto next = std::find_if(bytes.begin() + 1, bytes.end(),
                                       [](std::uint8_t byte) { return byte == ':' || byte == PanTiltStop.front(); });
        return {Cut::Kind::Garbage, static_cast<std::size_t>(next - bytes.begin())};
    }
    if (bytes.size() == 1) {
        return Unfinished;
    }
    const std::size_t size = frameSize(bytes);
    if (size == 0) {
        return {Cut::Kind::Garbage, 1};
    }
    for (std::size_t i = AddressStart; i < std::min(bytes.size(), size); ++i) {
        if (!isDigit(bytes[i])) {
            return {Cut::Kind::Garbage, i};
        }
    }
    return bytes.size() < size ? Unfinished : Cut{Cut::Kind::Frame, size};
}

std::optional<RegisterTextBlock::Text> RegisterTextBlock::parse(Bytes frame) const {
    if (frame.size() < ShortText || frame[0] != ':' || frame.size() != frameSize(frame) ||
        !std::all_of(frame.begin() + AddressStart, frame.end(), isDigit)) {
        return std::nullopt;
    }
    return Text{static_cast<char>(frame[1]), number(frame.subspan(AddressStart, ValueStart - AddressStart)),
                number(frame.subspan(ValueStart)), static_cast<unsigned>(frame.size() - ValueStart)};
}

void RegisterTextBlock::executeFrame(Bytes frame, std::int64_t now) {
    if (textOf(frame) == StoreCommand) {
        m_Stored = m_Values;
        return;
    }
    const std::optional<Text> text = parse(frame);
    const std::size_t index = text ? indexOf(text->address) : m_Values.size();
    if (index == m_Values.size() || text->digits != m_Model.registers[index].digits) {
        return;
    }
    if (text->isWrite() && !m_Model.registers[index].readOnly) {
        reply(frame);
        write(index, text->value, now);
    } else if (text->form == 'R' && text->value == 0) {
        reply(bytesOf(textOf(frame.first(ValueStart)) + hexNumber(m_Values[index], static_cast<int>(text->digits))));
    }
}

void RegisterTextBlock::refuseFrame(Bytes frame) {
    if (textOf(frame) != StoreCommand) {
        reply(bytesOf(Refused + textOf(frame.subspan(1))));
    }
}

void RegisterTextBlock::write(std::size_t index, std::uint32_t value, std::int64_t now) {
    m_Values[index] = value;
    registersChanged();
    if (m_Model.registers[index].address == m_Model.videoSystem && value != m_nVideoSystem) {
        m_nVideoSystem = m_Stored[index] = value;
        goSilent(now, std::min(settings().bootTime, m_Model.videoRestart));
    }
}

void RegisterTextBlock::resetRegisters(bool loseState) {
    for (std::size_t i = 0; i < m_Values.size(); ++i) {
        if (loseState) {
            m_Stored[i] = m_Model.registers[i].factory;
        }
        m_Values[i] = m_Stored[i];
        if (m_Model.registers[i].address == m_Model.videoSystem) {
            m_nVideoSystem = m_Values[i];
        }
    }
    registersChanged();
}

std::string RegisterTextBlock::valueText(std::size_t index, std::uint32_t value) const {
    const TextRegister& row = m_Model.registers[index];
    const std::string_view word = wordOf(row.words, value);
    return word.empty() ? hexNumber(value, static_cast<int>(row.digits)) : std::string(word);
}

std::string RegisterTextBlock::describeFrame(Bytes frame) const {
    if (textOf(frame) == StoreCommand) {
        return "store the settings";
    }
    const std::optional<Text> text = parse(frame);
    if (!text || text->form == 'r') {
        return "unknown frame";
    }
    const std::size_t index = indexOf(text->address);
    if (index == m_Values.size()) {
        return (text->isWrite() ? "unknown register " : "inquiry of unknown register ") + hexNumber(text->address, 4);
    }
    const std::string name(m_Model.registers[index].name);
    if (text->digits != m_Model.registers[index].digits) {
        return name + " with a wrong length";
    }
    return text->isWrite() ? name + ' ' + valueText(index, text->value) : "inquiry " + name;
}

std::size_t RegisterTextBlock::replyLength(Bytes bytes) const {
    // Only an echo or an answer has a length of its own; other bytes go on to the next head.
    const std::size_t size = isHead(bytes[0]) ? frameSize(bytes) : 0;
    const auto next = static_cast<std::size_t>(std::find_if(bytes.begin() + 1, bytes.end(), isHead) - bytes.begin());
    return size > 0 ? std::min(next, size) : next;
}

bool RegisterTextBlock::isReply(Bytes bytes) const {
    if (bytes.empty() || bytes[0] == Refused) {
        return !bytes.empty();
    }
    // An echo cannot be told from its command.
    const std::optional<Text> text =
        parse(bytes.first(std::min(bytes.size(), std::max<std::size_t>(frameSize(bytes), 1))));
    return text && text->form == 'R' && text->value != 0;
}

std::string RegisterTextBlock::describeReply(Bytes reply, Bytes command) const {
    if (reply.empty() || !isHead(reply[0])) {
        return "stray bytes " + hexBytes(reply);
    }
    if (reply[0] == Refused) {
        return "refused" + std::string(reply.size() == command.size() ? "" : " (part of a reply)");
    }
    const std::optional<Text> text = parse(reply);
    if (!text) {
        return "part of a reply";
    }
    const std::size_t index = indexOf(text->address);
    if (text->form == 'R' && index < m_Values.size()) {
        return "answer: " + std::string(m_Model.registers[index].name) + ' ' + valueText(index, text->value);
    }
    return (std::equal(reply.begin(), reply.end(), command.begin(), command.end()) ? "echo: " : "wrong echo: ") +
           describe(reply);
}

} // namespace camerasim
