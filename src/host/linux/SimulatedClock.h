#pragma once

#include "host/linux/ClockSource.h"

namespace sensorhost {

/// A clock whose time passes only while every thread that takes part waits, and then jumps to the next wake-up: a day
/// costs no more than the work done in it, and the same program gives the same course each time.
///
/// The thread that installs it takes part, and every GThread started while it is installed. Of these exactly one runs
/// at a time, until it blocks in BreltoTime::wait, on a BRMutex or in GThread::stop. Then the next one that was let go
/// (by an unlock, a start, a stop) runs, in order of arrival; if there is none, the one whose wait ends first, in order
/// of arrival again. A mutex goes to the one that has waited longest.
///
/// Other threads may use the host classes too: their waits end when that time comes, but time does not wait for them.
/// A thread that takes part must not block on anything else that needs another one of them to go on, unless it says so
/// with an Absence; and on a thread being stopped no time passes in a wait, so a loop must not poll for a moment there.
class SENSORHOST_API SimulatedClock final : public ClockSource {
public:
    /// Starts at this time of day, on the first of January 2024.
    explicit SimulatedClock(int hour = 12, int minute = 0);
    ~SimulatedClock() override;
    SimulatedClock(const SimulatedClock&) = delete;
    SimulatedClock& operator=(const SimulatedClock&) = delete;

    /// Lets time pass: a wait of the calling thread.
    void advance(double seconds);

    /// Sets the clock, as a user of the device would: the time of day jumps, spans stay as they are.
    void setTimeOfDay(int hour, int minute, int second = 0);
    /// The same by a span, over days and years if need be; not to before 2024.
    void shiftLocalTime(long long seconds);

    /// Steps aside for the life of the object: the other threads go on meanwhile, and time with them. For a thread that
    /// takes part and blocks on what the clock does not see, such as the end of a std::thread.
    class SENSORHOST_API Absence {
    public:
        explicit Absence(SimulatedClock& clock);
        ~Absence();
        Absence(const Absence&) = delete;
        Absence& operator=(const Absence&) = delete;

    private:
        SimulatedClock& m_Clock;
    };

    double now() const override;
    LocalTime getLocalTime() const override;
    void wait(long long microseconds) override;
    void enter() override;
    void leave() override;
    std::shared_ptr<ClockThread> announce() override;
    void begin(ClockThread& thread) override;
    void end(ClockThread& thread) override;
    void interrupt(ClockThread& thread) override;
    void join(ClockThread& thread) override;
    void lock(std::mutex& mutex, const char* file, int line) override;
    void unlocked(std::mutex& mutex) override;

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

} // namespace sensorhost
