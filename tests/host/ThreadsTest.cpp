#include "host/BRDeviceTime.h"
#include "host/BreltoTime.h"
#include "host/GThread.h"
#include "host/SafePointer.h"
#include "host/ScopedLock.h"
#include "host/linux/HostSettings.h"
#include "host/linux/SimulatedClock.h"

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
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

TEST_F(SimulatedTime, aDayOfPassesOfABackgroundThread) {
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

TEST_F(SimulatedTime, theTimeOfDayRunsAndJumps) {
    const auto now = [] {
        const BRDeviceTime time = BRDeviceTime::getCurrentTime();
        return time.getHour() * 10000 + time.getMinute() * 100 + time.getSecond();
    };
    EXPECT_EQ(now(), 83000);
    m_pClock->advance(61.5);
    EXPECT_EQ(now(), 83101);
    BreltoTime::wait(BreltoTime(0, 500'000));
    EXPECT_EQ(now(), 83102);
    const double seconds = BRDeviceTime::getSeconds();
    m_pClock->setTimeOfDay(23, 59, 59);
    EXPECT_EQ(now(), 235959);
    EXPECT_EQ(BRDeviceTime::getSeconds(), seconds);
    EXPECT_EQ(m_pClock->getLocalTime().day, 1);
    m_pClock->advance(1);
    EXPECT_EQ(now(), 0);
    EXPECT_EQ(m_pClock->getLocalTime().day, 2);
    m_pClock->setTimeOfDay(0, 0);
    EXPECT_EQ(m_pClock->getLocalTime().day, 2);
    BreltoTime::wait(BreltoTime(-5, 0));
    EXPECT_EQ(now(), 0);
}

// Threads of different pace over two locks: each run of it has to give the same course.
std::string courseOfThreads() {
    const auto clock = std::make_shared<SimulatedClock>();
    sensorhost::installClock(clock);
    const double start = clock->now();
    std::string course;
    BRMutex first;
    BRMutex second;
    std::vector<std::unique_ptr<GThread>> threads;
    for (int number = 0; number < 4; ++number)
        threads.push_back(makeThread([&, number] {
            const auto mark = [&](char what) {
                course += what + std::to_string(number) + '@' +
                          std::to_string(static_cast<int>((clock->now() - start) * 10 + 0.5)) + ' ';
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
    // The locks are taken crosswise, so only the pairs of one order may run together.
    threads[0]->start();
    threads[2]->start();
    clock->advance(30);
    threads[0]->stop();
    threads[2]->stop();
    threads[1]->start();
    threads[3]->start();
    clock->advance(30);
    course += std::to_string(course.size());
    threads.clear();
    sensorhost::installClock(nullptr);
    return course;
}

TEST(SimulatedCourse, isTheSameEachTime) {
    const std::string course = courseOfThreads();
    EXPECT_EQ(course.substr(0, 36), "+0@0 *0@3 -0@3 +2@3 *2@8 -2@8 +0@13 ");
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(courseOfThreads(), course);
}

TEST_F(SimulatedTime, wakesInOrderOfTimeAndThenOfArrival) {
    std::string order;
    std::vector<std::unique_ptr<GThread>> threads;
    const std::array<int, 5> seconds{5, 3, 5, 3, 4};
    for (int number = 0; number < 5; ++number)
        threads.push_back(makeThread([&, number] {
            BreltoTime::wait(BreltoTime(seconds[static_cast<std::size_t>(number)], 0));
            order += std::to_string(number);
            BreltoTime::wait(BreltoTime(1000, 0));
        }));
    for (const auto& thread : threads)
        thread->start();
    m_pClock->advance(10);
    EXPECT_EQ(order, "13402");
    threads.clear();
    EXPECT_DOUBLE_EQ(passed(), 10);
}

TEST_F(SimulatedTime, aMutexIsHandedToTheOneThatWaitedLongest) {
    BRMutex mutex;
    std::string order;
    const auto holder = makeThread([&] {
        {
            const ScopedLock guard(mutex);
            BreltoTime::wait(BreltoTime(20, 0));
            order += 'h';
        }
        // Greedy: it comes back at once, but others were there first.
        const ScopedLock again(mutex);
        order += 'H';
        BreltoTime::wait(BreltoTime(1000, 0));
    });
    const auto second = makeThread([&] {
        BreltoTime::wait(BreltoTime(2, 0));
        const ScopedLock guard(mutex);
        order += '2';
        BreltoTime::wait(BreltoTime(1, 0));
    });
    holder->start();
    second->start();
    m_pClock->advance(1);
    {
        const ScopedLock guard(mutex);
        EXPECT_DOUBLE_EQ(passed(), 20);
        order += 'm';
    }
    m_pClock->advance(0.5);
    EXPECT_EQ(order, "hm2");
    m_pClock->advance(1);
    EXPECT_EQ(order, "hm2H");
    holder->stop();
    second->stop();
}

TEST_F(SimulatedTime, aWaitOfAThreadBeingStoppedIsOverAtOnce) {
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

TEST_F(SimulatedTime, stopWaitsForALockThatTheThreadWants) {
    BRMutex mutex;
    const auto holder = makeThread([&] {
        const ScopedLock guard(mutex);
        BreltoTime::wait(BreltoTime(7, 0));
    });
    const auto wanting = makeThread([&] {
        const ScopedLock guard(mutex);
        BreltoTime::wait(BreltoTime(100, 0));
    });
    holder->start();
    wanting->start();
    m_pClock->advance(1);
    wanting->stop();
    EXPECT_DOUBLE_EQ(passed(), 7);
    holder->stop();
}

TEST_F(SimulatedTime, threadsOutsideTheClockGetOnToo) {
    BRMutex mutex;
    int sum = 0;
    std::vector<std::thread> outside;
    for (int i = 0; i < 4; ++i)
        outside.emplace_back([&] {
            for (int n = 0; n < 50; ++n) {
                const ScopedLock guard(mutex);
                ++sum;
                BreltoTime::wait(BreltoTime(0, 30'000));
            }
        });
    const auto inside = makeThread([&] {
        const ScopedLock guard(mutex);
        BreltoTime::wait(BreltoTime(0, 10'000));
    });
    inside->start();
    {
        const SimulatedClock::Absence absence(*m_pClock);
        for (std::thread& thread : outside)
            thread.join();
    }
    const ScopedLock guard(mutex);
    EXPECT_EQ(sum, 200);
    EXPECT_GE(passed(), 6);
}

TEST_F(RealTime, stoppingDoesNotSitAWaitOut) {
    std::atomic<int> entered{0};
    const auto thread = makeThread([&] {
        ++entered;
        BreltoTime::wait(BreltoTime(600, 0));
    });
    const auto begin = std::chrono::steady_clock::now();
    for (int round = 1; round <= 3; ++round) {
        ASSERT_NE(thread->start(), 0);
        while (entered < round)
            std::this_thread::yield();
        thread->stop();
    }
    EXPECT_EQ(entered, 3);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 30s);
}

TEST_F(RealTime, aSpanPassesAndNegativeOnesDoNot) {
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
        name = current.data();
        text += '.';
        done = true;
        BreltoTime::wait(BreltoTime(600, 0));
        return 0;
    }
    int after() { return text += 'a', 0; }
    std::string text;
    std::string name;
    std::atomic<bool> done{false};
};

TEST_F(RealTime, aThreadRunsItsThreeFunctionsUnderACutName) {
    Passes passes;
    GThread thread(bind(&passes, &Passes::body), "DayNightChangeThread", bind(&passes, &Passes::before),
                   bind(&passes, &Passes::after));
    thread.start();
    while (!passes.done)
        std::this_thread::yield();
    thread.stop();
    EXPECT_EQ(passes.text, "b.a");
    EXPECT_EQ(passes.name, "DayNightChangeT");
}

TEST(SafePointer, countsItsReferencesOverThreads) {
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

TEST(SafePointer, saysWhatIsWrongWithNull) {
    const auto textOf = [](auto action) -> std::string {
        try {
            action();
        } catch (const BRRuntimeError& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(textOf([] { SafePointer<BRMutex> pointer(nullptr); }), "Construct from NULL original pointer");
    EXPECT_EQ(textOf([] { SafePointer<BRMutex>()->Lock(); }), "Use NULL pointer ->");
}

} // namespace
