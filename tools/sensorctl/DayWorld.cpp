#include "DayWorld.h"

#include "host/ModuleParameterParser.h"

#include <algorithm>
#include <cmath>

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
        m_Port->setAmbient(isLight ? camerasim::Ambient::light : camerasim::Ambient::dark);
    }
    Sight look() override;

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
    constexpr std::uint32_t stateDay = 3;
    constexpr std::uint32_t boardNight = 1;
    if (state)
        sight.isDayPicture = sight.isFilterIn = *state == stateDay;
    if (!m_bInfraredBoard || !board)
        return sight;
    // With an infrared board it is the board that is told, and that moves what it has.
    sight.lights = *board == boardNight ? static_cast<int>(power) : 0;
    if (*board != 0)
        sight.isDayPicture = sight.isFilterIn = *board != boardNight;
    return sight;
}

} // namespace

double Sky::lux(double minutes) const {
    constexpr double night = 0.2;
    constexpr double horizon = 20;
    constexpr double noon = 20000;
    constexpr double twilight = 40; // minutes
    const auto between = [](double from, double to, double part) {
        return from * std::pow(to / from, std::clamp(part, 0.0, 1.0));
    };
    const double sinceRise = minutes - m_Light.from;
    const double untilSet = m_Light.to - minutes;
    const double nearest = std::min(sinceRise, untilSet);
    if (nearest < 0)
        return between(horizon, night, -nearest / twilight);
    const double noonPart = nearest / (std::max(1, m_Light.to - m_Light.from) / 2.0);
    return between(horizon, noon, std::sqrt(noonPart));
}

std::unique_ptr<DayWorld> DayWorld::create(const TargetOptions& options) {
    ModuleParameterParser detail;
    std::string infrared;
    const bool hasInfraredBoard =
        detail.parse(options.detailText("")) && detail.getValue("isInfrared", infrared) && infrared != "0";
    return std::make_unique<BlockWorld>(options.moduleId, hasInfraredBoard);
}

} // namespace sensorctl
