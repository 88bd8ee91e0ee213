#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace sensorctl {

/// A number that goes with the picture, such as the gain.
struct Reading {
    std::string name;
    double value;
};

/// The simulated pipeline's gain, and what its tuning has applied: noise filter A0 and TM (-1 while it is off), dark
/// current DC, HDR level.
std::vector<Reading> readPipeline();

/// 1 while its picture is the day's, else 0.
int pictureOfPipeline();

/// A whole number as one, for the eyes.
nlohmann::ordered_json readingJson(double value);

} // namespace sensorctl
