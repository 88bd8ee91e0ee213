#pragma once

#include "TraceLine.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace sensorctl {

class Output;

/// Shows how a bring-up gets on, read off the wire: a line that changes on a terminal, a line per stage when verbose,
/// nothing otherwise. Shows from construction to end.
class Progress {
public:
    Progress(Output& output, const std::string& port);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void end();
    /// Any thread; after the end it does nothing.
    void onLine(const TraceLine& line);

private:
    void enter(const std::string& stage);
    void show();
    void run();

    Output& m_Output;
    const std::chrono::steady_clock::time_point m_Start;
    std::mutex m_Mutex;
    std::condition_variable m_Ended;
    bool m_bEnded = false;
    std::string m_strStage;
    std::string m_strDetail;
    int m_nCommands = 0;
    bool m_bVideoSystemSeen = false;
    std::thread m_Ticker;
};

} // namespace sensorctl
