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

constexpr std::uint8_t commandHeader = 0x81;
constexpr std::uint8_t privateHeader = 0xfe;
constexpr std::uint8_t maskHeader = 0xa1;
constexpr std::uint8_t terminator = 0xff;
constexpr std::size_t longestCommand = 16;
constexpr std::string_view panTiltStop = "MENUON";

constexpr std::uint32_t dayNightRegister = 0x01;
constexpr std::uint32_t dayNightModeRegister = 0x51;
constexpr std::uint32_t privateDayNightRegister = 0xfe00;
constexpr std::uint32_t versionRegister = 0x22;
constexpr std::uint32_t maskRegister = 0xa100;
constexpr std::uint32_t inForceOffset = 0x10000;

constexpr std::uint8_t modeAutomatic = 0x02;
constexpr std::uint8_t modeManual = 0x03;
constexpr std::uint8_t stateNight = 0x02;
constexpr std::uint8_t stateDay = 0x03;

/// Compares what has come with the fixed beginning of a frame, as far as both reach.
bool startsLike(Bytes p_Bytes, Bytes p_Start) {
    const std::size_t nCommon = std::min(p_Bytes.size(), p_Start.size());
    return std::equal(p_Start.begin(), p_Start.begin() + static_cast<std::ptrdiff_t>(nCommon), p_Bytes.begin());
}

/// The sum byte stands before the terminator and covers everything between it and the header.
bool sumIsRight(Bytes p_Frame) {
    const Bytes summed = p_Frame.subspan(1, p_Frame.size() - 3);
    return static_cast<std::uint8_t>(std::accumulate(summed.begin(), summed.end(), 0U)) == p_Frame[p_Frame.size() - 2];
}

bool isPrivateRestart(Bytes p_Frame) { return p_Frame[0] == privateHeader && p_Frame[1] == 0x05; }

std::uint32_t valueOf(Bytes p_Payload) {
    if (p_Payload.size() == 1) {
        return p_Payload[0];
    }
    std::uint32_t nValue = 0;
    for (const std::uint8_t nNibble : p_Payload) {
        nValue = nValue << 4 | (nNibble & 0x0fU);
    }
    return nValue;
}

bool nibblesOnly(Bytes p_Payload) {
    return p_Payload.size() == 1 ||
           std::all_of(p_Payload.begin(), p_Payload.end(), [](std::uint8_t b) { return b < 0x10; });
}

std::string hex(std::uint32_t p_nValue, int p_nDigits = 2) {
    std::array<char, 12> text{};
    std::snprintf(text.data(), text.size(), "%0*X", p_nDigits, p_nValue);
    return text.data();
}

} // namespace

ViscaBlock::ViscaBlock(const ViscaModel& p_Model, const BlockSettings& p_Settings)
    : CameraBlock(p_Settings), m_Model(p_Model), m_Values(p_Model.registers.size()),
      m_InForce(p_Model.registers.size()) {
    ViscaBlock::resetRegisters(true);
}

std::size_t ViscaBlock::checkByteIndex(Bytes p_Reply) const {
    // No reply of the family carries a sum; the byte before the terminator is the one a host tells replies apart by.
    return p_Reply.size() >= 2 ? p_Reply.size() - 2 : 0;
}

std::size_t ViscaBlock::indexOf(std::uint32_t p_nCode) const {
    const auto it = std::find_if(m_Model.registers.begin(), m_Model.registers.end(),
                                 [p_nCode](const ViscaRegister& row) { return row.code == p_nCode; });
    return static_cast<std::size_t>(it - m_Model.registers.begin());
}

std::size_t ViscaBlock::indexOfCommand(Bytes p_Payload, std::size_t& p_nCodeLength) const {
    p_nCodeLength = 1;
    std::size_t nIndex = p_Payload.empty() ? m_Values.size() : indexOf(p_Payload[0]);
    if (nIndex == m_Values.size() && p_Payload.size() >= 2 && p_Payload[0] != privateHeader) {
        p_nCodeLength = 2;
        nIndex = indexOf(static_cast<std::uint32_t>(p_Payload[0]) << 8 | p_Payload[1]);
    }
    return nIndex;
}

std::optional<std::uint32_t> ViscaBlock::registerValue(std::uint32_t p_nAddress) const {
    if (const std::size_t nIndex = indexOf(p_nAddress); nIndex < m_Values.size()) {
        return m_Values[nIndex];
    }
    if (const std::size_t nIndex = indexOf(p_nAddress - inForceOffset);
        nIndex < m_Values.size() && m_Model.registers[nIndex].atRestart) {
        return m_InForce[nIndex];
    }
    if (m_Model.hasMaskUnit && p_nAddress >= maskRegister && p_nAddress <= maskRegister + 0xff) {
        const int nRegion = static_cast<int>(p_nAddress - maskRegister);
        return nRegion == 0 ? static_cast<std::uint32_t>(m_Masks.currentRegion()) : m_Masks.packed(nRegion);
    }
    return std::nullopt;
}

