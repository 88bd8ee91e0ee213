#include "RestoreReport.h"

#include "controller/ISensorController.h"
#include "host/linux/HostSettings.h"
#include "params/SensorConfigFile.h"

#include <filesystem>

namespace sensorctl {

namespace {

constexpr const char* Folder = "/mnt/mtd/code/config_file/";

std::string nameOf(int scheme) {
    return scheme < 0 ? "sensor_Factory.cfg" : "sensor" + std::to_string(scheme + 1) + ".cfg";
}

std::string versionText(const std::map<int, int>& values) {
    const auto part = [&values](int id) {
        const auto found = values.find(id);
        return found == values.end() ? std::string("none") : std::to_string(found->second);
    };
    return part(SensorConfigFile::VersionId) + '.' + part(SensorConfigFile::Version2Id);
}

void dropVersions(std::map<int, int>& values) {
    values.erase(SensorConfigFile::VersionId);
    values.erase(SensorConfigFile::Version2Id);
}

} // namespace

RestoreReport::RestoreReport() : m_Factory(look(-1)), m_FirstScheme(look(0)) {}

std::string RestoreReport::filePath(int scheme) { return sensorhost::hostPath(Folder + nameOf(scheme)); }

std::map<int, int> RestoreReport::factoryValues() {
    std::map<int, int> values = look(-1).values;
    dropVersions(values);
    return values;
}

RestoreReport::File RestoreReport::look(int scheme) {
    File result;
    SensorConfigFile file(Folder + nameOf(scheme));
    if (!file.isExist())
        return result;
    result.state = file.readParametersFromFile(result.values) ? State::Whole : State::Broken;
    return result;
}

std::string RestoreReport::fate(int scheme, const File& before, const char* source) const {
    const File now = look(scheme);
    const std::string name = nameOf(scheme);
    if (now.state == State::Missing)
        return name + " is missing and could not be made in " +
               std::filesystem::path(filePath(scheme)).parent_path().string();
    if (now.state == State::Broken)
        return name + " is broken: " + filePath(scheme) + " holds no parameters (to make it anew: sensorctl reset)";
    if (before.state == State::Missing)
        return name + " was missing: made " + source;
    if (before.state == State::Broken)
        return name + " was broken: made anew " + source;
    if (scheme < 0 && versionText(before.values) != versionText(now.values))
        return name + " was of version " + versionText(before.values) + ": made anew " + source + ", version " +
               versionText(now.values);
    return {};
}

std::vector<std::string> RestoreReport::lines(ISensorController& controller, const Parameters& parameters,
                                              const std::map<int, int>& held) {
    std::vector<std::string> lines;
    for (const std::string& line :
         {fate(-1, m_Factory, "from the module's factory values"), fate(0, m_FirstScheme, "from the factory values")})
        if (!line.empty())
            lines.push_back(line);

    int scheme = -1;
    std::string text;
    controller.readCurrentParam(scheme, text);
    std::map<int, int> values;
    if (!parseParameterString(text, values) || values.empty()) {
        // A scheme whose file cannot be read has no span yet when the start looks for one: it falls back.
        scheme = -1;
        values = look(scheme).values;
    }
    if (values.empty()) {
        lines.push_back("restored nothing: " + nameOf(scheme) + " holds no parameters");
        return lines;
    }
    dropVersions(values);
    const std::map<int, int> factory = factoryValues();
    std::string changed;
    std::string refused;
    int count = 0;
    std::size_t taken = 0;
    for (const auto& [id, value] : values) {
        if (held.count(id) == 0) {
            refused += (refused.empty() ? "" : ", ") + parameters.nameOf(id);
            continue;
        }
        ++taken;
        const auto original = factory.find(id);
        if (original == factory.end() || original->second == value)
            continue;
        ++count;
        changed += (changed.empty() ? "" : ", ") + parameters.nameOf(id) + ' ' + std::to_string(value) + " (factory " +
                   std::to_string(original->second) + ')';
    }
    std::string restored = "restored " + std::to_string(taken);
    if (!refused.empty())
        restored += " of " + std::to_string(values.size());
    restored += " parameters from " + nameOf(scheme);
    if (count > 0)
        restored += ", " + std::to_string(count) + " unlike the factory's: " + changed;
    else if (taken > 0)
        restored += ", all at their factory values";
    lines.push_back(restored);
    if (!refused.empty())
        lines.push_back("not taken by the module: " + refused);
    return lines;
}

} // namespace sensorctl
