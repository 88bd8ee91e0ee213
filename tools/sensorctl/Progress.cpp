#include "Progress.h"

#include "Output.h"

#include <cstdio>

namespace sensorctl {

using Stage = sensorcontrol::StartProgress::Stage;

Progress::Progress(Output& output, const std::string& port)
    : m_Output(output), m_strPort(port), m_Start(Clock::now()), m_StageStart(m_Start) {
    if (m_Output.hasStatus())
        m_Ticker = std::thread(&Progress::run, this);
}

Progress::~Progress() { end(); }

void Progress::end() {
    {
        const std::lock_guard guard(m_Mutex);
        m_bEnded = true;
    }
    m_Ended.notify_all();
    if (m_Ticker.joinable())
        m_Ticker.join();
    m_Output.status("");
}

void Progress::onProgress(const sensorcontrol::StartProgress& progress) {
    const std::lock_guard guard(m_Mutex);
    if (m_bEnded)
        return;
    // A stage that begins has nothing done.
    const bool isNew = progress.done == 0;
    m_Progress = progress;
    if (!isNew)
        return;
    m_StageStart = Clock::now();
    if (m_Output.isVerbose() && !m_Output.hasStatus())
        m_Output.note("bring-up: " + stageText());
}

std::string Progress::stageText() const {
    const std::string total = std::to_string(m_Progress.total);
    switch (m_Progress.stage) {
    case Stage::Port:
        return "port " + m_strPort;
    case Stage::VideoSystem:
        return "video system";
    case Stage::Restart:
        return "restart of the module, " + total + " s";
    case Stage::DayMode:
        return "day mode";
    case Stage::FactoryValues:
        return "factory values, " + total;
    case Stage::Files:
        return "parameter files";
    case Stage::Parameters:
        return "parameters, " + total;
    case Stage::Notification:
        return "notification";
    case Stage::Up:
        return "up";
    }
    return {};
}

std::string Progress::detailText() const {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - m_StageStart).count();
    if (m_Progress.stage == Stage::Restart)
        return ": " + std::to_string(seconds);
    return m_Progress.done > 0 ? ": " + std::to_string(m_Progress.done) : "";
}

void Progress::show() {
    char time[32];
    std::snprintf(time, sizeof time, "%5.1f s  ", std::chrono::duration<double>(Clock::now() - m_Start).count());
    m_Output.status("bring-up " + (time + stageText()) + detailText());
}

void Progress::run() {
    std::unique_lock lock(m_Mutex);
    do
        show();
    while (!m_Ended.wait_for(lock, std::chrono::milliseconds(100), [this] { return m_bEnded; }));
}

} // namespace sensorctl
