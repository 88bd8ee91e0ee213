#pragma once

#include "controller/OperationReport.h"
#include "host/Export.h"

namespace sensorcontrol {

/// How far a start is.
struct StartProgress {
    enum class Stage {
        Port,
        VideoSystem,
        Restart, ///< the module restarts; `total` is its time in seconds
        DayMode,
        FactoryValues, ///< the module's factory values are read
        Files,
        Parameters, ///< the saved values go to the module
        Notification,
        Up
    };

    Stage stage = Stage::Port;
    int done = 0;
    int total = 0; ///< parameters, of which `done` are through; 0 where nothing is counted
};

/// What a host hears of a controller. Called on whichever thread it happens, the background thread included, often
/// with locks held: an observer returns quickly and calls no operation of the controller. Every call has an empty body
/// here.
class SENSORCONTROL_API ControllerObserver {
public:
    enum class Log { Error, Init };

    virtual ~ControllerObserver();

    /// The day/night status in force has changed: 1 day, 0 night.
    virtual void onDayNight(int status);
    /// Another scheme is in force, by the host's choice or the clock's.
    virtual void onScheme(int scheme);
    /// The port of the module failed, or works again. Told once for each change.
    virtual void onPortLost();
    virtual void onPortBack();
    /// A value that was to be set is not in force: refused, not served, or without an answer.
    virtual void onParameterNotTaken(const OperationReport::Parameter& parameter);
    virtual void onProgress(const StartProgress& progress);
    /// A line for one of the two logs, as it is written there, without time and tag.
    virtual void onLogLine(Log log, const char* text);
};

} // namespace sensorcontrol
