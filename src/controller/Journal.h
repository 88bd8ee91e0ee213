#pragma once

#include "controller/ControllerObserver.h"
#include "controller/SensorLog.h"
#include "host/SafePointer.h"

#include <atomic>
#include <cstdarg>

namespace sensorcontrol {

/// What happens in a controller, told to whom it concerns: log lines to the logs, to the report of the calling thread
/// and to the observer, events to the observer. Any thread may call it.
class Journal {
public:
    Journal(const SafePointer<SensorLog>& errorLog, const SafePointer<SensorLog>& initLog)
        : m_pErrorLog(errorLog), m_pInitLog(initLog) {}

    /// Before the controller starts; null: nobody. It outlives the controller.
    void setObserver(ControllerObserver* observer) { m_pObserver = observer; }

    /// Lines of printf form, cut to what a log line holds.
    void error(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void init(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void write(ControllerObserver::Log log, const char* format, va_list arguments)
        __attribute__((format(printf, 3, 0)));

    void dayNight(int status);
    void scheme(int scheme);
    /// The port as the last exchange found it: only a change is told.
    void port(bool works);
    void parameterNotTaken(const OperationReport::Parameter& parameter);
    void progress(const StartProgress& progress);

private:
    const SafePointer<SensorLog>& m_pErrorLog;
    const SafePointer<SensorLog>& m_pInitLog;
    ControllerObserver* m_pObserver = nullptr;
    std::atomic<bool> m_bPortWorks{true};
};

} // namespace sensorcontrol
