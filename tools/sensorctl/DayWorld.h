#pragma once

#include "BlockPort.h"
#include "PipelineReadings.h"
#include "TargetOptions.h"
#include "TimeOfDay.h"
#include "host/SafePointer.h"
#include "host/linux/MemoryGpio.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sensorctl {

/// Light of the sky over a day: night, twilight around the two times, most at noon between them.
class Sky {
public:
    explicit Sky(const DaySpan& light) : m_Light(light) {}

    double lux(double minutes) const;
    bool isLight(double minutes) const { return minutes >= m_Light.from && minutes < m_Light.to; }

private:
    DaySpan m_Light;
};

/// What can be seen of a camera and its surroundings at a moment.
struct Sight {
    bool isLight = true;
    std::optional<bool> isDayPicture;
    std::optional<bool> isFilterIn; ///< infrared is kept out
    std::optional<int> lights;      ///< percent
    std::vector<Reading> readings;
};

/// A simulated camera front end in this process, for the simulated clock to drive.
class DayWorld {
public:
    static std::unique_ptr<DayWorld> create(const TargetOptions& options);
    virtual ~DayWorld() = default;

    virtual SafePointer<IUARTController> port() = 0;
    SafePointer<IGPIO> pins() const { return m_pGpio; }
    virtual void setSky(double lux, bool isLight) = 0;
    virtual Sight look() = 0;
    /// What the automatic day/night decision goes by just now; `since` tells when the sky changed last.
    virtual std::string cause(const std::string& since) const = 0;

protected:
    SafePointer<sensorhost::MemoryGpio> m_pGpio{new sensorhost::MemoryGpio};
};

} // namespace sensorctl
