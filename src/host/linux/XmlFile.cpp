#include "host/linux/XmlFile.h"

#include "host/BRFile.h"
#include "host/linux/XmlNesting.h"

#include <tinyxml.h>

namespace sensorhost {

namespace {
constexpr long long LENGTH_LIMIT = 1024LL * 1024;
constexpr int NESTING_LIMIT = 64;
} // namespace

std::shared_ptr<TiXmlDocument> loadXml(const std::string& path) {
    BRFile file;
    if (file.open(path.c_str(), BRFile::Read) == 0)
        return nullptr;
    const long long length = file.getLength();
    if (length < 0 || length > LENGTH_LIMIT)
        return nullptr;
    std::string text(static_cast<std::size_t>(length), '\0');
    if (file.read(text.data(), static_cast<int>(length)) != length)
        return nullptr;
    text.resize(std::min(text.find('\0'), text.size()));
    if (!isNestingWithin(text, NESTING_LIMIT))
        return nullptr;
    auto document = std::make_shared<TiXmlDocument>();
    document->Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
    return document->Error() || document->RootElement() == nullptr ? nullptr : document;
}

bool saveXml(const std::string& path, const TiXmlDocument& document) {
    TiXmlPrinter printer;
    document.Accept(&printer);
    const std::string& text = printer.Str();
    const auto length = static_cast<int>(text.size());
    BRFile file;
    return length <= LENGTH_LIMIT && file.open(path.c_str(), BRFile::Replace) != 0 &&
           file.write(text.data(), length) == length;
}

} // namespace sensorhost
