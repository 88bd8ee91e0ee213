#include "host/linux/XmlFile.h"

#include "host/BRFile.h"
#include "host/xml/FileText.h"
#include "host/xml/XmlShape.h"

#include <algorithm>
#include <cstring>

#include <tinyxml.h>

namespace sensorhost {

namespace {

/// The parser copies bytes as UTF-8 says how long a character is, and so over quotes and brackets if they lie.
bool isUtf8(const std::string& text) {
    std::size_t following = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const bool isFollowing = (byte & 0xc0U) == 0x80U;
        if (isFollowing != (following > 0))
            return false;
        if (isFollowing)
            --following;
        else if (byte >= 0xf8U)
            return false;
        else if (byte >= 0xc0U)
            following = byte >= 0xf0U ? 3 : byte >= 0xe0U ? 2 : 1;
    }
    return following == 0;
}

/// Null for text that the parser, or a later reader of what was written, would not take.
std::shared_ptr<TiXmlDocument> parseXml(const std::string& text) {
    if (text.size() > XmlShape::LengthLimit || !isUtf8(text))
        return nullptr;
    const XmlShape shape = XmlShape::of(text, true);
    if (!shape.isWhole || !shape.isWithinLimits())
        return nullptr;
    auto document = std::make_shared<TiXmlDocument>();
    document->Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
    return document->Error() || document->RootElement() == nullptr ? nullptr : document;
}

bool haveSameAttributes(const TiXmlElement& one, const TiXmlElement& other) {
    const TiXmlAttribute* a = one.FirstAttribute();
    const TiXmlAttribute* b = other.FirstAttribute();
    for (; a != nullptr && b != nullptr; a = a->Next(), b = b->Next())
        if (a->NameTStr() != b->NameTStr() || a->ValueStr() != b->ValueStr())
            return false;
    return a == b;
}

bool isSame(const TiXmlNode& one, const TiXmlNode& other);

bool haveSameChildren(const TiXmlNode& one, const TiXmlNode& other) {
    const TiXmlNode* a = one.FirstChild();
    const TiXmlNode* b = other.FirstChild();
    for (; a != nullptr && b != nullptr; a = a->NextSibling(), b = b->NextSibling())
        if (!isSame(*a, *b))
            return false;
    return a == b;
}

bool isSame(const TiXmlNode& one, const TiXmlNode& other) {
    if (one.Type() != other.Type() || one.ValueStr() != other.ValueStr())
        return false;
    if (const TiXmlDeclaration* const declared = one.ToDeclaration())
        return std::strcmp(declared->Version(), other.ToDeclaration()->Version()) == 0 &&
               std::strcmp(declared->Encoding(), other.ToDeclaration()->Encoding()) == 0 &&
               std::strcmp(declared->Standalone(), other.ToDeclaration()->Standalone()) == 0;
    if (const TiXmlElement* const element = one.ToElement())
        return haveSameAttributes(*element, *other.ToElement()) && haveSameChildren(one, other);
    return true;
}

} // namespace

std::shared_ptr<TiXmlDocument> loadXml(const std::string& path) {
    FileText file = readFileText<BRFile>(path, static_cast<long long>(XmlShape::LengthLimit));
    if (file.result != FileText::Result::Done)
        return nullptr;
    file.text.resize(std::min(file.text.find('\0'), file.text.size()));
    return parseXml(file.text);
}

bool saveXml(const std::string& path, const TiXmlDocument& document) {
    TiXmlPrinter printer;
    document.Accept(&printer);
    const std::string& text = printer.Str();
    const auto length = static_cast<int>(text.size());
    // The printer writes what a declaration holds as it is, blanks that came as references as blanks, and in some
    // releases "&#x" wherever it comes from.
    const std::shared_ptr<TiXmlDocument> readBack = parseXml(text);
    BRFile file;
    return readBack != nullptr && haveSameChildren(document, *readBack) &&
           file.open(path.c_str(), BRFile::Replace) != 0 && file.write(text.data(), length) == length;
}

} // namespace sensorhost
