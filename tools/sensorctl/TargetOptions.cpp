#include "TargetOptions.h"

#include "Failure.h"
#include "controller/ModelCatalogue.h"
#include "simulator/BlockRegistry.h"
#include "simulator/FaultPlan.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace sensorctl {

namespace {

/// For a module that has no simulated block, and so no entry that tells what it needs.
constexpr camerasim::BlockEntry UnknownBlock{.portKey = "RS485", .detail = "isInfrared=0"};

const camerasim::BlockEntry& blockOf(int moduleId) {
    const camerasim::BlockEntry* const entry = camerasim::findBlock(moduleId);
    return entry != nullptr ? *entry : UnknownBlock;
}

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t end = std::min(text.find(separator), text.size());
        parts.emplace_back(text.substr(0, end));
        if (end == text.size())
            return parts;
        text.remove_prefix(end + 1);
    }
}

/// Exactly so many whole numbers of at least `lowest`.
std::vector<int> numbers(std::string_view text, char separator, std::size_t count, int lowest) {
    std::vector<int> values;
    for (const std::string& part : split(text, separator)) {
        int value = 0;
        const auto result = std::from_chars(part.data(), part.data() + part.size(), value);
        if (result.ec != std::errc() || result.ptr != part.data() + part.size() || value < lowest)
            return {};
        values.push_back(value);
    }
    return values.size() == count ? values : std::vector<int>{};
}

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// Adds the pairs of a text, replacing what is there. Throws Failure; `source` says whose text it is.
void addKeys(std::map<std::string, std::string>& keys, const std::string& text, ExitCode code,
             const std::string& source, const std::string& hint) {
    for (const std::string& pair : split(text, ';')) {
        const std::size_t equals = pair.find('=');
        const std::string key = trimmed(pair.substr(0, equals));
        if (trimmed(pair).empty())
            continue;
        if (equals == std::string::npos || key.empty())
            throw Failure(code, std::string(source).append(": \"").append(pair).append("\" is no key=value"), {hint});
        keys[key] = pair.substr(equals + 1);
    }
}

std::string valueOf(const std::map<std::string, std::string>& keys, const std::string& key) {
    const auto found = keys.find(key);
    return found != keys.end() ? found->second : "";
}

std::string textOf(const std::map<std::string, std::string>& keys) {
    std::string text;
    for (const auto& [key, value] : keys)
        text.append(text.empty() ? "" : ";").append(key).append("=").append(value);
    return text;
}

} // namespace

void checkModule(int moduleId) {
    if (sensorcontrol::describeModel(moduleId))
        return;
    std::string known;
    for (const int id : sensorcontrol::listModuleIds())
        known += (known.empty() ? "" : ", ") + std::to_string(id);
    throw Failure(Usage, "--module " + std::to_string(moduleId) + ": there is no such module",
                  {"there are: " + known, "try: sensorctl modules"});
}

void checkSimulated(int moduleId) {
    if (camerasim::findBlock(moduleId) != nullptr)
        return;
    std::string known;
    for (const camerasim::BlockEntry& entry : camerasim::blockEntries())
        if (entry.moduleId != camerasim::BlockEntry::NoModule)
            known += (known.empty() ? "" : ", ") + std::to_string(entry.moduleId);
    throw Failure(Usage, "there is no simulated block of module " + std::to_string(moduleId),
                  {"there are: " + known, "try: --port with a real one"});
}

void checkFaults(const std::string& plan) {
    std::string error;
    if (!camerasim::FaultPlan().add(plan, error))
        throw Failure(Usage, error, {"try: sensorctl simulate --help"});
}

