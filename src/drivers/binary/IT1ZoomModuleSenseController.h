#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/binary/IBaseIT1SenseController.h"

/// The IT1 camera block with a zoom lens, module 9. The lens is on a port of its own and answers nothing.
class SENSORCONTROL_API IT1ZoomModuleSenseController final : public IBaseIT1SenseController {
public:
    static constexpr int ModuleIds[] = {9};
    static constexpr sensorcontrol::ControllerTraits Traits{};

    IT1ZoomModuleSenseController();
    ~IT1ZoomModuleSenseController() override;

    static const sensorcontrol::ModelDescription& model();

    /// 1 or 2.
    int setFocusMode(int mode) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;

    /// 1 to 4: 5 cm, 1 m, 2 m, 3 m.
    int setAutoFocus(int distance);
    /// The value is not looked at.
    int setAdjustLens(int value);

private:
    SENSORCONTROL_LOCAL int sendToLens(const sensorcontrol::FramePattern& frame);

    int m_nRS485Handle = -1;
};
