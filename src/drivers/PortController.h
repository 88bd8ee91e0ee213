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
    SerialLine line();
    /// Empties the port of what nobody has asked for; takes its lock.
    void drainPort();

    /// Reads the first keys of a start: the device and `isInfrared`. The steps of a start that failed have said why.
    int readDevice(ModuleKeys& keys, std::string& deviceName);
    /// Reads the line's settings and opens the port with them.
    int openDevice(ModuleKeys& keys, const std::string& deviceName);

    /// One setting command with its answer, as the family sends it.
    int send(const FramePattern& frame, int value = 0);
    /// Sends without lock, acknowledgement or retry. The bytes that went out.
    int sendUnanswered(const FramePattern& frame);
};

} // namespace sensorcontrol
