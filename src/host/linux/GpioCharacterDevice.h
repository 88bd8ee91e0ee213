#pragma once

#include "host/Export.h"
#include "host/IGPIO.h"

#include <memory>

namespace sensorhost {

/// The machine's GPIO lines: group n is /dev/gpiochipN, the pin the line's offset on it. A line is requested at its
/// first use, as an output by setValue and as an input by getValue, and kept; a line driven as an output can be read.
class SENSORHOST_API GpioCharacterDevice final : public IGPIO {
public:
    GpioCharacterDevice();
    /// Gives the lines back.
    ~GpioCharacterDevice() override;
    GpioCharacterDevice(const GpioCharacterDevice&) = delete;
    GpioCharacterDevice& operator=(const GpioCharacterDevice&) = delete;

    int enable() override;
    /// Gives the lines back; the next use requests them again.
    int disable() override;
    int setValue(int group, int pin, int value) override;
    int getValue(int group, int pin, int& value) override;

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

} // namespace sensorhost
