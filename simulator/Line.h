#pragma once

#include "simulator/CameraBlock.h"
#include "simulator/FaultPlan.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace camerasim {

/// A serial line with a block at its far end: carries bytes both ways at line speed and injects the faults of its plan.
///
/// Driven with given times that never go back. Has no lock and never waits; InProcessLine and PtyServer do both.
class Line {
public:
    static constexpr std::int64_t Never = INT64_MAX;

    /// The block must outlive the line. Baud 0 carries everything instantly, otherwise a byte takes ten bits.
    explicit Line(CameraBlock& block, int baud = 0);

    /// Takes bytes from the host; the number taken (less under a short write), or -1 while the port is gone.
    std::ptrdiff_t write(std::span<const std::uint8_t> bytes, std::int64_t now);
    /// Gives the bytes that have arrived at the host by now; 0 if none, also while the port is gone.
    std::size_t read(std::span<std::uint8_t> buffer, std::int64_t now);
    /// Carries out what is due by now. write and read do it themselves; it is needed before the block is asked or
    /// driven.
    void advance(std::int64_t now);
    /// When something on the line happens next, or `Never`. A time that has passed means at once.
    std::int64_t nextDue() const;

    void setBaud(int baud) { m_nBaud = baud > 0 ? baud : 0; }
    int baud() const { return m_nBaud; }

    FaultPlan& faults() { return m_Faults; }
    CameraBlock& block() { return m_Block; }

    /// Takes the port away until plug or, from 0 on, for so long; what is under way is lost.
    void unplug(std::int64_t now, std::int64_t microseconds = -1);
    void plug() { m_nGoneUntil = 0; }
    bool portGone(std::int64_t now) const { return now < m_nGoneUntil; }
    /// When the port comes back; `Never` without an end set.
    std::int64_t goneUntil() const { return m_nGoneUntil; }

private:
    /// Bytes on their way, each with the time of its arrival.
    struct Flow {
        struct Item {
            std::int64_t time;
            std::uint8_t byte;
        };
        std::vector<Item> items;
        std::size_t head = 0;
        std::int64_t freeAt = 0;

        bool empty() const { return head == items.size(); }
        void push(std::span<const std::uint8_t> bytes, std::int64_t start, int baud);
        const Item& front() const { return items[head]; }
        void pop();
        void clear();
    };

    void deliver(std::span<const std::uint8_t> bytes, std::int64_t now);
    void serveFrame(std::int64_t now);
    void spoil(const Fault& fault, std::int64_t now);
    void schedule();
    void sendPending(std::int64_t now);
    void dropUnsentAfterRestart();
    std::int64_t replyTime(std::int64_t now) const;

    CameraBlock& m_Block;
    int m_nBaud;
    FaultPlan m_Faults;
    Flow m_ToBlock;
    Flow m_ToHost;
    std::vector<WireFrame> m_Made;
    std::vector<WireFrame> m_Held;
    std::vector<WireFrame> m_Pending;
    std::int64_t m_nGoneUntil = 0;
    unsigned m_nPowerChanges;
};

} // namespace camerasim
