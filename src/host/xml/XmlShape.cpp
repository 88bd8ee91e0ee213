#include "host/xml/XmlShape.h"

#include <algorithm>

// Follows TinyXML's reading step by step, its liberties included: a character reference ends at the next ';' wherever
// that is, and in UTF-8 the first byte of a character says how many are taken, whatever they are. Either can hide a
// tag.

namespace sensorhost {

namespace {

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

bool isNameStart(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || byte >= 127;
}

bool isNamePart(char c) { return isNameStart(c) || isDigit(c) || c == '-' || c == '.' || c == ':'; }

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

class Reader {
public:
    enum class Encoding { Open, Utf8, Bytes };

    Reader(std::string_view text, bool isUtf8)
        : m_Text(text), m_Encoding(isUtf8 || startsWith("\xef\xbb\xbf") ? Encoding::Utf8 : Encoding::Open) {}

    XmlShape read() {
        m_Shape.isWhole = true;
        while (readNode()) {
        }
        m_Shape.isWhole = m_Shape.isWhole && isAtEnd() && m_nDepth == 0;
        return m_Shape;
    }

private:
    char at(std::size_t ahead = 0) const { return m_nAt + ahead < m_Text.size() ? m_Text[m_nAt + ahead] : '\0'; }
    bool isAtEnd() const { return m_nAt >= m_Text.size(); }
    bool startsWith(std::string_view mark) const {
        return m_Text.substr(std::min(m_nAt, m_Text.size())).starts_with(mark);
    }
    bool startsWithWord(std::string_view word) const {
        for (std::size_t i = 0; i < word.size(); ++i)
            if (lower(at(i)) != word[i])
                return false;
        return true;
    }

    void skipBlanks() {
        for (;;) {
            if (isBlank(at()))
                ++m_nAt;
            else if (m_Encoding == Encoding::Utf8 &&
                     (startsWith("\xef\xbb\xbf") || startsWith("\xef\xbf\xbe") || startsWith("\xef\xbf\xbf")))
                m_nAt += 3;
            else
                return;
        }
    }

    /// One character of a text or of a quoted value.
    bool skipCharacter() {
        const auto byte = static_cast<unsigned char>(at());
        if (byte == '&' && at(1) == '#' && at(2) != '\0')
            return skipReference();
        std::size_t length = 1;
        if (m_Encoding == Encoding::Utf8 && byte >= 0xc2U && byte <= 0xf4U)
            length = byte >= 0xf0U ? 4 : byte >= 0xe0U ? 3 : 2;
        m_nAt += length;
        return true;
    }

    bool skipReference() {
        const bool isHex = at(2) == 'x';
        const std::size_t end = m_Text.find(';', m_nAt + (isHex ? 3 : 2));
        if (end == std::string_view::npos)
            return false;
        std::size_t digit = end - 1;
        for (; m_Text[digit] != (isHex ? 'x' : '#'); --digit)
            if (!(isHex ? isHexDigit(m_Text[digit]) : isDigit(m_Text[digit])))
                return false;
        m_nAt = end + 1;
        return true;
    }

    bool skipText(char end) {
        while (!isAtEnd() && at() != end)
            if (!skipCharacter())
                return false;
        return !isAtEnd();
    }

    bool skipBehind(std::string_view mark) {
        const std::size_t found = m_Text.find(mark, std::min(m_nAt, m_Text.size()));
        m_nAt = found == std::string_view::npos ? m_Text.size() : found + mark.size();
        return found != std::string_view::npos;
    }

    bool skipName() {
        if (!isNameStart(at()))
            return false;
        while (isNamePart(at()))
            ++m_nAt;
        return true;
    }

    bool readAttribute(std::string_view& value) {
        if (!skipName())
            return false;
        skipBlanks();
        if (at() != '=')
            return false;
        ++m_nAt;
        skipBlanks();
        const char quote = at();
        if (quote == '"' || quote == '\'') {
            const std::size_t start = ++m_nAt;
            if (!skipText(quote))
                return false;
            value = m_Text.substr(start, m_nAt - start);
            ++m_nAt;
            return true;
        }
        const std::size_t start = m_nAt;
        for (; !isAtEnd() && !isBlank(at()) && at() != '/' && at() != '>'; ++m_nAt)
            if (at() == '"' || at() == '\'')
                return false;
        value = m_Text.substr(start, m_nAt - start);
        return true;
    }

    bool readDeclaration() {
        m_nAt += 5;
        std::string_view encoding;
        while (!isAtEnd() && at() != '>') {
            skipBlanks();
            std::string_view value;
            if (startsWithWord("encoding")) {
                if (!readAttribute(encoding))
                    return false;
            } else if (startsWithWord("version") || startsWithWord("standalone")) {
                if (!readAttribute(value))
                    return false;
            } else {
                while (!isAtEnd() && at() != '>' && !isBlank(at()))
                    ++m_nAt;
            }
        }
        if (isAtEnd())
            return false;
        ++m_nAt;
        if (m_nDepth == 0 && m_Encoding == Encoding::Open)
            chooseEncoding(encoding);
        return true;
    }

    void chooseEncoding(std::string_view name) {
        const auto isCalled = [name](std::string_view word) {
            return name.size() >= word.size() &&
                   std::equal(word.begin(), word.end(), name.begin(), [](char a, char b) { return a == lower(b); });
        };
        m_Encoding = name.empty() || isCalled("utf-8") || isCalled("utf8") ? Encoding::Utf8 : Encoding::Bytes;
        m_Shape.isObscure = m_Shape.isObscure || name.find('&') != std::string_view::npos;
    }

    /// A start tag, with its attributes.
    bool readTag() {
        m_Shape.depth = std::max(m_Shape.depth, m_nDepth + 1);
        ++m_nAt;
        skipBlanks();
        if (!skipName())
            return false;
        for (int count = 1;; ++count) {
            skipBlanks();
            if (at() == '>') {
                ++m_nDepth;
                ++m_nAt;
                return true;
            }
            if (at() == '/') {
                const bool isClosed = at(1) == '>';
                m_nAt += 2;
                return isClosed;
            }
            std::string_view value;
            if (!readAttribute(value))
                return false;
            m_Shape.attributes = std::max(m_Shape.attributes, count);
        }
    }

    bool readEndTag() {
        m_nAt += 2;
        while (isNamePart(at()))
            ++m_nAt;
        skipBlanks();
        --m_nDepth;
        return at() == '>' && skipBehind(">");
    }

    /// What comes next, false at the end and at what stops the parser.
    bool readNode() {
        skipBlanks();
        if (isAtEnd())
            return false;
        if (m_nDepth > 0 && startsWith("</"))
            return readEndTag();
        ++m_Shape.nodes;
        if (at() != '<')
            return m_nDepth > 0 && skipText('<');
        if (startsWithWord("<?xml"))
            return readDeclaration();
        if (startsWith("<!--")) {
            m_nAt += 4;
            return skipBehind("-->");
        }
        if (startsWith("<![CDATA[")) {
            m_nAt += 9;
            return skipBehind("]]>");
        }
        if (isNameStart(at(1)))
            return readTag();
        m_Shape.isWhole = m_Shape.isWhole && !startsWith("</");
        return skipBehind(">");
    }

    const std::string_view m_Text;
    std::size_t m_nAt = 0;
    int m_nDepth = 0;
    Encoding m_Encoding;
    XmlShape m_Shape;
};

} // namespace

XmlShape XmlShape::of(std::string_view text, bool isUtf8) {
    return Reader(text.substr(0, text.find('\0')), isUtf8).read();
}

} // namespace sensorhost
