#include "DayPlay.h"

#include "Commands.h"
#include "DayNightModes.h"
#include "Explanation.h"
#include "Failure.h"
#include "Interrupt.h"
#include "Output.h"
#include "Parameters.h"
#include "StateFolder.h"
#include "controller/SensorControllerManager.h"
#include "host/DevicePaths.h"
#include "host/ModuleConfigure.h"
#include "host/linux/HostSettings.h"
#include "host/linux/SimulatedClock.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>

namespace sensorctl {

namespace {

constexpr const char* PortName = "in-process";
constexpr const char* SecondPortName = "in-process-second";

/// A folder for the time of a play, with what the library has in another one.
class ScratchFolder {
public:
    explicit ScratchFolder(const std::string& original) {
        std::string name = (std::filesystem::temp_directory_path() / "sensorctl-day-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throw Failure(Trouble, "no folder for the play in " + std::filesystem::temp_directory_path().string());
        m_strPath = name;
        for (const char* const part : {sensorcontrol::paths::ParameterFolder, sensorcontrol::paths::ModuleFolder,
                                       sensorcontrol::paths::TuningFile}) {
            if (!std::filesystem::exists(original + part))
                continue;
            std::filesystem::create_directories(std::filesystem::path(m_strPath + part).parent_path());
            std::filesystem::copy(original + part, m_strPath + part, std::filesystem::copy_options::recursive);
        }
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_strPath, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::string& path() const { return m_strPath; }

private:
    std::string m_strPath;
};

class ClockGuard {
public:
    explicit ClockGuard(const std::shared_ptr<sensorhost::SimulatedClock>& clock) { sensorhost::installClock(clock); }
    ~ClockGuard() { sensorhost::installClock(nullptr); }
    ClockGuard(const ClockGuard&) = delete;
    ClockGuard& operator=(const ClockGuard&) = delete;
};

bool isSame(const Sight& one, const Sight& other) {
    return one.isLight == other.isLight && one.isDayPicture == other.isDayPicture &&
           one.isFilterIn == other.isFilterIn && one.lights == other.lights;
}

/// Plays hours of a day of a module's life on a simulated clock, in a copy of the folder with the
/// library's files: nothing of it stays.
class DayPlay {
public:
    /// Throws Failure. The record of each event goes to the output as it happens.
    DayPlay(Output& output, const TargetOptions& options, const Sky& sky, const DaySpan& hours);
    DayRecord run();

private:
    void bringUp();
    void observe(int second);
    void tell(int second, const std::string& what, const std::string& value, const std::string& why);
    std::string whyPicture(const DayRecord::Moment& now);
    std::string whyScheme(int scheme) const;
    std::optional<int> value(const std::string& name);
    ISensorController& controller() { return *m_Manager.getSensorController(); }

    Output& m_Output;
    const TargetOptions& m_Options;
    const Parameters m_Parameters;
    const Sky m_Sky;
    const DaySpan m_Hours;
    const ScratchFolder m_Scratch;
    const StateFolder m_Folder;
    const std::shared_ptr<sensorhost::SimulatedClock> m_pClock;
    const ClockGuard m_ClockGuard;
    const std::unique_ptr<DayWorld> m_pWorld;
    SensorControllerManager m_Manager; // taken down first, then the clock
    DayRecord m_Record;
    int m_nSkyChange = 0;     ///< second of the last change between light and dark
    int m_nSchemeChange = -1; ///< second of the last switch
};

DayPlay::DayPlay(Output& output, const TargetOptions& options, const Sky& sky, const DaySpan& hours)
    : m_Output(output), m_Options(options), m_Parameters(options.moduleId), m_Sky(sky), m_Hours(hours),
      m_Scratch(options.rootFolder()), m_Folder(m_Scratch.path(), options.schemes),
      m_pClock(std::make_shared<sensorhost::SimulatedClock>(hours.from / 60, hours.from % 60)), m_ClockGuard(m_pClock),
      m_pWorld(DayWorld::create(options)) {
    if (!options.tuning.empty())
        m_Folder.installTuning(options.tuning);
}

DayRecord DayPlay::run() {
    const int first = m_Hours.from * 60;
    const double start = m_pClock->now();
    m_pWorld->setSky(m_Sky.lux(m_Hours.from), m_Sky.isLight(m_Hours.from));
    bringUp();
    for (int second = first; second <= m_Hours.to * 60; ++second) {
        const double rest = start + second - first - m_pClock->now();
        if (rest < 0)
            continue; // the bring-up takes a few
        const double minutes = second / 60.0;
        m_pWorld->setSky(m_Sky.lux(minutes), m_Sky.isLight(minutes));
        m_pClock->advance(rest);
        observe(second);
        if (second % 600 == 0)
            m_Output.status(TimeOfDay::textOfSecond(second));
        if (Interrupt::isRequested())
            throw Failure(Interrupted, "interrupted at " + TimeOfDay::textOfSecond(second));
    }
    m_Output.status("");
    return m_Record;
}

void DayPlay::bringUp() {
    const Output::Hush hush(m_Output);
    m_Manager.setUARTController(m_pWorld->port());
    m_Manager.setGPIO(m_pWorld->pins());
    OperationReport start;
    {
        const sensorcontrol::ReportScope scope(start);
        m_Manager.init(m_Options.videoSystemNumber(), m_Options.videoResolution(),
                       ModuleConfigure(m_Options.moduleId,
                                       m_Options.detailText(m_Options.isOnChip() ? "" : PortName, SecondPortName),
                                       m_Options.parametersText()));
    }
    if (!start.isUp)
        throw Failure(Trouble, "the simulated module did not come up", reasonsOf(start, m_Parameters));
    SchemeDesk schemes(controller(), m_Parameters);
    schemes.settle();
    m_Record.schemes = schemes.list();
}

void DayPlay::observe(int second) {
    int scheme = -1;
    if (!m_Record.schemes.empty())
        controller().getParamScheme(scheme);
    const DayRecord::Moment now{second, m_pWorld->look(), scheme};
    const bool isFirst = m_Record.moments.empty();
    const DayRecord::Moment before = isFirst ? now : m_Record.moments.back();
    const Sight& sight = now.sight;
    const std::string atStart = "at the start";

    if (isFirst || sight.isLight != before.sight.isLight) {
        tell(second, "sky", sight.isLight ? "light" : "dark", isFirst ? atStart : "");
        m_nSkyChange = second;
    }
    if (scheme >= 0 && (isFirst || scheme != before.scheme)) {
        tell(second, "scheme", std::to_string(scheme), isFirst ? atStart : whyScheme(scheme));
        m_nSchemeChange = isFirst ? -1 : second;
    }
    const bool hasTurned = sight.isDayPicture != before.sight.isDayPicture;
    const bool isDay = sight.isDayPicture.value_or(true);
    const auto seen = [&](const auto& value, const auto& old) { return value && (isFirst || value != old); };
    const auto why = [&](const auto& old, const std::string& reason) { return isFirst || !old ? atStart : reason; };
    if (seen(sight.isDayPicture, before.sight.isDayPicture))
        tell(second, "picture", isDay ? "day" : "night",
             why(before.sight.isDayPicture, sight.isDayPicture ? whyPicture(now) : ""));
    if (seen(sight.isFilterIn, before.sight.isFilterIn))
        tell(second, "filter", *sight.isFilterIn ? "in" : "out",
             why(before.sight.isFilterIn, hasTurned ? "with the picture" : "by itself"));
    if (seen(sight.lights, before.sight.lights))
        tell(second, "lights", std::to_string(*sight.lights),
             why(before.sight.lights, hasTurned ? "with the picture" : "power of scheme " + std::to_string(scheme)));
    if (isFirst || !isSame(sight, before.sight) || scheme != before.scheme || second % 60 == 0)
        m_Record.moments.push_back(now);
}

void DayPlay::tell(int second, const std::string& what, const std::string& value, const std::string& why) {
    m_Record.events.push_back({second, what, value, why});
    nlohmann::ordered_json object;
    object["time"] = TimeOfDay::textOfSecond(second);
    object["what"] = what;
    object["value"] = value;
    object["why"] = why;
    m_Output.record(TimeOfDay::textOfSecond(second) + ' ' + what + ' ' + value + (why.empty() ? "" : " (" + why + ')'),
                    object);
}

std::string DayPlay::whyPicture(const DayRecord::Moment& now) {
    constexpr int BySchemeSeconds = 3;
    const bool isDay = *now.sight.isDayPicture;
    std::string scheme;
    if (m_nSchemeChange >= 0 && now.second - m_nSchemeChange < BySchemeSeconds)
        scheme = ", with scheme " + std::to_string(now.scheme);
    const DayNightModes modes(m_Parameters);
    const std::optional<int> number = modes.parameter() != nullptr ? value(modes.parameter()->name) : std::nullopt;
    const std::string_view mode = number ? modes.modeOf(*number) : "";
    const std::string cause = m_pWorld->cause(TimeOfDay::textOfSecond(m_nSkyChange));
    if (mode == "auto")
        return "automatic: " + cause + scheme;
    if (mode == "day" || mode == "night")
        return "fixed to " + std::string(mode) + scheme;
    const char* const start = isDay ? "NTDTime" : "DTNTime";
    const std::optional<int> hour = value(std::string(start) + "_H");
    const std::optional<int> tens = value(std::string(start) + "_M");
    if (mode == "clock" && hour && tens)
        return std::string("by the clock: ") + (isDay ? "day" : "night") + " from " +
               TimeOfDay::text(*hour * 60 + *tens * 10) + scheme;
    // A module that keeps its decision to itself is judged by what it shows.
    if (modes.parameter() == nullptr && isDay == now.sight.isLight)
        return "with the sky: " + cause + scheme;
    return "left to the module" + scheme;
}

std::string DayPlay::whyScheme(int scheme) const {
    const auto index = static_cast<std::size_t>(scheme);
    if (index >= m_Record.schemes.size())
        return "by the clock";
    const SchemeDesk::Scheme& record = m_Record.schemes[index];
    return "its span is " + DaySpan{record.from, record.to}.text();
}

std::optional<int> DayPlay::value(const std::string& name) {
    for (const sensorcontrol::ParameterInfo& parameter : m_Parameters.all()) {
        std::string text;
        std::map<int, int> values;
        if (parameter.name == name && controller().getParameters('(' + std::to_string(parameter.id) + ')', text) &&
            parseParameterString(text, values))
            return values[parameter.id];
    }
    return std::nullopt;
}

} // namespace

int playDay(Output& output, const TargetOptions& target, const DayOptions& options) {
    target.check(true);
    const DaySpan light = DaySpan::parse(options.light, "--light");
    if (!target.isSimulated())
        throw Failure(Usage, "--day plays on a simulated module", {"try: --simulated in place of --port"});
    const DaySpan hours = DaySpan::parse(options.hours, "--hours");
    const DayRecord day = DayPlay(output, target, Sky(light), hours).run();
    if (!options.plot.empty())
        drawDay(day, "Module " + std::to_string(target.moduleId) + ", a day with light from " + light.text(),
                options.plot);
    return Done;
}

} // namespace sensorctl
