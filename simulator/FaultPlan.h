#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace camerasim {

/// What can go wrong on a line or in a block. Unless said otherwise the command is carried out and the fault hits the
/// first frame of its reply.
enum class FaultKind {
    Silence,      ///< no reply
    Late,         ///< the reply comes `argument` milliseconds late
    Truncate,     ///< only the first `argument` bytes of the reply come
    Split,        ///< a pause of `extra` milliseconds after the first `argument` bytes
    Merge,        ///< the reply is held back and comes at once with the next one
    NoiseBefore,  ///< `argument` random bytes before the reply
    NoiseBetween, ///< `argument` random bytes behind the reply's first frame, before whatever comes next
    Flip,         ///< bit number `extra` of byte number `argument` is inverted
    Duplicate,    ///< the reply comes twice
    Echo,         ///< the command comes back before the reply
    Refuse,       ///< the block refuses the command and does not carry it out
    Checksum,     ///< the reply's check byte (without one, the byte that stands in for it) is off by one
    ShortWrite,   ///< a send takes only `argument` bytes, by default all but one; on a pty the others are lost
    PortGone,     ///< the port disappears for `argument` milliseconds; neither carried out nor answered
    Reboot        ///< the block restarts with loss of state; neither carried out nor answered
};

/// One entry of a plan. Negative numbers stand for the kind's default.
struct Fault {
    FaultKind kind = FaultKind::Silence;
    int argument = -1;
    int extra = -1;
    /// Exchanges hit, counted from 1, the next one being 1. An exchange is a frame that reached the block whole, or a
    /// send that was cut short.
    std::uint64_t first = 1;
    std::uint64_t last = 1;
};

/// A declared, repeatable list of faults, the same for every block. Not locked: the line that owns it guards it.
class FaultPlan {
public:
    static constexpr std::uint64_t Forever = ~std::uint64_t{0};

    /// The seed decides random noise and the bits that flip.
    explicit FaultPlan(std::uint32_t seed = 1);

    /// Adds entries separated by commas, each "name[:argument[:extra]][@where]" with where n, n-m, n+ or every, by
    /// default 1: "silence@3", "flip:2@every", "truncate:2@1-3,late:250@5+". On bad text adds nothing, tells why in
    /// `error` and returns false.
    bool add(std::string_view text, std::string& error);
    /// Adds one entry, its exchanges counted from now.
    void add(const Fault& fault);
    void clear();

    /// Names of the kinds as the texts use them, in a stable order.
    static std::vector<std::string_view> names();
    /// One line on what the kind does and what its numbers mean; empty for an unknown name.
    static std::string_view describe(std::string_view name);

    /// For lines: goes on to the next exchange.
    void beginExchange() { ++m_nExchange; }
    /// For lines: the first entry of the kind that hits the present exchange (`ahead` 0) or the next (1), or null.
    const Fault* hit(FaultKind kind, unsigned ahead = 0) const;
    /// For lines: entries in the order in which they were added; `first` and `last` are absolute here.
    std::span<const Fault> faults() const { return m_Faults; }
    bool hits(const Fault& fault) const { return m_nExchange >= fault.first && m_nExchange <= fault.last; }
    /// Next number of the seeded row.
    std::uint32_t random() { return static_cast<std::uint32_t>(m_Random()); }
    /// Exchanges begun so far.
    std::uint64_t exchange() const { return m_nExchange; }

private:
    std::vector<Fault> m_Faults;
    std::uint64_t m_nExchange = 0;
    std::minstd_rand m_Random;
};

} // namespace camerasim
