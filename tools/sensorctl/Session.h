#pragma once

#include "ControllerEvents.h"
#include "Explanation.h"
#include "ModuleConsole.h"
#include "Parameters.h"
#include "PipelineReadings.h"
#include "SchemeDesk.h"
#include "StateFolder.h"
#include "TargetOptions.h"
#include "WireTrace.h"
#include "controller/SensorControllerManager.h"
#include "simulator/PtyServer.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sensorctl {

class Output;
class PortGuard;

/// A module and all that stands around it: the folder of the library's files, the port, a simulated block if there is
/// one, the manager. Destruction takes it down.
class Session {
public:
    /// Prepares everything; brings nothing up. Throws Failure.
    Session(Output& output, const TargetOptions& options);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Hears every line of the wire. Before bringUp.
    template <class Function>
    void addListener(Function function) {
        m_Trace.addListener(std::move(function));
    }
    /// Blocks for seconds, shows progress and says what was restored. Throws Failure.
    void bringUp();

    const Parameters& parameters() const { return m_Parameters; }
    const TargetOptions& options() const { return m_Options; }
    WireTrace& trace() { return m_Trace; }
    /// For the surroundings of a simulated module; null on a real port.
    std::unique_ptr<ModuleConsole> console();
    /// What the tuning of the on-chip pipeline has applied, and the gain that it goes by; empty for other modules.
    std::vector<Reading> pipelineReadings() const;

    /// What the module holds; nothing for ids that are not remembered.
    std::optional<int> value(int id);
    std::map<int, int> values();
    /// The same by getAllParameters, which talks to the module first. Throws Failure.
    std::map<int, int> readAll();
    /// As value, but a missing value is a Failure.
    int readValue(const sensorcontrol::ParameterInfo& parameter);
    /// Day/night as the module or the board reports it: 1 day, 0 night. Throws Failure.
    int dayNightStatus();

    SchemeDesk schemes() { return {controller(), m_Parameters}; }
    /// What the controller told of itself since the last call, the bring-up included.
    std::vector<ControllerEvents::Event> takeEvents() { return m_Events.take(); }

    /// Sets all of them, ascending by id, whatever becomes of one; the report has each.
    OperationReport set(const std::map<int, int>& values);
    /// Why a parameter of such a report was not taken.
    Failure explain(const OperationReport& report, const OperationReport::Parameter& parameter) const {
        return m_Explanation.ofParameter(report, parameter);
    }
    /// Gives the path of the file that was written.
    std::string flush();
    void reset();
    void resetToLast();

private:
    void startBlock();
    void settleSchemes();
    void checkBringUp(const std::string& device) const;
    /// Runs an operation of the library; throws what its report says if it gives 0.
    template <class Operation>
    void perform(const std::string& what, Operation operation, ExitCode unsentCode, const std::string& hint) const;
    ISensorController& controller() { return *m_Manager.getSensorController(); }

    Output& m_Output;
    const TargetOptions m_Options;
    const Parameters m_Parameters;
    const Explanation m_Explanation;
    StateFolder m_Folder;
    std::unique_ptr<camerasim::PtyServer> m_pBlock;
    std::unique_ptr<camerasim::PtyServer> m_pCompanion; ///< of a block with a second port
    WireTrace m_Trace;
    SafePointer<IUARTController> m_pPort;
    PortGuard* m_pGuard = nullptr;
    ControllerEvents m_Events;
    OperationReport m_Start;
    SensorControllerManager m_Manager;
};

} // namespace sensorctl
