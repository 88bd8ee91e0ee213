#include "host/linux/SerialPort.h"

#include <array>
#include <atomic>
#include <chrono>
#include <numeric>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/time.h>
#include <termios.h>
#include <unistd.h>

namespace {

using sensorhost::SerialPort;
using namespace std::chrono_literals;

class Stopwatch {
public:
    std::chrono::steady_clock::duration elapsed() const { return std::chrono::steady_clock::now() - m_Start; }

private:
    std::chrono::steady_clock::time_point m_Start = std::chrono::steady_clock::now();
};

/// The device's end of a pseudo-terminal.
class Device {
public:
    Device() : m_nMaster(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        ::grantpt(m_nMaster);
        ::unlockpt(m_nMaster);
        std::array<char, 64> name{};
        ::ptsname_r(m_nMaster, name.data(), name.size());
        m_strName = name.data();
    }
    ~Device() { unplug(); }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    const char* name() const { return m_strName.c_str(); }
    int master() const { return m_nMaster; }
    void put(const std::string& bytes) const {
        ASSERT_EQ(::write(m_nMaster, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    std::string take(std::size_t length) const {
        std::string bytes(length, '\0');
        std::size_t done = 0;
        while (done < length) {
            const ssize_t got = ::read(m_nMaster, bytes.data() + done, length - done);
            if (got <= 0)
                break;
            done += static_cast<std::size_t>(got);
        }
        bytes.resize(done);
        return bytes;
    }
    void unplug() {
        if (m_nMaster >= 0)
            ::close(m_nMaster);
        m_nMaster = -1;
    }

private:
    int m_nMaster;
    std::string m_strName;
};

/// A port that is open on a device.
class OpenPort : public testing::Test {
protected:
    /// Receives, and keeps the result of the call in m_nResult.
    std::string receive(int length, int timeout) {
        std::string buffer(static_cast<std::size_t>(length), '\0');
        m_nResult = port.recv(handle, buffer.data(), length, timeout);
        buffer.resize(m_nResult > 0 ? static_cast<std::size_t>(m_nResult) : 0);
        return buffer;
    }

    Device device;
    SerialPort port;
    const int handle = port.open(device.name());
    int m_nResult = -1;
};

constexpr int LONG_TIMEOUT = 100; // ten seconds, which no test is to wait for

TEST_F(OpenPort, receivesAsSoonAsTheWantedBytesAreThere) {
    device.put("abcde");
    const Stopwatch watch;
    EXPECT_EQ(receive(3, LONG_TIMEOUT), "abc");
    EXPECT_EQ(receive(2, LONG_TIMEOUT), "de");
    EXPECT_LT(watch.elapsed(), 5s);
    EXPECT_EQ(receive(1, 0), "");
    EXPECT_EQ(m_nResult, 0);
}

TEST_F(OpenPort, silenceEndsAReceiveWithWhatCameSoFar) {
    Stopwatch silent;
    receive(3, 1);
    EXPECT_EQ(m_nResult, 0);
    EXPECT_GE(silent.elapsed(), 95ms);

    device.put("ab");
    Stopwatch partial;
    EXPECT_EQ(receive(3, 1), "ab");
    EXPECT_GE(partial.elapsed(), 95ms);
}

TEST_F(OpenPort, theTimeoutCountsBetweenBytes) {
    // Three pieces, each well within the timeout, all of them together beyond it.
    std::thread writer([&] {
        for (const char* piece : {"ab", "cd", "ef"}) {
            std::this_thread::sleep_for(250ms);
            device.put(piece);
        }
    });
    EXPECT_EQ(receive(6, 6), "abcdef");
    writer.join();
}

TEST_F(OpenPort, everyByteValuePassesBothWays) {
    std::string all(256, '\0');
    std::iota(all.begin(), all.end(), '\0');
    EXPECT_EQ(port.send(handle, all.data(), 256), 256);
    EXPECT_EQ(device.take(256), all);
    device.put(all);
    EXPECT_EQ(receive(256, 20), all);
}

TEST_F(OpenPort, anUnpluggedAdapterGivesErrorsAtOnce) {
    std::thread puller([&] {
        std::this_thread::sleep_for(50ms);
        device.unplug();
    });
    const Stopwatch watch;
    receive(3, LONG_TIMEOUT);
    EXPECT_LT(m_nResult, 0);
    puller.join();
    receive(3, LONG_TIMEOUT);
    EXPECT_LT(m_nResult, 0);
    EXPECT_LT(port.send(handle, "abc", 3), 0);
    EXPECT_EQ(port.setParameter(handle, 9600, 8, 0, 1), 0);
    EXPECT_LT(watch.elapsed(), 5s);
    EXPECT_NE(port.close(handle), 0);
}

TEST_F(OpenPort, aSendToAPeerThatStoppedReadingEnds) {
    ASSERT_NE(port.setParameter(handle, 115200, 8, 0, 1), 0);
    const std::string much(1'000'000, 'x');
    const Stopwatch watch;
    const int sent = port.send(handle, much.data(), static_cast<int>(much.size()));
    EXPECT_GT(sent, 0);
    EXPECT_LT(sent, static_cast<int>(much.size()));
    EXPECT_LT(watch.elapsed(), 8s);
    device.take(static_cast<std::size_t>(sent));
    EXPECT_EQ(port.send(handle, "abc", 3), 3);
}

TEST_F(OpenPort, signalsNeitherEndNorProlongAReceive) {
    struct sigaction action {};
    struct sigaction previous {};
    action.sa_handler = [](int) {};
    ::sigaction(SIGALRM, &action, &previous);
    const itimerval storm{{0, 5000}, {0, 5000}};
    ::setitimer(ITIMER_REAL, &storm, nullptr);
    const Stopwatch watch;
    receive(3, 2);
    EXPECT_EQ(m_nResult, 0);
    EXPECT_GE(watch.elapsed(), 195ms);
    EXPECT_LT(watch.elapsed(), 5s);
    const itimerval none{};
    ::setitimer(ITIMER_REAL, &none, nullptr);
    ::sigaction(SIGALRM, &previous, nullptr);
}

TEST_F(OpenPort, setsTheLine) {
    termios line{};
    for (const auto& [rate, speed] : {std::pair{2400, B2400}, {9600, B9600}, {115200, B115200}}) {
        EXPECT_NE(port.setParameter(handle, rate, 8, 0, 1), 0) << rate;
        ::tcgetattr(device.master(), &line);
        EXPECT_EQ(::cfgetospeed(&line), static_cast<speed_t>(speed));
        EXPECT_EQ(line.c_cflag & (CSTOPB | CRTSCTS), 0U);
    }
    EXPECT_NE(port.setParameter(handle, 9600, 7, 2, 2), 0);
    ::tcgetattr(device.master(), &line);
    EXPECT_NE(line.c_cflag & CSTOPB, 0U);

    for (const auto& [rate, data, parity, stop] : {std::array{9601, 8, 0, 1},
                                                   {0, 8, 0, 1},
                                                   {9600, 4, 0, 1},
                                                   {9600, 9, 0, 1},
                                                   {9600, 8, 3, 1},
                                                   {9600, 8, 0, 0},
                                                   {9600, 8, 0, 3}})
        EXPECT_EQ(port.setParameter(handle, rate, data, parity, stop), 0);
}

TEST_F(OpenPort, refusesWhatIsNoPort) {
    for (const char* name : {"", "/dev/no-such-port", "/dev/null", "/"})
        EXPECT_LT(port.open(name), 0) << name;
    EXPECT_LT(port.open(nullptr), 0);

    char byte = 'x';
    for (const int wrong : {-1, 0, handle + 1}) {
        EXPECT_LT(port.send(wrong, &byte, 1), 0);
        EXPECT_LT(port.recv(wrong, &byte, 1, 0), 0);
        EXPECT_EQ(port.close(wrong), 0);
        EXPECT_EQ(port.setParameter(wrong, 9600, 8, 0, 1), 0);
    }
    EXPECT_LT(port.recv(handle, &byte, -1, 0), 0);
    EXPECT_LT(port.send(handle, nullptr, 1), 0);

    EXPECT_NE(port.close(handle), 0);
    Device another;
    const int next = port.open(another.name());
    EXPECT_LT(port.send(handle, &byte, 1), 0) << "a stale handle reached a port opened later";
    EXPECT_EQ(port.send(next, &byte, 1), 1);
}

TEST(SerialPort, handlesServeSeveralThreads) {
    std::array<Device, 3> devices;
    SerialPort port;
    std::vector<std::thread> threads;
    std::atomic<int> good{0};
    for (Device& device : devices)
        threads.emplace_back([&] {
            const int handle = port.open(device.name());
            for (int i = 0; i < 50; ++i) {
                const std::string text = "frame " + std::to_string(i);
                const int length = static_cast<int>(text.size());
                if (port.send(handle, text.data(), length) != length)
                    return;
                device.put(device.take(text.size()));
                std::string echo(text.size(), '\0');
                if (port.recv(handle, echo.data(), length, LONG_TIMEOUT) == length && echo == text)
                    ++good;
            }
            port.close(handle);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(good, 150);
}

} // namespace
