#pragma once

#include <map>
#include <string>

/// The tuning values for one span of keys, by name. The span is half-open: min <= key < max. Nothing is checked: a unit
/// whose max is not above its min covers no key. Not for use by several threads at once.
/// The setters always give 1; so do the getters, except getParam.
class ISPParamUnit {
public:
    int setName(const std::string& name);
    int getName(std::string& name) const;
    int setMin(int min);
    int getMin(int& min) const;
    int setMax(int max);
    int getMax(int& max) const;

    /// Inserts a value, or replaces the one of that name.
    int setParam(const std::string& name, int value);
    /// 1 and the value, or 0 with `value` as it was.
    int getParam(const std::string& name, int& value) const;

    bool covers(int key) const { return m_nMin <= key && key < m_nMax; }

private:
    std::string m_strName;
    int m_nMin = 0;
    int m_nMax = 0;
    std::map<std::string, int> m_Values;
};
