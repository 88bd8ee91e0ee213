#pragma once

#include "host/BRMutex.h"
#include "host/Export.h"
#include "params/ParameterMap.h"

#include <set>
#include <string>
#include <vector>

/// Parameter values by id, one at a time or as a parameter string. Every call is atomic; an iteration is not, its user
/// keeps other iterations and clear away. 1 is success, 0 failure; on failure arguments stay as they were.
class SENSORCONTROL_API SensorCache {
public:
    SensorCache() = default;
    SensorCache(const SensorCache&) = delete;
    SensorCache& operator=(const SensorCache&) = delete;

    /// Replaces or inserts a value. Always 1.
    int setSensorValue(int id, int value);
    int getSensorValue(int id, int& value) const;
    /// 1 if the id is there with this very value.
    int isEqualToCache(int id, int value) const;

    /// Adds the values of a parameter string to what is there. 0 if the text is none: then nothing changed.
    int setSensorValues(const std::string& text);

    /// The parameter string of everything. Always 1.
    int getAllSensorValues(std::string& text) const;
    /// The parameter string of some ids. 0 if one of them is absent.
    int getSensorValues(const std::set<int>& ids, std::string& text) const;
    /// The same with the ids as a text, "(1)(2)". 0 also if the text is no such list.
    int getSensorValues(const std::string& ids, std::string& text) const;

    void clear();

    /// The value with the lowest id; 0 if there is none.
    int getFirstIdValue(int& id, int& value);
    /// The one with the next higher id than the last one given, also if values were stored meanwhile; 0 at the end.
    /// Only after getFirstIdValue gave 1.
    int getNextIdValue(int& id, int& value);

private:
    mutable BRMutex m_Mutex;
    sensorcontrol::ParameterMap m_Values SENSOR_GUARDED_BY(m_Mutex);
    int m_nCursor SENSOR_GUARDED_BY(m_Mutex) = 0; ///< the id given last
    /// Memory of a call, kept so that repeating it allocates nothing.
    mutable std::vector<int> m_Ids SENSOR_GUARDED_BY(m_Mutex);
};
