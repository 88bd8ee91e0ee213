#pragma once

#include "simulator/ValueWord.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace camerasim {

/// A part of a register's value that has a name and a range of its own.
struct ViscaField {
    std::string_view name;
    unsigned shift = 0;
    unsigned bits = 4;
    std::uint32_t first = 0;
    std::uint32_t last = 0x0f;

    constexpr std::uint32_t mask() const { return (1U << bits) - 1; }
    constexpr std::uint32_t of(std::uint32_t value) const { return value >> shift & mask(); }
    constexpr std::uint32_t with(std::uint32_t value, std::uint32_t part) const {
        return (value & ~(mask() << shift)) | (part & mask()) << shift;
    }
};

/// What of the exposure a register holds that automatic exposure moves with the light.
enum class Metering { None, Gain, Iris, Shutter };

/// One register of a model: what command 81 01 04 code payload FF sets and inquiry 81 09 04 code FF gives.
struct ViscaRegister {
    /// One byte, or two where a sub-code follows (2472), or FE00 + selector for a private frame, or 7F, page and two
    /// bytes of address (7F0B0409) in a model with pages.
    std::uint32_t code = 0;
    std::string_view name;
    /// Bytes after the code; from two on, each carries one nibble of the value, the highest first.
    std::uint8_t payload = 1;
    /// The last of those bytes carries the whole value, those before it are 0.
    bool wholeByte = false;
    std::uint32_t factory = 0;
    /// Accepted values, unless `listed` names them.
    std::uint32_t first = 0;
    std::uint32_t last = 0xff;
    std::span<const std::uint8_t> listed = {};
    std::span<const ValueWord> words = {};
    /// The value's parts: they decide what is accepted, and can be asked for by name. Only with a code of one byte.
    std::span<const ViscaField> fields = {};
    bool persistent = true;
    /// Answers inquiries only.
    bool readOnly = false;
    /// A written value comes into force with the next restart; the one in force stands at code + 10000 hex.
    bool atRestart = false;
    /// Acknowledges a written value and keeps its own.
    bool forgets = false;
    /// While exposure moves it, an inquiry gives what the light at the sensor asks for: a gain from the least up to the
    /// gain limit, an iris from the factory value down to the first accepted, a shutter from the factory value up to
    /// the last. That also stands at code + 10000 hex.
    Metering metering = Metering::None;
    /// For register 01 of a block that is switched by two commands: 51 03 is night, 51 02 leaves it to register 01,
    /// where 02 is day and 03 its own sensor. An inquiry gives the picture, 02 night and 03 day as elsewhere; that also
    /// stands at code + 10000 hex.
    bool answersPicture = false;
};

/// A command that moves a register: 81 01 04 code value FF.
struct ViscaStep {
    std::uint8_t code;
    std::uint8_t value;
    std::string_view name;
    /// Register that moves, within its accepted range.
    std::uint32_t target;
    int delta = 0;
    /// Where it moves to, with delta 0.
    std::uint32_t position = 0;
};

/// A model of the VISCA family.
struct ViscaModel {
    std::string_view name;
    std::span<const ViscaRegister> registers;
    std::span<const ViscaStep> steps = {};
    /// The four bytes of the answer to 81 09 04 22 FF.
    std::array<std::uint8_t, 4> version{};
    bool hasMaskUnit = false;
    /// Restarts on FE 05 03 01 01 0A FF.
    bool hasPrivateRestart = false;
    /// Answers 81 01 04 19 03 FF and restarts.
    bool hasRestartCommand = false;
    /// Takes frames 7F for registers addressed by a page.
    bool hasPages = false;
    /// Never answers anything.
    bool isMute = false;
    /// Low digit of the second byte of an acknowledgement, completion or refusal.
    std::uint8_t socket = 1;
    /// Registers of the infrared board's lamps, in percent.
    std::span<const std::uint32_t> lamps = {};
};

} // namespace camerasim
