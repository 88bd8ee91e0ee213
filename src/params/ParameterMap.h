#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace sensorcontrol {

struct ParameterValue {
    int id;
    int value;
};

/// Values by id, ascending. Keeps its memory over clear and reads the text form by itself, so that a set that is loaded
/// again and again costs no allocation.
class ParameterMap {
public:
    using const_iterator = std::vector<ParameterValue>::const_iterator;

    const_iterator begin() const { return m_Values.begin(); }
    const_iterator end() const { return m_Values.end(); }
    void clear() { m_Values.clear(); }

    /// end() if the id is absent.
    const_iterator find(int id) const;
    /// The entry with the next higher id, whether the id is there or not.
    const_iterator above(int id) const;

    /// Replaces the value of the id, or inserts it.
    void set(int id, int value);

    /// Adds the groups of a parameter string, of a repeated id the last one. False if the text is none: then the map
    /// stays as it was.
    bool add(const std::string& text);

    /// The values as a parameter string, into a string whose memory is used again.
    void print(std::string& text) const;

private:
    void restoreOrder(std::size_t ordered);

    std::vector<ParameterValue> m_Values;
};

} // namespace sensorcontrol
