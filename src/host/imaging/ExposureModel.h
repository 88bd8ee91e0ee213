#pragma once

namespace sensorhost {

/// How the simulated pipeline is set: gains in the unit of BrAewb_UiGetGain, times in microseconds.
struct ExposureSettings {
    bool isGainFixed = false;
    bool isShutterFixed = false;
    int mostGain = 0; ///< of the automatic
    int fixedGain = 0;
    int longestShutter = 0; ///< of the automatic
    int fixedShutter = 0;
    int brightness = 50; ///< 50 is neutral, 100 exposes twice as long
};

/// What it makes of a scene.
struct Exposure {
    int shutter = 0; ///< microseconds
    int gain = 0;    ///< 4096 is a gain of 1
    int iso = 0;     ///< 4096 is ISO 100
};

/// No amplification.
inline constexpr int UnityGain = 4096;

/// The exposure of a scene of so much light, in lux. It needs 1 second at unity gain and 1 lux, in proportion less with
/// more light. The automatic lengthens the shutter first, down from 100 microseconds to its limit, and then raises the
/// gain from 1 to its limit; what is fixed stays. ISO follows the gain, ISO 100 at a gain of 1. Settled at once,
/// without swinging; the IR-cut filter and the lights change nothing.
Exposure exposeScene(double lux, const ExposureSettings& settings);

} // namespace sensorhost
