#pragma once

#include "host/Export.h"
#include "host/ImagingLibraries.h"
#include "host/imaging/ExposureModel.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sensorhost {

/// Stands in for the platform's imaging libraries: keeps what was set and answers reads with it. A program or a test
/// looks at it, and plays the pipeline, from here. With a scene before it, it exposes as a pipeline does: gain and ISO
/// then follow the light and the settings. Functions go by their names. Any thread may call it.
///
/// Gain and shutter mode 0 are automatic, 1 fixed; the units are those of ExposureSettings.
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

    /// Puts a scene of so much light before the pipeline, in lux: full daylight 10,000, an office 300, street light 5,
    /// moonlight 0.1. Nothing, as at the start, leaves gain and ISO as they were set here.
    void setScene(std::optional<double> lux);
    std::optional<double> getScene() const;
    /// How the scene is exposed; without one, gain and ISO as set and no shutter.
    Exposure getExposure() const;

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
