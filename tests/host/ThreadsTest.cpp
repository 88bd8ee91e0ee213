#include "host/BRDeviceTime.h"
#include "host/BreltoTime.h"
#include "host/GThread.h"
#include "host/SafePointer.h"
#include "host/ScopedLock.h"
#include "host/linux/HostRecords.h"
#include "host/linux/HostSettings.h"
#include "host/linux/SimulatedClock.h"

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <pthread.h>

namespace {

using sensorhost::ScopedLock;
using sensorhost::SimulatedClock;
using namespace std::chrono_literals;

/// A thread body from a lambda.
template <class Body>
class Call final : public function_obj<int> {
public:
    explicit Call(Body body) : m_Body(body) {}
    int call() override {
        m_Body();
        return 0;
    }

private:
    Body m_Body;
};

template <class Body>
std::unique_ptr<GThread> makeThread(Body body, const char* name = "test") {
    return std::make_unique<GThread>(function<int>(std::make_shared<Call<Body>>(body)), name, &GThread::emptyFun,
                                     &GThread::emptyFun);
}

class SimulatedTime : public testing::Test {
protected:
    SimulatedTime() { sensorhost::installClock(m_pClock); }
    ~SimulatedTime() override { sensorhost::installClock(nullptr); }

    double start() const { return m_nStart; }
    double passed() const { return m_pClock->now() - m_nStart; }

