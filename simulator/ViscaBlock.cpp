// Frames of the family, as the block sees them (hex):
//
//   81 01 04 4E 00 00 00 07 FF   set register 4E; answered 90 41 FF, by habit followed or replaced by 90 51 FF
//   81 09 04 01 FF               inquiry; answered 90 50 02 FF, one byte or one nibble a byte
//   81 01 04 19 03 FF            restart, where the model has it; answered 90 41 FF before it boots
//   81 01 7F 7F 02 0B 04 09 03 00 FF   set register 0409 of page 0B to 30, where the model has pages; 90 41 FF
//   81 09 7F 7F 01 0B 04 09 FF   inquiry of the same; answered 90 50 00 00 03 00 FF
//   FE 01 1E 02 06 32 59 FF      infrared board: selector 06, value 32, sum of the five bytes before; answered 90 41 FF
//   FE 05 03 01 01 0A FF         restart, never answered
//   A1 04 03 FF                  mask unit, answered by its own bytes
//
// Errors are answered 90 60 02 FF (the frame makes no sense) or 90 61 41 FF (no such register). The low digit of 41, 51
// and 61 is the model's socket. The infrared board answers nothing to a wrong sum. A header byte 81 never occurs inside
// a command, so it always starts a new one: that is what lets a repeated command through after one that was cut off.
#include "simulator/ViscaBlock.h"

#include "simulator/ViscaWire.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace camerasim {

