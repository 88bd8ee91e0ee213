// The size of a document, told before it is parsed, against what the parser makes of the same bytes.
#include "FuzzSupport.h"
#include "host/xml/XmlShape.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <tinyxml.h>

using fuzzing::require;
using sensorhost::XmlShape;

namespace {

void measure(const TiXmlNode& node, int depth, XmlShape& shape) {
    for (const TiXmlNode* child = node.FirstChild(); child != nullptr; child = child->NextSibling()) {
        ++shape.nodes;
        const TiXmlElement* const element = child->ToElement();
        if (element == nullptr)
            continue;
        shape.depth = std::max(shape.depth, depth + 1);
        int attributes = 0;
        for (const TiXmlAttribute* one = element->FirstAttribute(); one != nullptr; one = one->Next())
            ++attributes;
        shape.attributes = std::max(shape.attributes, attributes);
        measure(*child, depth + 1, shape);
    }
}

void compare(const std::string& text, bool isUtf8) {
    const XmlShape told = XmlShape::of(text, isUtf8);
    if (told.isObscure)
        return;
    TiXmlDocument document;
    document.SetTabSize(0);
    document.Parse(text.c_str(), nullptr, isUtf8 ? TIXML_ENCODING_UTF8 : TIXML_ENCODING_UNKNOWN);
    XmlShape made;
    measure(document, 0, made);
    require(made.depth <= told.depth);
    require(made.nodes <= told.nodes);
    require(made.attributes <= told.attributes);
    if (!told.isWhole)
        return;
    // A whole text has a fault only where this does not look: in the names of end tags and of attributes.
    require(document.Error() || made.depth == told.depth);
    require(document.Error() || made.attributes == told.attributes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    text.resize(std::min(text.find('\0'), text.size()));
    text.append(XmlShape::ParserOverrun, '\0');
    compare(text, false);
    compare(text, true);
    return 0;
}
