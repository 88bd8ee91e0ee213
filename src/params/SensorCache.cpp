#include "params/SensorCache.h"

#include "host/ScopedLock.h"
#include "host/SensorParameterParser.h"

#include <cstdio>

using sensorhost::ScopedLock;

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

int SensorCache::setSensorValues(const std::string& text) {
    ScopedLock lock(m_Mutex);
    if (!SensorParameterParser::parseSensorParameter(text, m_Values)) {
        std::puts("parseSensorParameter failed");
        return 0;
    }
    return 1;
}

int SensorCache::getAllSensorValues(std::string& text) const {
    ScopedLock lock(m_Mutex);
    SensorParameterParser::createSensorParameterString(m_Values, text);
    return 1;
}

int SensorCache::getSensorValues(const std::set<int>& ids, std::string& text) const {
    ScopedLock lock(m_Mutex);
    return collect(ids, text);
}

int SensorCache::getSensorValues(const std::string& ids, std::string& text) const {
    ScopedLock lock(m_Mutex);
    if (!SensorParameterParser::parseParameterIdList(ids, m_Ids)) {
        std::printf("________SensorParameterParser::parseParameterIdList(%s) failed\n", ids.c_str());
        return 0;
    }
    return collect(m_Ids, text);
}

template <class Ids>
int SensorCache::collect(const Ids& ids, std::string& text) const {
    m_Selection.clear();
    for (const int id : ids) {
        const auto found = m_Values.find(id);
        if (found == m_Values.end())
            return 0;
        m_Selection.set(id, found->value);
    }
    SensorParameterParser::createSensorParameterString(m_Selection, text);
    return 1;
}

void SensorCache::clear() {
    ScopedLock lock(m_Mutex);
    m_Values.clear();
    m_nCursor = 0;
}

int SensorCache::getFirstIdValue(int& id, int& value) {
    ScopedLock lock(m_Mutex);
    m_nCursor = 0;
    return giveAtCursor(id, value);
}

int SensorCache::getNextIdValue(int& id, int& value) {
    ScopedLock lock(m_Mutex);
    ++m_nCursor;
    return giveAtCursor(id, value);
}

int SensorCache::giveAtCursor(int& id, int& value) const {
    if (m_nCursor >= m_Values.size())
        return 0;
    const auto at = m_Values.begin() + static_cast<std::ptrdiff_t>(m_nCursor);
    id = at->id;
    value = at->value;
    return 1;
}
