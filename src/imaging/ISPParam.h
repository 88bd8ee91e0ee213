#pragma once

#include "imaging/ISPParamUnit.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/// The tuning table: for each type of light situation ("DN", "GAIN") the units in file order, and whether the type
/// takes part. Without a lock: after the controller's start its background thread alone touches it. A look-up allocates
/// nothing as long as the names are short ones.
class ISPParam {
public:
    /// Inserts or replaces. Always 1.
    int setEnableFlag(const std::string& type, bool flag);
    /// 1 and the flag, or 0 with `flag` as it was: the table knows no such type.
    int getEnableFlag(const std::string& type, bool& flag) const;

    /// Adds one value to a unit, which the first value of a unit creates with its span [min, max). Later values leave
    /// the span alone. Always 1.
    int setParam(const std::string& type, const std::string& unit, int min, int max, const std::string& name,
                 int value);

    /// The value of a name in the first unit that covers the key. 0 with `value` as it was if no unit does, or if that
    /// one lacks the name: no later unit stands in for it.
    int getParam(const std::string& type, const std::string& name, int key, int& value) const;

    void clear();

private:
    struct Type {
        std::vector<ISPParamUnit> units;
        std::map<std::string, std::size_t> positions; ///< by name: a file may have thousands
    };

    std::map<std::string, Type> m_Units;
    std::map<std::string, bool> m_EnableFlags;
};
