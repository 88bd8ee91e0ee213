#pragma once

#include <cstddef>
#include <string>

namespace sensorhost {

/// A file read whole.
struct FileText {
    enum class Result { Done, NotOpened, ShortRead, TooLong };

    Result result = Result::NotOpened;
    long long length = 0; ///< of the file
    long long read = 0;   ///< bytes that came
    std::string text;     ///< all of them if Done, zero bytes too; else empty
};

/// Reads in one call, through `File`, which is BRFile: this folder knows no other. A file of more than `limit` bytes is
/// not read.
template <class File>
FileText readFileText(const std::string& path, long long limit) {
    FileText file;
    File source;
    if (!source.open(path.c_str(), File::Read))
        return file;
    file.length = source.getLength();
    file.result = file.length > limit ? FileText::Result::TooLong : FileText::Result::ShortRead;
    if (file.length < 0 || file.length > limit)
        return file;
    file.text.resize(static_cast<std::size_t>(file.length));
    file.read = source.read(file.text.data(), static_cast<int>(file.length));
    if (file.read == file.length)
        file.result = FileText::Result::Done;
    else
        file.text.clear();
    return file;
}

} // namespace sensorhost
