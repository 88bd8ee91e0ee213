#pragma once

#include "ModuleConsole.h"
#include "simulator/PtyServer.h"

namespace sensorctl {

class Output;

/// What a user can do to a simulated block: the light at its sensor, faults on its line, its registers, its plug.
class BlockConsole final : public ModuleConsole {
public:
    /// The server outlives the console.
    BlockConsole(Output& output, camerasim::PtyServer& server) : m_Output(output), m_Server(server) {}

    static std::string commands();

    bool knows(const std::string& command) const override;
    std::string help() const override { return commands(); }
    void execute(const std::string& command, std::span<const std::string> words) override;

private:
    void showRegisters(std::span<const std::string> words);
    void showReceived();
    void addFaults(std::span<const std::string> words);

    Output& m_Output;
    camerasim::PtyServer& m_Server;
};

} // namespace sensorctl