    std::shared_ptr<SimulatedClock> m_pClock = std::make_shared<SimulatedClock>(8, 30);
    double m_nStart = m_pClock->now();
};

class RealTime : public testing::Test {};

TEST_F(SimulatedTime, ADayOfPassesOfABackgroundThread) {
    int passes = 0;
    const auto thread = makeThread([&] {
        ++passes;
        BreltoTime::wait(BreltoTime(1, 0));
    });
    const auto real = std::chrono::steady_clock::now();
    ASSERT_NE(thread->start(), 0);
    m_pClock->advance(24 * 3600);
    EXPECT_EQ(passes, 24 * 3600);
    EXPECT_DOUBLE_EQ(passed(), 24 * 3600);
    thread->stop();
    EXPECT_LT(std::chrono::steady_clock::now() - real, 30s);
}

TEST_F(SimulatedTime, TheTimeOfDayRunsAndJumps) {
    // Day of the month, hour, minute, second.
    const auto now = [this] {
        const BRDeviceTime time = BRDeviceTime::getCurrentTime();
        return m_pClock->getLocalTime().day * 1'000'000 + time.getHour() * 10'000 + time.getMinute() * 100 +
               time.getSecond();
    };
    EXPECT_EQ(now(), 1'083000);
    m_pClock->advance(61.5);
    EXPECT_EQ(now(), 1'083101);
    BreltoTime::wait(BreltoTime(0, 500'000));
    EXPECT_EQ(now(), 1'083102);
    const double seconds = BRDeviceTime::getSeconds();
    m_pClock->setTimeOfDay(23, 59, 59);
    EXPECT_EQ(now(), 1'235959);
    EXPECT_EQ(BRDeviceTime::getSeconds(), seconds);
    m_pClock->advance(1);
    EXPECT_EQ(now(), 2'000000);
    m_pClock->setTimeOfDay(0, 0);
    BreltoTime::wait(BreltoTime(-5, 0));
    EXPECT_EQ(now(), 2'000000);
}

// Threads of different pace over two locks: each run of it has to give the same course.
std::string courseOfThreads() {
    const auto clock = std::make_shared<SimulatedClock>();
    sensorhost::installClock(clock);
    const double start = clock->now();
    std::string course;
    BRMutex first;
    BRMutex second;
    // The locks are taken crosswise, so only the pairs of one order may run together.
    for (const int pair : {0, 1}) {
        std::vector<std::unique_ptr<GThread>> threads;
        for (const int number : {pair, pair + 2}) {
            threads.push_back(makeThread([&, number] {
                const auto mark = [&](char what) {
                    const int tenths = static_cast<int>((clock->now() - start) * 10 + 0.5);
                    course += what + std::to_string(number) + '@' + std::to_string(tenths) + ' ';
                };
                {
                    const ScopedLock guard(number % 2 == 0 ? first : second);
                    mark('+');
                    BreltoTime::wait(BreltoTime(0, 300'000 + number * 100'000));
                    const ScopedLock inner(number % 2 == 0 ? second : first);
                    mark('*');
                }
                mark('-');
                BreltoTime::wait(BreltoTime(1, 0));
            }));
            threads.back()->start();
        }
        clock->advance(30);
    }
    sensorhost::installClock(nullptr);
    return course;
}

TEST(SimulatedCourse, IsTheSameEachTime) {
    const std::string course = courseOfThreads();
    EXPECT_EQ(course.substr(0, 36), "+0@0 *0@3 -0@3 +2@3 *2@8 -2@8 +0@13 ");
    EXPECT_NE(course.find(" +3@3"), std::string::npos);
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(courseOfThreads(), course);
}

TEST_F(SimulatedTime, WakesInOrderOfTimeAndThenOfArrival) {
    std::string order;
    std::vector<std::unique_ptr<GThread>> threads;
    for (const int seconds : {5, 3, 5, 3, 4}) {
        threads.push_back(makeThread([&, seconds, number = threads.size()] {
            BreltoTime::wait(BreltoTime(seconds, 0));
            order += std::to_string(number);
            BreltoTime::wait(BreltoTime(1000, 0));
        }));
        threads.back()->start();
    }
    m_pClock->advance(10);
    EXPECT_EQ(order, "13402");
    threads.clear();
    EXPECT_DOUBLE_EQ(passed(), 10);
}

TEST_F(SimulatedTime, AMutexIsHandedToTheOneThatWaitedLongest) {
    BRMutex mutex;
    std::string order;
    const auto hold = [&](char mark, long seconds) {
        const ScopedLock guard(mutex);
        order += mark;
        BreltoTime::wait(BreltoTime(seconds, 0));
    };
    // Greedy: it comes back at once, but others were there first.
    const auto holder = makeThread([&] {
        hold('h', 20);
        hold('H', 1000);
    });
    const auto second = makeThread([&] {
        BreltoTime::wait(BreltoTime(2, 0));
        hold('2', 1);
    });
    holder->start();
    second->start();
    m_pClock->advance(1);
    hold('m', 0);
    EXPECT_DOUBLE_EQ(passed(), 20);
    m_pClock->advance(0.5);
    EXPECT_EQ(order, "hm2");
    m_pClock->advance(9.5);
    EXPECT_EQ(order, "hm2H");
    second->stop(); // it wants the lock, so that its end takes as long as it takes to get it
    EXPECT_EQ(order.substr(0, 5), "hm2H2");
    EXPECT_DOUBLE_EQ(passed(), 1021);
}

TEST_F(SimulatedTime, AWaitOfAThreadBeingStoppedIsOverAtOnce) {
    int passes = 0;
    const auto thread = makeThread([&] {
        ++passes;
        BreltoTime::wait(BreltoTime(60, 0));
        BreltoTime::wait(BreltoTime(20, 0));
    });
    EXPECT_EQ(thread->IsRunning(), 0);
    EXPECT_NE(thread->stop(), 0);
    for (int round = 1; round <= 2; ++round) {
        ASSERT_NE(thread->start(), 0);
        EXPECT_NE(thread->start(), 0);
        EXPECT_NE(thread->IsRunning(), 0);
        m_pClock->advance(10);
        EXPECT_NE(thread->stop(), 0);
        EXPECT_NE(thread->stop(), 0);
        EXPECT_EQ(thread->IsRunning(), 0);
        EXPECT_EQ(passes, round);
        EXPECT_DOUBLE_EQ(passed(), 10 * round);
    }
}

TEST_F(SimulatedTime, ThreadsOutsideTheClockGetOnToo) {
    BRMutex mutex;
    int sum = 0;
    const auto pass = [&](long microseconds) {
        const ScopedLock guard(mutex);
        ++sum;
        BreltoTime::wait(BreltoTime(0, microseconds));
    };
    std::vector<std::thread> outside;
    for (int i = 0; i < 4; ++i)
        outside.emplace_back([&] {
            for (int n = 0; n < 50; ++n)
                pass(30'000);
        });
    int insidePasses = 0;
    const auto inside = makeThread([&] {
        pass(10'000);
        ++insidePasses;
    });
    inside->start();
    {
        const SimulatedClock::Absence absence(*m_pClock);
        for (std::thread& thread : outside)
            thread.join();
    }
    inside->stop();
    EXPECT_EQ(sum, 200 + insidePasses);
    EXPECT_GE(passed(), 6);
}

TEST_F(RealTime, ASpanPassesAndNegativeOnesDoNot) {
    const double before = BRDeviceTime::getSeconds();
    BreltoTime::wait(BreltoTime(0, 20'000));
    EXPECT_GE(BRDeviceTime::getSeconds() - before, 0.0199);
    BreltoTime::wait(BreltoTime(-1000, 0));
    BreltoTime::wait(BreltoTime(0, -1));
    EXPECT_LT(BRDeviceTime::getSeconds() - before, 10);
}

struct Passes {
    int before() { return text += 'b', 0; }
    int body() {
        std::array<char, 32> current{};
        ::pthread_getname_np(::pthread_self(), current.data(), current.size());
        text += '(' + std::string(current.data());
        entered = true;
        BreltoTime::wait(BreltoTime(600, 0));
        return 0;
    }
    int after() { return text += ')', 0; }
    std::string text;
    std::atomic<bool> entered{false};
};

TEST_F(RealTime, AThreadRunsItsThreeFunctionsUnderItsNameAndStopsAtOnce) {
    const auto begin = std::chrono::steady_clock::now();
    // What the kernel shows: families of names stay apart in it.
    for (const auto& [name, shown] : {std::pair{"DayNightChangeThread", "DayNightChange"},
                                      {"DayNightSwitchThread", "DayNightSwitch"},
                                      {"ExternalLevelWatcher", "Externa~Watcher"},
                                      {"ExternalLevelReader", "Externa~lReader"},
                                      {"fifteen_Threads", "fifteen_Threads"}}) {
        Passes passes;
        GThread thread(bind(&passes, &Passes::body), name, bind(&passes, &Passes::before),
                       bind(&passes, &Passes::after));
        EXPECT_EQ(thread.getName(), name);
        for (int round = 0; round < 2; ++round) {
            passes.entered = false;
            ASSERT_NE(thread.start(), 0);
            while (!passes.entered)
                std::this_thread::yield();
            EXPECT_EQ(sensorhost::runningThreads(), std::vector<std::string>{name});
            thread.stop();
            EXPECT_EQ(sensorhost::runningThreads(), std::vector<std::string>{});
        }
        const std::string once = "b(" + std::string(shown) + ')';
        EXPECT_EQ(passes.text, once + once);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 30s);
}

TEST(SafePointer, CountsItsReferencesOverThreads) {
    struct Base {
        virtual ~Base() = default;
        int value = 7;
    };
    struct Counted : Base {
        explicit Counted(int& c) : count(c) { ++count; }
        ~Counted() override { --count; }
        int& count;
    };
    const int outstanding = RefCountManager::getOutstandingCount();
    int alive = 0;
    {
        const SafePointer<Counted> pointer(new Counted(alive));
        const SafePointer<Base> base = pointer;
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] {
                for (int n = 0; n < 1000; ++n) {
                    SafePointer<Base> copy = base;
                    const SafePointer<Base> moved = std::move(copy);
                    ASSERT_EQ(moved->value, 7);
                }
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(alive, 1);
        EXPECT_EQ(RefCountManager::getOutstandingCount(), outstanding + 1);
    }
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(RefCountManager::getOutstandingCount(), outstanding);
}

TEST(SafePointer, SaysWhatIsWrongWithNull) {
    EXPECT_THAT([] { SafePointer<BRMutex> pointer(nullptr); },
                testing::ThrowsMessage<BRRuntimeError>("Construct from NULL original pointer"));
    EXPECT_THAT([] { SafePointer<std::string>()->clear(); },
                testing::ThrowsMessage<BRRuntimeError>("Use NULL pointer ->"));
}

} // namespace
