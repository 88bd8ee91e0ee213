#pragma once

#include "host/Export.h"
#include "host/ParameterMap.h"

#include <map>
#include <set>
#include <string>
#include <vector>

/// The text form of parameter sets: groups "(id,value)" back to back, for example (1,50)(2,-3).
/// Ids are not negative; ids and values are decimal and fit an int. Nothing else may stand in the text.
class SENSORHOST_API SensorParameterParser {
public:
    /// Adds the groups of the text to the map, of a repeated id the last one. 1, or 0 with the map as it was.
    static int parseSensorParameter(const std::string& text, std::map<int, int>& values);
    static int parseSensorParameter(const std::string& text, sensorhost::ParameterMap& values);

    /// The text of the map, ids ascending.
    static std::string createSensorParameterString(const std::map<int, int>& values);
    /// The same into a string whose memory is used again.
    static void createSensorParameterString(const sensorhost::ParameterMap& values, std::string& text);
    /// Appends one group.
    static void appendGroup(int id, int value, std::string& text);

    /// A list of ids, groups "(id)" back to back, for example (1)(2)(500). Replaces what the set held.
    /// 1, or 0 with the set as it was.
    static int parseParameterIdList(const std::string& text, std::set<int>& ids);
    /// The same into a vector whose memory is used again: ascending, each id once. Empty on failure.
    static int parseParameterIdList(const std::string& text, std::vector<int>& ids);
};
