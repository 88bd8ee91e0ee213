#include "host/GThread.h"

#include "host/ScopedLock.h"
#include "host/linux/ActiveClock.h"
#include "host/linux/StopSignal.h"

#include <atomic>
#include <string>
#include <system_error>
#include <thread>

#include <pthread.h>

struct GThread::State {
    State(const function<int>& b, const char* n, const function<int>& f, const function<int>& a)
        : body(b), before(f), after(a), name(n != nullptr ? n : "") {
        constexpr std::size_t LONGEST_NAME = 15;
        if (name.size() > LONGEST_NAME)
            name.resize(LONGEST_NAME);
    }

    void run() {
        ::pthread_setname_np(::pthread_self(), name.c_str());
        sensorhost::StopSignal::setCurrent(&stopSignal);
        if (clock)
            clock->begin(*clockThread);
        before();
        while (!stopSignal.isRaised())
            body();
        after();
        if (clock)
            clock->end(*clockThread);
    }

    const function<int> body;
    const function<int> before;
    const function<int> after;
    std::string name;

    BRMutex controlMutex; ///< one start or stop at a time
    sensorhost::StopSignal stopSignal;
    std::atomic<int> running{0};
    std::thread thread;
    std::shared_ptr<sensorhost::ClockSource> clock; ///< the one it was started under
    std::shared_ptr<sensorhost::ClockThread> clockThread;
};

GThread::GThread(const function<int>& body, const char* name, const function<int>& before, const function<int>& after)
    : m_pState(std::make_unique<State>(body, name, before, after)) {}

GThread::~GThread() { stop(); }

int GThread::start() {
    State& s = *m_pState;
    const sensorhost::ScopedLock guard(s.controlMutex);
    if (s.running != 0)
        return 1;
    s.stopSignal.clear();
    s.clock = sensorhost::holdActiveClock();
    s.clockThread = s.clock ? s.clock->announce() : nullptr;
    try {
        s.thread = std::thread([&s] { s.run(); });
    } catch (const std::system_error&) {
        if (s.clock)
            s.clock->end(*s.clockThread);
        return 0;
    }
    s.running = 1;
    return 1;
}

int GThread::stop() {
    State& s = *m_pState;
    // Waiting for its own end would never end.
    if (sensorhost::StopSignal::current() == &s.stopSignal)
        return 0;
    const sensorhost::ScopedLock guard(s.controlMutex);
    if (s.running == 0)
        return 1;
    s.stopSignal.raise();
    if (s.clock) {
        s.clock->interrupt(*s.clockThread);
        s.clock->join(*s.clockThread);
    }
    s.thread.join();
    s.clock.reset();
    s.clockThread.reset();
    s.running = 0;
    return 1;
}

int GThread::IsRunning() const { return m_pState->running; }

int GThread::emptyFun() { return 0; }
