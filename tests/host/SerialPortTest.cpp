#include "host/linux/SerialPort.h"

#include "support/TempRoot.h"

#include <array>
#include <atomic>
#include <chrono>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace {

using sensorhost::SerialPort;
using testing::HasSubstr;
using namespace std::chrono_literals;

constexpr int LongTimeout = 100; // ten seconds, which no test is to wait for

struct Stopwatch {
    std::chrono::steady_clock::duration elapsed() const { return std::chrono::steady_clock::now() - start; }
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

/// The device's end of a pseudo-terminal, behind a link that stays the same.
class Device {
public:
    Device() { plug(); }
    ~Device() { unplug(); }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    void plug() {
        m_nMaster = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        ::grantpt(m_nMaster);
        ::unlockpt(m_nMaster);
        std::array<char, 64> name{};
        ::ptsname_r(m_nMaster, name.data(), name.size());
        m_strSlave = name.data();
        ASSERT_EQ(::symlink(name.data(), m_strLink.c_str()), 0);
    }
    void unplug() {
        ::close(m_nMaster);
        ::unlink(m_strLink.c_str());
    }
    const char* name() const { return m_strLink.c_str(); }
    const char* slave() const { return m_strSlave.c_str(); }
    termios line() const {
        termios settings{};
        ::tcgetattr(m_nMaster, &settings);
        return settings;
    }
    void put(const std::string& bytes) const { ASSERT_GE(::write(m_nMaster, bytes.data(), bytes.size()), 0); }
    std::string take(std::size_t length) const {
        std::string bytes(length, '\0');
        ssize_t got = 1;
        std::size_t done = 0;
        for (; done < length && got > 0; done += static_cast<std::size_t>(std::max<ssize_t>(got, 0)))
            got = ::read(m_nMaster, bytes.data() + done, length - done);
        return bytes.substr(0, done);
    }

private:
    TempRoot m_Folder;
    const std::string m_strLink = m_Folder.path("/port");
    std::string m_strSlave;
    int m_nMaster = -1;
};

struct Events final : sensorhost::PortListener {
    void onPortLost(const std::string& deviceName) override { text += "lost " + deviceName + ' '; }
    void onPortBack(const std::string& deviceName) override { text += "back " + deviceName + ' '; }
    std::string text;
};

/// A port that is open on a device.
class OpenPort : public testing::Test {
protected:
    OpenPort() { m_Port.setListener(m_Events); }

    /// Receives, and keeps the result of the call in m_nResult.
    std::string receive(int length, int timeout) {
        std::string buffer(static_cast<std::size_t>(length), '\0');
        m_nResult = m_Port.recv(m_Handle, buffer.data(), length, timeout);
        buffer.resize(m_nResult > 0 ? static_cast<std::size_t>(m_nResult) : 0);
        return buffer;
    }
    int send(const std::string& bytes) { return m_Port.send(m_Handle, bytes.data(), static_cast<int>(bytes.size())); }
    /// Both directions work.
    void expectWorking() {
        ASSERT_EQ(send("abc"), 3);
        EXPECT_EQ(m_Device.take(3), "abc");
        m_Device.put("de");
        EXPECT_EQ(receive(2, LongTimeout), "de");
    }

