#include "host/SensorParameterParser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <utility>

namespace {

using sensorhost::ParameterMap;
using sensorhost::ParameterValue;

constexpr std::uint32_t LARGEST = std::numeric_limits<int>::max();

/// Decimal digits up to the limit, which is LARGEST or one more. Null if there are none or more than that. The stores
/// hold nothing but such numbers and are read on every switch, which is why this is not std::from_chars.
const char* readDigits(const char* at, const char* end, std::uint32_t limit, std::uint32_t& number) {
    const char* const start = at;
    number = 0;
    for (; at != end; ++at) {
        const auto digit = static_cast<std::uint32_t>(static_cast<unsigned char>(*at)) - '0';
        if (digit > 9)
            break;
        if (number > LARGEST / 10)
            return nullptr;
        number = number * 10 + digit;
    }
    return at != start && number <= limit ? at : nullptr;
}

const char* readId(const char* at, const char* end, int& id) {
    std::uint32_t number = 0;
    at = readDigits(at, end, LARGEST, number);
    id = static_cast<int>(number);
    return at;
}

const char* readValue(const char* at, const char* end, int& value) {
    const bool negative = at != end && *at == '-';
    std::uint32_t number = 0;
    at = negative ? readDigits(at + 1, end, LARGEST + 1, number) : readDigits(at, end, LARGEST, number);
    value = static_cast<int>(negative ? 0U - number : number);
    return at;
}

const char* expect(const char* at, const char* end, char wanted) {
    return at != nullptr && at != end && *at == wanted ? at + 1 : nullptr;
}

bool readGroups(const std::string& text, std::vector<ParameterValue>& groups) {
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        ParameterValue group{};
        if ((at = expect(at, end, '(')) == nullptr || (at = readId(at, end, group.id)) == nullptr ||
            (at = expect(at, end, ',')) == nullptr || (at = readValue(at, end, group.value)) == nullptr ||
            (at = expect(at, end, ')')) == nullptr)
            return false;
        groups.push_back(group);
    }
    return true;
}

bool readIds(const std::string& text, std::vector<int>& ids) {
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end) {
        int id = 0;
        if ((at = expect(at, end, '(')) == nullptr || (at = readId(at, end, id)) == nullptr ||
            (at = expect(at, end, ')')) == nullptr)
            return false;
        ids.push_back(id);
    }
    return true;
}

void appendNumber(int number, std::string& text) {
    std::array<char, std::numeric_limits<int>::digits10 + 2> digits{};
    text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

} // namespace

int SensorParameterParser::parseSensorParameter(const std::string& text, std::map<int, int>& values) {
    std::vector<ParameterValue> groups;
    if (!readGroups(text, groups))
        return 0;
    for (const ParameterValue& group : groups)
        values.insert_or_assign(group.id, group.value);
    return 1;
}

int SensorParameterParser::parseSensorParameter(const std::string& text, ParameterMap& values) {
    return values.append([&text](std::vector<ParameterValue>& groups) { return readGroups(text, groups); }) ? 1 : 0;
}

std::string SensorParameterParser::createSensorParameterString(const std::map<int, int>& values) {
    std::string text;
    for (const auto& [id, value] : values)
        appendGroup(id, value, text);
    return text;
}

void SensorParameterParser::createSensorParameterString(const ParameterMap& values, std::string& text) {
    text.clear();
    for (const ParameterValue& entry : values)
        appendGroup(entry.id, entry.value, text);
}

void SensorParameterParser::appendGroup(int id, int value, std::string& text) {
    text += '(';
    appendNumber(id, text);
    text += ',';
    appendNumber(value, text);
    text += ')';
}

int SensorParameterParser::parseParameterIdList(const std::string& text, std::set<int>& ids) {
    std::vector<int> list;
    if (!readIds(text, list))
        return 0;
    ids = std::set<int>(list.begin(), list.end());
    return 1;
}

int SensorParameterParser::parseParameterIdList(const std::string& text, std::vector<int>& ids) {
    ids.clear();
    if (!readIds(text, ids)) {
        ids.clear();
        return 0;
    }
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return 1;
}
