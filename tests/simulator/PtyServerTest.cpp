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
    explicit Client(const std::string& p_strPath, speed_t p_Speed = B9600)
        : m_nPort(open(p_strPath.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        termios settings{};
        if (m_nPort >= 0 && tcgetattr(m_nPort, &settings) == 0) {
            cfmakeraw(&settings);
            cfsetspeed(&settings, p_Speed);
            tcsetattr(m_nPort, TCSANOW, &settings);
        }
    }
    ~Client() {
        if (m_nPort >= 0) {
            close(m_nPort);
        }
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    bool isOpen() const { return m_nPort >= 0; }
    void send(const std::string& p_strHex) const {
        const auto bytes = wire(p_strHex);
        ASSERT_EQ(write(m_nPort, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    std::string recv(std::size_t p_nLength, int p_nMilliseconds = 5000) const {
        std::vector<std::uint8_t> bytes;
        pollfd waited{m_nPort, POLLIN, 0};
        while (bytes.size() < p_nLength && poll(&waited, 1, p_nMilliseconds) > 0) {
            std::uint8_t nByte = 0;
            if (read(m_nPort, &nByte, 1) != 1) {
                break;
            }
            bytes.push_back(nByte);
        }
        return hexText(bytes);
    }
    std::string ask(const std::string& p_strHex, std::size_t p_nLength) const {
        send(p_strHex);
        return recv(p_nLength);
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
    std::unique_ptr<PtyServer> serve(const PtyServer::Settings& p_Settings, const BlockSettings& p_Block = {}) {
        auto pServer = std::make_unique<PtyServer>(std::make_unique<Cmd8100Block>(p_Block), p_Settings);
        std::string strError;
        EXPECT_TRUE(pServer->start(strError)) << strError;
        return pServer;
    }
    void TearDown() override { std::filesystem::remove(m_strLink); }

    const std::string m_strLink =
        (std::filesystem::temp_directory_path() / ("block-port-" + std::to_string(getpid()))).string();
};

TEST_F(PtyServerTest, ClientsComeAndGo) {
    const auto pServer = serve({.baud = 0, .followClientBaud = false, .linkPath = {}});
    for (const char* szValue : {"02", "03", "02"}) {
        const Client client(pServer->portPath());
        ASSERT_TRUE(client.isOpen());
        EXPECT_EQ(client.ask(std::string("81 01 04 61 ") + szValue + " FF", 3), "90 41 FF");
        EXPECT_EQ(client.ask("81 09 04 61 FF", 4), std::string("90 50 ") + szValue + " FF");
    }
    pServer->withBlock([](CameraBlock& block, std::int64_t) { block.setAmbient(Ambient::dark); });
    // A master without any slave reads errors without end.
    const auto spent = [] {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return time.tv_sec * 1'000'000 + time.tv_nsec / 1000;
    };
    const auto nBefore = spent();
    usleep(100'000);
    EXPECT_LT(spent() - nBefore, 20'000) << "the server is busy without a client";
    const Client client(pServer->portPath());
    EXPECT_EQ(client.ask("81 09 04 01 FF", 4), "90 50 02 FF");
    EXPECT_EQ(pServer->withBlock([](CameraBlock& block, std::int64_t) { return block.receivedFrameCount(); }), 7U);
    pServer->stop();
    EXPECT_TRUE(client.isHungUp());
    std::string strError;
    ASSERT_TRUE(pServer->start(strError)) << strError;
    EXPECT_EQ(Client(pServer->portPath()).ask("81 09 04 61 FF", 4), "90 50 02 FF") << "the block is the same";
}

TEST_F(PtyServerTest, PacesAtLineSpeed) {
    static constexpr const char* mask = "A1 01 03 FF";
    const auto timed = [](const Client& client) {
        const std::int64_t nStart = PtyServer::now();
        EXPECT_EQ(client.ask(mask, 4), mask);
        return PtyServer::now() - nStart;
    };
    const auto pPaced = serve({.baud = 1200, .followClientBaud = false, .linkPath = {}});
    const Client paced(pPaced->portPath(), B115200);
    // Four bytes out, four back; a loaded machine can only add to it.
    EXPECT_GE(timed(paced), 8 * 10'000'000 / 1200);

    const auto pFollowing = serve({.baud = 300, .followClientBaud = true, .linkPath = {}});
    const Client following(pFollowing->portPath(), B2400);
    const std::int64_t nFollowed = timed(following);
    EXPECT_GE(nFollowed, 8 * 10'000'000 / 2400);
    EXPECT_EQ(pFollowing->withLine([](Line& line, std::int64_t) { return line.baud(); }), 2400);
}

TEST_F(PtyServerTest, LinkFollowsThePort) {
    std::filesystem::create_symlink("/dev/null", m_strLink);
    const auto pServer = serve({.baud = 0, .followClientBaud = false, .linkPath = m_strLink});
    EXPECT_EQ(pServer->portPath(), m_strLink);
    EXPECT_EQ(std::filesystem::read_symlink(m_strLink), pServer->slavePath());
    const Client before(m_strLink);
    EXPECT_EQ(before.ask("81 01 04 61 02 FF", 3), "90 41 FF");

    pServer->unplug();
    EXPECT_TRUE(before.isHungUp());
    EXPECT_FALSE(std::filesystem::is_symlink(m_strLink));
    EXPECT_TRUE(pServer->slavePath().empty());
    EXPECT_FALSE(Client(m_strLink).isOpen());

    std::string strError;
    ASSERT_TRUE(pServer->plug(strError)) << strError;
    const Client after(m_strLink);
    EXPECT_EQ(after.ask("81 09 04 61 FF", 4), "90 50 02 FF");
    pServer->stop();
    EXPECT_FALSE(std::filesystem::is_symlink(m_strLink));
    EXPECT_FALSE(pServer->plug(strError));
    pServer->unplug();
}

TEST_F(PtyServerTest, FaultTakesThePortAwayForAWhile) {
    const auto pServer = serve({.baud = 0, .followClientBaud = false, .linkPath = m_strLink});
    std::string strError;
    ASSERT_TRUE(
        pServer->withLine([&](Line& line, std::int64_t) { return line.faults().add("port-gone:50", strError); }));
    const Client client(m_strLink);
    client.send("81 01 04 61 02 FF");
    EXPECT_TRUE(client.isHungUp());
    const std::int64_t nEnd = PtyServer::now() + 5'000'000;
    while (!std::filesystem::is_symlink(m_strLink) && PtyServer::now() < nEnd) {
        usleep(5000);
    }
    EXPECT_EQ(Client(m_strLink).ask("81 09 04 61 FF", 4), "90 50 03 FF");
}

TEST_F(PtyServerTest, DelayedReplyAndPromptStop) {
    const auto pServer = serve({.baud = 0, .followClientBaud = false, .linkPath = {}},
                               BlockSettings{.habit = ReplyHabit::acknowledgeThenComplete, .completionDelay = 20'000});
    const Client client(pServer->portPath());
    EXPECT_EQ(client.ask("81 01 04 61 02 FF", 6), "90 41 FF 90 51 FF");
    // With a minute still to wait for, the end must not wait for it.
    pServer->withBlock([](CameraBlock& block, std::int64_t) { block.settings().completionDelay = 60'000'000; });
    EXPECT_EQ(client.ask("81 01 04 61 02 FF", 3), "90 41 FF");
    const std::int64_t nStart = PtyServer::now();
    pServer->stop();
    EXPECT_LT(PtyServer::now() - nStart, 2'000'000);
}

TEST_F(PtyServerTest, LeavesAFileInItsPlaceAlone) {
    std::ofstream(m_strLink) << "precious";
    PtyServer server(std::make_unique<Cmd8100Block>(), {.baud = 0, .followClientBaud = false, .linkPath = m_strLink});
    std::string strError;
    EXPECT_FALSE(server.start(strError));
    EXPECT_NE(strError.find(m_strLink), std::string::npos) << strError;
    EXPECT_TRUE(std::filesystem::is_regular_file(m_strLink));
    EXPECT_EQ(std::filesystem::file_size(m_strLink), 8U);
}

} // namespace
} // namespace camerasim
