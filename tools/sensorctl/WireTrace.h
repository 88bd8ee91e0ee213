#pragma once

#include "FrameDecoder.h"
#include "TraceLine.h"
#include "host/linux/TracedPort.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
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

    /// The last lines.
    std::vector<TraceLine> lastLines(std::size_t limit) const;

private:
    void add(TraceLine line);

    mutable std::mutex m_Mutex;
    std::unique_ptr<FrameDecoder> m_pDecoder;
    std::vector<std::unique_ptr<Listener>> m_Listeners;
    std::deque<TraceLine> m_Lines;
    const double m_dStart;
    /// A silent read is worth a line only where an answer was due.
    bool m_bAnswerDue = false;
};

} // namespace sensorctl
