#include "host/linux/SimulatedClock.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace sensorhost {

namespace {

constexpr std::int64_t Microseconds = 1'000'000;
constexpr std::int64_t Day = 24 * 60 * 60;

enum class Phase { Running, Ready, Sleeping, Locking, Joining, Absent };

struct SimulatedThread final : ClockThread {
    std::condition_variable wake;
    const void* clock = nullptr;
    Phase phase = Phase::Ready;
    bool takesPart = true;
    bool interrupted = false;
    bool ended = false;
    std::int64_t due = 0;
    std::uint64_t order = 0;
    std::mutex* wanted = nullptr; ///< set until the mutex is locked: it also reserves one that was handed over
    std::uint64_t wantedSince = 0;
    const ClockThread* joined = nullptr;
    const char* file = nullptr;
    int line = 0;
};

constinit thread_local SimulatedThread* t_pSelf = nullptr;

SimulatedThread& simulated(ClockThread& thread) { return static_cast<SimulatedThread&>(thread); }

} // namespace

struct SimulatedClock::State {
    using Guard = std::unique_lock<std::mutex>;

    std::mutex mutex;
    // A device has been up for a while when its camera starts, and some code takes 0 for "never".
    std::int64_t now = 100 * Microseconds;
    std::int64_t localOffset = 0; ///< from now to microseconds since the start of the first day
    std::uint64_t lastOrder = 0;
    std::vector<SimulatedThread*> threads;
    SimulatedThread* current = nullptr;
    std::shared_ptr<ClockThread> installer;
    bool reported = false;

    /// What this clock keeps of the calling thread, null if it does not take part.
    SimulatedThread* self() const { return t_pSelf != nullptr && t_pSelf->clock == this ? t_pSelf : nullptr; }

    SimulatedThread* pick(Phase phase) const {
        SimulatedThread* found = nullptr;
        for (SimulatedThread* thread : threads) {
            if (thread->phase != phase)
                continue;
            const std::int64_t due = phase == Phase::Sleeping ? thread->due : 0;
            const std::int64_t foundDue = found != nullptr && phase == Phase::Sleeping ? found->due : 0;
            if (found == nullptr || due < foundDue || (due == foundDue && thread->order < found->order))
                found = thread;
        }
        return found;
    }

    void dispatch() {
        while (current == nullptr) {
            SimulatedThread* next = pick(Phase::Ready);
            if (next == nullptr) {
                next = pick(Phase::Sleeping);
                if (next == nullptr) {
                    reportStandstill();
                    return;
                }
                now = std::max(now, next->due);
            }
            next->phase = Phase::Running;
            if (next->takesPart)
                current = next;
            next->wake.notify_one();
        }
    }

    // A lock that is never given back otherwise shows as a silent hang of a whole test.
    void reportStandstill() {
        const auto blocked = [](const SimulatedThread* t) { return t->phase == Phase::Locking; };
        const auto absent = [](const SimulatedThread* t) { return t->phase == Phase::Absent; };
        if (reported || std::none_of(threads.begin(), threads.end(), blocked) ||
            std::any_of(threads.begin(), threads.end(), absent))
            return;
        reported = true;
        std::fputs("simulated clock: no thread can go on; wanted locks:\n", stderr);
        for (const SimulatedThread* thread : threads)
            if (blocked(thread))
                std::fprintf(stderr, "  %s:%d\n", thread->file, thread->line);
    }

    void block(Guard& guard, SimulatedThread& thread, Phase phase) {
        thread.phase = phase;
        thread.order = ++lastOrder;
        if (current == &thread)
            current = nullptr;
        dispatch();
        awaitTurn(guard, thread);
    }

    void awaitTurn(Guard& guard, SimulatedThread& thread) {
        while (thread.phase != Phase::Running)
            thread.wake.wait(guard);
    }

    void makeReady(SimulatedThread& thread) {
        thread.phase = Phase::Ready;
        thread.order = ++lastOrder;
        dispatch();
    }

    void remove(SimulatedThread& thread) {
        std::erase(threads, &thread);
        thread.ended = true;
        for (SimulatedThread* other : threads)
            if (other->phase == Phase::Joining && other->joined == &thread) {
                other->phase = Phase::Ready;
                other->order = ++lastOrder;
            }
        if (current == &thread)
            current = nullptr;
        dispatch();
    }

    bool isWanted(const std::mutex& lock) const {
        return std::any_of(threads.begin(), threads.end(),
                           [&](const SimulatedThread* thread) { return thread->wanted == &lock; });
    }
};

ClockThread::~ClockThread() = default;
ClockSource::~ClockSource() = default;

SimulatedClock::SimulatedClock(int hour, int minute) : m_pState(std::make_unique<State>()) {
    setTimeOfDay(hour, minute);
}

SimulatedClock::~SimulatedClock() = default;

void SimulatedClock::advance(double seconds) { wait(std::llround(seconds * static_cast<double>(Microseconds))); }

void SimulatedClock::setTimeOfDay(int hour, int minute, int second) {
    const State::Guard guard(m_pState->mutex);
    const std::int64_t day = (m_pState->now + m_pState->localOffset) / Microseconds / Day;
    const std::int64_t wanted = day * Day + (std::int64_t{hour} * 60 + minute) * 60 + second;
    m_pState->localOffset = wanted * Microseconds - m_pState->now;
}

