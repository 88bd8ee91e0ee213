#include "uiconfig/UiFile.h"

#include "host/BRFile.h"

#include <cstdio>

namespace sensorcontrol {

sensorhost::FileText readUiFile(const std::string& path, long long limit) {
    sensorhost::FileText file = sensorhost::readFileText<BRFile>(path, limit);
    if (file.result == sensorhost::FileText::Result::TooLong)
        std::printf("%s has %lld bytes, more than the %lld that are taken\n", path.c_str(), file.length, limit);
    return file;
}

} // namespace sensorcontrol
