#pragma once

#include "controller/ControllerObserver.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <vector>

namespace sensorctl {

class Progress;

/// What a controller told of itself, kept until somebody asks.
class ControllerEvents final : public sensorcontrol::ControllerObserver {
public:
    enum class Kind { DayNight, Scheme, Port };
    struct Event {
        std::chrono::steady_clock::time_point when;
        Kind kind;
        int value; ///< DayNight: 1 day, 0 night; Scheme: its number from 0; Port: 1 back, 0 lost
    };

    /// What came since the last call, in order. Any thread.
    std::vector<Event> take();
    /// Shows how a start gets on; null: nobody. While no start is under way.
    void setProgress(Progress* progress) { m_pProgress = progress; }

    /// The day/night status told last: 1 day, 0 night, -1 none yet. Any thread.
    int dayNight() const { return m_nDayNight; }

    void onDayNight(int status) override {
        m_nDayNight = status;
        add(Kind::DayNight, status);
    }
    void onScheme(int scheme) override { add(Kind::Scheme, scheme); }
    void onPortLost() override { add(Kind::Port, 0); }
    void onPortBack() override { add(Kind::Port, 1); }
    void onProgress(const sensorcontrol::StartProgress& progress) override;

private:
    void add(Kind kind, int value);

    std::atomic<int> m_nDayNight{-1};
    std::mutex m_Mutex;
    std::vector<Event> m_Events;
    Progress* m_pProgress = nullptr;
};

} // namespace sensorctl
