#pragma once

#include "simulator/ViscaModel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>

/// What ViscaBlock's frames are made of; see ViscaBlock.cpp.
namespace camerasim::visca {

using Bytes = std::span<const std::uint8_t>;

inline constexpr std::uint8_t CommandHeader = 0x81;
inline constexpr std::uint8_t ReplyHeader = 0x90;
inline constexpr std::uint8_t PrivateHeader = 0xfe;
inline constexpr std::uint8_t MaskHeader = 0xa1;
inline constexpr std::uint8_t Terminator = 0xff;
inline constexpr std::size_t LongestCommand = 16;

/// Second byte of a frame 81.
inline constexpr std::uint8_t Setting = 0x01;
inline constexpr std::uint8_t Inquiry = 0x09;
/// Third byte: the camera's own commands, or registers addressed by a page.
inline constexpr std::uint8_t CameraGroup = 0x04;
inline constexpr std::uint8_t PageGroup = 0x7f;
inline constexpr std::size_t PageSettingLength = 11;
inline constexpr std::size_t PageInquiryLength = 9;

inline constexpr std::uint32_t DayNightRegister = 0x01;
inline constexpr std::uint32_t RestartCommand = 0x1903;
inline constexpr std::uint32_t VersionRegister = 0x22;
inline constexpr std::uint32_t InterSyncRegister = 0x2456;
inline constexpr std::uint32_t VideoSystemRegister = 0x2472;
inline constexpr std::uint32_t DayNightModeRegister = 0x51;
inline constexpr std::uint32_t MaskRegister = 0xa100;
inline constexpr std::uint32_t PrivateDayNightRegister = 0xfe00;
inline constexpr std::uint32_t InForceOffset = 0x10000;
inline constexpr std::uint32_t FieldOffset = 0x20000;
inline constexpr std::uint32_t PageOffset = 0x7f000000;

inline constexpr std::uint8_t ModeAutomatic = 0x02;
inline constexpr std::uint8_t ModeManual = 0x03;
inline constexpr std::uint8_t StateNight = 0x02;
inline constexpr std::uint8_t StateDay = 0x03;
/// Where register 51 leaves the picture to register 01: see ViscaRegister::answersPicture.
inline constexpr std::uint8_t SwitchOpen = 0x02;
inline constexpr std::uint8_t SwitchNight = 0x03;
inline constexpr std::uint8_t OpenDay = 0x02;
inline constexpr std::uint8_t OpenBySensor = 0x03;

/// Compares what has come with the fixed beginning of a frame, as far as both reach.
inline bool startsLike(Bytes bytes, Bytes start) {
    const std::size_t common = std::min(bytes.size(), start.size());
    return std::equal(start.begin(), start.begin() + static_cast<std::ptrdiff_t>(common), bytes.begin());
}

/// The sum byte stands before the terminator and covers everything between it and the header.
inline bool sumIsRight(Bytes frame) {
    const Bytes summed = frame.subspan(1, frame.size() - 3);
    return static_cast<std::uint8_t>(std::accumulate(summed.begin(), summed.end(), 0U)) == frame[frame.size() - 2];
}

inline bool isPrivateRestart(Bytes frame) { return frame[0] == PrivateHeader && frame[1] == 0x05; }

/// 81 01 7F 7F 02 page aa bb p q FF, and 81 09 7F 7F 01 page aa bb FF.
inline bool isPageSetting(Bytes frame) {
    return frame.size() == PageSettingLength && frame[1] == Setting && frame[2] == PageGroup && frame[3] == PageGroup &&
           frame[4] == 0x02;
}
inline bool isPageInquiry(Bytes frame) {
    return frame.size() == PageInquiryLength && frame[1] == Inquiry && frame[2] == PageGroup && frame[3] == PageGroup &&
           frame[4] == 0x01;
}
/// 81 01 7F 01 7F FF, which goes before page frames.
inline bool isPageOpening(Bytes frame) {
    return frame.size() == 6 && frame[1] == Setting && frame[2] == PageGroup && frame[3] == 0x01 &&
           frame[4] == PageGroup;
}
inline std::uint32_t pageCode(Bytes frame) {
    return PageOffset | static_cast<std::uint32_t>(frame[5]) << 16 | static_cast<std::uint32_t>(frame[6]) << 8 |
           frame[7];
}

inline std::uint32_t valueOf(const ViscaRegister& row, Bytes payload) {
    if (payload.size() == 1 || row.wholeByte) {
        return payload.back();
    }
    std::uint32_t value = 0;
    for (const std::uint8_t nibble : payload) {
        value = value << 4 | (nibble & 0x0fU);
    }
    return value;
}

/// Whether no bit is set that the value does not carry.
inline bool isPlain(const ViscaRegister& row, Bytes payload) {
    const Bytes nibbles = payload.first(row.wholeByte || payload.size() == 1 ? payload.size() - 1 : payload.size());
    const std::uint8_t most = row.wholeByte ? 0x00 : 0x0f;
    return std::all_of(nibbles.begin(), nibbles.end(), [most](std::uint8_t byte) { return byte <= most; });
}

} // namespace camerasim::visca
