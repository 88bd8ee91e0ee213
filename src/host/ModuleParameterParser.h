#pragma once

#include "host/Export.h"

#include <map>
#include <string>

/// Reads a text of key=value pairs separated by ';'. Blanks around keys are ignored, values stand as they are up to
/// the next ';'.
class SENSORHOST_API ModuleParameterParser {
public:
    /// 1, or 0 for a pair without '=' or with an empty key. The empty text parses and has no keys.
    int parse(const std::string& text);

    /// 1 and the value of the key, or 0 with `value` untouched.
    int getValue(const std::string& key, std::string& value) const;

private:
    std::map<std::string, std::string> m_Values;
};
