// Frames of the family, as the block sees them (hex):
//
//   81 01 04 4E 00 00 00 07 FF   set register 4E; answered 90 41 FF, by habit followed or replaced by 90 51 FF
//   81 09 04 01 FF               inquiry; answered 90 50 02 FF, one byte or one nibble a byte
//   FE 01 1E 02 06 32 59 FF      infrared board: selector 06, value 32, sum of the five bytes before; answered 90 41 FF
//   FE 05 03 01 01 0A FF         restart, never answered
//   A1 04 03 FF                  mask unit, answered by its own bytes
//   MENUON                       stops pan and tilt; six characters without a terminator, never answered
//
// Errors are answered 90 60 02 FF (the frame makes no sense) or 90 61 41 FF (no such register). The infrared board
// answers nothing to a wrong sum. A header byte 81 never occurs inside a command, so it always starts a new one: that
// is what lets a repeated command through after one that was cut off.
#include "simulator/ViscaBlock.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>

namespace camerasim {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t CommandHeader = 0x81;
constexpr std::uint8_t PrivateHeader = 0xfe;
constexpr std::uint8_t MaskHeader = 0xa1;
constexpr std::uint8_t Terminator = 0xff;
constexpr std::size_t LongestCommand = 16;
constexpr std::string_view PanTiltStop = "MENUON";

constexpr std::uint32_t DayNightRegister = 0x01;
constexpr std::uint32_t DayNightModeRegister = 0x51;
constexpr std::uint32_t PrivateDayNightRegister = 0xfe00;
constexpr std::uint32_t VersionRegister = 0x22;
constexpr std::uint32_t MaskRegister = 0xa100;
constexpr std::uint32_t InForceOffset = 0x10000;

constexpr std::uint8_t ModeAutomatic = 0x02;
constexpr std::uint8_t ModeManual = 0x03;
constexpr std::uint8_t StateNight = 0x02;
constexpr std::uint8_t StateDay = 0x03;

/// Compares what has come with the fixed beginning of a frame, as far as both reach.
bool startsLike(Bytes bytes, Bytes start) {
    const std::size_t common = std::min(bytes.size(), start.size());
    return std::equal(start.begin(), start.begin() + static_cast<std::ptrdiff_t>(common), bytes.begin());
}

/// The sum byte stands before the terminator and covers everything between it and the header.
bool sumIsRight(Bytes frame) {
    const Bytes summed = frame.subspan(1, frame.size() - 3);
    return static_cast<std::uint8_t>(std::accumulate(summed.begin(), summed.end(), 0U)) == frame[frame.size() - 2];
}

bool isPrivateRestart(Bytes frame) { return frame[0] == PrivateHeader && frame[1] == 0x05; }

std::uint32_t valueOf(Bytes payload) {
    if (payload.size() == 1) {
        return payload[0];
    }
    std::uint32_t value = 0;
    for (const std::uint8_t nibble : payload) {
        value = value << 4 | (nibble & 0x0fU);
    }
    return value;
}

bool nibblesOnly(Bytes payload) {
    return payload.size() == 1 || std::all_of(payload.begin(), payload.end(), [](std::uint8_t b) { return b < 0x10; });
}

std::string hex(std::uint32_t value, int digits = 2) {
    std::array<char, 12> text{};
    std::snprintf(text.data(), text.size(), "%0*X", digits, value);
    return text.data();
}

} // namespace

ViscaBlock::ViscaBlock(const ViscaModel& model, const BlockSettings& settings)
    : CameraBlock(settings), m_Model(model), m_Values(model.registers.size()), m_InForce(model.registers.size()) {
    ViscaBlock::resetRegisters(true);
}

std::size_t ViscaBlock::checkByteIndex(Bytes reply) const {
    // No reply of the family carries a sum; the byte before the terminator is the one a host tells replies apart by.
    return reply.size() >= 2 ? reply.size() - 2 : 0;
}

std::size_t ViscaBlock::indexOf(std::uint32_t code) const {
    const auto it = std::find_if(m_Model.registers.begin(), m_Model.registers.end(),
                                 [code](const ViscaRegister& row) { return row.code == code; });
    return static_cast<std::size_t>(it - m_Model.registers.begin());
}

std::size_t ViscaBlock::indexOfCommand(Bytes payload, std::size_t& codeLength) const {
    codeLength = 1;
    std::size_t index = payload.empty() ? m_Values.size() : indexOf(payload[0]);
    if (index == m_Values.size() && payload.size() >= 2 && payload[0] != PrivateHeader) {
        codeLength = 2;
        index = indexOf(static_cast<std::uint32_t>(payload[0]) << 8 | payload[1]);
    }
    return index;
}

