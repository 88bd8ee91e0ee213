#pragma once

#include "host/Export.h"
#include "host/ImagingLibraries.h"
#include "host/imaging/ExposureModel.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
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
        std::string_view function;
        std::vector<int> arguments; ///< in their order; for a pointer what it points to, without the curve table
        int result;
    };

    static ImagingStandIn& getInstance();
    ImagingStandIn(const ImagingStandIn&) = delete;
    ImagingStandIn& operator=(const ImagingStandIn&) = delete;

    /// Back to the state of a pipeline that was just switched on, with nothing failing and nothing recorded.
    void reset();

    /// What a read answers and the last argument that its setter was given: one value, under either name. False for a
    /// name that is unknown or no read or setter's.
    bool setValue(std::string_view function, int value);
    /// 0 for an unknown name or a setter that was never called.
    int getValue(std::string_view function) const;

    /// Puts a scene of so much light before the pipeline, in lux: full daylight 10,000, an office 300, street light 5,
    /// moonlight 0.1. Nothing, as at the start, leaves gain and ISO as they were set here.
    void setScene(std::optional<double> lux);
    std::optional<double> getScene() const;
    /// How the scene is exposed; without one, gain and ISO as set and no shutter.
    Exposure getExposure() const;

    /// The edge-enhancement words set last, without the pointer, and the curve table (empty if none was set).
    std::vector<std::int32_t> getEdgeWords() const;
    std::vector<std::int32_t> getEdgeCurve() const;

    /// Tells a function what to give, until further notice or, with nothing, no longer. What is no read does its work
    /// only when it gives 0. False for an unknown name.
    bool setResult(std::string_view function, std::optional<int> result);
    /// The same for its next call, before what it was told else.
    bool setNextResult(std::string_view function, int result);
    bool setFailing(std::string_view function, bool failing) {
        return setResult(function, failing ? std::optional(-1) : std::nullopt);
    }

    /// Whether calls are recorded, off at the start. Recording starts with an empty list.
    void setRecording(bool recording);
    /// The calls recorded, in order; the first 100,000.
    std::vector<Call> calls() const;

    /// What was called too early: before DRV_init, ALG_sysInit and brewfi_init had run, in this order, or after
    /// brewfi_exit; and what was called with arguments that the libraries do not know. The first 100.
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
