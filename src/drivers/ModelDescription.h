#pragma once

#include "drivers/ParameterRow.h"

#include <span>

namespace sensorcontrol {

/// Where a model's module strings tell its port, and what is said on the way to it.
struct PortRecipe {
    const char* key = "RS485"; ///< of the device in the detail, of the line in the parameters
    const char* deviceFailure = "get RS232DeviceName from detail failed";
    const char* lineFailure = "get RS232Parameter from senseParameter failed";
    const char* lineTextFailure = "parse RS485 param failed,nRet=%d"; ///< with how many numbers there were
    const char* openFailure = "open UART(%s) failed";                 ///< with the device
    const char* settingFailure = nullptr;  ///< with the device and the four numbers; null: silence
    Message::Outlet outlet = Message::Log; ///< of these failures: the error log or the console
    const char* startedAs = nullptr;       ///< name of the controller for the console; null: the start prints nothing
};

/// What tells one model from another on its way through the gate and through its start.
struct ModelDescription {
    const char* className;
    std::span<const ParameterRow> rows; ///< ascending by id
    int version = 0;                    ///< of the parameter files, main and sub
    int subVersion = 0;
    // Parameters that operations of the interface stand for; -1: none.
    int mirrorId = -1;
    int focusModeId = -1;
    int dayNightModeId = -1;
    bool hasPort = true; ///< a camera block on a serial port
    PortRecipe port{};
    bool isStatusTested = true;  ///< nothing is served before the start has reached the parameters
    Message statusText = Silent; ///< said when a read is refused for that
    int wait = 30000;            ///< microseconds, after every parameter that was served
    int unservedSetResult = -1;
    Message unservedText = Silent; ///< for an id that is not served; with at most one %d, the id
    bool isReadFromZero = true;    ///< a read that writes nothing gives 0; else what the caller passed
    /// Behind "set" and the row's name, for rows without a text of their own; with at most one %d. Null: silence.
    const char* refusalText = nullptr;
    /// Behind "set" or "get" and the row's name; with at most one %d. Null: a failure says nothing.
    const char* failureText = " error,value is %d";
    /// Sends the frame of a row. 1 or 0.
    int (*transmit)(ISensorController&, const char* frame, int length) = [](ISensorController& controller,
                                                                            const char* frame, int length) {
        return controller.setParameterValue(frame, length);
    };
    /// Sends an inquiry and gives the number in its reply. 1 or 0.
    int (*inquire)(ISensorController&, const char* frame, int length, int& number) = nullptr;
};

} // namespace sensorcontrol