std::optional<std::uint32_t> ViscaBlock::registerValue(std::uint32_t address) const {
    if (const std::size_t index = indexOf(address); index < m_Values.size()) {
        return m_Values[index];
    }
    if (const std::size_t index = indexOf(address - InForceOffset);
        index < m_Values.size() && m_Model.registers[index].atRestart) {
        return m_InForce[index];
    }
    if (m_Model.hasMaskUnit && address >= MaskRegister && address <= MaskRegister + 0xff) {
        const int region = static_cast<int>(address - MaskRegister);
        return region == 0 ? static_cast<std::uint32_t>(m_Masks.currentRegion()) : m_Masks.packed(region);
    }
    return std::nullopt;
}

bool ViscaBlock::setRegister(std::uint32_t address, std::uint32_t value) {
    if (const std::size_t index = indexOf(address); index < m_Values.size()) {
        store(index, value);
        return true;
    }
    if (const std::size_t index = indexOf(address - InForceOffset);
        index < m_Values.size() && m_Model.registers[index].atRestart) {
        m_InForce[index] = value;
        return true;
    }
    if (m_Model.hasMaskUnit && address >= MaskRegister && address <= MaskRegister + 0xff) {
        const int region = static_cast<int>(address - MaskRegister);
        if (region == 0) {
            m_Masks.setCurrentRegion(static_cast<int>(value & 0xffU));
        } else {
            m_Masks.setPacked(region, value);
        }
        return true;
    }
    return false;
}

std::vector<RegisterState> ViscaBlock::registers() const {
    std::vector<RegisterState> states;
    for (std::size_t i = 0; i < m_Values.size(); ++i) {
        const ViscaRegister& row = m_Model.registers[i];
        states.push_back({row.code, std::string(row.name), m_Values[i], row.persistent});
        if (row.atRestart) {
            states.push_back(
                {row.code + InForceOffset, std::string(row.name) + " in force", m_InForce[i], row.persistent});
        }
    }
    if (m_Model.hasMaskUnit) {
        states.push_back({MaskRegister, "mask region", static_cast<std::uint32_t>(m_Masks.currentRegion()), true});
        for (int region = 1; region <= 0xff; ++region) {
            if (m_Masks.region(region).set) {
                states.push_back({MaskRegister + static_cast<std::uint32_t>(region), "mask " + std::to_string(region),
                                  m_Masks.packed(region), true});
            }
        }
    }
    std::sort(states.begin(), states.end(),
              [](const RegisterState& a, const RegisterState& b) { return a.address < b.address; });
    return states;
}

std::string ViscaBlock::valueText(const ViscaRegister& row, std::uint32_t value) const {
    for (const ViscaWord& word : row.words) {
        if (word.value == value) {
            return std::string(word.text);
        }
    }
    return hex(value);
}

std::string ViscaBlock::describe(Bytes frame) const {
    if (frame.size() == PanTiltStop.size() && std::equal(frame.begin(), frame.end(), PanTiltStop.begin())) {
        return "pan/tilt stop";
    }
    if (frame.size() == MaskUnit::FrameLength && frame[0] == MaskHeader) {
        return MaskUnit::describe(frame);
    }
    if (frame.size() >= 7 && frame[0] == PrivateHeader) {
        const std::string sum = sumIsRight(frame) ? "" : " (wrong checksum)";
        if (isPrivateRestart(frame)) {
            return "restart" + sum;
        }
        const std::size_t index = indexOf(PrivateDayNightRegister | frame[4]);
        if (index == m_Values.size()) {
            return "infrared board: unknown selector " + hex(frame[4]) + sum;
        }
        const ViscaRegister& row = m_Model.registers[index];
        return std::string(row.name) + ' ' + valueText(row, frame[5]) + sum;
    }
    if (frame.size() < 5 || frame[0] != CommandHeader || frame[2] != 0x04 || (frame[1] != 0x01 && frame[1] != 0x09)) {
        return "unknown frame";
    }
    const Bytes payload = frame.subspan(3, frame.size() - 4);
    std::size_t codeLength = 0;
    const std::size_t index = indexOfCommand(payload, codeLength);
    if (frame[1] == 0x09) {
        if (payload[0] == VersionRegister) {
            return "inquiry version";
        }
        return index < m_Values.size() ? "inquiry " + std::string(m_Model.registers[index].name)
                                       : "inquiry of unknown register " + hex(payload[0]);
    }
    for (const ViscaStep& step : m_Model.steps) {
        if (payload.size() == 2 && payload[0] == step.code && payload[1] == step.value) {
            return std::string(step.name);
        }
    }
    if (index == m_Values.size()) {
        return "unknown register " + hex(payload[0]);
    }
    const ViscaRegister& row = m_Model.registers[index];
    const Bytes value = payload.subspan(codeLength);
    if (value.size() != row.payload) {
        return std::string(row.name) + " with a wrong length";
    }
    return std::string(row.name) + ' ' + valueText(row, valueOf(value));
}

