#pragma once

#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>

// The text form of parameter sets, for the parser of the host classes on Linux and for the caches of the library, which
// take no memory while they read. Nothing but "(id,value)" or "(id)" back to back: ids not negative, numbers decimal
// and within an int.
namespace sensorhost::text {

inline constexpr std::uint32_t Largest = std::numeric_limits<int>::max();

/// Decimal digits up to the limit, which is Largest or one more. Null if there are none or more than that. The stores
/// hold nothing but such numbers and are read on every switch, which is why this is not std::from_chars.
inline const char* readDigits(const char* at, const char* end, std::uint32_t limit, std::uint32_t& number) {
    const char* const start = at;
    number = 0;
    for (; at != end; ++at) {
        const auto digit = static_cast<std::uint32_t>(static_cast<unsigned char>(*at)) - '0';
        if (digit > 9)
            break;
        if (number > Largest / 10)
            return nullptr;
        number = number * 10 + digit;
    }
    return at != start && number <= limit ? at : nullptr;
}

inline const char* readId(const char* at, const char* end, int& id) {
    std::uint32_t number = 0;
    at = readDigits(at, end, Largest, number);
    id = static_cast<int>(number);
    return at;
}

inline const char* readValue(const char* at, const char* end, int& value) {
    const bool negative = at != end && *at == '-';
    std::uint32_t number = 0;
    at = negative ? readDigits(at + 1, end, Largest + 1, number) : readDigits(at, end, Largest, number);
    value = static_cast<int>(negative ? 0U - number : number);
    return at;
}

inline const char* expect(const char* at, const char* end, char wanted) {
    return at != nullptr && at != end && *at == wanted ? at + 1 : nullptr;
}

/// Calls take(id, value) for each group. False at the first thing that is none: the groups before it were given.
template <class Take>
bool readGroups(const std::string& text, Take take) {
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        int id = 0;
        int value = 0;
        if ((at = expect(at, end, '(')) == nullptr || (at = readId(at, end, id)) == nullptr ||
            (at = expect(at, end, ',')) == nullptr || (at = readValue(at, end, value)) == nullptr ||
            (at = expect(at, end, ')')) == nullptr)
            return false;
        take(id, value);
    }
    return true;
}

/// Calls take(id) for each id of a list. False as above.
template <class Take>
bool readIds(const std::string& text, Take take) {
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        int id = 0;
        if ((at = expect(at, end, '(')) == nullptr || (at = readId(at, end, id)) == nullptr ||
            (at = expect(at, end, ')')) == nullptr)
            return false;
        take(id);
    }
    return true;
}

inline void appendNumber(int number, std::string& text) {
    std::array<char, std::numeric_limits<int>::digits10 + 2> digits{};
    text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

inline void appendGroup(int id, int value, std::string& text) {
    text += '(';
    appendNumber(id, text);
    text += ',';
    appendNumber(value, text);
    text += ')';
}

} // namespace sensorhost::text
