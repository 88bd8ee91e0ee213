#include "host/SensorParameterParser.h"

#include "host/text/ParameterText.h"

namespace text = sensorhost::text;

int SensorParameterParser::parseSensorParameter(const std::string& groups, std::map<int, int>& values) {
    std::map<int, int> read;
    if (!text::readGroups(groups, [&read](int id, int value) { read.insert_or_assign(id, value); }))
        return 0;
    read.merge(values);
    values.swap(read);
    return 1;
}

std::string SensorParameterParser::createSensorParameterString(const std::map<int, int>& values) {
    std::string groups;
    for (const auto& [id, value] : values)
        text::appendGroup(id, value, groups);
    return groups;
}

int SensorParameterParser::parseParameterIdList(const std::string& list, std::set<int>& ids) {
    std::set<int> read;
    if (!text::readIds(list, [&read](int id) { read.insert(id); }))
        return 0;
    ids.swap(read);
    return 1;
}