bool ViscaBlock::setRegister(std::uint32_t p_nAddress, std::uint32_t p_nValue) {
    if (const std::size_t nIndex = indexOf(p_nAddress); nIndex < m_Values.size()) {
        store(nIndex, p_nValue);
        return true;
    }
    if (const std::size_t nIndex = indexOf(p_nAddress - inForceOffset);
        nIndex < m_Values.size() && m_Model.registers[nIndex].atRestart) {
        m_InForce[nIndex] = p_nValue;
        return true;
    }
    if (m_Model.hasMaskUnit && p_nAddress >= maskRegister && p_nAddress <= maskRegister + 0xff) {
        const int nRegion = static_cast<int>(p_nAddress - maskRegister);
        if (nRegion == 0) {
            m_Masks.setCurrentRegion(static_cast<int>(p_nValue & 0xffU));
        } else {
            m_Masks.setPacked(nRegion, p_nValue);
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
                {row.code + inForceOffset, std::string(row.name) + " in force", m_InForce[i], row.persistent});
        }
    }
    if (m_Model.hasMaskUnit) {
        states.push_back({maskRegister, "mask region", static_cast<std::uint32_t>(m_Masks.currentRegion()), true});
        for (int nRegion = 1; nRegion <= 0xff; ++nRegion) {
            if (m_Masks.region(nRegion).set) {
                states.push_back({maskRegister + static_cast<std::uint32_t>(nRegion), "mask " + std::to_string(nRegion),
                                  m_Masks.packed(nRegion), true});
            }
        }
    }
    std::sort(states.begin(), states.end(),
              [](const RegisterState& a, const RegisterState& b) { return a.address < b.address; });
    return states;
}

std::string ViscaBlock::valueText(const ViscaRegister& p_Register, std::uint32_t p_nValue) const {
    for (const ViscaWord& word : p_Register.words) {
        if (word.value == p_nValue) {
            return std::string(word.text);
        }
    }
    return hex(p_nValue);
}

std::string ViscaBlock::describe(Bytes p_Frame) const {
    if (p_Frame.size() == panTiltStop.size() && std::equal(p_Frame.begin(), p_Frame.end(), panTiltStop.begin())) {
        return "pan/tilt stop";
    }
    if (p_Frame.size() == MaskUnit::frameLength && p_Frame[0] == maskHeader) {
        return MaskUnit::describe(p_Frame);
    }
    if (p_Frame.size() >= 7 && p_Frame[0] == privateHeader) {
        const std::string strSum = sumIsRight(p_Frame) ? "" : " (wrong checksum)";
        if (isPrivateRestart(p_Frame)) {
            return "restart" + strSum;
        }
        const std::size_t nIndex = indexOf(privateDayNightRegister | p_Frame[4]);
        if (nIndex == m_Values.size()) {
            return "infrared board: unknown selector " + hex(p_Frame[4]) + strSum;
        }
        const ViscaRegister& row = m_Model.registers[nIndex];
        return std::string(row.name) + ' ' + valueText(row, p_Frame[5]) + strSum;
    }
    if (p_Frame.size() < 5 || p_Frame[0] != commandHeader || p_Frame[2] != 0x04 ||
        (p_Frame[1] != 0x01 && p_Frame[1] != 0x09)) {
        return "unknown frame";
    }
    const Bytes payload = p_Frame.subspan(3, p_Frame.size() - 4);
    std::size_t nCodeLength = 0;
    const std::size_t nIndex = indexOfCommand(payload, nCodeLength);
    if (p_Frame[1] == 0x09) {
        if (payload[0] == versionRegister) {
            return "inquiry version";
        }
        return nIndex < m_Values.size() ? "inquiry " + std::string(m_Model.registers[nIndex].name)
                                        : "inquiry of unknown register " + hex(payload[0]);
    }
    for (const ViscaStep& step : m_Model.steps) {
        if (payload.size() == 2 && payload[0] == step.code && payload[1] == step.value) {
            return std::string(step.name);
        }
    }
    if (nIndex == m_Values.size()) {
        return "unknown register " + hex(payload[0]);
    }
    const ViscaRegister& row = m_Model.registers[nIndex];
    const Bytes value = payload.subspan(nCodeLength);
    if (value.size() != row.payload) {
        return std::string(row.name) + " with a wrong length";
    }
    return std::string(row.name) + ' ' + valueText(row, valueOf(value));
}

