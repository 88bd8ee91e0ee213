// Mutual exclusion, threads, time, shared pointers and the settings of the process.
#include "host/BRDeviceTime.h"
#include "host/BRMutex.h"
#include "host/BRRuntimeError.h"
#include "host/BreltoTime.h"
#include "host/GThread.h"
#include "host/GlobalEnv.h"
#include "host/RefCountManager.h"

#include <chrono>
#include <condition_variable>
#include <ctime>
#include <mutex>
#include <thread>

struct BRMutex::State {
    std::mutex mutex;
};

BRMutex::BRMutex() : m_pState(std::make_unique<State>()) {}
BRMutex::~BRMutex() = default;
void BRMutex::Lock(const char*, int) { m_pState->mutex.lock(); }
void BRMutex::Unlock(const char*, int) { m_pState->mutex.unlock(); }

namespace {

/// What ends the waits of a thread that is being stopped, so that a controller is destroyed at once and not after the
/// second, or minute, that its thread sleeps.
struct Stop {
    std::mutex mutex;
    std::condition_variable changed;
    bool isWanted = false;
};

thread_local Stop* t_pStop = nullptr;

} // namespace

struct GThread::State {
    function<int> body;
    Stop stop;
    std::thread thread;
};

// The two other functions run before the first and after the last pass; the library passes emptyFun.
GThread::GThread(const function<int>& body, const char*, const function<int>&, const function<int>&)
    : m_pState(std::make_unique<State>()) {
    m_pState->body = body;
}

GThread::~GThread() { stop(); }

int GThread::start() {
    State& state = *m_pState;
    state.stop.isWanted = false;
    state.thread = std::thread([&state] {
        t_pStop = &state.stop;
        for (;;) {
            {
                const std::lock_guard guard(state.stop.mutex);
                if (state.stop.isWanted)
                    return;
            }
            state.body();
        }
    });
    return 1;
}

int GThread::stop() {
    State& state = *m_pState;
    if (!state.thread.joinable())
        return 1;
    {
        const std::lock_guard guard(state.stop.mutex);
        state.stop.isWanted = true;
    }
    state.stop.changed.notify_all();
    state.thread.join();
    return 1;
}

int GThread::IsRunning() const { return m_pState->thread.joinable() ? 1 : 0; }

int GThread::emptyFun() { return 0; }

void BreltoTime::wait(const BreltoTime& span) {
    const auto time = std::chrono::seconds(span.getSeconds()) + std::chrono::microseconds(span.getMicroseconds());
    if (t_pStop == nullptr) {
        std::this_thread::sleep_for(time);
        return;
    }
    std::unique_lock lock(t_pStop->mutex);
    t_pStop->changed.wait_for(lock, time, [] { return t_pStop->isWanted; });
}

BRDeviceTime BRDeviceTime::getCurrentTime() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    BRDeviceTime time;
    time.m_nHour = local.tm_hour;
    time.m_nMinute = local.tm_min;
    time.m_nSecond = local.tm_sec;
    return time;
}

double BRDeviceTime::getSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

GlobalEnv* GlobalEnv::getInstance() {
    static GlobalEnv environment;
    return &environment;
}

struct ref_count::Mutex {
    std::mutex mutex;
};

ref_count::ref_count(void* pointer) : m_pPointer(pointer), m_pMutex(std::make_unique<Mutex>()) {}
ref_count::~ref_count() = default;
void ref_count::lock() { m_pMutex->mutex.lock(); }
void ref_count::unLock() { m_pMutex->mutex.unlock(); }

ref_count* RefCountManager::retrieveRefCount(void* pointer) { return new ref_count(pointer); }
void RefCountManager::returnbackRefCount(ref_count* count) { delete count; }

BRRuntimeError::BRRuntimeError(const char* text) : m_strText(text) {}
BRRuntimeError::~BRRuntimeError() = default;
const char* BRRuntimeError::what() const noexcept { return m_strText.c_str(); }
