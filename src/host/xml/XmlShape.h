#pragma once

#include <cstddef>
#include <string_view>

namespace sensorhost {

/// How large a document TinyXML makes of a text, known before it is parsed: TinyXML descends by recursion, looks an
/// attribute up among all of its element, and builds what is there however much it is. Compiled into either library.
struct XmlShape {
    static constexpr std::size_t LengthLimit = 1024UL * 1024;
    static constexpr int DepthLimit = 64;
    static constexpr int NodeLimit = 32768;
    static constexpr int AttributeLimit = 1024;
    /// Zero bytes that have to stand behind a text: the first byte of a UTF-8 character makes the parser step over the
    /// next three without a look, at the end of the text too.
    static constexpr std::size_t ParserOverrun = 8;

    int depth = 0;          ///< elements within each other
    int nodes = 0;          ///< elements, texts, comments, declarations
    int attributes = 0;     ///< of the element that has most
    bool isWhole = false;   ///< read to its end, with an end tag for each element and for nothing else
    bool isObscure = false; ///< could not be told

    /// Of a text up to its first zero byte, in UTF-8 or with the encoding left open. Never less than what
    /// TiXmlDocument::Parse makes of it; more only behind a fault at which that stops.
    static XmlShape of(std::string_view text, bool isUtf8);

    bool isWithinLimits() const {
        return !isObscure && depth <= DepthLimit && nodes <= NodeLimit && attributes <= AttributeLimit;
    }
};

} // namespace sensorhost
