#pragma once

#include "drivers/regtext/RegisterTextController.h"

#include <atomic>

namespace sensorcontrol {

/// What the blocks with the Hitach register map share beside their table, on top of either base class.
template <class Base>
class SENSORCONTROL_API HitachController : public RegisterTextController<Base> {
public:
    /// 0 to 4: 2 and 3 take the stored day/night sensitivity into account, 4 the stored fixed shutter. 1 or 0; a
    /// failure can leave the block between two modes.
    int setCameraMode(int mode);
    /// 0 to 4. A larger mode is refused, but writes what comes first in mode 2.
    int setFocusMode(int mode) override;

    /// The register's value for a fixed shutter of 0 to 14; -1 for any other.
    static int getFixShutterValue(int shutter);

    int getDNbody() override;

protected:
    using RegisterTextController<Base>::RegisterTextController;

    std::atomic<int> m_nCameraMode{-1}; ///< written last with success, or read; -1: none yet
};

} // namespace sensorcontrol
