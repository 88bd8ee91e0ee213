#pragma once

#include "ModuleConsole.h"

namespace sensorctl {

class Output;

/// The scene before the simulated pipeline.
class SceneConsole final : public ModuleConsole {
public:
    explicit SceneConsole(Output& output) : m_Output(output) {}

    /// A light in lux that a user wrote; throws Failure if it is none.
    static double parseLux(const std::string& text);

    /// A pipeline as it is after power-up, before a lit scene.
    static void start();

    bool knows(const std::string& command) const override;
    std::string help() const override;
    void execute(const std::string& command, std::span<const std::string> words) override;

private:
    void show();

    Output& m_Output;
};

} // namespace sensorctl