CameraBlock::Cut ViscaBlock::cut(Bytes p_Bytes) const {
    constexpr Cut unfinished{Cut::Kind::unfinished, 0};
    constexpr Cut garbage{Cut::Kind::garbage, 1};
    static constexpr std::array<std::uint8_t, 4> privateStart{privateHeader, 0x01, 0x1e, 0x02};
    static constexpr std::array<std::uint8_t, 5> restartStart{privateHeader, 0x05, 0x03, 0x01, 0x01};
    const auto fixed = [&](std::size_t nLength) {
        if (p_Bytes.size() < nLength) {
            return unfinished;
        }
        return p_Bytes[nLength - 1] == terminator ? Cut{Cut::Kind::frame, nLength} : garbage;
    };

    switch (p_Bytes[0]) {
    case commandHeader:
        for (std::size_t i = 1; i < std::min(p_Bytes.size(), longestCommand); ++i) {
            if (p_Bytes[i] == terminator) {
                return {Cut::Kind::frame, i + 1};
            }
            if (p_Bytes[i] == commandHeader) {
                return {Cut::Kind::garbage, i};
            }
        }
        return p_Bytes.size() < longestCommand ? unfinished : garbage;
    case privateHeader:
        if (startsLike(p_Bytes, privateStart)) {
            return fixed(8);
        }
        return m_Model.hasPrivateRestart && startsLike(p_Bytes, restartStart) ? fixed(7) : garbage;
    case maskHeader:
        return m_Model.hasMaskUnit ? fixed(MaskUnit::frameLength) : garbage;
    default: {
        const std::size_t nCommon = std::min(p_Bytes.size(), panTiltStop.size());
        if (!std::equal(p_Bytes.begin(), p_Bytes.begin() + static_cast<std::ptrdiff_t>(nCommon), panTiltStop.begin())) {
            return garbage;
        }
        return nCommon < panTiltStop.size() ? unfinished : Cut{Cut::Kind::frame, nCommon};
    }
    }
}

void ViscaBlock::executeFrame(Bytes p_Frame, std::int64_t p_nNow) {
    switch (p_Frame[0]) {
    case commandHeader:
        if (p_Frame.size() < 5 || p_Frame[2] != 0x04) {
            answer(Outcome::syntaxError);
        } else if (p_Frame[1] == 0x01) {
            answer(command(p_Frame.subspan(3, p_Frame.size() - 4)));
        } else if (p_Frame[1] == 0x09) {
            inquire(p_Frame.subspan(3, p_Frame.size() - 4));
        } else {
            answer(Outcome::syntaxError);
        }
        break;
    case privateHeader:
        if (!sumIsRight(p_Frame)) {
            break;
        }
        if (isPrivateRestart(p_Frame)) {
            reboot(p_nNow, false);
        } else {
            answer(privateCommand(p_Frame) ? Outcome::done : Outcome::notExecutable);
        }
        break;
    case maskHeader:
        if (m_Masks.execute(p_Frame)) {
            reply(p_Frame);
        }
        break;
    default:
        break;
    }
}

void ViscaBlock::refuseFrame(Bytes p_Frame) {
    if (p_Frame[0] == commandHeader || (p_Frame[0] == privateHeader && !isPrivateRestart(p_Frame))) {
        answer(Outcome::notExecutable);
    }
}

ViscaBlock::Outcome ViscaBlock::command(Bytes p_Payload) {
    for (const ViscaStep& step : m_Model.steps) {
        if (p_Payload[0] != step.code) {
            continue;
        }
        if (p_Payload.size() != 2) {
            return Outcome::syntaxError;
        }
        if (p_Payload[1] == step.value) {
            const std::size_t nIndex = indexOf(step.target);
            const ViscaRegister& row = m_Model.registers[nIndex];
            const std::int64_t nMoved = step.delta == 0 ? step.position : std::int64_t{m_Values[nIndex]} + step.delta;
            store(nIndex, static_cast<std::uint32_t>(std::clamp<std::int64_t>(nMoved, row.first, row.last)));
            return Outcome::done;
        }
    }
    std::size_t nCodeLength = 0;
    const std::size_t nIndex = indexOfCommand(p_Payload, nCodeLength);
    if (nIndex == m_Values.size()) {
        return Outcome::notExecutable;
    }
    const ViscaRegister& row = m_Model.registers[nIndex];
    const Bytes payload = p_Payload.subspan(nCodeLength);
    if (row.readOnly) {
        return Outcome::notExecutable;
    }
    if (payload.size() != row.payload || !nibblesOnly(payload)) {
        return Outcome::syntaxError;
    }
    const std::uint32_t nValue = valueOf(payload);
    const bool bAccepted = row.listed.empty()
                               ? nValue >= row.first && nValue <= row.last
                               : std::find(row.listed.begin(), row.listed.end(), nValue) != row.listed.end();
    if (!bAccepted) {
        return Outcome::syntaxError;
    }
    store(nIndex, nValue);
    return Outcome::done;
}

