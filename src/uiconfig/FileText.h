#pragma once

#include <string>

namespace sensorcontrol {

/// A file read whole.
struct FileText {
    enum class Result { Done, NotOpened, ShortRead, TooLong };

    Result result = Result::NotOpened;
    long long length = 0; ///< of the file
    long long read = 0;   ///< bytes that came
    std::string text;     ///< all of them if Done, zero bytes too; else empty
};

/// Longest text that the web interface is served as it stands on disk.
constexpr long long ServedTextLimit = 4LL * 1024 * 1024;

/// Reads through BRFile, in one call. A file of more than `limit` bytes is not read, and told of on the console.
FileText readFileText(const std::string& path, long long limit);

} // namespace sensorcontrol
