#pragma once

#include "drivers/BitField.h"
#include "host/ScopedLock.h"

namespace sensorcontrol {

/// What a register holds that several settings share, as far as the driver knows. The lock goes over the change and the
/// frame that carries it: of two changes, the one that the module gets last has both. It is taken before the port's.
class ShadowRegister {
public:
    /// Puts `value` into the `width` bits from `first` on, and has `write(word)` tell the module. The bits stay changed
    /// if that fails. Gives its result.
    template <class Write>
    int change(int value, int first, int width, Write write) {
        const sensorhost::ScopedLock lock(m_Mutex);
        m_nWord = replaceBits(m_nWord, value, first, width);
        return write(m_nWord);
    }

    /// Has `read(word)` ask the module; a word that was read takes the place of what was known. 1 or 0.
    template <class Read>
    int refill(int& word, Read read) {
        const sensorhost::ScopedLock lock(m_Mutex);
        if (!read(word))
            return 0;
        m_nWord = word;
        return 1;
    }

private:
    BRMutex m_Mutex;
    int m_nWord SENSOR_GUARDED_BY(m_Mutex) = 0;
};

} // namespace sensorcontrol