void ViscaBlock::inquire(Bytes p_Payload) {
    std::array<std::uint8_t, longestCommand> answerBytes{0x90, 0x50};
    std::size_t nLength = 2;
    std::size_t nCodeLength = 0;
    if (p_Payload.size() == 1 && p_Payload[0] == versionRegister) {
        for (const std::uint8_t nByte : m_Model.version) {
            answerBytes[nLength++] = nByte;
        }
    } else {
        const std::size_t nIndex = indexOfCommand(p_Payload, nCodeLength);
        if (nIndex == m_Values.size()) {
            answer(Outcome::notExecutable);
            return;
        }
        if (p_Payload.size() != nCodeLength) {
            answer(Outcome::syntaxError);
            return;
        }
        const ViscaRegister& row = m_Model.registers[nIndex];
        if (row.payload == 1) {
            answerBytes[nLength++] = static_cast<std::uint8_t>(m_Values[nIndex]);
        } else {
            for (unsigned nNibble = row.payload; nNibble > 0; --nNibble) {
                answerBytes[nLength++] = static_cast<std::uint8_t>(m_Values[nIndex] >> (4 * (nNibble - 1)) & 0x0fU);
            }
        }
    }
    answerBytes[nLength++] = terminator;
    reply(Bytes(answerBytes).first(nLength));
}

bool ViscaBlock::privateCommand(Bytes p_Frame) {
    const std::size_t nIndex = indexOf(privateDayNightRegister | p_Frame[4]);
    if (nIndex == m_Values.size() || p_Frame[5] < m_Model.registers[nIndex].first ||
        p_Frame[5] > m_Model.registers[nIndex].last) {
        return false;
    }
    store(nIndex, p_Frame[5]);
    return true;
}

void ViscaBlock::store(std::size_t p_nIndex, std::uint32_t p_nValue) {
    m_Values[p_nIndex] = p_nValue;
    const std::uint32_t nCode = m_Model.registers[p_nIndex].code;
    const std::size_t nState = indexOf(dayNightRegister);
    const std::size_t nMode = indexOf(dayNightModeRegister);
    const std::size_t nPrivate = indexOf(privateDayNightRegister);
    if (nState == m_Values.size() || nMode == m_Values.size() || nPrivate == m_Values.size()) {
        return;
    }
    if (nCode == privateDayNightRegister) {
        m_Values[nMode] = p_nValue == 0 ? modeAutomatic : modeManual;
        if (p_nValue != 0) {
            m_Values[nState] = p_nValue == 1 ? stateNight : stateDay;
        }
    } else if (nCode == dayNightRegister || nCode == dayNightModeRegister) {
        m_Values[nPrivate] = m_Values[nMode] == modeAutomatic ? 0 : m_Values[nState] == stateNight ? 1 : 2;
    } else {
        return;
    }
    // A state written in automatic mode stands until the light or the mode changes: some hosts write it just before
    // they switch to manual.
    if (nCode != dayNightRegister) {
        ambientChanged();
    }
}

void ViscaBlock::answer(Outcome p_Outcome) {
    static constexpr std::array<std::uint8_t, 3> acknowledged{0x90, 0x41, terminator};
    static constexpr std::array<std::uint8_t, 3> completed{0x90, 0x51, terminator};
    static constexpr std::array<std::uint8_t, 4> malformed{0x90, 0x60, 0x02, terminator};
    static constexpr std::array<std::uint8_t, 4> refused{0x90, 0x61, 0x41, terminator};
    switch (p_Outcome) {
    case Outcome::syntaxError:
        reply(malformed);
        break;
    case Outcome::notExecutable:
        reply(refused);
        break;
    case Outcome::done:
        if (settings().habit != ReplyHabit::complete) {
            reply(acknowledged);
        }
        if (settings().habit != ReplyHabit::acknowledge) {
            reply(completed, settings().completionDelay);
        }
        break;
    }
}

void ViscaBlock::resetRegisters(bool p_bLoseState) {
    for (std::size_t i = 0; i < m_Values.size(); ++i) {
        const ViscaRegister& row = m_Model.registers[i];
        if (p_bLoseState || !row.persistent) {
            m_Values[i] = row.factory;
        }
        m_InForce[i] = m_Values[i];
    }
    if (p_bLoseState) {
        m_Masks.clear();
    }
    ambientChanged();
}

void ViscaBlock::ambientChanged() {
    const std::size_t nState = indexOf(dayNightRegister);
    const std::size_t nMode = indexOf(dayNightModeRegister);
    if (nState < m_Values.size() && nMode < m_Values.size() && m_Values[nMode] == modeAutomatic) {
        m_Values[nState] = ambient() == Ambient::dark ? stateNight : stateDay;
    }
}

} // namespace camerasim
