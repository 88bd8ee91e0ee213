#include "Session.h"

#include "BlockConsole.h"
#include "Interrupt.h"
#include "Output.h"
#include "PortGuard.h"
#include "Progress.h"
#include "RestoreReport.h"
#include "SceneConsole.h"
#include "host/ModuleConfigure.h"
#include "host/SensorParameterParser.h"
#include "host/linux/GpioCharacterDevice.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SerialPort.h"
#include "simulator/BlockRegistry.h"

#include <nlohmann/json.hpp>
#include <thread>

namespace sensorctl {

namespace {

std::string openingHint(const std::string& reason) {
    if (reason.find("ermission denied") != std::string::npos)
        return "try: the rights on the device; often a member of group dialout has them (usermod -aG dialout USER)";
    if (reason.find("No such") != std::string::npos)
        return "try: ls /dev/ttyUSB* /dev/ttyS* /dev/serial/by-id; is the adapter plugged in?";
    if (reason.find("in use by") != std::string::npos)
        return "try: end that program, or wait until it has ended";
    return "try: another --port or --line";
}

/// While it lives, it cancels a start that the user wants to end, or that talks to nobody.
class StartCanceller {
public:
    StartCanceller(SensorControllerManager& manager, const PortGuard& guard)
        : m_Thread([&](const std::stop_token& end) {
              while (!end.stop_requested() &&
                     !((Interrupt::isRequested() || guard.isCut()) && manager.cancelStart() == 1))
                  std::this_thread::sleep_for(std::chrono::milliseconds(20));
          }) {}

private:
    std::jthread m_Thread;
};

} // namespace

Session::Session(Output& output, const TargetOptions& options)
    : m_Output(output), m_Options(options), m_Parameters(options.moduleId), m_Explanation(m_Options, m_Parameters),
      m_Folder(options.rootFolder(), options.schemes), m_Trace(makeDecoder(options.moduleId)) {
    if (!m_Options.trace.empty()) {
        if (m_Options.trace != "-")
            m_Output.setTraceFile(m_Options.trace);
        addListener([this](const TraceLine& line) {
            m_Output.traceLine(m_Output.isJson() ? line.json().dump() : line.text());
        });
    }
    if (!m_Options.tuning.empty())
        m_Folder.installTuning(m_Options.tuning);
    if (m_Options.isOnChip())
        SceneConsole::start();
    else if (m_Options.simulated)
        startBlock();
    auto* const serialPort = new sensorhost::SerialPort;
    auto* const guard = new PortGuard(
        SafePointer<IUARTController>(new sensorhost::TracedPort(SafePointer<IUARTController>(serialPort), m_Trace)),
        *serialPort);
    m_pPort = SafePointer<IUARTController>(guard);
    m_pGuard = guard;
    m_Manager.setUARTController(m_pPort);
    if (m_Options.usesGpioChip())
        m_Manager.setGPIO(SafePointer<IGPIO>(new sensorhost::GpioCharacterDevice));
    else
        m_Manager.setGPIO(SafePointer<IGPIO>(new sensorhost::MemoryGpio));
    m_Manager.setObserver(&m_Events);
}

Session::~Session() = default;

void Session::startBlock() {
    std::unique_ptr<camerasim::CameraBlock> block = camerasim::makeBlock(m_Options.moduleId);
    const bool isPal = (m_Options.videoSystemNumber() == 1) != m_Options.simulatedRestart;
    block->setVideoSystem(isPal ? "PAL" : "NTSC");
    camerasim::PtyServer::Settings settings;
    settings.baud = m_Options.baudPace;
    settings.linkPath = m_Folder.portLink();
    m_pBlock = std::make_unique<camerasim::PtyServer>(std::move(block), settings);
    std::string error;
    for (const std::string& plan : m_Options.faults)
        if (!m_pBlock->withLine([&](camerasim::Line& line, std::int64_t) { return line.faults().add(plan, error); }))
            throw Failure(Usage, error);
    if (!m_pBlock->start(error))
        throw Failure(Trouble, "the simulated block has no port: " + error);
    if (std::unique_ptr<camerasim::CameraBlock> companion = camerasim::makeCompanion(m_Options.moduleId)) {
        settings.linkPath.clear();
        m_pCompanion = std::make_unique<camerasim::PtyServer>(std::move(companion), settings);
        if (!m_pCompanion->start(error))
            throw Failure(Trouble, "the second port of the simulated block: " + error);
    }
}

std::unique_ptr<ModuleConsole> Session::console() {
    if (m_pBlock != nullptr)
        return std::make_unique<BlockConsole>(m_Output, *m_pBlock, m_pCompanion.get());
    return m_Options.isOnChip() ? std::make_unique<SceneConsole>(m_Output) : nullptr;
}

std::vector<Reading> Session::pipelineReadings() const {
    return m_Options.isOnChip() ? readPipeline() : std::vector<Reading>{};
}

void Session::bringUp() {
    const std::string device = m_pBlock != nullptr ? m_pBlock->portPath() : m_Options.device();
    const std::string shown = device.empty() ? "the chip" : device;
    Progress progress(m_Output, shown);
    m_Events.setProgress(&progress);
    // The shell lines of a first start complain of files that cannot be there yet.
    const Output::Hush hush(m_Output);
    m_pGuard->arm();
    {
        const sensorcontrol::ReportScope scope(m_Start);
        const StartCanceller canceller(m_Manager, *m_pGuard);
        m_Manager.init(m_Options.videoSystemNumber(), m_Options.videoResolution(),
                       ModuleConfigure(m_Options.moduleId,
                                       m_Options.detailText(device, m_pCompanion ? m_pCompanion->portPath() : ""),
                                       m_Options.parametersText()));
    }
    m_pGuard->disarm();
    m_Events.setProgress(nullptr);
    progress.end();
    checkBringUp(shown);
    for (const std::string& message : m_Start.messages)
        m_Output.note("warning: " + message);
    for (const std::string& line : restoreLines(m_Start, m_Parameters))
        m_Output.note(line);
    settleSchemes();
}

void Session::settleSchemes() {
    try {
        const int scheme = schemes().settle();
        if (scheme >= 0)
            m_Output.note("scheme " + std::to_string(scheme) + " put back in force from " +
                          StateFolder::parameterFile(scheme));
    } catch (const Failure& failure) {
        m_Output.report(failure);
    }
}

void Session::checkBringUp(const std::string& device) const {
    const std::string what = "bring-up of module " + std::to_string(m_Options.moduleId) + " on " + device;
    if (Interrupt::isRequested())
        throw Failure(Interrupted, what + ": interrupted");
    if (!m_pGuard->failure().empty())
        throw Failure(Trouble, what + ": " + m_pGuard->failure(), {openingHint(m_pGuard->failure())});
    if (m_pGuard->isCut() && !m_pGuard->hasPortFailed()) {
        // The first frame: behind the cut the port takes none.
        const std::span<const OperationReport::Frame> frames = m_Start.frames;
        std::vector<std::string> details = m_Explanation.wire(frames.first(frames.empty() ? 0 : 1));
        details.push_back(m_Explanation.silenceHint());
        throw Failure(NoAnswer, what + ": no answer from the block", details);
    }
    if (m_pGuard->isCut() || !m_Start.isUp)
        throw m_Explanation.ofOperation(what, m_Start, Trouble, "");
}

template <class Operation>
void Session::perform(const std::string& what, Operation operation, ExitCode unsentCode,
                      const std::string& hint) const {
    OperationReport report;
    const sensorcontrol::ReportScope scope(report);
    if (operation() != 1)
        throw m_Explanation.ofOperation(what, report, unsentCode, hint);
}

std::optional<int> Session::value(int id) {
    std::string text;
    std::map<int, int> found;
    if (!controller().getParameters('(' + std::to_string(id) + ')', text) || !parseParameterString(text, found))
        return std::nullopt;
    const auto entry = found.find(id);
    return entry != found.end() ? std::optional(entry->second) : std::nullopt;
}

std::map<int, int> Session::values() {
    std::map<int, int> result;
    for (const sensorcontrol::ParameterInfo& parameter : m_Parameters.all())
        if (const std::optional<int> held = value(parameter.id))
            result[parameter.id] = *held;
    return result;
}

std::map<int, int> Session::readAll() {
    std::string text;
    perform(
        "read all parameters", [&] { return controller().getAllParameters(text); }, Trouble, "try: get");
    std::map<int, int> result;
    parseParameterString(text, result);
    return result;
}

int Session::readValue(const sensorcontrol::ParameterInfo& parameter) {
    const std::string what = "get " + parameter.name + " (id " + std::to_string(parameter.id) + "): ";
    if (!Parameters::hasValue(parameter))
        throw Failure(Refused, what + "a " + Parameters::kindText(parameter) + " parameter has no value to read",
                      {"try: sensorctl set " + parameter.name + (parameter.isCommand ? "" : "=VALUE")});
    if (const std::optional<int> held = value(parameter.id))
        return *held;
    std::vector<std::string> details;
    for (const OperationReport::Parameter& tried : m_Start.parameters)
        if (tried.id == parameter.id)
            details.push_back("reason: " + outcomeText(tried));
    details.emplace_back("try: sensorctl trace, for what the block said");
    throw Failure(Refused, what + "the module did not take its value at the bring-up", details);
}

int Session::dayNightStatus() {
    // Between its two thresholds the pipeline leaves the status that it is given.
    int status = m_Options.isOnChip() ? pictureOfPipeline() : -1;
    perform(
        "day/night status", [&] { return controller().getCurrentDNStatus(status); }, Refused, "");
    // A module that polls its block by itself gives nothing here, and tells what it found.
    if (status == -1)
        status = m_Events.dayNight();
    if (status != 0 && status != 1)
        throw Failure(Refused, "day/night status: the module reports none");
    return status;
}

OperationReport Session::set(const std::map<int, int>& values) {
    OperationReport report;
    const sensorcontrol::ReportScope scope(report);
    controller().setParameters(SensorParameterParser::createSensorParameterString(values));
    return report;
}

std::string Session::flush() {
    perform(
        "flush", [&] { return controller().flush(); }, Trouble,
        "try: room and rights in " + m_Options.rootFolder() + "; a parameter without a value (sensorctl list)");
    int scheme = 0;
    controller().getParamScheme(scheme);
    return StateFolder::parameterFile(scheme);
}

void Session::reset() {
    perform(
        "reset", [&] { return controller().resetParameters(); }, Trouble,
        "try: is " + StateFolder::parameterFile(-1) + " there and whole?");
}

void Session::resetToLast() {
    perform(
        "reset --last", [&] { return controller().resetToLastParameters(); }, Trouble,
        "try: sensorctl reset, for the factory values");
}

} // namespace sensorctl
