#pragma once

#include "host/Export.h"
#include "host/Function.h"

#include <memory>
#include <string>

/// What every thread of the host can be asked.
class SENSORHOST_API BRThread {
public:
    virtual ~BRThread() = default;

    /// Non-zero from a successful start until stop has returned.
    virtual int IsRunning() const = 0;
};

/// A thread that calls its body again and again from start to stop.
class SENSORHOST_API GThread : public BRThread {
public:
    /// The body runs on the new thread; the two other functions run once before the first and once after the last pass.
    /// The system's tools (ps -T) show at most 15 characters of a name. A longer one loses an ending "Thread" there,
    /// which the others have too ("DayNightChangeThread" shows as "DayNightChange"), and if that is not enough its
    /// middle: names of one family differ at either end ("ExternalLevelWatcher" shows as "Externa~Watcher").
    GThread(const function<int>& body, const char* name, const function<int>& before, const function<int>& after);
    /// Stops the thread.
    ~GThread() override;
    GThread(const GThread&) = delete;
    GThread& operator=(const GThread&) = delete;

    /// Non-zero if the thread runs now; 0 if the system refused a thread.
    int start();

    /// Ends the thread and returns after its last pass has ended. A BreltoTime::wait of the body ends at once, so
    /// that stopping is prompt. Without a running thread it does nothing. Not to be called from the body itself.
    int stop();

    int IsRunning() const override;

    /// The name in full.
    const std::string& getName() const;

    /// For the functions that a thread does not need.
    static int emptyFun();

private:
    struct State;
    std::unique_ptr<State> m_pState;
};
