#include "DayWorld.h"

#include "SceneConsole.h"
#include "host/ModuleParameterParser.h"
#include "host/imaging/ImagingStandIn.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace sensorctl {

namespace {

/// A pin and its level by day, as a module key names it.
struct Pin {
    int group = 0;
    int pin = 0;
    int level = 0;

    static std::optional<Pin> read(const std::string& detail, const char* key);
};

bool keyOf(const std::string& detail, const char* key, std::string& value) {
    ModuleParameterParser parser;
    return parser.parse(detail) != 0 && parser.getValue(key, value) != 0;
}

std::optional<Pin> Pin::read(const std::string& detail, const char* key) {
    std::string text;
    Pin pin;
    const bool isPin =
        keyOf(detail, key, text) && std::sscanf(text.c_str(), "%d,%d,%d", &pin.group, &pin.pin, &pin.level) == 3;
    return isPin ? std::optional(pin) : std::nullopt;
}

/// A camera block before the sky. What it does not move itself the library moves by pins.
class BlockWorld final : public DayWorld {
public:
    BlockWorld(int moduleId, const std::string& detail) : m_Port(new BlockPort(moduleId)) {
        std::string infrared;
        m_bInfrared = keyOf(detail, "isInfrared", infrared) && infrared != "0";
        m_Filter = Pin::read(detail, "GPIO");
    }

    SafePointer<IUARTController> port() override { return m_Port; }
    void setSky(double lux, bool isLight) override {
        m_bLight = isLight;
        m_Port->takeSent(); // nobody looks at the frames
        m_Port->line().withBlock([&](camerasim::CameraBlock& block, std::int64_t) {
            block.setLight(lux, isLight ? camerasim::Ambient::Light : camerasim::Ambient::Dark);
        });
    }
    Sight look() override;
    std::string cause(const std::string& since) const override {
        return std::string(m_bLight ? "light since " : "dark since ") + since;
    }

private:
    SafePointer<BlockPort> m_Port;
    bool m_bInfrared = false;
    std::optional<Pin> m_Filter;
    bool m_bLight = true;
};

Sight BlockWorld::look() {
    Sight sight;
    sight.isLight = m_bLight;
    m_Port->line().withBlock([&](const camerasim::CameraBlock& block, std::int64_t) {
        sight.isDayPicture = block.picture() == camerasim::Picture::Day;
        if (block.movesFilter())
            sight.isFilterIn = sight.isDayPicture;
        // The board with lamps is an option of the module.
        if (m_bInfrared)
            sight.lights = block.lamps();
    });
    if (!sight.isFilterIn && m_Filter)
        sight.isFilterIn = m_pGpio->getLevel(m_Filter->group, m_Filter->pin) == m_Filter->level;
    return sight;
}

/// The on-chip pipeline, with the pins of filter and lights where the module keys name them.
class PipelineWorld final : public DayWorld {
public:
    explicit PipelineWorld(const std::string& detail) {
        SceneConsole::start();
        m_Filter = Pin::read(detail, "GPIO");
        std::string isNew;
        if (keyOf(detail, "isNewInfrared", isNew) && isNew != "0")
            m_Lights = Pin::read(detail, "GPIOInfraredLight");
        m_Resistor = Pin::read(detail, "GPIODNLevel");
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
    return std::make_unique<BlockWorld>(options.moduleId, options.detailText(""));
}

} // namespace sensorctl
