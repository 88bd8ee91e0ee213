#pragma once

#include "Parameters.h"
#include "controller/OperationReport.h"

#include <string>
#include <vector>

namespace sensorctl {

/// What a bring-up made of the parameter files, in lines for the user.
std::vector<std::string> restoreLines(const sensorcontrol::OperationReport& start, const Parameters& parameters);

} // namespace sensorctl
