#include "Progress.h"

#include "Output.h"

#include <cstdio>

namespace sensorctl {

Progress::Progress(Output& output, const std::string& port)
    : m_Output(output), m_Start(std::chrono::steady_clock::now()) {
    enter("port " + port);
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

void Progress::onLine(const TraceLine& line) {
    const std::lock_guard guard(m_Mutex);
    if (m_bEnded || line.direction != TraceLine::Direction::Sent)
        return;
    if (line.meaning == "restart") {
        enter("restart of the block, 20 s");
    } else if (line.meaning.find("video system") != std::string::npos) {
        m_bVideoSystemSeen = true;
        enter("video system");
    } else if (m_bVideoSystemSeen) {
        enter("parameters");
        m_strDetail = std::to_string(++m_nCommands) + " commands, " + line.meaning;
    }
}

void Progress::enter(const std::string& stage) {
    if (stage == m_strStage)
        return;
    m_strStage = stage;
    m_strDetail.clear();
    if (m_Output.isVerbose() && !m_Output.hasStatus())
        m_Output.note("bring-up: " + stage);
}

void Progress::show() {
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - m_Start).count();
    char time[32];
    std::snprintf(time, sizeof time, "%5.1f s  ", seconds);
    m_Output.status("bring-up " + (time + m_strStage) + (m_strDetail.empty() ? "" : ": " + m_strDetail));
}

void Progress::run() {
    std::unique_lock lock(m_Mutex);
    do
        show();
    while (!m_Ended.wait_for(lock, std::chrono::milliseconds(100), [this] { return m_bEnded; }));
}

} // namespace sensorctl
