#pragma once

#include "host/BRMutex.h"

#include <string>

namespace sensorcontrol {

/// Which parameter scheme was chosen and in which mode, in the device's small XML file. A change reads and rewrites the
/// file: the thread's scheme and the host's mode must not undo each other, so every call is one step. 1 or 0.
class SchemeChoice {
public:
    static constexpr const char* IndexName = "SchemeIndex";
    static constexpr const char* ModeName = "SchemeMode";

    /// An empty file, which a power cut in the moment of its creation leaves, is as good as none.
    bool isThere();
    bool mayBeRead();
    bool isSound();

    /// Makes the file unless it is there; `makeAnew`: also then.
    int create(int scheme, int mode, bool makeAnew);

    /// The values by name as the file has them. 0 for a name that it lacks.
    int setValue(const std::string& name, const std::string& value);
    int getValue(const std::string& name, std::string& value);
    /// A value that is a whole number; any other is none.
    int getNumber(const char* name, int& number);

private:
    BRMutex m_Mutex;
};

} // namespace sensorcontrol
