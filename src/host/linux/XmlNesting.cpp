#include "host/linux/XmlNesting.h"

#include <algorithm>

namespace sensorhost {

namespace {

constexpr std::size_t NONE = std::string_view::npos;

bool isNameStart(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_' || byte >= 127;
}

/// Behind the end of a tag: its '>' outside of quotes.
std::size_t findTagEnd(std::string_view text, std::size_t at) {
    while ((at = text.find_first_of("'\">", at)) != NONE && text[at] != '>') {
        at = text.find(text[at], at + 1);
        if (at == NONE)
            return NONE;
        ++at;
    }
    return at == NONE ? NONE : at + 1;
}

std::size_t findBehind(std::string_view text, std::string_view mark, std::size_t at) {
    const std::size_t found = text.find(mark, at);
    return found == NONE ? NONE : found + mark.size();
}

} // namespace

bool isNestingWithin(std::string_view text, int limit) {
    int depth = 0;
    std::size_t at = 0;
    while ((at = text.find('<', at)) != NONE) {
        const std::string_view rest = text.substr(at);
        if (rest.starts_with("<!--")) {
            at = findBehind(text, "-->", at + 4);
        } else if (rest.starts_with("<![CDATA[")) {
            at = findBehind(text, "]]>", at);
        } else if (rest.starts_with("</")) {
            at = findBehind(text, ">", at);
            if (--depth < 0)
                return false;
        } else if (rest.size() > 1 && isNameStart(rest[1])) {
            at = findTagEnd(text, at);
            if (at != NONE && text[at - 2] != '/' && ++depth > limit)
                return false;
        } else {
            // Declarations end at the first '>' for some readers and at the first outside of quotes for others. Where
            // the two differ a text could show them different nestings.
            const std::size_t quoted = findTagEnd(text, at);
            at = findBehind(text, ">", at);
            if (at != quoted)
                return false;
        }
        if (at == NONE)
            return false;
    }
    return depth == 0;
}

} // namespace sensorhost
