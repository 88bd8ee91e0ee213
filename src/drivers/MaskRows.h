#pragma once

#include "drivers/ITrellisZoomSensorController.h"
#include "drivers/ParameterRow.h"

#include <array>

namespace sensorcontrol {

/// The parameters of the mask unit. Its operations log their failures themselves.
inline constexpr auto MaskRows = std::to_array<ParameterRow>({
    {.id = 65,
     .name = "Region",
     .kind = IdManager::KeepDefault,
     .set = call<&ITrellisZoomSensorController::setRegion>,
     .setFailure = Silent,
     .factory = 0},
    {.id = 66,
     .name = "setMask",
     .kind = IdManager::SetOnly,
     .set = run<&ITrellisZoomSensorController::setMask>,
     .setFailure = Silent},
    {.id = 67,
     .name = "showMask",
     .kind = IdManager::SetOnly,
     .set = run<&ITrellisZoomSensorController::showMask>,
     .setFailure = Silent},
    {.id = 68,
     .name = "hideMask",
     .kind = IdManager::SetOnly,
     .set = run<&ITrellisZoomSensorController::hideMask>,
     .setFailure = Silent},
    {.id = 69,
     .name = "clearMask",
     .kind = IdManager::SetOnly,
     .set = run<&ITrellisZoomSensorController::clearMask>,
     .setFailure = Silent},
    {.id = 70,
     .name = "clearAllMask",
     .kind = IdManager::SetOnly,
     .set = run<&ITrellisZoomSensorController::clearAllMask>,
     .setFailure = Silent},
    {.id = 71,
     .name = "increaseWidth",
     .kind = IdManager::SetOnly,
     .set = run<&ITrellisZoomSensorController::increaseWidth>,
     .setFailure = Silent},
    {.id = 72,
     .name = "decreaseWidth",
     .kind = IdManager::SetOnly,
     .set = run<&ITrellisZoomSensorController::decreaseWidth>,
     .setFailure = Silent},
    {.id = 73,
     .name = "increaseHight",
     .kind = IdManager::SetOnly,
     .set = run<&ITrellisZoomSensorController::increaseHight>,
     .setFailure = Silent},
    {.id = 74,
     .name = "decreaseHight",
     .kind = IdManager::SetOnly,
     .set = run<&ITrellisZoomSensorController::decreaseHight>,
     .setFailure = Silent},
});

} // namespace sensorcontrol
