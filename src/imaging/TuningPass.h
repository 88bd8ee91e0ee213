#pragma once

#include "host/BRMutex.h"

#include <atomic>
#include <string>

class EE;
class ISPParam;

namespace sensorcontrol {

/// Gives the on-chip pipeline what the tuning table has for the present light, and no value twice. Beside the table
/// stands the temporal noise filter as a parameter of the user, whose mode can take the filter away from the table. Any
/// thread may call it: its lock covers the table, and the filter from the look at its mode to the last value sent,
/// because the table must not open what the user closes.
class TuningPass {
public:
    /// What it works on. It belongs to the controller, where others can look at it.
    struct State {
        ISPParam& table;
        EE& edgeEnhancement;
        std::atomic<int>& lastA0;
        std::atomic<int>& lastTM;
        std::atomic<int>& lastDC;
        std::atomic<int>& lastEE;
        std::atomic<int>& filterMode;
        std::atomic<int>& filterValue;
        std::atomic<bool>& isRealTime; ///< the file is read again on every pass
        std::atomic<int>& seconds;     ///< between two passes, as the file has it
    };

    static constexpr const char* DayNightType = "DN"; ///< key 1 day, 0 night
    static constexpr const char* GainType = "GAIN";   ///< key as the module gives its gain

    /// `edgesByTable`: whether the table drives the edge enhancement; `edgesOffWithFilter`: whether that is off while
    /// the filter is.
    TuningPass(const State& state, bool edgesByTable, bool edgesOffWithFilter)
        : m_State(state), m_bEdgesByTable(edgesByTable), m_bEdgesOffWithFilter(edgesOffWithFilter) {}

    /// Reads the tuning file; without a readable one the table is empty and the result 0.
    int load();
    bool isEnabled(const std::string& type);

    // What the table has for a key, as far as it differs from what went out last. Always 1.
    int applyFilter(const std::string& type, int key);
    int applyDC(const std::string& type, int key);
    int applyEdges(const std::string& type, int key);

    /// Strength 1 to 100; 0 turns the filter off. Always 1.
    int setFilter(int value);
    /// 1: off; 2: the strength set last; any other: the table drives it. Always 1.
    int setFilterMode(int mode);

private:
    bool look(const std::string& type, const char* name, int key, int& value) const SENSOR_REQUIRES(m_Mutex);
    void sendFilter(int value) SENSOR_REQUIRES(m_Mutex);

    const State m_State;
    const bool m_bEdgesByTable;
    const bool m_bEdgesOffWithFilter;
    BRMutex m_Mutex;
};

} // namespace sensorcontrol
