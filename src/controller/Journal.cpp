#include "controller/Journal.h"

#include "controller/Recorder.h"

#include <cstdio>

namespace sensorcontrol {

namespace {

constexpr int LogLineSize = 100;

} // namespace

ControllerObserver::~ControllerObserver() = default;
void ControllerObserver::onDayNight(int) {}
void ControllerObserver::onScheme(int) {}
void ControllerObserver::onPortLost() {}
void ControllerObserver::onPortBack() {}
void ControllerObserver::onParameterNotTaken(const OperationReport::Parameter&) {}
void ControllerObserver::onProgress(const StartProgress&) {}
void ControllerObserver::onLogLine(Log, const char*) {}

void Journal::error(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    write(ControllerObserver::Log::Error, format, arguments);
    va_end(arguments);
}

void Journal::init(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    write(ControllerObserver::Log::Init, format, arguments);
    va_end(arguments);
}

void Journal::write(ControllerObserver::Log log, const char* format, va_list arguments) {
    char text[LogLineSize];
    std::vsnprintf(text, sizeof text, format, arguments);
    if (log == ControllerObserver::Log::Error)
        m_pErrorLog->WriteSensorLog("SensorError", text);
    else
        m_pInitLog->WriteSensorLog("SensorInit", text);
    recorder::message(text);
    if (m_pObserver != nullptr)
        m_pObserver->onLogLine(log, text);
}

void Journal::dayNight(int status) {
    if (m_pObserver != nullptr)
        m_pObserver->onDayNight(status);
}

void Journal::scheme(int scheme) {
    if (m_pObserver != nullptr)
        m_pObserver->onScheme(scheme);
}

void Journal::port(bool works) {
    if (m_bPortWorks.exchange(works) == works || m_pObserver == nullptr)
        return;
    if (works)
        m_pObserver->onPortBack();
    else
        m_pObserver->onPortLost();
}

void Journal::parameterNotTaken(const OperationReport::Parameter& parameter) {
    if (m_pObserver != nullptr)
        m_pObserver->onParameterNotTaken(parameter);
}

void Journal::progress(const StartProgress& progress) {
    if (m_pObserver != nullptr)
        m_pObserver->onProgress(progress);
}

} // namespace sensorcontrol
