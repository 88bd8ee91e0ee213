#pragma once

#include "host/Export.h"

#include <cstddef>
#include <vector>

namespace sensorhost {

struct ParameterValue {
    int id;
    int value;
    bool operator==(const ParameterValue&) const = default;
};

/// Values by id, ascending. Keeps its memory over clear, so that a set that is loaded again and again costs no
/// allocation.
class SENSORHOST_API ParameterMap {
public:
    using const_iterator = std::vector<ParameterValue>::const_iterator;

    const_iterator begin() const { return m_Values.begin(); }
    const_iterator end() const { return m_Values.end(); }
    std::size_t size() const { return m_Values.size(); }
    bool empty() const { return m_Values.empty(); }
    void clear() { m_Values.clear(); }

    /// end() if the id is absent.
    const_iterator find(int id) const;

    /// Replaces the value of the id, or inserts it.
    void set(int id, int value);

    /// Adds values to the map in the order given: of a repeated id the last one stands. `fill` appends to the vector
    /// and says whether all went well; if not, the map stays as it was.
    template <class Fill>
    bool append(Fill fill) {
        const std::size_t before = m_Values.size();
        if (fill(m_Values)) {
            restoreOrder(before);
            return true;
        }
        m_Values.erase(m_Values.begin() + static_cast<std::ptrdiff_t>(before), m_Values.end());
        return false;
    }

private:
    void restoreOrder(std::size_t ordered);

    std::vector<ParameterValue> m_Values;
};

} // namespace sensorhost
