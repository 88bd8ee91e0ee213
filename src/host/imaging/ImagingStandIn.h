#pragma once

#include "host/Export.h"
#include "host/ImagingLibraries.h"

#include <memory>
#include <string>
#include <vector>

namespace sensorhost {

/// Stands in for the platform's imaging libraries: keeps what was set and answers reads with it. A program or a test
/// looks at it, and plays the pipeline, from here. Functions go by their names. Any thread may call it.
class SENSORHOST_API ImagingStandIn {
public:
    struct Call {
        const char* function;
        int value; ///< the last argument of a setter; what a read answered
    };

    static ImagingStandIn& getInstance();
    ImagingStandIn(const ImagingStandIn&) = delete;
    ImagingStandIn& operator=(const ImagingStandIn&) = delete;

    /// Back to the state of a pipeline that was just switched on, with nothing failing and nothing recorded.
    void reset();

    /// What a read answers and its setter was given last: one value, under either name. False for an unknown name.
    bool setValue(const std::string& function, int value);
    /// 0 for an unknown name or a setter that was never called.
    int getValue(const std::string& function) const;

    /// The edge-enhancement words set last, without the pointer, and the curve table (empty if none was set).
    std::vector<std::int32_t> getEdgeWords() const;
    std::vector<std::int32_t> getEdgeCurve() const;

    /// Makes a function fail: it changes nothing and gives -1. False for an unknown name.
    bool setFailing(const std::string& function, bool failing);
    /// The same for its next call only.
    bool failNext(const std::string& function);

    /// Whether calls are recorded, off at the start. Recording starts with an empty list.
    void setRecording(bool recording);
    /// The calls recorded, in order; the first 100,000.
    std::vector<Call> calls() const;

    /// What was called too early: before DRV_init, ALG_sysInit and brewfi_init had run, in this order, or after
    /// brewfi_exit. The first 100.
    std::vector<std::string> misuses() const;

    /// Whether the three have run and brewfi_exit has not.
    bool isStarted() const;

    struct State;

private:
    ImagingStandIn();
    ~ImagingStandIn();

    std::unique_ptr<State> m_pState;
    friend State& imagingState();
};

} // namespace sensorhost
