#pragma once

#include "controller/ControllerObserver.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace sensorctl {

class Output;

/// Shows how a bring-up gets on: a line that changes on a terminal, a line per stage when verbose,
/// nothing otherwise. Shows from construction to end.
class Progress {
public:
    Progress(Output& output, const std::string& port);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void end();
    /// Any thread; after the end it does nothing.
    void onProgress(const sensorcontrol::StartProgress& progress);

private:
    using Clock = std::chrono::steady_clock;

    std::string stageText() const;
    std::string detailText() const;
    void show();
    void run();

    Output& m_Output;
    const std::string m_strPort;
    const Clock::time_point m_Start;
    std::mutex m_Mutex;
    std::condition_variable m_Ended;
    bool m_bEnded = false;
    sensorcontrol::StartProgress m_Progress;
    Clock::time_point m_StageStart;
    std::thread m_Ticker;
};

} // namespace sensorctl
