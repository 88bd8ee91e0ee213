#include "drivers/TableController.h"

#include "drivers/ITrellisZoomSensorController.h"
#include "drivers/ParameterTable.h"
#include "drivers/PortBringUp.h"

namespace sensorcontrol {

template <class Base>
TableController<Base>::TableController(int moduleType, const ModelDescription& model)
    : Base(moduleType), m_Model(model) {
    ParameterTable::registerIds(*this->m_pIdManager, model);
    this->setSensorConfigVersion(model.version);
    this->setSensorConfigVersion2(model.subVersion);
}

template <class Base>
TableController<Base>::~TableController() {
    this->stopDNChangeThread();
}

template <class Base>
int TableController<Base>::getMirrorValue(int& value) {
    return m_Model.mirrorId >= 0 ? this->getParameter(m_Model.mirrorId, value) : 0;
}

template <class Base>
int TableController<Base>::setFocusMode(int mode) {
    return m_Model.focusModeId >= 0 ? apply(m_Model.focusModeId, mode) : Base::setFocusMode(mode);
}

template <class Base>
int TableController<Base>::getFocusMode(int& mode) {
    return m_Model.focusModeId >= 0 ? ParameterTable::factoryValue(m_Model, m_Model.focusModeId, mode)
                                    : Base::getFocusMode(mode);
}

template <class Base>
int TableController<Base>::getDayNightMode(int& mode) {
    return m_Model.dayNightModeId >= 0 ? ParameterTable::factoryValue(m_Model, m_Model.dayNightModeId, mode)
                                       : Base::getDayNightMode(mode);
}

template <class Base>
int TableController<Base>::getParameterFromSensor(int id, int& value) {
    return ParameterTable::get(*this, m_Model, id, value);
}

template <class Base>
int TableController<Base>::setParameterToSensor(int id, int value) {
    return ParameterTable::set(*this, m_Model, id, value);
}

template <class Base>
int TableController<Base>::apply(int id, int value) {
    return ParameterTable::apply(*this, m_Model, id, value);
}

template <class Base>
int TableController<Base>::resend(std::span<const Resend> then, int value) {
    return ParameterTable::resend(*this, m_Model, then, value);
}

template <class Base>
int TableController<Base>::parseFilterPin(const std::string& text) {
    const int count = parsePin(text, this->m_nFilterGPIOGroup, this->m_nFilterGPIOPin, this->m_nFilterGPIOLevel);
    if (count == 3)
        return 1;
    this->ErrorPrintf("parse GPIO param failed,nRet=%d", count);
    return 0;
}

template <class Base>
void TableController<Base>::readInfraredKeys(ModuleKeys& keys) {
    int isNewInfrared = 0;
    keys.optionalDetailNumber("isNewInfrared", isNewInfrared, "get isNewInfrared from detail failed");
    this->m_bNewInfrared = isNewInfrared != 0;
    std::string pin;
    if (keys.optionalDetail("GPIOInfraredLight", pin, "get GPIOInfraredLight from detail failed"))
        parsePin(pin, this->m_nInfraredGPIOGroup, this->m_nInfraredGPIOPin, this->m_nInfraredGPIOLevel);
    if (keys.optionalDetail("GPIODNLevel", pin, "get GPIODNLevel from detail failed"))
        parsePin(pin, this->m_nDNLevelGPIOGroup, this->m_nDNLevelGPIOPin, this->m_nDNLevelGPIOLevel);
}

template class TableController<ISensorController>;
template class TableController<ITrellisZoomSensorController>;

} // namespace sensorcontrol
