#include "uiconfig/FileText.h"

#include "host/BRFile.h"

#include <cstdio>

namespace sensorcontrol {

FileText readFileText(const std::string& path, long long limit) {
    FileText file;
    BRFile source;
    if (!source.open(path.c_str(), BRFile::Read))
        return file;
    file.length = source.getLength();
    if (file.length > limit) {
        std::printf("%s has %lld bytes, more than the %lld that are taken\n", path.c_str(), file.length, limit);
        file.result = FileText::Result::TooLong;
        return file;
    }
    file.result = FileText::Result::ShortRead;
    if (file.length < 0)
        return file;
    file.text.resize(static_cast<std::size_t>(file.length));
    file.read = source.read(file.text.data(), static_cast<int>(file.length));
    if (file.read == file.length)
        file.result = FileText::Result::Done;
    else
        file.text.clear();
    return file;
}

} // namespace sensorcontrol
