#include "simulator/PtyServer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <termios.h>
#include <unistd.h>

namespace camerasim {

namespace {

/// How long the thread leaves a port alone that it could not reopen.
constexpr std::int64_t reopenPause = 100'000;

struct Speed {
    speed_t code;
    int baud;
};

constexpr auto speeds = std::to_array<Speed>({{B1200, 1200},
                                              {B2400, 2400},
                                              {B4800, 4800},
                                              {B9600, 9600},
                                              {B19200, 19200},
                                              {B38400, 38400},
                                              {B57600, 57600},
                                              {B115200, 115200},
                                              {B230400, 230400},
                                              {B460800, 460800},
                                              {B921600, 921600}});

std::string failure(const char* p_szWhat) {
    return std::string(p_szWhat) + ": " + std::generic_category().message(errno);
}

} // namespace

std::int64_t PtyServer::now() {
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

PtyServer::PtyServer(std::unique_ptr<CameraBlock> p_pBlock, Settings p_Settings)
    : m_pBlock(std::move(p_pBlock)), m_Settings(std::move(p_Settings)), m_Line(*m_pBlock, m_Settings.baud),
      m_nWake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

PtyServer::~PtyServer() {
    stop();
    if (m_nWake >= 0) {
        close(m_nWake);
    }
}

bool PtyServer::start(std::string& p_strError) {
    const std::lock_guard lock(m_Mutex);
    if (m_bRunning) {
        p_strError = "already started";
        return false;
    }
    if (m_nWake < 0) {
        p_strError = "no event descriptor";
        return false;
    }
    if (!openPort(p_strError)) {
        return false;
    }
    m_bStop = false;
    try {
        m_Thread = std::thread([this] { run(); });
    } catch (const std::system_error& error) {
        p_strError = error.what();
        closePort();
        return false;
    }
    m_bRunning = true;
    return true;
}

void PtyServer::stop() {
    {
        const std::lock_guard lock(m_Mutex);
        if (!m_bRunning || m_bStop) {
            return;
        }
        m_bStop = true;
    }
    wake();
    m_Thread.join();
    const std::lock_guard lock(m_Mutex);
    closePort();
    m_bRunning = false;
    m_PortChanged.notify_all();
}

std::string PtyServer::slavePath() const {
    const std::lock_guard lock(m_Mutex);
    return m_strSlave;
}

std::string PtyServer::portPath() const { return m_Settings.linkPath.empty() ? slavePath() : m_Settings.linkPath; }

void PtyServer::unplug() {
    std::unique_lock lock(m_Mutex);
    m_Line.unplug(now());
    wake();
    m_PortChanged.wait(lock, [this] { return m_nMaster < 0 || !m_bRunning; });
}

bool PtyServer::plug(std::string& p_strError) {
    std::unique_lock lock(m_Mutex);
    m_Line.plug();
    m_strOpenError.clear();
    wake();
    m_PortChanged.wait(lock, [this] { return m_nMaster >= 0 || !m_bRunning || !m_strOpenError.empty(); });
    p_strError = m_bRunning ? m_strOpenError : "not started";
    return m_nMaster >= 0;
}

bool PtyServer::openPort(std::string& p_strError) {
    m_nMaster = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    std::array<char, 128> name{};
    if (m_nMaster < 0 || grantpt(m_nMaster) != 0 || unlockpt(m_nMaster) != 0 ||
        ptsname_r(m_nMaster, name.data(), name.size()) != 0) {
        p_strError = failure("cannot open a pseudo-terminal");
        closePort();
        return false;
    }
    m_strSlave = name.data();
    // Held open so that the master does not read errors between two clients.
    m_nSlave = open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings{};
    if (m_nSlave < 0 || tcgetattr(m_nSlave, &settings) != 0) {
        p_strError = failure("cannot open the pseudo-terminal's slave");
        closePort();
        return false;
    }
    cfmakeraw(&settings);
    cfsetspeed(&settings, B9600);
    tcsetattr(m_nSlave, TCSANOW, &settings);
    if (!makeLink(p_strError)) {
        closePort();
        return false;
    }
    return true;
}

void PtyServer::closePort() {
    removeLink();
    for (int* pDescriptor : {&m_nSlave, &m_nMaster}) {
        if (*pDescriptor >= 0) {
            close(*pDescriptor);
            *pDescriptor = -1;
        }
    }
    m_strSlave.clear();
}

bool PtyServer::makeLink(std::string& p_strError) {
    if (m_Settings.linkPath.empty()) {
        return true;
    }
    const std::filesystem::path path(m_Settings.linkPath);
    const std::filesystem::path temporary = m_Settings.linkPath + ".new";
    std::error_code error;
    const auto status = std::filesystem::symlink_status(path, error);
    if (std::filesystem::exists(status) && !std::filesystem::is_symlink(status)) {
        p_strError = m_Settings.linkPath + " exists and is no symbolic link";
        return false;
    }
    // By rename, so that a client never finds the name missing while an old link is replaced.
    std::filesystem::remove(temporary, error);
    std::filesystem::create_symlink(m_strSlave, temporary, error);
    if (!error) {
        std::filesystem::rename(temporary, path, error);
    }
    if (error) {
        p_strError = "cannot make the link " + m_Settings.linkPath + ": " + error.message();
        return false;
    }
    return true;
}

void PtyServer::removeLink() {
    std::error_code error;
    if (!m_Settings.linkPath.empty() && !m_strSlave.empty() &&
        std::filesystem::read_symlink(m_Settings.linkPath, error) == m_strSlave) {
        std::filesystem::remove(m_Settings.linkPath, error);
    }
}

void PtyServer::wake() const {
    const std::uint64_t nOne = 1;
    [[maybe_unused]] const ssize_t nWritten = write(m_nWake, &nOne, sizeof nOne);
}

void PtyServer::followPort() {
    const bool bGone = m_Line.portGone(now());
    if (bGone && m_nMaster >= 0) {
        closePort();
        m_PortChanged.notify_all();
    } else if (!bGone && m_nMaster < 0) {
        m_strOpenError.clear();
        if (!openPort(m_strOpenError)) {
            m_Line.unplug(now(), reopenPause);
        }
        m_PortChanged.notify_all();
    }
}

void PtyServer::run() {
    // The default slack of 50 microseconds is a good part of a byte at higher speeds.
    prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
    std::array<pollfd, 2> waited{};
    waited[0] = {m_nWake, POLLIN, 0};
    for (;;) {
        std::int64_t nDue = 0;
        {
            const std::lock_guard lock(m_Mutex);
            if (m_bStop) {
                return;
            }
            if ((waited[0].revents & POLLIN) != 0) {
                std::uint64_t nCount = 0;
                [[maybe_unused]] const ssize_t nRead = read(m_nWake, &nCount, sizeof nCount);
            }
            followPort();
            if (m_nMaster >= 0) {
                serve(now());
                followPort();
            }
            waited[1] = {m_nMaster, POLLIN, 0};
            nDue = m_nMaster >= 0 ? m_Line.nextDue() : m_Line.goneUntil();
        }
        timespec timeout{};
        if (nDue != Line::never) {
            const std::int64_t nWait = std::max<std::int64_t>(nDue - now(), 0);
            timeout.tv_sec = static_cast<time_t>(nWait / 1'000'000);
            timeout.tv_nsec = static_cast<long>(nWait % 1'000'000 * 1000);
        }
        if (ppoll(waited.data(), waited.size(), nDue == Line::never ? nullptr : &timeout, nullptr) < 0) {
            waited[0].revents = POLLIN;
        }
    }
}

void PtyServer::serve(std::int64_t p_nNow) {
    std::array<std::uint8_t, 512> buffer;
    const ssize_t nCame = read(m_nMaster, buffer.data(), buffer.size());
    if (nCame > 0) {
        if (m_Settings.followClientBaud) {
            termios settings{};
            if (tcgetattr(m_nMaster, &settings) == 0) {
                const speed_t nCode = cfgetospeed(&settings);
                const auto speed =
                    std::find_if(speeds.begin(), speeds.end(), [nCode](const Speed& row) { return row.code == nCode; });
                if (speed != speeds.end()) {
                    m_Line.setBaud(speed->baud);
                }
            }
        }
        m_Line.write(std::span(buffer).first(static_cast<std::size_t>(nCame)), p_nNow);
    }
    // A client that does not read loses bytes once the pty is full, as on a real line.
    const std::size_t nGoing = m_Line.read(buffer, p_nNow);
    if (nGoing > 0) {
        [[maybe_unused]] const ssize_t nWritten = ::write(m_nMaster, buffer.data(), nGoing);
    }
}

} // namespace camerasim
