#include "params/SensorCache.h"

#include "host/ScopedLock.h"
#include "host/SensorParameterParser.h"
#include "host/text/ParameterText.h"

#include <algorithm>
#include <cstdio>
#include <map>

using sensorcontrol::ParameterMap;
using sensorhost::ScopedLock;

namespace {

int give(ParameterMap::const_iterator at, ParameterMap::const_iterator end, int& cursor, int& id, int& value) {
    if (at == end)
        return 0;
    id = cursor = at->id;
    value = at->value;
    return 1;
}

template <class Ids>
int select(const ParameterMap& values, const Ids& ids, std::string& text) {
    for (const int id : ids) {
        if (values.find(id) == values.end())
            return 0;
    }
    text.clear();
    for (const int id : ids)
        sensorhost::text::appendGroup(id, values.find(id)->value, text);
    return 1;
}

} // namespace

int SensorCache::setSensorValue(int id, int value) {
    ScopedLock lock(m_Mutex);
    m_Values.set(id, value);
    return 1;
}

int SensorCache::getSensorValue(int id, int& value) const {
    ScopedLock lock(m_Mutex);
    const auto found = m_Values.find(id);
    if (found == m_Values.end())
        return 0;
    value = found->value;
    return 1;
}

int SensorCache::isEqualToCache(int id, int value) const {
    ScopedLock lock(m_Mutex);
    const auto found = m_Values.find(id);
    return found != m_Values.end() && found->value == value ? 1 : 0;
}

// What is no plain parameter string or list is the host's to read: its parser may know other forms.

int SensorCache::setSensorValues(const std::string& text) {
    ScopedLock lock(m_Mutex);
    if (m_Values.add(text))
        return 1;
    std::map<int, int> values;
    if (!SensorParameterParser::parseSensorParameter(text, values)) {
        std::puts("parseSensorParameter failed");
        return 0;
    }
    for (const auto& [id, value] : values)
        m_Values.set(id, value);
    return 1;
}

int SensorCache::getAllSensorValues(std::string& text) const {
    ScopedLock lock(m_Mutex);
    m_Values.print(text);
    return 1;
}

int SensorCache::getSensorValues(const std::set<int>& ids, std::string& text) const {
    ScopedLock lock(m_Mutex);
    return select(m_Values, ids, text);
}

int SensorCache::getSensorValues(const std::string& ids, std::string& text) const {
    ScopedLock lock(m_Mutex);
    m_Ids.clear();
    // Called under the lock that is held here.
    const auto add = [this](int id) SENSOR_UNCHECKED { m_Ids.push_back(id); };
    if (sensorhost::text::readIds(ids, add)) {
        std::sort(m_Ids.begin(), m_Ids.end());
        m_Ids.erase(std::unique(m_Ids.begin(), m_Ids.end()), m_Ids.end());
        return select(m_Values, m_Ids, text);
    }
    std::set<int> list;
    if (!SensorParameterParser::parseParameterIdList(ids, list)) {
        std::printf("________SensorParameterParser::parseParameterIdList(%s) failed\n", ids.c_str());
        return 0;
    }
    return select(m_Values, list, text);
}

void SensorCache::clear() {
    ScopedLock lock(m_Mutex);
    m_Values.clear();
}

int SensorCache::getFirstIdValue(int& id, int& value) {
    ScopedLock lock(m_Mutex);
    return give(m_Values.begin(), m_Values.end(), m_nCursor, id, value);
}

// By the id and not by place: a setter may store a derived value below it while the engine walks.
int SensorCache::getNextIdValue(int& id, int& value) {
    ScopedLock lock(m_Mutex);
    return give(m_Values.above(m_nCursor), m_Values.end(), m_nCursor, id, value);
}
