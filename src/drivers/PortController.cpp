#include "drivers/PortController.h"

#include "controller/DriverServices.h"
#include "drivers/FramePattern.h"
#include "drivers/ITrellisZoomSensorController.h"
#include "drivers/PortBringUp.h"
#include "drivers/SerialLine.h"
#include "host/ScopedLock.h"

namespace sensorcontrol {

template <class Base>
SerialLine PortController<Base>::line() {
    return {*this,
            *this->m_pUARTController,
            this->m_nUartHandle,
            DriverServices::lineMutex(*this),
            {this->m_pRecvBuffer.get(), Base::ReceiveBufferSize}};
}

template <class Base>
void PortController<Base>::drainPort() {
    sensorhost::ScopedLock lock(DriverServices::lineMutex(*this));
    this->clearUartBuffer();
}

template <class Base>
int PortController<Base>::readDevice(ModuleKeys& keys, std::string& deviceName) {
    const PortRecipe& recipe = this->m_Model.port;
    return keys.parseDetail() && keys.detail(recipe.key, deviceName, recipe.deviceFailure) &&
                   keys.detailNumber("isInfrared", this->m_nInfrared, "get isInfrared from detail failed")
               ? 1
               : 0;
}

template <class Base>
int PortController<Base>::readLine(ModuleKeys& keys, std::string& lineText) {
    const PortRecipe& recipe = this->m_Model.port;
    return keys.parseParameters() && keys.parameter(recipe.key, lineText, recipe.lineFailure) ? 1 : 0;
}

template <class Base>
int PortController<Base>::openDevice(ModuleKeys& keys, const std::string& deviceName) {
    std::string lineText;
    return readLine(keys, lineText) && openPort(*this, *this->m_pUARTController, this->m_Model.port, deviceName,
                                                lineText, this->m_nUartHandle)
               ? 1
               : 0;
}

template <class Base>
int PortController<Base>::send(const FramePattern& frame, int value) {
    const FramePattern::Frame bytes = frame.build(value);
    return this->m_Model.transmit(*this, bytes.data(), static_cast<int>(frame.size()));
}

template <class Base>
int PortController<Base>::sendUnanswered(const FramePattern& frame) {
    const FramePattern::Frame bytes = frame.build(0);
    return sendRaw(line(), {bytes.data(), frame.size()});
}

template class PortController<ISensorController>;
template class PortController<ITrellisZoomSensorController>;

} // namespace sensorcontrol