CameraBlock::Cut ViscaBlock::cut(Bytes bytes) const {
    constexpr Cut Unfinished{Cut::Kind::Unfinished, 0};
    constexpr Cut Garbage{Cut::Kind::Garbage, 1};
    static constexpr std::array<std::uint8_t, 4> PrivateStart{PrivateHeader, 0x01, 0x1e, 0x02};
    static constexpr std::array<std::uint8_t, 5> RestartStart{PrivateHeader, 0x05, 0x03, 0x01, 0x01};
    const auto fixed = [&](std::size_t length) {
        if (bytes.size() < length) {
            return Unfinished;
        }
        return bytes[length - 1] == Terminator ? Cut{Cut::Kind::Frame, length} : Garbage;
    };

    switch (bytes[0]) {
    case CommandHeader:
        for (std::size_t i = 1; i < std::min(bytes.size(), LongestCommand); ++i) {
            if (bytes[i] == Terminator) {
                return {Cut::Kind::Frame, i + 1};
            }
            if (bytes[i] == CommandHeader) {
                return {Cut::Kind::Garbage, i};
            }
        }
        return bytes.size() < LongestCommand ? Unfinished : Garbage;
    case PrivateHeader:
        if (startsLike(bytes, PrivateStart)) {
            return fixed(8);
        }
        return m_Model.hasPrivateRestart && startsLike(bytes, RestartStart) ? fixed(7) : Garbage;
    case MaskHeader:
        return m_Model.hasMaskUnit ? fixed(MaskUnit::FrameLength) : Garbage;
    default: {
        const std::size_t common = std::min(bytes.size(), PanTiltStop.size());
        if (!std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(common), PanTiltStop.begin())) {
            return Garbage;
        }
        return common < PanTiltStop.size() ? Unfinished : Cut{Cut::Kind::Frame, common};
    }
    }
}

void ViscaBlock::executeFrame(Bytes frame, std::int64_t now) {
    switch (frame[0]) {
    case CommandHeader:
        if (frame.size() >= 5 && frame[1] == 0x01 && frame[2] == 0x04) {
            answer(command(frame.subspan(3, frame.size() - 4)));
        } else if (frame.size() >= 5 && frame[1] == 0x09 && frame[2] == 0x04) {
            inquire(frame.subspan(3, frame.size() - 4));
        } else {
            answer(Outcome::SyntaxError);
        }
        break;
    case PrivateHeader:
        if (!sumIsRight(frame)) {
            break;
        }
        if (isPrivateRestart(frame)) {
            reboot(now, false);
        } else {
            answer(privateCommand(frame) ? Outcome::Done : Outcome::NotExecutable);
        }
        break;
    case MaskHeader:
        if (m_Masks.execute(frame)) {
            reply(frame);
        }
        break;
    default:
        break;
    }
}

void ViscaBlock::refuseFrame(Bytes frame) {
    if (frame[0] == CommandHeader || (frame[0] == PrivateHeader && !isPrivateRestart(frame))) {
        answer(Outcome::NotExecutable);
    }
}

ViscaBlock::Outcome ViscaBlock::command(Bytes payload) {
    for (const ViscaStep& step : m_Model.steps) {
        if (payload[0] != step.code) {
            continue;
        }
        if (payload.size() != 2) {
            return Outcome::SyntaxError;
        }
        if (payload[1] == step.value) {
            const std::size_t index = indexOf(step.target);
            const ViscaRegister& row = m_Model.registers[index];
            const std::int64_t moved = step.delta == 0 ? step.position : std::int64_t{m_Values[index]} + step.delta;
            store(index, static_cast<std::uint32_t>(std::clamp<std::int64_t>(moved, row.first, row.last)));
            return Outcome::Done;
        }
    }
    std::size_t codeLength = 0;
    const std::size_t index = indexOfCommand(payload, codeLength);
    if (index == m_Values.size()) {
        return Outcome::NotExecutable;
    }
    const ViscaRegister& row = m_Model.registers[index];
    const Bytes valueBytes = payload.subspan(codeLength);
    if (row.readOnly) {
        return Outcome::NotExecutable;
    }
    if (valueBytes.size() != row.payload || !nibblesOnly(valueBytes)) {
        return Outcome::SyntaxError;
    }
    const std::uint32_t value = valueOf(valueBytes);
    const bool accepted = row.listed.empty()
                              ? value >= row.first && value <= row.last
                              : std::find(row.listed.begin(), row.listed.end(), value) != row.listed.end();
    if (!accepted) {
        return Outcome::SyntaxError;
    }
    store(index, value);
    return Outcome::Done;
}

