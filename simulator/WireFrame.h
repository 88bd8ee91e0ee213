#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace camerasim {

/// A short run of bytes with a time, kept in place so that an exchange allocates nothing.
struct WireFrame {
    static constexpr std::size_t Capacity = 64;

    /// Microseconds: when it was received whole, or when it is to be sent.
    std::int64_t time = 0;
    std::size_t length = 0;
    std::array<std::uint8_t, Capacity> buffer{};

    std::span<const std::uint8_t> bytes() const { return {buffer.data(), length}; }
    std::span<std::uint8_t> bytes() { return {buffer.data(), length}; }

    /// Replaces the content; what exceeds the capacity is cut off.
    void assign(std::span<const std::uint8_t> bytes) {
        length = 0;
        for (const std::uint8_t byte : bytes) {
            append(byte);
        }
    }

    /// Adds one byte; without effect when full.
    void append(std::uint8_t byte) {
        if (length < Capacity) {
            buffer[length++] = byte;
        }
    }
};

} // namespace camerasim