void TargetOptions::declare(CLI::App& command) {
    const std::string target = "Target";
    auto* const module = command.add_option("-m,--module", moduleId, "module id, see \"sensorctl modules\"");
    module->group(target);
    auto* const config = command.add_option("--config", selection.folder,
                                            "take the module from the moduleConfig.xml of a configuration folder");
    config->group(target)->type_name("DIR")->excludes(module);
    for (const auto& [name, selector] : {std::pair{"--product", &selection.product}, {"--board", &selection.board}})
        command.add_option(name, *selector, "which module of the configuration folder")
            ->group(target)
            ->type_name("NAME")
            ->needs(config);
    auto* const portOption =
        command.add_option("-p,--port", port, "serial port of the block, for example /dev/ttyUSB0");
    portOption->group(target);
    command.add_option("--line", line, "baud rate, data bits, stop bits, parity (0 none, 1 odd, 2 even)")
        ->group(target)
        ->type_name("B,D,S,P");
    command.add_flag("-s,--simulated", simulated, "a simulated block of the module, on a pseudo-terminal")
        ->group(target)
        ->excludes(portOption);
    command.add_option("--detail", detail, "further module keys, for example 'isInfrared=1;generation=4'")
        ->group(target)
        ->type_name("KEYS");
    command.add_option("--video-system", videoSystem, "pal or ntsc")
        ->group(target)
        ->check(CLI::IsMember({"pal", "ntsc"}))
        ->type_name("WORD");
    command.add_option("--resolution", resolution, "video resolution, 1920x1080 by default")
        ->group(target)
        ->type_name("WxH");
    command.add_option("--root", root, "folder of the library's files, by default one per module in the user's state")
        ->group(target)
        ->type_name("DIR");
    command.add_option("--schemes", schemes, "give the installation so many parameter schemes, from now on")
        ->group(target)
        ->check(CLI::Range(1, 100))
        ->type_name("COUNT");
    command.add_option("--gpio", gpio, "chip: the machine's pins; memory: none (the default with --simulated)")
        ->group(target)
        ->check(CLI::IsMember({"chip", "memory"}))
        ->type_name("WORD");
    command.add_option("--trace", trace, "write what goes over the wire to a file, or - for standard error")
        ->group(target)
        ->type_name("FILE");
    command.add_option("--tuning", tuning, "make this the tuning file of the image pipeline (ISPParam.xml)")
        ->group(target)
        ->check(CLI::ExistingFile)
        ->type_name("FILE");
    command.add_option("--fault", faults, "fault plan of the simulated block, see \"sensorctl simulate --help\"")
        ->group(target)
        ->type_name("PLAN")
        ->allow_extra_args(false);
    command.add_option("--baud-pace", baudPace, "let the simulated line take its time, 0 (the default) for none")
        ->group(target)
        ->type_name("BAUD")
        ->check(CLI::Range(0, 4000000));
    command
        .add_flag("--simulated-restart", simulatedRestart,
                  "the simulated block starts in the other video system, so that it must restart (20 s)")
        ->group(target);
}

void TargetOptions::loadSelection() {
    if (selection.folder.empty())
        return;
    ModuleFolder folder(selection);
    const ModuleConfigure& record = folder.module();
    const std::string source = selection.folder + "/moduleConfig.xml, module " + std::to_string(record.getModuleId());
    moduleId = record.getModuleId();
    addKeys(m_RecordDetail, record.getDetail(), Trouble, source + ", detail", "try: mend it");
    addKeys(m_RecordParameters, record.getParameters(), Trouble, source + ", parameters", "try: mend it");
}

std::string TargetOptions::portKey() const {
    const std::string key(blockOf(moduleId).portKey);
    // The configuration folder's record knows best.
    const std::string other = key == "RS485" ? "RS232" : "RS485";
    return m_RecordDetail.contains(other) && !m_RecordDetail.contains(key) ? other : key;
}

std::string TargetOptions::device() const { return port.empty() ? valueOf(m_RecordDetail, portKey()) : port; }