void ViscaBlock::inquire(Bytes payload) {
    std::array<std::uint8_t, LongestCommand> answerBytes{0x90, 0x50};
    std::size_t length = 2;
    std::size_t codeLength = 0;
    if (payload.size() == 1 && payload[0] == VersionRegister) {
        for (const std::uint8_t byte : m_Model.version) {
            answerBytes[length++] = byte;
        }
    } else {
        const std::size_t index = indexOfCommand(payload, codeLength);
        if (index == m_Values.size()) {
            answer(Outcome::NotExecutable);
            return;
        }
        if (payload.size() != codeLength) {
            answer(Outcome::SyntaxError);
            return;
        }
        const ViscaRegister& row = m_Model.registers[index];
        if (row.payload == 1) {
            answerBytes[length++] = static_cast<std::uint8_t>(m_Values[index]);
        } else {
            for (unsigned nibble = row.payload; nibble > 0; --nibble) {
                answerBytes[length++] = static_cast<std::uint8_t>(m_Values[index] >> (4 * (nibble - 1)) & 0x0fU);
            }
        }
    }
    answerBytes[length++] = Terminator;
    reply(Bytes(answerBytes).first(length));
}

bool ViscaBlock::privateCommand(Bytes frame) {
    const std::size_t index = indexOf(PrivateDayNightRegister | frame[4]);
    if (index == m_Values.size() || frame[5] < m_Model.registers[index].first ||
        frame[5] > m_Model.registers[index].last) {
        return false;
    }
    store(index, frame[5]);
    return true;
}

void ViscaBlock::store(std::size_t index, std::uint32_t value) {
    m_Values[index] = value;
    const std::uint32_t code = m_Model.registers[index].code;
    const std::size_t state = indexOf(DayNightRegister);
    const std::size_t mode = indexOf(DayNightModeRegister);
    const std::size_t privateState = indexOf(PrivateDayNightRegister);
    if (state == m_Values.size() || mode == m_Values.size() || privateState == m_Values.size()) {
        return;
    }
    if (code == PrivateDayNightRegister) {
        m_Values[mode] = value == 0 ? ModeAutomatic : ModeManual;
        if (value != 0) {
            m_Values[state] = value == 1 ? StateNight : StateDay;
        }
    } else if (code == DayNightRegister || code == DayNightModeRegister) {
        m_Values[privateState] = m_Values[mode] == ModeAutomatic ? 0 : m_Values[state] == StateNight ? 1 : 2;
    } else {
        return;
    }
    // A state written in automatic mode stands until the light or the mode changes: some hosts write it just before
    // they switch to manual.
    if (code != DayNightRegister) {
        ambientChanged();
    }
}

void ViscaBlock::answer(Outcome outcome) {
    static constexpr std::array<std::uint8_t, 3> Acknowledged{0x90, 0x41, Terminator};
    static constexpr std::array<std::uint8_t, 3> Completed{0x90, 0x51, Terminator};
    static constexpr std::array<std::uint8_t, 4> Malformed{0x90, 0x60, 0x02, Terminator};
    static constexpr std::array<std::uint8_t, 4> Refused{0x90, 0x61, 0x41, Terminator};
    switch (outcome) {
    case Outcome::SyntaxError:
        reply(Malformed);
        break;
    case Outcome::NotExecutable:
        reply(Refused);
        break;
    case Outcome::Done:
        if (settings().habit != ReplyHabit::Complete) {
            reply(Acknowledged);
        }
        if (settings().habit != ReplyHabit::Acknowledge) {
            reply(Completed, settings().completionDelay);
        }
        break;
    }
}

void ViscaBlock::resetRegisters(bool loseState) {
    for (std::size_t i = 0; i < m_Values.size(); ++i) {
        const ViscaRegister& row = m_Model.registers[i];
        if (loseState || !row.persistent) {
            m_Values[i] = row.factory;
        }
        m_InForce[i] = m_Values[i];
    }
    if (loseState) {
        m_Masks.clear();
    }
    ambientChanged();
}

void ViscaBlock::ambientChanged() {
    const std::size_t state = indexOf(DayNightRegister);
    const std::size_t mode = indexOf(DayNightModeRegister);
    if (state < m_Values.size() && mode < m_Values.size() && m_Values[mode] == ModeAutomatic) {
        m_Values[state] = ambient() == Ambient::Dark ? StateNight : StateDay;
    }
}

} // namespace camerasim
