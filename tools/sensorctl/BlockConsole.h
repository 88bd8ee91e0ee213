#pragma once

#include "simulator/PtyServer.h"

#include <span>
#include <string>

namespace sensorctl {

class Output;

/// What a user can do to a simulated block: the light at its sensor, faults on its line, its registers, its plug.
class BlockConsole {
public:
    /// The server outlives the console.
    BlockConsole(Output& output, camerasim::PtyServer& server) : m_Output(output), m_Server(server) {}

    static bool knows(const std::string& command);
    /// A line for each command.
    static std::string help();
    /// Throws Failure.
    void execute(const std::string& command, std::span<const std::string> words);

private:
    void showRegisters(std::span<const std::string> words);
    void showReceived();
    void addFaults(std::span<const std::string> words);

    Output& m_Output;
    camerasim::PtyServer& m_Server;
};

} // namespace sensorctl
