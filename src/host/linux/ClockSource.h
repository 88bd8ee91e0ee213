#pragma once

#include "host/Export.h"

#include <memory>
#include <mutex>

namespace sensorhost {

struct LocalTime {
    int year;
    int month; ///< 1 to 12
    int day;   ///< 1 to 31
    int hour;
    int minute;
    int second;
};

/// One thread as a clock knows it.
class SENSORHOST_API ClockThread {
public:
    virtual ~ClockThread();
};

/// A clock that replaces the machine's. It sees every moment at which a thread blocks or goes on in the host classes,
/// so that it can decide when time passes. Any thread may call it.
class SENSORHOST_API ClockSource {
public:
    virtual ~ClockSource();

    /// Seconds since some fixed moment.
    virtual double now() const = 0;
    virtual LocalTime getLocalTime() const = 0;

    /// Blocks the calling thread for the span; at once over on a thread that was interrupted.
    virtual void wait(long long microseconds) = 0;

    /// The calling thread takes part from enter to leave.
    virtual void enter() = 0;
    virtual void leave() = 0;

    /// A thread that is about to start. It calls begin first and end last; whoever announced it calls end instead if
    /// the thread cannot be started.
    virtual std::shared_ptr<ClockThread> announce() = 0;
    virtual void begin(ClockThread& thread) = 0;
    virtual void end(ClockThread& thread) = 0;

    /// From now on the thread's waits are over at once.
    virtual void interrupt(ClockThread& thread) = 0;
    /// Blocks until the thread has called end; may return earlier on a thread that does not take part.
    virtual void join(ClockThread& thread) = 0;

    /// Locks the mutex, blocking as long as it takes. File and line name the caller.
    virtual void lock(std::mutex& mutex, const char* file, int line) = 0;
    /// The calling thread has just unlocked the mutex.
    virtual void unlocked(std::mutex& mutex) = 0;
};

} // namespace sensorhost
