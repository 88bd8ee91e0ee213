#include "host/imaging/ExposureModel.h"

#include <algorithm>
#include <cmath>

namespace sensorhost {

namespace {

constexpr double UnitExposure = 1e6; ///< microseconds at unity gain and 1 lux
constexpr double LeastLight = 1e-6;
constexpr int ShortestShutter = 100;

/// `limit` may lie below `least`, as a user sets it.
int within(double wanted, int least, int limit) {
    return static_cast<int>(std::lround(std::clamp<double>(wanted, least, std::max(least, limit))));
}

} // namespace

Exposure exposeScene(double lux, const ExposureSettings& settings) {
    const double needed = UnitExposure / std::max(lux, LeastLight) * settings.brightness / 50;
    Exposure exposure;
    const double assumedGain = settings.isGainFixed ? std::max(settings.fixedGain, 1) : UnityGain;
    exposure.shutter = settings.isShutterFixed
                           ? settings.fixedShutter
                           : within(needed * UnityGain / assumedGain, ShortestShutter, settings.longestShutter);
    exposure.gain = settings.isGainFixed
                        ? settings.fixedGain
                        : within(needed * UnityGain / std::max(exposure.shutter, 1), UnityGain, settings.mostGain);
    exposure.iso = exposure.gain;
    return exposure;
}

} // namespace sensorhost
