#pragma once

#include "host/Export.h"

#include <map>
#include <set>
#include <string>

/// The text form of parameter sets: groups "(id,value)" back to back, for example (1,50)(2,-3).
/// Ids are not negative; ids and values are decimal and fit an int. Nothing else may stand in the text.
class SENSORHOST_API SensorParameterParser {
public:
    /// Adds the groups of the text to the map, of a repeated id the last one. 1, or 0 with the map as it was.
    static int parseSensorParameter(const std::string& text, std::map<int, int>& values);

    /// The text of the map, ids ascending.
    static std::string createSensorParameterString(const std::map<int, int>& values);

    /// A list of ids. Replaces what the set held. 1, or 0 with the set as it was. Its form is the host's; here groups
    /// "(id)" back to back, for example (1)(2)(500), which the library reads by itself before it asks.
    static int parseParameterIdList(const std::string& text, std::set<int>& ids);
};