void SimulatedClock::shiftLocalTime(long long seconds) {
    const State::Guard guard(m_pState->mutex);
    m_pState->localOffset = std::max<std::int64_t>(m_pState->localOffset + seconds * Microseconds, -m_pState->now);
}

double SimulatedClock::now() const {
    const State::Guard guard(m_pState->mutex);
    return static_cast<double>(m_pState->now) / static_cast<double>(Microseconds);
}

LocalTime SimulatedClock::getLocalTime() const {
    using namespace std::chrono;
    std::int64_t passed = 0;
    {
        const State::Guard guard(m_pState->mutex);
        passed = (m_pState->now + m_pState->localOffset) / Microseconds;
    }
    const year_month_day date{sys_days{year{2024} / January / 1} + days{passed / Day}};
    const auto second = static_cast<int>(passed % Day);
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            second / 3600,
            second / 60 % 60,
            second % 60};
}

void SimulatedClock::wait(long long microseconds) {
    State::Guard guard(m_pState->mutex);
    const std::int64_t due = m_pState->now + std::max(microseconds, 0LL);
    if (SimulatedThread* const self = m_pState->self()) {
        if (self->interrupted)
            return;
        self->due = due;
        m_pState->block(guard, *self, Phase::Sleeping);
        return;
    }
    SimulatedThread guest;
    guest.takesPart = false;
    guest.due = due;
    m_pState->threads.push_back(&guest);
    m_pState->block(guard, guest, Phase::Sleeping);
    std::erase(m_pState->threads, &guest);
}

void SimulatedClock::enter() {
    m_pState->installer = announce();
    begin(*m_pState->installer);
}

void SimulatedClock::leave() {
    if (SimulatedThread* const self = m_pState->self())
        end(*self);
}

std::shared_ptr<ClockThread> SimulatedClock::announce() {
    auto thread = std::make_shared<SimulatedThread>();
    thread->clock = m_pState.get();
    const State::Guard guard(m_pState->mutex);
    m_pState->threads.push_back(thread.get());
    m_pState->makeReady(*thread);
    return thread;
}

void SimulatedClock::begin(ClockThread& thread) {
    t_pSelf = &simulated(thread);
    State::Guard guard(m_pState->mutex);
    m_pState->awaitTurn(guard, *t_pSelf);
}

void SimulatedClock::end(ClockThread& thread) {
    if (t_pSelf == &thread)
        t_pSelf = nullptr;
    const State::Guard guard(m_pState->mutex);
    m_pState->remove(simulated(thread));
}

void SimulatedClock::interrupt(ClockThread& thread) {
    const State::Guard guard(m_pState->mutex);
    SimulatedThread& interrupted = simulated(thread);
    interrupted.interrupted = true;
    if (interrupted.phase == Phase::Sleeping)
        m_pState->makeReady(interrupted);
}

void SimulatedClock::join(ClockThread& thread) {
    SimulatedThread* const self = m_pState->self();
    if (self == nullptr)
        return;
    State::Guard guard(m_pState->mutex);
    self->joined = &thread;
    while (!simulated(thread).ended)
        m_pState->block(guard, *self, Phase::Joining);
}

void SimulatedClock::lock(std::mutex& mutex, const char* file, int line) {
    SimulatedThread* const self = m_pState->self();
    if (self == nullptr) {
        mutex.lock();
        return;
    }
    State::Guard guard(m_pState->mutex);
    if (!m_pState->isWanted(mutex) && mutex.try_lock())
        return;
    self->wanted = &mutex;
    self->wantedSince = ++m_pState->lastOrder;
    self->file = file;
    self->line = line;
    // A thread that does not take part may have been quicker than the one it was handed to, hence the loop.
    do
        m_pState->block(guard, *self, Phase::Locking);
    while (!mutex.try_lock());
    self->wanted = nullptr;
}

void SimulatedClock::unlocked(std::mutex& mutex) {
    const State::Guard guard(m_pState->mutex);
    SimulatedThread* first = nullptr;
    for (SimulatedThread* thread : m_pState->threads) {
        if (thread->wanted != &mutex)
            continue;
        if (thread->phase != Phase::Locking)
            return;
        if (first == nullptr || thread->wantedSince < first->wantedSince)
            first = thread;
    }
    if (first != nullptr)
        m_pState->makeReady(*first);
}

SimulatedClock::Absence::Absence(SimulatedClock& clock) : m_Clock(clock) {
    const State::Guard guard(clock.m_pState->mutex);
    if (SimulatedThread* const self = clock.m_pState->self()) {
        self->phase = Phase::Absent;
        clock.m_pState->current = nullptr;
        clock.m_pState->dispatch();
    }
}

SimulatedClock::Absence::~Absence() {
    State::Guard guard(m_Clock.m_pState->mutex);
    if (SimulatedThread* const self = m_Clock.m_pState->self()) {
        m_Clock.m_pState->makeReady(*self);
        m_Clock.m_pState->awaitTurn(guard, *self);
    }
}

} // namespace sensorhost
