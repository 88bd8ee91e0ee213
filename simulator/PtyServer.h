#pragma once

#include "simulator/Line.h"

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace camerasim {

/// Runs a block on a real pseudo-terminal, in a thread of its own and in real time.
///
/// Clients may come and go: the server keeps the slave open itself. All calls may come from any thread but the server's
/// own; withBlock and withLine must not call back into the server.
class PtyServer {
public:
    struct Settings {
        /// Bits per second that set the pace, ten to a byte; 0 answers as fast as it can.
        int baud = 9600;
        /// Take the pace from the baud rate that the client has set on the port.
        bool followClientBaud = false;
        /// Symbolic link kept on the slave while the port is there; empty for none. An old link is replaced, a file is
        /// not.
        std::string linkPath;
    };

    PtyServer(std::unique_ptr<CameraBlock> block, Settings settings);
    /// Stops, as stop does.
    ~PtyServer();
    PtyServer(const PtyServer&) = delete;
    PtyServer& operator=(const PtyServer&) = delete;

    /// Opens the pty and starts the thread; on failure false, with the reason in `error`.
    bool start(std::string& error);
    /// Ends the thread promptly, closes the pty and removes the link. Harmless when not started.
    void stop();

    /// Device path of the slave; changes when the port comes back. Empty while the port is gone.
    std::string slavePath() const;
    /// The link if one was asked for, otherwise slavePath.
    std::string portPath() const;

    /// Takes the port away as if its adapter were pulled: clients see a hang-up. Done when the call returns.
    void unplug();
    /// Brings it back as a new pty behind the same link. False with the reason if that fails.
    bool plug(std::string& error);

    /// Microseconds of the server's clock (monotonic).
    static std::int64_t now();

    /// Calls `function(CameraBlock&, now in microseconds)` under the server's lock and gives its result.
    template <class Function>
    decltype(auto) withBlock(Function&& function) {
        const Guard guard(*this);
        const std::int64_t now = PtyServer::now();
        m_Line.advance(now);
        return std::forward<Function>(function)(m_Line.block(), now);
    }
    /// Calls `function(Line&, now in microseconds)` under the server's lock, for faults and speed.
    template <class Function>
    decltype(auto) withLine(Function&& function) {
        const Guard guard(*this);
        const std::int64_t now = PtyServer::now();
        m_Line.advance(now);
        return std::forward<Function>(function)(m_Line, now);
    }

private:
    /// The lock; when it is given back the thread looks at the line anew.
    class Guard {
    public:
        explicit Guard(PtyServer& server) : m_Server(server) { m_Server.m_Mutex.lock(); }
        ~Guard() {
            m_Server.m_Mutex.unlock();
            m_Server.wake();
        }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

    private:
        PtyServer& m_Server;
    };

    bool openPort(std::string& error);
    void closePort();
    bool makeLink(std::string& error);
    void removeLink();
    void wake() const;
    void run();
    void followPort();
    void serve(std::int64_t now);

    std::unique_ptr<CameraBlock> m_pBlock;
    Settings m_Settings;
    mutable std::mutex m_Mutex;
    /// Signals that the port came or went: its descriptors belong to the thread, others wait for it to act.
    std::condition_variable m_PortChanged;
    Line m_Line;
    std::thread m_Thread;
    std::string m_strSlave;
    std::string m_strOpenError;
    int m_nMaster = -1;
    int m_nSlave = -1;
    int m_nWake = -1;
    bool m_bRunning = false;
    bool m_bStop = false;
};

} // namespace camerasim