namespace {

using namespace visca;

/// Automatic exposure takes a step of gain for every 2 dB below `FullLux`; above it closes the iris at first, then
/// quickens the shutter.
constexpr double FullLux = 50;
constexpr double StepsPerHalving = 3;
constexpr double IrisStepsPerDoubling = 2;
constexpr double IrisDoublings = 4;
constexpr std::uint32_t LeastGain = 1;
constexpr std::uint32_t MostGain = 15;
constexpr std::uint32_t ExposureModeRegister = 0x39;
constexpr std::uint32_t GainLimitRegister = 0x2c;
constexpr std::uint32_t ManualExposure = 0x03;
constexpr std::uint32_t ShutterPriority = 0x0a;
constexpr std::uint32_t IrisPriority = 0x0b;

/// What the infrared board is told of day and night.
constexpr std::uint32_t BoardAutomatic = 0;
constexpr std::uint32_t BoardNight = 1;
constexpr std::uint32_t BoardDay = 2;

bool isInFields(const ViscaRegister& row, std::uint32_t value) {
    std::uint32_t rest = value;
    for (const ViscaField& field : row.fields) {
        const std::uint32_t part = field.of(value);
        if (part < field.first || part > field.last) {
            return false;
        }
        rest &= ~(field.mask() << field.shift);
    }
    return rest == 0;
}

bool accepts(const ViscaRegister& row, std::uint32_t value) {
    if (!row.fields.empty()) {
        return isInFields(row, value);
    }
    return row.listed.empty() ? value >= row.first && value <= row.last
                              : std::find(row.listed.begin(), row.listed.end(), value) != row.listed.end();
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

std::uint32_t ViscaBlock::inForce(std::size_t index) const {
    return m_Model.registers[index].metering == Metering::None ? m_InForce[index] : metered(index);
}

std::uint32_t ViscaBlock::metered(std::size_t index) const {
    const auto of = [this](std::uint32_t code, std::uint32_t otherwise) {
        return indexOf(code) < m_Values.size() ? m_Values[indexOf(code)] : otherwise;
    };
    const ViscaRegister& row = m_Model.registers[index];
    const std::uint32_t mode = of(ExposureModeRegister, 0);
    const bool movesIris = mode != ManualExposure && mode != IrisPriority;
    const bool movesShutter = mode != ManualExposure && mode != ShutterPriority;
    const double doublings = std::log2(std::max(light(), 1e-3) / FullLux);
    const double bright = std::max(doublings, 0.0);
    const double irisPart = !movesIris ? 0 : movesShutter ? std::min(bright, IrisDoublings) : bright;
    const auto steps = [](double count) { return static_cast<std::uint32_t>(count); };
    switch (row.metering) {
    case Metering::Gain:
        return mode == ManualExposure ? m_Values[index]
                                      : std::min(LeastGain + steps(StepsPerHalving * std::max(-doublings, 0.0)),
                                                 of(GainLimitRegister, MostGain));
    case Metering::Iris:
        return movesIris ? row.factory - std::min(steps(IrisStepsPerDoubling * irisPart), row.factory - row.first)
                         : m_Values[index];
    case Metering::Shutter:
        return movesShutter ? row.factory + std::min(steps(bright - irisPart), row.last - row.factory)
                            : m_Values[index];
    default:
        return m_Values[index];
    }
}

bool ViscaBlock::isLive(const ViscaRegister& row) { return row.metering != Metering::None || row.answersPicture; }

bool ViscaBlock::hasInForce(std::size_t index) const {
    return index < m_Values.size() && (m_Model.registers[index].atRestart || isLive(m_Model.registers[index]));
}

const ViscaField* ViscaBlock::fieldAt(std::uint32_t address, std::size_t& index) const {
    index = indexOf((address - FieldOffset) / FieldsPerRegister);
    const std::size_t number = address % FieldsPerRegister;
    const bool isField = index < m_Values.size() && number < m_Model.registers[index].fields.size();
    return isField ? &m_Model.registers[index].fields[number] : nullptr;
}

std::optional<std::uint32_t> ViscaBlock::registerValue(std::uint32_t address) const {
    std::size_t index = indexOf(address);
    if (index < m_Values.size()) {
        return m_Values[index];
    }
    if (hasInForce(indexOf(address - InForceOffset))) {
        return inForce(indexOf(address - InForceOffset));
    }
    if (const ViscaField* field = fieldAt(address, index)) {
        return field->of(m_Values[index]);
    }
    if (m_Model.hasMaskUnit && address >= MaskRegister && address <= MaskRegister + 0xff) {
        const int region = static_cast<int>(address - MaskRegister);
        return region == 0 ? static_cast<std::uint32_t>(m_Masks.currentRegion()) : m_Masks.packed(region);
    }
    return std::nullopt;
}

bool ViscaBlock::setRegister(std::uint32_t address, std::uint32_t value) {
    std::size_t index = indexOf(address);
    if (index < m_Values.size()) {
        store(index, value);
        return true;
    }
    if (hasInForce(indexOf(address - InForceOffset))) {
        m_InForce[indexOf(address - InForceOffset)] = value;
        return true;
    }
    if (const ViscaField* field = fieldAt(address, index)) {
        store(index, field->with(m_Values[index], value));
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
        if (hasInForce(i)) {
            states.push_back({row.code + InForceOffset, std::string(row.name) + " in force", inForce(i),
                              row.persistent && row.atRestart});
        }
        // Views of the register, which is what a state keeps.
        for (std::uint32_t number = 0; number < row.fields.size(); ++number) {
            const ViscaField& field = row.fields[number];
            states.push_back({FieldOffset + row.code * FieldsPerRegister + number, std::string(field.name),
                              field.of(m_Values[i]), false});
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

Picture ViscaBlock::picture() const {
    const std::size_t state = indexOf(DayNightRegister);
    if (state == m_Values.size()) {
        return Picture::Day;
    }
    const std::uint32_t shown = m_Model.registers[state].answersPicture ? m_InForce[state] : m_Values[state];
    return shown == StateNight ? Picture::Night : Picture::Day;
}

bool ViscaBlock::decidesDayNight() const { return wanted() == Wanted::BySensor; }

ViscaBlock::Wanted ViscaBlock::wanted() const {
    const std::size_t state = indexOf(DayNightRegister);
    const std::size_t mode = indexOf(DayNightModeRegister);
    if (state == m_Values.size() || mode == m_Values.size()) {
        return Wanted::Day;
    }
    if (m_Model.registers[state].answersPicture) {
        return m_Values[mode] == SwitchNight     ? Wanted::Night
               : m_Values[state] == OpenBySensor ? Wanted::BySensor
                                                 : Wanted::Day;
    }
    return m_Values[mode] == ModeAutomatic ? Wanted::BySensor
           : m_Values[state] == StateNight ? Wanted::Night
                                           : Wanted::Day;
}

std::optional<int> ViscaBlock::lamps() const {
    const std::size_t board = indexOf(PrivateDayNightRegister);
    if (board == m_Values.size()) {
        return std::nullopt;
    }
    std::uint32_t power = 0;
    for (const std::uint32_t lamp : m_Model.lamps) {
        power = std::max(power, m_Values[indexOf(lamp)]);
    }
    return m_Values[board] == BoardNight ? static_cast<int>(power) : 0;
}

std::string ViscaBlock::videoSystem() const {
    const std::size_t index = indexOf(VideoSystemRegister);
    return index < m_Values.size() ? valueText(m_Model.registers[index], m_InForce[index]) : "";
}

bool ViscaBlock::setVideoSystem(std::string_view text) {
    const std::size_t index = indexOf(VideoSystemRegister);
    if (index == m_Values.size()) {
        return false;
    }
    for (const ValueWord& word : m_Model.registers[index].words) {
        if (word.text == text) {
            m_Values[index] = m_InForce[index] = word.value;
            if (const std::size_t sync = indexOf(InterSyncRegister); sync < m_Values.size()) {
                m_Values[sync] = m_InForce[sync] = 1;
            }
            return true;
        }
    }
    return false;
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
    default:
        return Garbage;
    }
}

void ViscaBlock::executeFrame(Bytes frame, std::int64_t now) {
    switch (frame[0]) {
    case CommandHeader:
        executeCommand(frame, now);
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
            send(frame);
        }
        break;
    default:
        break;
    }
}

void ViscaBlock::executeCommand(Bytes frame, std::int64_t now) {
    const bool isCamera = frame.size() >= 5 && frame[2] == CameraGroup;
    if (isCamera && frame[1] == Setting) {
        const Bytes payload = frame.subspan(3, frame.size() - 4);
        if (m_Model.hasRestartCommand && payload.size() == 2 && (payload[0] << 8 | payload[1]) == RestartCommand) {
            acknowledge();
            reboot(now, false);
        } else {
            answer(command(payload));
        }
    } else if (isCamera && frame[1] == Inquiry) {
        inquire(frame.subspan(3, frame.size() - 4));
    } else if (m_Model.hasPages && isPageOpening(frame)) {
        answer(Outcome::Done);
    } else if (m_Model.hasPages && isPageSetting(frame)) {
        answer(setValue(indexOf(pageCode(frame)), frame.subspan(8, 2)));
    } else if (m_Model.hasPages && isPageInquiry(frame)) {
        inquirePage(frame);
    } else {
        answer(Outcome::SyntaxError);
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
    return setValue(index, payload.subspan(index < m_Values.size() ? codeLength : 0));
}

ViscaBlock::Outcome ViscaBlock::setValue(std::size_t index, Bytes payload) {
    if (index == m_Values.size() || m_Model.registers[index].readOnly) {
        return Outcome::NotExecutable;
    }
    const ViscaRegister& row = m_Model.registers[index];
    if (payload.size() != row.payload || !isPlain(row, payload) || !accepts(row, valueOf(row, payload))) {
        return Outcome::SyntaxError;
    }
    if (!row.forgets) {
        store(index, valueOf(row, payload));
    }
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
        const std::uint32_t value = isLive(row) ? inForce(index) : m_Values[index];
        if (row.payload == 1 || row.wholeByte) {
            length += row.payload - 1U;
            answerBytes[length++] = static_cast<std::uint8_t>(value);
        } else {
            for (unsigned nibble = row.payload; nibble > 0; --nibble) {
                answerBytes[length++] = static_cast<std::uint8_t>(value >> (4 * (nibble - 1)) & 0x0fU);
            }
        }
    }
    answerBytes[length++] = Terminator;
    send(Bytes(answerBytes).first(length));
}

void ViscaBlock::inquirePage(Bytes frame) {
    const std::size_t index = indexOf(pageCode(frame));
    if (index == m_Values.size()) {
        answer(Outcome::NotExecutable);
        return;
    }
    const auto high = static_cast<std::uint8_t>(m_Values[index] >> 4 & 0x0fU);
    const auto low = static_cast<std::uint8_t>(m_Values[index] & 0x0fU);
    send(std::array<std::uint8_t, 7>{ReplyHeader, 0x50, 0x00, 0x00, high, low, Terminator});
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
    const bool isSwitch = m_Model.registers[state].answersPicture;
    if (code == PrivateDayNightRegister && isSwitch) {
        m_Values[mode] = value == BoardNight ? SwitchNight : SwitchOpen;
        if (value != BoardNight) {
            m_Values[state] = value == BoardAutomatic ? OpenBySensor : OpenDay;
        }
    } else if (code == PrivateDayNightRegister) {
        m_Values[mode] = value == BoardAutomatic ? ModeAutomatic : ModeManual;
        if (value != BoardAutomatic) {
            m_Values[state] = value == BoardNight ? StateNight : StateDay;
        }
    } else if (code == DayNightRegister || code == DayNightModeRegister) {
        const Wanted now = wanted();
        m_Values[privateState] = now == Wanted::BySensor ? BoardAutomatic
                                 : now == Wanted::Night  ? BoardNight
                                                         : BoardDay;
    } else {
        return;
    }
    // A state written in automatic mode stands until the light or the mode changes: some hosts write it just before
    // they switch to manual.
    if (code != DayNightRegister || isSwitch) {
        ambientChanged();
    }
}

void ViscaBlock::send(Bytes bytes, std::int64_t extraDelay) {
    if (!m_Model.isMute) {
        reply(bytes, extraDelay);
    }
}

void ViscaBlock::acknowledge() {
    send(std::array<std::uint8_t, 3>{ReplyHeader, static_cast<std::uint8_t>(0x40 | m_Model.socket), Terminator});
}

void ViscaBlock::answer(Outcome outcome) {
    const auto withSocket = [this](unsigned kind) { return static_cast<std::uint8_t>(kind | m_Model.socket); };
    switch (outcome) {
    case Outcome::SyntaxError:
        send(std::array<std::uint8_t, 4>{ReplyHeader, 0x60, 0x02, Terminator});
        break;
    case Outcome::NotExecutable:
        send(std::array<std::uint8_t, 4>{ReplyHeader, withSocket(0x60), 0x41, Terminator});
        break;
    case Outcome::Done:
        if (settings().habit != ReplyHabit::Complete) {
            acknowledge();
        }
        if (settings().habit != ReplyHabit::Acknowledge) {
            send(std::array<std::uint8_t, 3>{ReplyHeader, withSocket(0x50), Terminator}, settings().completionDelay);
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
    if (state == m_Values.size()) {
        return;
    }
    const Wanted now = wanted();
    const std::uint32_t seen = ambient() == Ambient::Dark ? StateNight : StateDay;
    if (m_Model.registers[state].answersPicture) {
        m_InForce[state] = now == Wanted::BySensor ? seen : now == Wanted::Night ? StateNight : StateDay;
    } else if (now == Wanted::BySensor) {
        m_Values[state] = seen;
    }
}

} // namespace camerasim
