#include "drivers/regtext/HitachController.h"

#include "drivers/ITrellisZoomSensorController.h"
#include "drivers/ParameterTable.h"
#include "drivers/regtext/HitachRows.h"

#include <cstdio>

namespace sensorcontrol {

namespace {

using regtext::write;

constexpr int LastCameraMode = 4;
constexpr int LastFocusMode = 4;

constexpr Step FocusModes[] = {
    {.when = oneOf(0), .frame = write(0xf8e0, 0x00)},  {.when = oneOf(0), .frame = write(0xff0e, 0x08)},
    {.when = anyBut(0), .frame = write(0xff0e, 0x00)}, {.when = anyBut(0), .frame = write(0xf8e0, 0x00)},
    {.when = oneOf(2), .frame = write(0xf8e0, 0x05)},  {.when = oneOf(3), .frame = write(0xf8e0, 0x03)},
    {.when = oneOf(4), .frame = write(0xf8e0, 0x01)},
};

} // namespace

template <class Base>
int HitachController<Base>::setCameraMode(int mode) {
    if (mode < 0 || mode > LastCameraMode ||
        !ParameterTable::sendSteps(*this, this->m_Model, hitach::CameraModeSteps, mode))
        return 0;
    if (mode == hitach::FixShutterMode) {
        int shutter = 0;
        if (!this->getParameter(hitach::FixShutterId, shutter))
            return 0;
        const int number = getFixShutterValue(shutter);
        if (number < 0 || !this->send(write(hitach::FixShutterRegister), number))
            return 0;
    }
    std::printf("set cameramode %d \n", mode);
    m_nCameraMode = mode;
    return 1;
}

template <class Base>
int HitachController<Base>::setFocusMode(int mode) {
    return mode >= 0 && ParameterTable::sendSteps(*this, this->m_Model, FocusModes, mode) && mode <= LastFocusMode ? 1
                                                                                                                   : 0;
}

template <class Base>
int HitachController<Base>::getFixShutterValue(int shutter) {
    return hitach::FixShutters.contains(shutter) ? hitach::FixShutterNumber(shutter) : -1;
}

template <class Base>
int HitachController<Base>::getDNbody() {
    this->pollStatus(regtext::StatusRead, 0, 1, "recvData @getDNbody failed");
    return 0;
}

template class HitachController<ISensorController>;
template class HitachController<ITrellisZoomSensorController>;

} // namespace sensorcontrol
