#include "simulator/PtyServer.h"

#include "WireText.h"
#include "simulator/Cmd8100Block.h"

#include <ctime>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace camerasim {
namespace {

/// A client as a host would write it: raw termios, reads with a limit.
class Client {
public:
    explicit Client(const std::string& path, speed_t speed = B9600)
        : m_nPort(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        termios settings{};
        if (m_nPort >= 0 && tcgetattr(m_nPort, &settings) == 0) {
            cfmakeraw(&settings);
            cfsetspeed(&settings, speed);
            tcsetattr(m_nPort, TCSANOW, &settings);
        }
    }
    ~Client() {
        if (m_nPort >= 0)
            close(m_nPort);
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    bool isOpen() const { return m_nPort >= 0; }
    void send(const std::string& hex) const {
        const auto bytes = wire(hex);
        ASSERT_EQ(write(m_nPort, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    std::string recv(std::size_t length, int milliseconds = 5000) const {
        std::vector<std::uint8_t> bytes;
        pollfd waited{m_nPort, POLLIN, 0};
        while (bytes.size() < length && poll(&waited, 1, milliseconds) > 0) {
            std::uint8_t byte = 0;
            if (read(m_nPort, &byte, 1) != 1)
                break;
            bytes.push_back(byte);
        }
        return hexText(bytes);
    }
    std::string ask(const std::string& hex, std::size_t length) const {
        send(hex);
        return recv(length);
    }
    bool isHungUp() const {
        pollfd waited{m_nPort, POLLIN, 0};
        return poll(&waited, 1, 5000) > 0 && (waited.revents & POLLHUP) != 0;
    }

private:
    int m_nPort;
};

class PtyServerTest : public testing::Test {
protected:
    std::unique_ptr<PtyServer> serve(int baud = 0, const std::string& link = "", bool followsClient = false) {
        auto server = std::make_unique<PtyServer>(
            std::make_unique<Cmd8100Block>(),
            PtyServer::Settings{.baud = baud, .followClientBaud = followsClient, .linkPath = link});
        EXPECT_TRUE(server->start(m_strError)) << m_strError;
        return server;
    }
    void TearDown() override { std::filesystem::remove(m_strLink); }

    const std::string m_strLink =
        (std::filesystem::temp_directory_path() / ("block-port-" + std::to_string(getpid()))).string();
    std::string m_strError;
};

TEST_F(PtyServerTest, ClientsComeAndGo) {
    const auto server = serve();
    for (const char* value : {"02", "03", "02"}) {
        const Client client(server->portPath());
        ASSERT_TRUE(client.isOpen());
        EXPECT_EQ(client.ask(std::string("81 01 04 61 ") + value + " FF", 3), "90 41 FF");
        EXPECT_EQ(client.ask("81 09 04 61 FF", 4), std::string("90 50 ") + value + " FF");
    }
    server->withBlock([](CameraBlock& block, std::int64_t) { block.setAmbient(Ambient::Dark); });
    // A master without any slave reads errors without end.
    const auto spent = [] {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return time.tv_sec * 1'000'000 + time.tv_nsec / 1000;
    };
    const auto before = spent();
    usleep(100'000);
    EXPECT_LT(spent() - before, 20'000) << "the server is busy without a client";
    const Client client(server->portPath());
    EXPECT_EQ(client.ask("81 09 04 01 FF", 4), "90 50 02 FF");
    EXPECT_EQ(server->withBlock([](CameraBlock& block, std::int64_t) { return block.receivedFrameCount(); }), 7U);
    server->stop();
    EXPECT_TRUE(client.isHungUp());
    ASSERT_TRUE(server->start(m_strError)) << m_strError;
    EXPECT_EQ(Client(server->portPath()).ask("81 09 04 61 FF", 4), "90 50 02 FF") << "the block is the same";
}

TEST_F(PtyServerTest, PacesAtLineSpeed) {
    static constexpr const char* Mask = "A1 01 03 FF";
    const auto timed = [](const Client& client) {
        const std::int64_t start = PtyServer::now();
        EXPECT_EQ(client.ask(Mask, 4), Mask);
        return PtyServer::now() - start;
    };
    const auto pacedServer = serve(1200);
    const Client paced(pacedServer->portPath(), B115200);
    // Four bytes out, four back; a loaded machine can only add to it.
    EXPECT_GE(timed(paced), 8 * 10'000'000 / 1200);

    const auto followingServer = serve(300, "", true);
    const Client following(followingServer->portPath(), B2400);
    EXPECT_GE(timed(following), 8 * 10'000'000 / 2400);
    EXPECT_EQ(followingServer->withLine([](Line& line, std::int64_t) { return line.baud(); }), 2400);
}

TEST_F(PtyServerTest, LinkFollowsThePortThatGoesAndComes) {
    std::filesystem::create_symlink("/dev/null", m_strLink);
    const auto server = serve(0, m_strLink);
    EXPECT_EQ(server->portPath(), m_strLink);
    EXPECT_EQ(std::filesystem::read_symlink(m_strLink), server->slavePath());
    const Client before(m_strLink);
    EXPECT_EQ(before.ask("81 01 04 61 02 FF", 3), "90 41 FF");

    server->unplug();
    EXPECT_TRUE(before.isHungUp());
    EXPECT_FALSE(std::filesystem::is_symlink(m_strLink));
    EXPECT_TRUE(server->slavePath().empty());
    EXPECT_FALSE(Client(m_strLink).isOpen());

    ASSERT_TRUE(server->plug(m_strError)) << m_strError;
    const Client after(m_strLink);
    EXPECT_EQ(after.ask("81 09 04 61 FF", 4), "90 50 02 FF");

    // A fault takes it away for a while.
    ASSERT_TRUE(
        server->withLine([&](Line& line, std::int64_t) { return line.faults().add("port-gone:50", m_strError); }));
    after.send("81 01 04 61 03 FF");
    EXPECT_TRUE(after.isHungUp());
    const std::int64_t end = PtyServer::now() + 5'000'000;
    while (!std::filesystem::is_symlink(m_strLink) && PtyServer::now() < end)
        usleep(5000);
    EXPECT_EQ(Client(m_strLink).ask("81 09 04 61 FF", 4), "90 50 02 FF");

    server->stop();
    EXPECT_FALSE(std::filesystem::is_symlink(m_strLink));
    EXPECT_FALSE(server->plug(m_strError));
    server->unplug();
}

TEST_F(PtyServerTest, DelayedReplyAndPromptStop) {
    const auto server = serve();
    const auto completeAfter = [&](std::int64_t microseconds) {
        server->withBlock([=](CameraBlock& block, std::int64_t) {
            block.settings().habit = ReplyHabit::AcknowledgeThenComplete;
            block.settings().completionDelay = microseconds;
        });
    };
    completeAfter(20'000);
    const Client client(server->portPath());
    EXPECT_EQ(client.ask("81 01 04 61 02 FF", 6), "90 41 FF 90 51 FF");
    // With a minute still to wait for, the end must not wait for it.
    completeAfter(60'000'000);
    EXPECT_EQ(client.ask("81 01 04 61 02 FF", 3), "90 41 FF");
    const std::int64_t start = PtyServer::now();
    server->stop();
    EXPECT_LT(PtyServer::now() - start, 2'000'000);
}

TEST_F(PtyServerTest, LeavesAFileInItsPlaceAlone) {
    std::ofstream(m_strLink) << "precious";
    PtyServer server(std::make_unique<Cmd8100Block>(), {.baud = 0, .followClientBaud = false, .linkPath = m_strLink});
    EXPECT_FALSE(server.start(m_strError));
    EXPECT_NE(m_strError.find(m_strLink), std::string::npos) << m_strError;
    EXPECT_TRUE(std::filesystem::is_regular_file(m_strLink));
    EXPECT_EQ(std::filesystem::file_size(m_strLink), 8U);
}

} // namespace
} // namespace camerasim
