#pragma once

#include "Failure.h"
#include "LogTail.h"
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
class Progress;

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

    SchemeDesk schemes() { return SchemeDesk(controller()); }

    void set(const sensorcontrol::ParameterInfo& parameter, int value);
    /// Gives the path of the file that was written.
    std::string flush();
    void reset();
    void resetToLast();

private:
    void startBlock();
    void settleSchemes();
    void checkBringUp(const std::string& device, const std::vector<std::string>& errors);
    /// Runs an operation of the library; throws what the log and the wire say of it if it gives 0.
    template <class Operation>
    void perform(const std::string& what, Operation operation, ExitCode unsentCode, const std::string& hint);
    Failure explain(const std::string& what, std::size_t mark, ExitCode unsentCode, const std::string& hint);
    ISensorController& controller() { return *m_Manager.getSensorController(); }

    Output& m_Output;
    const TargetOptions m_Options;
    const Parameters m_Parameters;
    StateFolder m_Folder;
    LogTail m_ErrorLog;
    LogTail m_InitLog;
    std::unique_ptr<camerasim::PtyServer> m_pBlock;
    std::unique_ptr<Progress> m_pProgress;
    WireTrace m_Trace;
    SafePointer<IUARTController> m_pPort;
    PortGuard* m_pGuard = nullptr;
    SensorControllerManager m_Manager;
};

} // namespace sensorctl
