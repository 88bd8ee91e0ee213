// Mask frames have four bytes: A1, operation, region or size step, FF. The unit echoes each:
//     choose region 5:  A1 00 05 FF  ->  A1 00 05 FF
//     show it:          A1 04 05 FF  ->  A1 04 05 FF
//     make it wider:    A1 20 01 FF  ->  A1 20 01 FF

#include "drivers/ITrellisZoomSensorController.h"

#include "drivers/Exchange.h"

namespace {

using namespace sensorcontrol;

enum MaskOperation {
    ChooseRegion = 0x00,
    SetMask = 0x01,
    ShowMask = 0x04,
    HideMask = 0x05,
    ClearMask = 0x06,
    ClearAllMask = 0x07,
    ChangeSize = 0x20,
};

enum SizeStep { Wider = 0x01, Narrower = 0x02, Higher = 0x03, Lower = 0x04 };

constexpr ExchangeRule MaskRule{.link = {.timeout = 5, .accepts = isEcho}, .name = "BRSendParam"};

} // namespace

ITrellisZoomSensorController::ITrellisZoomSensorController(int moduleType) : ISensorController(moduleType) {}

ITrellisZoomSensorController::~ITrellisZoomSensorController() { stopDNChangeThread(); }

int ITrellisZoomSensorController::getMirrorValue(int& value) {
    value = 0;
    return 1;
}

int ITrellisZoomSensorController::getParameterFromSensor(int, int&) { return 1; }

int ITrellisZoomSensorController::setParameterToSensor(int, int) { return 1; }

int ITrellisZoomSensorController::setSensorVideoSystem(int, const VideoResolution&) { return 1; }

int ITrellisZoomSensorController::initController(int, const ModuleConfigure&) { return 1; }

int ITrellisZoomSensorController::setRegion(int region) {
    if (region != 0 && m_bisInited && !sendMaskFrame(ChooseRegion, region, "setRegion failed"))
        return 0;
    m_nRegion = region;
    return 1;
}

int ITrellisZoomSensorController::getRegion(int& region) {
    region = 0;
    return 1;
}

int ITrellisZoomSensorController::setMask() { return sendToRegion(SetMask, "setMask failed"); }

int ITrellisZoomSensorController::showMask() { return sendToRegion(ShowMask, "showMask failed"); }

int ITrellisZoomSensorController::hideMask() { return sendToRegion(HideMask, "hideMask failed"); }

int ITrellisZoomSensorController::clearMask() { return sendToRegion(ClearMask, "clearMask failed"); }

int ITrellisZoomSensorController::clearAllMask() {
    return sendMaskFrame(ClearAllMask, m_nRegion, "clearAllMask failed");
}

int ITrellisZoomSensorController::increaseWidth() { return sendSize(Wider, "increaseWidth failed"); }

int ITrellisZoomSensorController::decreaseWidth() { return sendSize(Narrower, "decreaseWidth failed"); }

int ITrellisZoomSensorController::increaseHight() { return sendSize(Higher, "increaseHight failed"); }

int ITrellisZoomSensorController::decreaseHight() { return sendSize(Lower, "decreaseHight failed"); }

int ITrellisZoomSensorController::sendToRegion(int operation, const char* failure) {
    return isRegionChosen() ? sendMaskFrame(operation, m_nRegion, failure) : 0;
}

int ITrellisZoomSensorController::sendSize(int step, const char* failure) {
    return isRegionChosen() ? sendMaskFrame(ChangeSize, step, failure) : 0;
}

bool ITrellisZoomSensorController::isRegionChosen() {
    if (m_nRegion != 0)
        return true;
    ErrorPrintf("0==m_nRegion");
    return false;
}

int ITrellisZoomSensorController::sendMaskFrame(int operation, int operand, const char* failure) {
    const char frame[] = {'\xa1', static_cast<char>(operation), static_cast<char>(operand), '\xff'};
    if (BRSendParam(frame, sizeof frame))
        return 1;
    ErrorPrintf("%s", failure);
    return 0;
}

int ITrellisZoomSensorController::BRSendParam(const char* command, int length) {
    const SerialLine line{
        *this, *m_pUARTController, m_nUartHandle, m_UartMutex, {m_pRecvBuffer.get(), ReceiveBufferSize}};
    return exchange(line, MaskRule, command, length, length);
}
