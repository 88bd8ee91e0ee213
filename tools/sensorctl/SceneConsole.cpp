#include "SceneConsole.h"

#include "Failure.h"
#include "Output.h"
#include "host/imaging/ImagingStandIn.h"

#include <charconv>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace sensorctl {

namespace {

using sensorhost::ImagingStandIn;

constexpr double IndoorLux = 300;
constexpr double DarkLux = 0.2;
constexpr double MostLux = 200000;

} // namespace

void SceneConsole::start() {
    ImagingStandIn::getInstance().reset();
    ImagingStandIn::getInstance().setScene(IndoorLux);
}

bool SceneConsole::knows(const std::string& command) const {
    return command == "scene" || command == "dark" || command == "light";
}

std::string SceneConsole::help() const {
    return "  scene [LUX]             the light before the pipeline, and how it is exposed\n"
           "  dark                    the same as scene 0.2, moonlight\n"
           "  light                   the same as scene 300, an office\n";
}

void SceneConsole::execute(const std::string& command, std::span<const std::string> words) {
    if (words.size() > (command == "scene" ? 1U : 0U))
        throw Failure(Usage, command + ": too many words", {"try: scene 5.5, dark, light"});
    double lux = command == "dark" ? DarkLux : IndoorLux;
    if (command == "scene" && words.empty()) {
        show();
        return;
    }
    if (command == "scene")
        lux = parseLux(words[0]);
    ImagingStandIn::getInstance().setScene(lux);
    show();
}

double SceneConsole::parseLux(const std::string& text) {
    double lux = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), lux);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || !(lux >= 0 && lux <= MostLux))
        throw Failure(Usage, "scene: \"" + text + "\" is no light in lux", {"accepted: 0 to 200000"});
    return lux;
}

void SceneConsole::show() {
    const ImagingStandIn& pipeline = ImagingStandIn::getInstance();
    const double lux = pipeline.getScene().value_or(0);
    const sensorhost::Exposure exposure = pipeline.getExposure();
    const double gain = static_cast<double>(exposure.gain) / sensorhost::UnityGain;
    nlohmann::ordered_json object;
    object["lux"] = lux;
    object["shutterMicroseconds"] = exposure.shutter;
    object["gain"] = gain;
    char text[96];
    std::snprintf(text, sizeof text, "scene %g lux shutter %d us gain %.2f", lux, exposure.shutter, gain);
    m_Output.record(text, object);
}

} // namespace sensorctl
