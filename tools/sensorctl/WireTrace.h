#pragma once

#include "FrameDecoder.h"
#include "TraceLine.h"
#include "host/linux/TracedPort.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace sensorctl {

/// Remembers what went over the port and tells listeners of it. Any thread may use it.
class WireTrace final : public sensorhost::WireSink {
public:
    struct Listener {
        virtual ~Listener() = default;
        virtual void hear(const TraceLine& line) = 0;
    };

    /// Without a decoder the lines have no meaning.
    explicit WireTrace(std::unique_ptr<FrameDecoder> decoder);

    /// Calls function(line) for each line, in the order of the wire, on the thread that uses the port. To be added
    /// before the port is used.
    template <class Function>
    void addListener(Function function) {
        struct Wrapped final : Listener {
            explicit Wrapped(Function wrapped) : m_Function(std::move(wrapped)) {}
            void hear(const TraceLine& line) override { m_Function(line); }
            Function m_Function;
        };
        m_Listeners.push_back(std::make_unique<Wrapped>(std::move(function)));
    }

    void onSend(double seconds, const char* bytes, int length, int result) override;
    void onReceive(double seconds, const char* bytes, int received, int wanted, int timeout) override;

    /// What became of the last command of the calling thread since the mark.
    enum class Outcome { NothingSent, PortFailed, Silent, Incomplete, Answered };
    std::size_t mark() const;
    Outcome outcomeSince(std::size_t mark) const;
    /// The lines of the calling thread since the mark, the last so many of them.
    std::vector<TraceLine> linesSince(std::size_t mark, std::size_t limit) const;
    /// The last lines of all threads.
    std::vector<TraceLine> lastLines(std::size_t limit) const;

private:
    struct Entry {
        TraceLine line;
        std::thread::id thread;
        Outcome outcome;
    };

    void add(TraceLine line, Outcome outcome);

    mutable std::mutex m_Mutex;
    std::unique_ptr<FrameDecoder> m_pDecoder;
    std::vector<std::unique_ptr<Listener>> m_Listeners;
    std::deque<Entry> m_Entries;
    std::size_t m_nForgotten = 0;
    const double m_dStart;
    /// A silent read is worth a line only where an answer was due.
    bool m_bAnswerDue = false;
};

} // namespace sensorctl
