#pragma once

#include "controller/ControllerTraits.h"
#include "drivers/binary/IBaseIT1SenseController.h"

/// The IT1 camera block, module 2.
class SENSORCONTROL_API IT1SenseController final : public IBaseIT1SenseController {
public:
    static constexpr int ModuleIds[] = {2};
    static constexpr sensorcontrol::ControllerTraits Traits{};

    IT1SenseController();
    ~IT1SenseController() override;

    static const sensorcontrol::ModelDescription& model();
};
