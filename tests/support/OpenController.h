#pragma once

#include "controller/ControllerObserver.h"
#include "controller/ISensorController.h"

#include <string>
#include <thread>
#include <utility>

/// The state of the base class of a controller of any class: controller.*Peek::Status.
struct Peek : ISensorController {
    static constexpr auto Status = &Peek::m_SensorStatus;
    static constexpr auto CurrentCache = &Peek::m_pCurrentCache;
    static constexpr auto LastCache = &Peek::m_pLastCache;
    static constexpr auto Inited = &Peek::m_bisInited;
    static constexpr auto Infrared = &Peek::m_nInfrared;
    static constexpr auto NewInfrared = &Peek::m_bNewInfrared;
    static constexpr auto DayNight = &Peek::m_nDNState;
    static constexpr auto InfraredMode = &Peek::m_nInfraredMode;
};

/// The lines of the error log that the test's own thread caused, joined by " | ".
class LogKeeper final : public sensorcontrol::ControllerObserver {
public:
    void onLogLine(Log log, const char* text) override {
        if (log != Log::Error || std::this_thread::get_id() != m_Owner)
            return;
        std::string line = text;
        if (line.ends_with('\n'))
            line.pop_back();
        m_strLines += (m_strLines.empty() ? "" : " | ") + line;
    }
    std::string take() { return std::exchange(m_strLines, {}); }

private:
    const std::thread::id m_Owner = std::this_thread::get_id();
    std::string m_strLines;
};
