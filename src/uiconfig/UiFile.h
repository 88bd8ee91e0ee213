#pragma once

#include "host/xml/FileText.h"

#include <string>

namespace sensorcontrol {

/// Longest text that the web interface is served as it stands on disk.
constexpr long long ServedTextLimit = 4LL * 1024 * 1024;

/// Reads a file whole. One of more than `limit` bytes is not read, and told of on the console.
sensorhost::FileText readUiFile(const std::string& path, long long limit);

} // namespace sensorcontrol