void TargetOptions::check(bool needsPort) const {
    if (moduleId < 0)
        throw Failure(Usage, "--module is required", {"try: --module 16, or --config DIR; sensorctl modules"});
    checkModule(moduleId);
    // A configuration that names no port is that of a module that has none.
    if (needsPort && !isSimulated() && device().empty() && selection.folder.empty())
        throw Failure(Usage, "a port is missing", {"try: --port /dev/ttyUSB0, or --simulated"});
    const std::string second(blockOf(moduleId).companionPortKey);
    if (needsPort && !second.empty() && !isSimulated() && !detailKeys().contains(second))
        throw Failure(Usage, "module " + std::to_string(moduleId) + " has a second port",
                      {"try: --detail '" + second + "=/dev/ttyUSB1'"});
    if (isOnChip() && !port.empty())
        throw Failure(Usage, "module " + std::to_string(moduleId) + " is on the chip: it has no port");
    if (simulated && !isOnChip())
        checkSimulated(moduleId);
    if ((!simulated || isOnChip()) && (!faults.empty() || simulatedRestart || baudPace != 0))
        throw Failure(Usage, "--fault, --baud-pace and --simulated-restart need --simulated and a block");
    for (const std::string& plan : faults)
        checkFaults(plan);
    if (port.find(';') != std::string::npos)
        throw Failure(Usage, "--port " + port + ": a device name with ; cannot be told to the library");
    if (!line.empty() && numbers(line, ',', 4, 0).empty())
        throw Failure(Usage, "--line " + line + " is not baud,data bits,stop bits,parity", {"try: --line 9600,8,1,0"});
    if (numbers(resolution, 'x', 2, 1).empty())
        throw Failure(Usage, "--resolution " + resolution + " is not WxH", {"try: --resolution 1920x1080"});
    detailKeys();
}

VideoResolution TargetOptions::videoResolution() const {
    const std::vector<int> size = numbers(resolution, 'x', 2, 1);
    return {size[0], size[1]};
}

std::string TargetOptions::lineText() const {
    if (!line.empty())
        return line;
    if (std::string configured = valueOf(m_RecordParameters, portKey()); !configured.empty())
        return configured;
    return std::to_string(blockOf(moduleId).baud) + ",8,1,0";
}

bool TargetOptions::isOnChip() const {
    const auto model = sensorcontrol::describeModel(moduleId);
    return model && !model->hasPort;
}

TargetOptions::Keys TargetOptions::detailKeys() const {
    Keys keys = m_RecordDetail;
    if (selection.folder.empty() && isOnChip())
        keys = {{"isInfrared", "0"}, {"autoIris", "0"}, {"GPIO", "0,12,1"}, {"TNF", "1"}, {"HDR", "1"}};
    else if (selection.folder.empty())
        addKeys(keys, std::string(blockOf(moduleId).detail), Usage, "block", "");
    addKeys(keys, detail, Usage, "--detail", "try: --detail 'isInfrared=1;generation=4'");
    return keys;
}

std::string TargetOptions::detailText(const std::string& device, const std::string& secondDevice) const {
    Keys keys = detailKeys();
    if (!device.empty())
        keys[portKey()] = device;
    const std::string second(blockOf(moduleId).companionPortKey);
    if (!second.empty() && !secondDevice.empty())
        keys[second] = secondDevice;
    return textOf(keys);
}

std::string TargetOptions::parametersText() const {
    Keys keys = m_RecordParameters;
    if (!isOnChip() && (simulated || !device().empty()))
        keys[portKey()] = lineText();
    const std::string second(blockOf(moduleId).companionPortKey);
    if (!second.empty() && !keys.contains(second))
        keys[second] = std::to_string(blockOf(moduleId).baud) + ",8,1,0";
    return textOf(keys);
}

std::string TargetOptions::rootFolder() const {
    if (!root.empty())
        return std::filesystem::absolute(root).lexically_normal().string();
    const char* const state = std::getenv("XDG_STATE_HOME");
    const char* const home = std::getenv("HOME");
    std::filesystem::path folder;
    if (state != nullptr && *state == '/')
        folder = state;
    else if (home != nullptr && *home == '/')
        folder = std::filesystem::path(home) / ".local/state";
    else
        throw Failure(Usage, "there is no home folder to keep the library's files in", {"try: --root DIR"});
    // What a simulated block was told must not reach a real one at its next start.
    return (folder / "sensorctl" / ((isSimulated() ? "simulated-" : "module-") + std::to_string(moduleId))).string();
}

} // namespace sensorctl
