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
constexpr std::int64_t ReopenPause = 100'000;

struct Speed {
    speed_t code;
    int baud;
};

constexpr auto Speeds = std::to_array<Speed>({{B1200, 1200},
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

std::string failure(const char* what) { return std::string(what) + ": " + std::generic_category().message(errno); }

} // namespace

std::int64_t PtyServer::now() {
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

PtyServer::PtyServer(std::unique_ptr<CameraBlock> block, Settings settings)
    : m_pBlock(std::move(block)), m_Settings(std::move(settings)), m_Line(*m_pBlock, m_Settings.baud),
      m_nWake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

PtyServer::~PtyServer() {
    stop();
    if (m_nWake >= 0) {
        close(m_nWake);
    }
}

bool PtyServer::start(std::string& error) {
    const std::lock_guard lock(m_Mutex);
    if (m_bRunning) {
        error = "already started";
        return false;
    }
    if (m_nWake < 0) {
        error = "no event descriptor";
        return false;
    }
    if (!openPort(error)) {
        return false;
    }
    m_bStop = false;
    try {
        m_Thread = std::thread([this] { run(); });
    } catch (const std::system_error& problem) {
        error = problem.what();
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

bool PtyServer::plug(std::string& error) {
    std::unique_lock lock(m_Mutex);
    m_Line.plug();
    m_strOpenError.clear();
    wake();
    m_PortChanged.wait(lock, [this] { return m_nMaster >= 0 || !m_bRunning || !m_strOpenError.empty(); });
    error = m_bRunning ? m_strOpenError : "not started";
    return m_nMaster >= 0;
}

bool PtyServer::openPort(std::string& error) {
    m_nMaster = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    std::array<char, 128> name{};
    if (m_nMaster < 0 || grantpt(m_nMaster) != 0 || unlockpt(m_nMaster) != 0 ||
        ptsname_r(m_nMaster, name.data(), name.size()) != 0) {
        error = failure("cannot open a pseudo-terminal");
        closePort();
        return false;
    }
    m_strSlave = name.data();
    // Held open so that the master does not read errors between two clients.
    m_nSlave = open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings{};
    if (m_nSlave < 0 || tcgetattr(m_nSlave, &settings) != 0) {
        error = failure("cannot open the pseudo-terminal's slave");
        closePort();
        return false;
    }
    cfmakeraw(&settings);
    cfsetspeed(&settings, B9600);
    tcsetattr(m_nSlave, TCSANOW, &settings);
    if (!makeLink(error)) {
        closePort();
        return false;
    }
    return true;
}

void PtyServer::closePort() {
    removeLink();
    for (int* descriptor : {&m_nSlave, &m_nMaster}) {
        if (*descriptor >= 0) {
            close(*descriptor);
            *descriptor = -1;
        }
    }
    m_strSlave.clear();
}

bool PtyServer::makeLink(std::string& error) {
    if (m_Settings.linkPath.empty()) {
        return true;
    }
    const std::filesystem::path path(m_Settings.linkPath);
    const std::filesystem::path temporary = m_Settings.linkPath + ".new";
    std::error_code problem;
    const auto status = std::filesystem::symlink_status(path, problem);
    if (std::filesystem::exists(status) && !std::filesystem::is_symlink(status)) {
        error = m_Settings.linkPath + " exists and is no symbolic link";
        return false;
    }
    // By rename, so that a client never finds the name missing while an old link is replaced.
    std::filesystem::remove(temporary, problem);
    std::filesystem::create_symlink(m_strSlave, temporary, problem);
    if (!problem) {
        std::filesystem::rename(temporary, path, problem);
    }
    if (problem) {
        error = "cannot make the link " + m_Settings.linkPath + ": " + problem.message();
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
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(m_nWake, &one, sizeof one);
}

void PtyServer::followPort() {
    const bool gone = m_Line.portGone(now());
    if (gone && m_nMaster >= 0) {
        closePort();
        m_PortChanged.notify_all();
    } else if (!gone && m_nMaster < 0) {
        m_strOpenError.clear();
        if (!openPort(m_strOpenError)) {
            m_Line.unplug(now(), ReopenPause);
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
        std::int64_t due = 0;
        {
            const std::lock_guard lock(m_Mutex);
            if (m_bStop) {
                return;
            }
            if ((waited[0].revents & POLLIN) != 0) {
                std::uint64_t count = 0;
                [[maybe_unused]] const ssize_t taken = read(m_nWake, &count, sizeof count);
            }
            followPort();
            if (m_nMaster >= 0) {
                serve(now());
                followPort();
            }
            waited[1] = {m_nMaster, POLLIN, 0};
            due = m_nMaster >= 0 ? m_Line.nextDue() : m_Line.goneUntil();
        }
        timespec timeout{};
        if (due != Line::Never) {
            const std::int64_t wait = std::max<std::int64_t>(due - now(), 0);
            timeout.tv_sec = static_cast<time_t>(wait / 1'000'000);
            timeout.tv_nsec = static_cast<long>(wait % 1'000'000 * 1000);
        }
        if (ppoll(waited.data(), waited.size(), due == Line::Never ? nullptr : &timeout, nullptr) < 0) {
            waited[0].revents = POLLIN;
        }
    }
}

void PtyServer::serve(std::int64_t now) {
    std::array<std::uint8_t, 512> buffer;
    const ssize_t came = read(m_nMaster, buffer.data(), buffer.size());
    if (came > 0) {
        if (m_Settings.followClientBaud) {
            termios settings{};
            if (tcgetattr(m_nMaster, &settings) == 0) {
                const speed_t code = cfgetospeed(&settings);
                const auto speed =
                    std::find_if(Speeds.begin(), Speeds.end(), [code](const Speed& row) { return row.code == code; });
                if (speed != Speeds.end()) {
                    m_Line.setBaud(speed->baud);
                }
            }
        }
        m_Line.write(std::span(buffer).first(static_cast<std::size_t>(came)), now);
    }
    // A client that does not read loses bytes once the pty is full, as on a real line.
    const std::size_t going = m_Line.read(buffer, now);
    if (going > 0) {
        [[maybe_unused]] const ssize_t written = ::write(m_nMaster, buffer.data(), going);
    }
}

} // namespace camerasim
