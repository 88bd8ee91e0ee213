#pragma once

#include "drivers/TableController.h"

#include <string>

namespace sensorcontrol {

class FramePattern;
class ModuleKeys;
struct SerialLine;

/// A controller on a table whose module is on a serial port.
template <class Base>
class SENSORCONTROL_API PortController : public TableController<Base> {
protected:
    using TableController<Base>::TableController;

    /// The port, its lock and the receive buffer.
    SENSORCONTROL_LOCAL SerialLine line();
    /// Empties the port of what nobody has asked for; takes its lock.
    SENSORCONTROL_LOCAL void drainPort();

    /// Reads the first keys of a start: the device and `isInfrared`. The steps of a start that failed have said why.
    SENSORCONTROL_LOCAL int readDevice(ModuleKeys& keys, std::string& deviceName);
    /// Reads the text of the line's settings.
    SENSORCONTROL_LOCAL int readLine(ModuleKeys& keys, std::string& lineText);
    /// Reads the line's settings and opens the port with them.
    SENSORCONTROL_LOCAL int openDevice(ModuleKeys& keys, const std::string& deviceName);

    /// One setting command with its answer, as the family sends it.
    SENSORCONTROL_LOCAL int send(const FramePattern& frame, int value = 0);
    /// Sends without lock, acknowledgement or retry. The bytes that went out.
    SENSORCONTROL_LOCAL int sendUnanswered(const FramePattern& frame);
};

} // namespace sensorcontrol
