#pragma once

#include "drivers/visca/CMD8100SenseController.h"
#include "support/Cmd8100Bench.h"

#include <string>

/// What a call made of the world: its result, the frames and the error log's lines, each joined by " | ".
struct Outcome {
    int result = 0;
    std::string frames;
    std::string log;
    double seconds = 0;

    bool operator==(const Outcome& other) const {
        return result == other.result && frames == other.frames && log == other.log;
    }
};

inline std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << outcome.result << " [" << outcome.frames << "] \"" << outcome.log << '"';
}

/// A CMD8100 that is up and whose background thread has nothing to do: every frame and log line is the test's own.
class QuietCmd8100 : public Cmd8100Bench {
protected:
    void start(int infrared = 0, const std::string& generation = "generation=3") {
        ASSERT_EQ(bringUp("RS485=ttyS1;isInfrared=" + std::to_string(infrared) + ";" + generation), 1);
        quieten();
    }

    /// In fixed day mode the thread asks the block nothing; the end of the start leaves a reply in the port.
    void quieten() {
        controller().setDayNightMode(1);
        m_pClock->advance(3);
        controller().clearUartBuffer();
        m_pPort->takeSent();
    }

    CMD8100SenseController& block() { return static_cast<CMD8100SenseController&>(controller()); }

    template <class Call>
    Outcome outcome(Call&& call) {
        m_Root.remove(LogFile);
        m_pPort->takeSent();
        const double begin = m_pClock->now();
        Outcome made{call(), {}, logLines(), m_pClock->now() - begin};
        for (const std::string& frame : m_pPort->takeSent())
            made.frames += (made.frames.empty() ? "" : " | ") + frame;
        return made;
    }

    Outcome set(int id, int value) {
        return outcome([&] { return controller().setParameterToSensor(id, value); });
    }
    Outcome store(const std::string& text) {
        return outcome([&] { return controller().setParameters(text); });
    }

    void forgetLog() { m_Root.remove(LogFile); }
    std::string logLines() const { return m_Root.errorLines(); }

private:
    static constexpr const char* LogFile = "/mnt/mtd/log/SensorError.log";
};

/// The same frame so many times, joined.
inline std::string times(int count, const std::string& frame) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += (i == 0 ? "" : " | ") + frame;
    return text;
}
