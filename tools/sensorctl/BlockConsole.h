#pragma once

#include "ModuleConsole.h"
#include "simulator/PtyServer.h"

namespace sensorctl {

class Output;

/// What a user can do to a simulated block: the light at its sensor, faults on its line, its registers, its plug.
class BlockConsole final : public ModuleConsole {
public:
    /// The servers, of the block and of what stands at its second port if it has one, outlive the console.
    BlockConsole(Output& output, camerasim::PtyServer& server, camerasim::PtyServer* companion)
        : m_Output(output), m_Server(server), m_pCompanion(companion) {}

    static std::string commands();

    bool knows(const std::string& command) const override;
    std::string help() const override { return commands(); }
    void execute(const std::string& command, std::span<const std::string> words) override;

private:
    /// Calls function(block) for the block, and for its companion.
    template <class Function>
    void forEachBlock(Function function) const {
        for (camerasim::PtyServer* const server : {&m_Server, m_pCompanion})
            if (server != nullptr)
                server->withBlock([&](const camerasim::CameraBlock& block, std::int64_t) { function(block); });
    }
    void showScene();
    void showRegisters(std::span<const std::string> words);
    void showReceived();
    void addFaults(std::span<const std::string> words);

    Output& m_Output;
    camerasim::PtyServer& m_Server;
    camerasim::PtyServer* const m_pCompanion;
};

} // namespace sensorctl
