#pragma once

#include "WireText.h"
#include "simulator/CameraBlock.h"

#include <sstream>
#include <string>

#include <gtest/gtest.h>

namespace camerasim {

inline constexpr std::int64_t Second = 1'000'000;

inline std::string ask(CameraBlock& block, const std::string& hex, std::int64_t now = 0) {
    return hexText(block.exchange(wire(hex), now));
}

inline std::string lastMeaning(const CameraBlock& block) {
    const auto frames = block.receivedFrames();
    return frames.empty() ? "" : block.describe(frames.back().bytes());
}

/// Plays rows in order: a command, its answer and, where they are to be looked at, its meaning and registers ("4E 3",
/// in hex) as they are then. "+100" lets microseconds pass, other words act on the block from outside.
inline void play(CameraBlock& block, const std::string& rows) {
    std::int64_t now = 0;
    for (const auto& row : table(rows)) {
        SCOPED_TRACE(row[0]);
        if (row[0][0] == '+') {
            now += std::stoll(row[0]);
        } else if (row[0] == "dark" || row[0] == "light") {
            block.setAmbient(row[0] == "dark" ? Ambient::Dark : Ambient::Light);
        } else if (row[0] == "power") {
            block.pressPowerButton(now);
        } else if (row[0] == "lose all") {
            block.reboot(now, true);
        } else {
            EXPECT_EQ(ask(block, row[0], now), row[1]);
        }
        if (row.size() > 2 && !row[2].empty()) {
            EXPECT_EQ(lastMeaning(block), row[2]);
        }
        for (std::size_t i = 3; i < row.size(); ++i) {
            std::istringstream expected(row[i]);
            std::uint32_t address = 0;
            std::uint32_t value = 0;
            expected >> std::hex >> address >> value;
            EXPECT_EQ(block.registerValue(address), value) << row[i];
        }
    }
}

/// A part of the register's value, or the value in force.
inline bool isView(std::uint32_t view, std::uint32_t address) {
    return view == address + 0x10000 || (view - 0x20000) / 0x10 == address;
}

/// Rows "code and value's bytes=meaning": sent to a new block each; command, inquiry and answer follow from them.
template <class Block>
void checkSettings(const std::string& rows, const std::string& acknowledgement) {
    for (const auto& row : table(rows)) {
        SCOPED_TRACE(row[0]);
        const auto bytes = wire(row[0]);
        const bool forBoard = bytes[0] == 0xfe;
        const std::size_t codeLength = forBoard || bytes[0] == 0x24 ? 2 : 1;
        const std::uint32_t address = codeLength == 2 ? bytes[0] * 0x100U + bytes[1] : bytes[0];
        std::uint32_t value = bytes[codeLength];
        for (std::size_t i = codeLength + 1; !forBoard && i < bytes.size(); ++i)
            value = value * 0x10 + bytes[i];
        Block block;
        const auto before = block.registers();
        EXPECT_NE(block.registerValue(address), value) << "the factory value would hide a lost command";
        EXPECT_EQ(ask(block, (forBoard ? "FE 01 1E 02 " + row[0].substr(3) : "81 01 04 " + row[0]) + " FF"),
                  acknowledgement);
        EXPECT_EQ(block.registerValue(address), value);
        EXPECT_EQ(lastMeaning(block), row[1]);
        if (!forBoard) {
            EXPECT_EQ(ask(block, "81 09 04 " + row[0].substr(0, codeLength * 3) + "FF"),
                      "90 50 " + row[0].substr(codeLength * 3) + " FF");
        }
        const auto after = block.registers();
        ASSERT_EQ(after.size(), before.size());
        int changed = 0;
        for (std::size_t i = 0; i < after.size(); ++i)
            changed +=
                after[i].value != before[i].value && after[i].address != address && !isView(after[i].address, address)
                    ? 1
                    : 0;
        EXPECT_EQ(changed, 0) << "a command touched a foreign register";
    }
}

} // namespace camerasim
