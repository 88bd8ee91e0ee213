#include "DayWorld.h"

#include "SceneConsole.h"
#include "host/ModuleParameterParser.h"
#include "host/imaging/ImagingStandIn.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace sensorctl {

namespace {

/// A camera block that has a light sensor and moves its filter by itself.
class BlockWorld final : public DayWorld {
public:
    BlockWorld(int moduleId, bool hasInfraredBoard)
        : m_Port(new BlockPort(moduleId)), m_bInfraredBoard(hasInfraredBoard) {}

    SafePointer<IUARTController> port() override { return m_Port; }
    void setSky(double, bool isLight) override {
        m_bLight = isLight;
        m_Port->takeSent(); // nobody looks at the frames
        m_Port->setAmbient(isLight ? camerasim::Ambient::Light : camerasim::Ambient::Dark);
    }
    Sight look() override;
    std::string cause(const std::string& since) const override {
        return std::string(m_bLight ? "light since " : "dark since ") + since;
    }

private:
    SafePointer<BlockPort> m_Port;
    const bool m_bInfraredBoard;
    bool m_bLight = true;
};

Sight BlockWorld::look() {
    Sight sight;
    sight.isLight = m_bLight;
    std::optional<std::uint32_t> state;
    std::optional<std::uint32_t> board;
    std::uint32_t power = 0;
    for (const camerasim::RegisterState& one :
         m_Port->line().withBlock([](const camerasim::CameraBlock&block, std::int64_t) { return block.registers(); })) {
        if (one.name == "day/night")
            state = one.value;
        else if (one.name == "infrared board: day/night")
            board = one.value;
        else if (one.name.starts_with("infrared board:") && one.name.ends_with(" light"))
            power = std::max(power, one.value);
    }
    constexpr std::uint32_t StateDay = 3;
    constexpr std::uint32_t BoardNight = 1;
    if (state)
        sight.isDayPicture = sight.isFilterIn = *state == StateDay;
    if (!m_bInfraredBoard || !board)
        return sight;
    // With an infrared board it is the board that is told, and that moves what it has.
    sight.lights = *board == BoardNight ? static_cast<int>(power) : 0;
    if (*board != 0)
        sight.isDayPicture = sight.isFilterIn = *board != BoardNight;
    return sight;
}

/// The on-chip pipeline, with the pins of filter and lights where the module keys name them.
class PipelineWorld final : public DayWorld {
public:
    explicit PipelineWorld(const std::string& detail) {
        SceneConsole::start();
        m_Filter = readPin(detail, "GPIO");
        std::string isNew;
        if (keyOf(detail, "isNewInfrared", isNew) && isNew != "0")
            m_Lights = readPin(detail, "GPIOInfraredLight");
        m_Resistor = readPin(detail, "GPIODNLevel");
    }

    SafePointer<IUARTController> port() override { return SafePointer<IUARTController>(); }
    void setSky(double lux, bool isLight) override {
        m_dLux = lux;
        m_bLight = isLight;
        sensorhost::ImagingStandIn::getInstance().setScene(lux);
        if (m_Resistor)
            m_pGpio->setLevel(m_Resistor->group, m_Resistor->pin, isLight ? m_Resistor->level : 1 - m_Resistor->level);
    }
    Sight look() override;
    std::string cause(const std::string& since) const override;

private:
    struct Pin {
        int group = 0;
        int pin = 0;
        int level = 0; ///< by day
    };

    static bool keyOf(const std::string& detail, const char* key, std::string& value) {
        ModuleParameterParser parser;
        return parser.parse(detail) != 0 && parser.getValue(key, value) != 0;
    }
    static std::optional<Pin> readPin(const std::string& detail, const char* key) {
        std::string text;
        Pin pin;
        const bool isPin =
            keyOf(detail, key, text) && std::sscanf(text.c_str(), "%d,%d,%d", &pin.group, &pin.pin, &pin.level) == 3;
        return isPin ? std::optional(pin) : std::nullopt;
    }
    bool isAtDay(const Pin& pin) const { return m_pGpio->getLevel(pin.group, pin.pin) == pin.level; }

    std::optional<Pin> m_Filter;
    std::optional<Pin> m_Lights;
    std::optional<Pin> m_Resistor; ///< tells a board with lights day from night
    double m_dLux = 0;
    bool m_bLight = true;
};

std::string PipelineWorld::cause(const std::string& since) const {
    if (m_Lights)
        return std::string("the light sensor says ") + (m_bLight ? "light" : "dark") + " since " + since;
    const sensorhost::ImagingStandIn& pipeline = sensorhost::ImagingStandIn::getInstance();
    const auto times = [](int gain) { return static_cast<double>(gain) / sensorhost::UnityGain; };
    char text[96];
    std::snprintf(text, sizeof text, "gain %.1f, night from %.1f, day to %.1f", times(pipeline.getExposure().gain),
                  times(pipeline.getValue("BrAewb_UiGetDayToNightTransition")),
                  times(pipeline.getValue("BrAewb_UiGetNightToDayTransition")));
    return text;
}

Sight PipelineWorld::look() {
    constexpr int FullPower = 100;
    Sight sight;
    sight.isLight = m_bLight;
    sight.isDayPicture = pictureOfPipeline() == 1;
    if (m_Filter)
        sight.isFilterIn = isAtDay(*m_Filter);
    if (m_Lights)
        sight.lights = isAtDay(*m_Lights) ? 0 : FullPower;
    sight.readings = readPipeline();
    sight.readings.insert(sight.readings.begin(), {"lux", m_dLux});
    return sight;
}

} // namespace

double Sky::lux(double minutes) const {
    constexpr double Night = 0.2;
    constexpr double Horizon = 20;
    constexpr double Noon = 20000;
    constexpr double Twilight = 40; // minutes
    const auto between = [](double from, double to, double part) {
        return from * std::pow(to / from, std::clamp(part, 0.0, 1.0));
    };
    const double sinceRise = minutes - m_Light.from;
    const double untilSet = m_Light.to - minutes;
    const double nearest = std::min(sinceRise, untilSet);
    if (nearest < 0)
        return between(Horizon, Night, -nearest / Twilight);
    const double noonPart = nearest / (std::max(1, m_Light.to - m_Light.from) / 2.0);
    return between(Horizon, Noon, std::sqrt(noonPart));
}

std::unique_ptr<DayWorld> DayWorld::create(const TargetOptions& options) {
    if (options.isOnChip())
        return std::make_unique<PipelineWorld>(options.detailText(""));
    ModuleParameterParser detail;
    std::string infrared;
    const bool hasInfraredBoard =
        detail.parse(options.detailText("")) && detail.getValue("isInfrared", infrared) && infrared != "0";
    return std::make_unique<BlockWorld>(options.moduleId, hasInfraredBoard);
}

} // namespace sensorctl
