#include "host/GThread.h"

#include "host/ScopedLock.h"
#include "host/linux/ActiveClock.h"
#include "host/linux/HostRecords.h"
#include "host/linux/StopSignal.h"

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include <pthread.h>

namespace {

/// The name as it fits into the kernel's 15 characters.
std::string kernelName(std::string_view name) {
    constexpr std::size_t Longest = 15;
    constexpr std::size_t Half = Longest / 2;
    constexpr std::string_view Common = "Thread"; // tells nothing in a list of threads
    if (name.size() > Longest && name.ends_with(Common))
        name.remove_suffix(Common.size());
    if (name.size() <= Longest)
        return std::string(name);
    return std::string(name.substr(0, Half)) + '~' + std::string(name.substr(name.size() - Half));
}

struct Running {
    std::mutex mutex;
    std::vector<std::pair<const GThread*, std::string>> threads;
};

// Never destroyed: threads of the host may outlive the static objects.
Running& running() {
    static Running* const Instance = new Running;
    return *Instance;
}

} // namespace

namespace sensorhost {

std::vector<std::string> runningThreads() {
    Running& r = running();
    const std::lock_guard guard(r.mutex);
    std::vector<std::string> names;
    for (const auto& [thread, name] : r.threads)
        names.push_back(name);
    return names;
}

} // namespace sensorhost

struct GThread::State {
    State(const function<int>& b, const char* n, const function<int>& f, const function<int>& a)
        : body(b), before(f), after(a), name(n != nullptr ? n : "") {}

    void run() {
        ::pthread_setname_np(::pthread_self(), kernelName(name).c_str());
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
    const std::string name;

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
    Running& r = running();
    const std::lock_guard listGuard(r.mutex);
    r.threads.emplace_back(this, s.name);
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
    Running& r = running();
    const std::lock_guard listGuard(r.mutex);
    std::erase_if(r.threads, [this](const auto& entry) { return entry.first == this; });
    return 1;
}

int GThread::IsRunning() const { return m_pState->running; }

const std::string& GThread::getName() const { return m_pState->name; }

int GThread::emptyFun() { return 0; }
