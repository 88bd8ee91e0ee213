#include "imaging/ISPParam.h"

int ISPParam::setEnableFlag(const std::string& type, bool flag) {
    m_EnableFlags[type] = flag;
    return 1;
}

int ISPParam::getEnableFlag(const std::string& type, bool& flag) const {
    const auto found = m_EnableFlags.find(type);
    if (found == m_EnableFlags.end())
        return 0;
    flag = found->second;
    return 1;
}

int ISPParam::setParam(const std::string& type, const std::string& unit, int min, int max, const std::string& name,
                       int value) {
    Type& table = m_Units[type];
    const auto [position, isNew] = table.positions.try_emplace(unit, table.units.size());
    if (isNew) {
        ISPParamUnit& added = table.units.emplace_back();
        added.setName(unit);
        added.setMin(min);
        added.setMax(max);
    }
    return table.units[position->second].setParam(name, value);
}

int ISPParam::getParam(const std::string& type, const std::string& name, int key, int& value) const {
    const auto found = m_Units.find(type);
    if (found == m_Units.end())
        return 0;
    for (const ISPParamUnit& unit : found->second.units)
        if (unit.covers(key))
            return unit.getParam(name, value);
    return 0;
}

void ISPParam::clear() {
    m_Units.clear();
    m_EnableFlags.clear();
}
