#pragma once

#include "host/Export.h"
#include "host/IGPIO.h"

#include <map>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

namespace sensorhost {

/// Pins in memory, for machines without any and for tests. Each pin holds the value written last, by the library or
/// by the program that plays the board.
class SENSORHOST_API MemoryGpio final : public IGPIO {
public:
    struct Write {
        double seconds; ///< host time
        int group;
        int pin;
        int value;
    };

    MemoryGpio();
    ~MemoryGpio() override;

    int enable() override;
    int disable() override;
    int setValue(int group, int pin, int value) override;
    int getValue(int group, int pin, int& value) override;

    /// Sets a pin from the board's side: it is no write and stands in no history.
    void setLevel(int group, int pin, int value);
    /// The value of a pin; 0 for one that was never set.
    int getLevel(int group, int pin) const;

    /// Makes setValue and getValue of a pin fail, or work again.
    void setFailing(int group, int pin, bool failing);
    /// Whether getValue fails for pins that were never set; they read as 0 otherwise, and at the start.
    void setUnknownFailing(bool failing);

    /// What setValue wrote, in order; the latest 10,000.
    std::vector<Write> getHistory() const;
    void clearHistory();

private:
    using Pin = std::pair<int, int>;

    mutable std::mutex m_Mutex;
    std::map<Pin, int> m_Levels;
    std::set<Pin> m_Failing;
    std::vector<Write> m_History;
    std::size_t m_nOldest = 0; ///< in the full history, which goes round
    bool m_bUnknownFailing = false;
};

} // namespace sensorhost
