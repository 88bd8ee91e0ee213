#pragma once

#include "drivers/ITrellisZoomSensorController.h"
#include "drivers/visca/ViscaController.h"

namespace sensorcontrol {

/// What the CMD blocks share, on top of either base class.
template <class Base>
class SENSORCONTROL_API CmdController : public ViscaLensController<Base> {
public:
    /// 0 off, 1 left-right, 2 up-down, 3 both; the row of a model says what it thinks of others.
    int setMirror(int mirror);
    /// As the base's modes, but 0 too leaves the choice to the block.
    int setDayNightMode(int mode) override;
    int NotifySensorInitComplate() override;

protected:
    using ViscaLensController<Base>::ViscaLensController;

    /// Lets the brightness count; the end of a start.
    SENSORCONTROL_LOCAL int openBrightness();

    int m_nGeneration = 3; ///< of the block, from the module keys; selects the mirror commands
};

} // namespace sensorcontrol
