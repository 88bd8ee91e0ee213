#include "Session.h"

#include "BlockConsole.h"
#include "Interrupt.h"
#include "Output.h"
#include "PortGuard.h"
#include "Progress.h"
#include "RestoreReport.h"
#include "SceneConsole.h"
#include "host/ModuleConfigure.h"
#include "host/linux/GpioCharacterDevice.h"
#include "host/linux/MemoryGpio.h"
#include "host/linux/SerialPort.h"
#include "simulator/BlockRegistry.h"

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

namespace sensorctl {

namespace {

constexpr const char* ErrorLogFile = "/mnt/mtd/log/SensorError.log";
constexpr const char* InitLogFile = "/mnt/mtd/log/SensorInit.log";
constexpr const char* UpMark = "ISensorController::initSensor  success";
constexpr const char* TuningFailure = "objISPParamParse.parse failed";
constexpr std::size_t ShownLines = 6;

/// What a log line adds to what the user has been told: not the framework's repetitions nor the bytes, which the trace
/// shows better.
bool isReason(const std::string& line) {
    for (const char* const start : {"===", "0x", "setParameterToSensor (", "setParameter (", UpMark})
        if (line.starts_with(start))
            return false;
    return true;
}

void appendReasons(const std::vector<std::string>& log, std::vector<std::string>& details) {
    std::vector<std::string> reasons;
    for (const std::string& line : log)
        if (isReason(line) && std::find(reasons.begin(), reasons.end(), line) == reasons.end())
            reasons.push_back(line);
    if (reasons.size() > ShownLines)
        reasons.erase(reasons.begin(), reasons.end() - static_cast<std::ptrdiff_t>(ShownLines));
    for (const std::string& reason : reasons)
        details.push_back("reason: " + reason);
}

void appendWire(const std::vector<TraceLine>& lines, std::vector<std::string>& details) {
    if (lines.empty())
        details.emplace_back("wire: nothing was sent");
    for (const TraceLine& line : lines)
        details.push_back("wire: " + line.text());
}

std::string openingHint(const std::string& reason) {
    if (reason.find("ermission denied") != std::string::npos)
        return "try: the rights on the device; often a member of group dialout has them (usermod -aG dialout USER)";
    if (reason.find("No such") != std::string::npos)
        return "try: ls /dev/ttyUSB* /dev/ttyS* /dev/serial/by-id; is the adapter plugged in?";
    if (reason.find("busy") != std::string::npos)
        return "try: end the other program that holds it (fuser)";
    return "try: another --port or --line";
}

constexpr const char* SilenceHint =
    "try: cable and power of the block, a longer wait after power-up, another --line (now it is ";

} // namespace

Session::Session(Output& output, const TargetOptions& options)
    : m_Output(output), m_Options(options), m_Parameters(options.moduleId),
      m_Folder(options.rootFolder(), options.schemes), m_ErrorLog(m_Folder.pathOf(ErrorLogFile)),
      m_InitLog(m_Folder.pathOf(InitLogFile)), m_Trace(makeDecoder(options.moduleId)) {
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
    auto* const guard = new PortGuard(SafePointer<IUARTController>(
        new sensorhost::TracedPort(SafePointer<IUARTController>(new sensorhost::SerialPort), m_Trace)));
    m_pPort = SafePointer<IUARTController>(guard);
    m_pGuard = guard;
    m_Manager.setUARTController(m_pPort);
    if (m_Options.usesGpioChip())
        m_Manager.setGPIO(SafePointer<IGPIO>(new sensorhost::GpioCharacterDevice));
    else
        m_Manager.setGPIO(SafePointer<IGPIO>(new sensorhost::MemoryGpio));
}

Session::~Session() = default;

void Session::startBlock() {
    std::unique_ptr<camerasim::CameraBlock> block = camerasim::makeBlock(m_Options.moduleId);
    // The values of the register that the family keeps its video system in.
    constexpr std::uint32_t ntsc = 6;
    constexpr std::uint32_t pal = 8;
    const bool isPal = (m_Options.videoSystemNumber() == 1) != m_Options.simulatedRestart;
    for (const camerasim::RegisterState& state : block->registers())
        if (state.name.starts_with("video system"))
            block->setRegister(state.address, isPal ? pal : ntsc);
    camerasim::PtyServer::Settings settings;
    settings.baud = m_Options.baudPace;
    m_pBlock = std::make_unique<camerasim::PtyServer>(std::move(block), settings);
    std::string error;
    for (const std::string& plan : m_Options.faults)
        if (!m_pBlock->withLine([&](camerasim::Line& line, std::int64_t) { return line.faults().add(plan, error); }))
            throw Failure(Usage, error);
    if (!m_pBlock->start(error))
        throw Failure(Trouble, "the simulated block has no port: " + error);
}

std::unique_ptr<ModuleConsole> Session::console() {
    if (m_pBlock != nullptr)
        return std::make_unique<BlockConsole>(m_Output, *m_pBlock);
    return m_Options.isOnChip() ? std::make_unique<SceneConsole>(m_Output) : nullptr;
}

std::vector<Reading> Session::pipelineReadings() const {
    return m_Options.isOnChip() ? readPipeline() : std::vector<Reading>{};
}

void Session::bringUp() {
    const std::string device = m_pBlock != nullptr ? m_pBlock->portPath() : m_Options.device();
    const std::string shown = device.empty() ? "the chip" : device;
    RestoreReport report;
    m_pProgress = std::make_unique<Progress>(m_Output, shown);
    addListener([this](const TraceLine& line) { m_pProgress->onLine(line); });
    // The shell lines of a first start complain of files that cannot be there yet.
    const Output::Hush hush(m_Output);
    m_pGuard->arm();
    m_Manager.init(m_Options.videoSystemNumber(), m_Options.videoResolution(),
                   ModuleConfigure(m_Options.moduleId, m_Options.detailText(device), m_Options.parametersText()));
    m_pGuard->disarm();
    m_pProgress->end();
    checkBringUp(shown, m_ErrorLog.takeNew());
    for (const std::string& line : m_InitLog.takeNew())
        m_Output.note("warning: " + line);
    for (const std::string& line : report.lines(controller(), m_Parameters, values()))
        m_Output.note(line);
    settleSchemes();
}

void Session::settleSchemes() {
    try {
        const int scheme = schemes().settle();
        if (scheme >= 0)
            m_Output.note("scheme " + std::to_string(scheme) + " put back in force from " +
                          RestoreReport::filePath(scheme));
    } catch (const Failure& failure) {
        m_Output.report(failure);
    }
}

void Session::checkBringUp(const std::string& device, const std::vector<std::string>& errors) {
    const std::string what = "bring-up of module " + std::to_string(m_Options.moduleId) + " on " + device + ": ";
    if (Interrupt::isRequested())
        throw Failure(Interrupted, what + "interrupted");
    std::vector<std::string> details;
    if (!m_pGuard->failure().empty())
        throw Failure(Trouble, what + m_pGuard->failure(), {openingHint(m_pGuard->failure())});
    if (m_pGuard->isCut()) {
        appendWire(m_Trace.linesSince(0, ShownLines), details);
        if (m_pGuard->hasPortFailed()) {
            details.emplace_back("try: is the adapter still plugged in?");
            throw Failure(Trouble, what + "the port failed", details);
        }
        details.push_back(SilenceHint + m_Options.lineText() + ')');
        throw Failure(NoAnswer, what + "no answer from the block", details);
    }
    const bool isUp = controller().getSensorStatus() == ISensorController::InitSuccess ||
                      std::find(errors.begin(), errors.end(), UpMark) != errors.end();
    if (!isUp) {
        appendReasons(errors, details);
        appendWire(m_Trace.linesSince(0, ShownLines), details);
        throw Failure(Trouble, what + "failed", details);
    }
    // Only the on-chip pipeline has a tuning file; that there is none is no news.
    const bool hasTuning = std::filesystem::exists(m_Folder.pathOf(StateFolder::TuningFile));
    for (const std::string& line : errors)
        if ((isReason(line) || line.starts_with("setParameter (")) && (hasTuning || line != TuningFailure))
            m_Output.note("warning: " + line);
}

template <class Operation>
void Session::perform(const std::string& what, Operation operation, ExitCode unsentCode, const std::string& hint) {
    m_ErrorLog.takeNew();
    const std::size_t mark = m_Trace.mark();
    if (operation() != 1)
        throw explain(what, mark, unsentCode, hint);
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
    throw Failure(Refused, what + "the module did not take its value at the bring-up",
                  {"try: sensorctl trace, for what the block said"});
}

int Session::dayNightStatus() {
    // Between its two thresholds the pipeline leaves the status that it is given.
    int status = m_Options.isOnChip() ? pictureOfPipeline() : -1;
    perform(
        "day/night status", [&] { return controller().getCurrentDNStatus(status); }, Refused, "");
    if (status != 0 && status != 1)
        throw Failure(Refused, "day/night status: the module reports none");
    return status;
}

void Session::set(const sensorcontrol::ParameterInfo& parameter, int value) {
    const std::string what =
        "set " + parameter.name + '=' + std::to_string(value) + " (id " + std::to_string(parameter.id) + ')';
    const std::string group = '(' + std::to_string(parameter.id) + ',' + std::to_string(value) + ')';
    perform(
        what, [&] { return controller().setParameters(group); }, Refused,
        "accepted: " + Parameters::acceptsText(parameter));
}

std::string Session::flush() {
    perform(
        "flush", [&] { return controller().flush(); }, Trouble,
        "try: room and rights in " + m_Options.rootFolder() + "; a parameter without a value (sensorctl list)");
    int scheme = 0;
    controller().getParamScheme(scheme);
    return RestoreReport::filePath(scheme);
}

void Session::reset() {
    perform(
        "reset", [&] { return controller().resetParameters(); }, Trouble,
        "try: is " + RestoreReport::filePath(-1) + " there and whole?");
}

void Session::resetToLast() {
    perform(
        "reset --last", [&] { return controller().resetToLastParameters(); }, Trouble,
        "try: sensorctl reset, for the factory values");
}

Failure Session::explain(const std::string& what, std::size_t mark, ExitCode unsentCode, const std::string& hint) {
    std::vector<std::string> details;
    appendReasons(m_ErrorLog.takeNew(), details);
    appendWire(m_Trace.linesSince(mark, ShownLines), details);
    switch (m_Trace.outcomeSince(mark)) {
    case WireTrace::Outcome::Silent:
    case WireTrace::Outcome::Incomplete:
        details.push_back(SilenceHint + m_Options.lineText() + ')');
        return {NoAnswer, what + ": no answer from the block", details};
    case WireTrace::Outcome::PortFailed:
        details.emplace_back("try: is the adapter still plugged in?");
        return {Trouble, what + ": the port failed", details};
    case WireTrace::Outcome::Answered:
        details.push_back(hint);
        return {Refused, what + ": refused", details};
    default:
        details.push_back(hint);
        return {unsentCode, what + (unsentCode == Refused ? ": refused" : ": failed"), details};
    }
}

} // namespace sensorctl