    Device m_Device;
    SerialPort m_Port;
    const int m_Handle = m_Port.open(m_Device.name());
    const std::shared_ptr<Events> m_Events = std::make_shared<Events>();
    int m_nResult = -1;
};

/// A process of its own that opens the device, as nobody if it can, and keeps it until it is killed.
class Client {
public:
    explicit Client(const Device& device) {
        std::array<int, 2> pipe{};
        EXPECT_EQ(::pipe(pipe.data()), 0);
        ::chmod(device.slave(), 0666);
        m_nProcess = ::fork();
        if (m_nProcess == 0) {
            [[maybe_unused]] const int changed = ::setuid(65534);
            SerialPort port;
            const std::string text = port.open(device.slave()) < 0 ? port.getOpenFailure() : "open";
            if (::write(pipe[1], text.data(), text.size()) > 0)
                ::pause();
            ::_exit(1);
        }
        ::close(pipe[1]);
        std::array<char, 200> text{};
        m_strResult.assign(text.data(), static_cast<std::size_t>(::read(pipe[0], text.data(), text.size())));
        ::close(pipe[0]);
    }
    ~Client() {
        if (m_nProcess > 0) // -1 would be every process there is
            ::kill(m_nProcess, SIGKILL);
        ::waitpid(m_nProcess, nullptr, 0);
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// Why it did not open, or "open".
    const std::string& result() const { return m_strResult; }
    std::string inUse() const { return "in use by process " + std::to_string(m_nProcess) + " ("; }

private:
    pid_t m_nProcess = -1;
    std::string m_strResult;
};

TEST_F(OpenPort, ReceivesWhatIsThereOrCameBeforeTheSilence) {
    m_Device.put("abcde");
    Stopwatch watch;
    EXPECT_EQ(receive(3, LongTimeout), "abc");
    EXPECT_EQ(receive(2, LongTimeout), "de");
    EXPECT_LT(watch.elapsed(), 5s);
    EXPECT_EQ(receive(1, 0), "");
    EXPECT_EQ(m_nResult, 0);
    for (const char* some : {"", "ab"}) {
        m_Device.put(some);
        watch = {};
        EXPECT_EQ(receive(3, 1), some);
        EXPECT_GE(m_nResult, 0);
        EXPECT_GE(watch.elapsed(), 95ms);
    }
    // Three pieces, each well within the timeout, all of them together beyond it.
    std::thread writer([&] {
        for (const char* piece : {"ab", "cd", "ef"}) {
            std::this_thread::sleep_for(250ms);
            m_Device.put(piece);
        }
    });
    EXPECT_EQ(receive(6, 6), "abcdef");
    writer.join();

    std::string all(256, '\0');
    std::iota(all.begin(), all.end(), '\0');
    EXPECT_EQ(send(all), 256);
    EXPECT_EQ(m_Device.take(256), all);
    m_Device.put(all);
    EXPECT_EQ(receive(256, 20), all);
}

TEST_F(OpenPort, OutlivesItsAdapter) {
    ASSERT_NE(m_Port.setParameter(m_Handle, 2400, 8, 0, 2), 0);
    expectWorking();
    std::thread puller([&] {
        std::this_thread::sleep_for(50ms);
        m_Device.unplug();
    });
    const Stopwatch watch;
    for (int i = 0; i < 3; ++i) {
        receive(3, LongTimeout);
        EXPECT_LT(m_nResult, 0);
        if (i == 0)
            puller.join();
        EXPECT_LT(send("abc"), 0);
        EXPECT_EQ(m_Port.setParameter(m_Handle, 9600, 8, 0, 1), 0);
    }
    EXPECT_LT(watch.elapsed(), 5s);
    const std::string lost = std::string("lost ") + m_Device.name() + ' ';
    const std::string back = std::string("back ") + m_Device.name() + ' ';
    EXPECT_EQ(m_Events->text, lost);

    // Something else at its name, which must not even be opened: a pipe with a reader's end open has a reader.
    ASSERT_EQ(::mkfifo(m_Device.name(), 0600), 0);
    EXPECT_LT(send("abc"), 0);
    EXPECT_LT(::open(m_Device.name(), O_WRONLY | O_NONBLOCK), 0);
    ::unlink(m_Device.name());

    m_Device.plug();
    expectWorking();
    const termios line = m_Device.line();
    EXPECT_EQ(::cfgetospeed(&line), speed_t{B2400});
    EXPECT_NE(line.c_cflag & CSTOPB, 0U);
    EXPECT_EQ(m_Events->text, lost + back);

    // Nobody looked while it was gone.
    m_Device.unplug();
    m_Device.plug();
    expectWorking();
    EXPECT_EQ(m_Events->text, lost + back + lost + back);
    m_Device.unplug();
    m_Device.plug();
    EXPECT_EQ(m_Port.open(m_Device.name()), m_Handle + 1) << "a bring-up anew";
    expectWorking();
    m_Port.setListener(nullptr);
    m_Device.unplug();
    EXPECT_LT(send("abc"), 0);
    m_Device.plug();
    EXPECT_NE(m_Port.close(m_Handle), 0);
    EXPECT_EQ(m_Port.send(m_Handle + 1, "abc", 3), 3);
    EXPECT_EQ(m_Events->text, lost + back + lost + back + lost + back);
}

TEST_F(OpenPort, BelongsToOneProcess) {
    const std::string own = "in use by process " + std::to_string(::getpid()) + " (";
    EXPECT_THAT(Client(m_Device).result(), HasSubstr(m_Device.slave() + (" is " + own)));
    SerialPort another;
    EXPECT_LT(another.open(m_Device.name()), 0);
    EXPECT_THAT(another.getOpenFailure(), HasSubstr(own));
    const int second = m_Port.open(m_Device.name());
    EXPECT_NE(m_Port.close(m_Handle), 0);
    EXPECT_THAT(Client(m_Device).result(), HasSubstr(own)) << "it has another handle";

    // A call that is under way does not keep it.
    std::thread receiver([&] {
        char byte = 0;
        m_Port.recv(second, &byte, 1, 5);
    });
    std::this_thread::sleep_for(100ms);
    EXPECT_NE(m_Port.close(second), 0);
    // Nor does a client that is killed, though somebody else has the device open, as a simulator does.
    const int held = ::open(m_Device.slave(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    {
        const Client client(m_Device);
        EXPECT_EQ(client.result(), "open");
        EXPECT_THAT(Client(m_Device).result(), HasSubstr(client.inUse()));
    }
    EXPECT_EQ(Client(m_Device).result(), "open");
    receiver.join();
    ::close(held);
}

TEST_F(OpenPort, TriesATakenDeviceOnceASecond) {
    expectWorking();
    m_Device.unplug();
    EXPECT_LT(send("abc"), 0);
    m_Device.plug();
    SerialPort thief;
    const int taken = thief.open(m_Device.name());
    const int watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ::inotify_add_watch(watch, m_Device.slave(), IN_OPEN | IN_CLOSE);
    for (const Stopwatch time; time.elapsed() < 600ms;)
        EXPECT_LT(send("abc"), 0);
    std::array<char, 4096> opens{};
    const auto attempts = ::read(watch, opens.data(), opens.size()) / static_cast<ssize_t>(2 * sizeof(inotify_event));
    EXPECT_TRUE(attempts == 1 || attempts == 2) << attempts;
    ::close(watch);
    thief.close(taken);
    for (const Stopwatch time; send("x") < 0 && time.elapsed() < 5s;)
        std::this_thread::sleep_for(10ms);
    EXPECT_EQ(m_Device.take(1), "x");
    expectWorking();
}

TEST_F(OpenPort, ASendToAPeerThatStoppedReadingEnds) {
    ASSERT_NE(m_Port.setParameter(m_Handle, 115200, 8, 0, 1), 0);
    const Stopwatch watch;
    const int sent = send(std::string(1'000'000, 'x'));
    EXPECT_GT(sent, 0);
    EXPECT_LT(sent, 1'000'000);
    EXPECT_LT(watch.elapsed(), 8s);
    m_Device.take(static_cast<std::size_t>(sent));
    expectWorking();
}

TEST_F(OpenPort, SignalsNeitherEndNorProlongAReceive) {
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

TEST_F(OpenPort, SetsTheLine) {
    for (const auto& [rate, speed] : {std::pair{2400, B2400}, {9600, B9600}, {115200, B115200}}) {
        EXPECT_NE(m_Port.setParameter(m_Handle, rate, 8, 0, 1), 0) << rate;
        const termios line = m_Device.line();
        EXPECT_EQ(::cfgetospeed(&line), static_cast<speed_t>(speed));
        EXPECT_EQ(line.c_cflag & (CSTOPB | CRTSCTS), 0U);
    }
    EXPECT_NE(m_Port.setParameter(m_Handle, 9600, 7, 2, 2), 0);
    EXPECT_NE(m_Device.line().c_cflag & CSTOPB, 0U);

    const std::vector<std::array<int, 4>> wrong{{9601, 8, 0, 1}, {0, 8, 0, 1},    {9600, 4, 0, 1}, {9600, 9, 0, 1},
                                                {9600, 8, 3, 1}, {9600, 8, 0, 0}, {9600, 8, 0, 3}};
    for (const auto& [rate, data, parity, stop] : wrong)
        EXPECT_EQ(m_Port.setParameter(m_Handle, rate, data, parity, stop), 0);
}

TEST_F(OpenPort, RefusesWhatIsNoPort) {
    for (const auto& [name, reason] : {std::pair{"", "cannot be opened: No such file"},
                                       {"/dev/no-such-port", "cannot be opened: No such file"},
                                       {"/dev/null", "is no serial port"},
                                       {"/", "is no serial port"}}) {
        EXPECT_LT(m_Port.open(name), 0) << name;
        EXPECT_THAT(m_Port.getOpenFailure(), HasSubstr(name + (std::string(" ") + reason)));
    }
    EXPECT_LT(m_Port.open(nullptr), 0);

    char byte = 'x';
    for (const int wrong : {-1, 0, m_Handle + 1}) {
        EXPECT_LT(m_Port.send(wrong, &byte, 1), 0);
        EXPECT_LT(m_Port.recv(wrong, &byte, 1, 0), 0);
        EXPECT_EQ(m_Port.close(wrong), 0);
        EXPECT_EQ(m_Port.setParameter(wrong, 9600, 8, 0, 1), 0);
    }
    EXPECT_LT(m_Port.recv(m_Handle, &byte, -1, 0), 0);
    EXPECT_LT(m_Port.send(m_Handle, nullptr, 1), 0);

    EXPECT_NE(m_Port.close(m_Handle), 0);
    const int next = m_Port.open(m_Device.name());
    EXPECT_EQ(m_Port.getOpenFailure(), "");
    EXPECT_LT(m_Port.send(m_Handle, &byte, 1), 0) << "a stale handle reached a port opened later";
    EXPECT_EQ(m_Port.send(next, &byte, 1), 1);
}

TEST(SerialPort, HandlesServeSeveralThreads) {
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
                if (port.recv(handle, echo.data(), length, LongTimeout) == length && echo == text)
                    ++good;
            }
            port.close(handle);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(good, 150);
}

} // namespace
