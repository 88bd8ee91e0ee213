#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace sensorctl {

/// What is added to a log from now on. The log may rotate to ".1" meanwhile.
class LogTail {
public:
    explicit LogTail(std::string path);

    /// The texts (without time and tag) that came since the last call. Empty if the log cannot be read.
    std::vector<std::string> takeNew();

private:
    const std::string m_strPath;
    ino_t m_nFile = 0;
    off_t m_nPosition = 0;
};

} // namespace sensorctl
