#include "host/SensorParameterParser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <utility>

namespace {

using sensorhost::ParameterMap;
using sensorhost::ParameterValue;

/// An id: decimal digits only, so that neither sign nor blank passes. Null if there is none or it does not fit.
const char* readId(const char* at, const char* end, int& id) {
    if (at == end || *at == '-')
        return nullptr;
    const auto [next, error] = std::from_chars(at, end, id);
    return error == std::errc() ? next : nullptr;
}

const char* readValue(const char* at, const char* end, int& value) {
    const auto [next, error] = std::from_chars(at, end, value);
    return error == std::errc() ? next : nullptr;
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
