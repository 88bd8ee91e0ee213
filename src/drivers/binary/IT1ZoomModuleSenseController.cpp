// The lens takes VISCA frames:
//     focus mode 1:        81 01 04 38 02 FF
//     auto focus at 5 cm:  81 01 04 B1 04 FF
// Nothing comes back.

#include "drivers/binary/IT1ZoomModuleSenseController.h"

#include "drivers/PortBringUp.h"
#include "drivers/SerialLine.h"
#include "drivers/TableEdits.h"
#include "drivers/TableProof.h"
#include "drivers/binary/IT1Rows.h"
#include "host/BreltoTime.h"
#include "host/ModuleConfigure.h"
#include "host/ScopedLock.h"

#include <cstdio>

namespace {

using namespace sensorcontrol;
using Block = IT1ZoomModuleSenseController;

constexpr int FocusModeId = 21;

/// The lens answers nothing, so there is nothing to wait for.
/// Set without a wait, but read with that of the parameters of the block.
int readAsTheOthers(ISensorController&, int& value) {
    value = 0;
    BreltoTime::wait(BreltoTime(0, 100000));
    return 1;
}

constexpr auto LensRows = std::to_array<ParameterRow>({
    {.id = 20, .name = "AutoFocus", .accepts = range(1, 4), .set = call<&Block::setAutoFocus>, .factory = 4, .wait = 0},
    {.id = FocusModeId,
     .name = "FocusMode",
     .accepts = range(1, 2),
     .set = call<&Block::setFocusMode>,
     .factory = 2,
     .wait = 0},
    {.id = 22,
     .name = "AdjustLens",
     .kind = IdManager::SetOnly,
     .set = call<&Block::setAdjustLens>,
     .get = readAsTheOthers,
     .wait = 0},
});

constexpr auto Rows = joined(without<20, 22>(it1::Rows), LensRows);
static_assert(isWellFormed(Rows));

constexpr ModelDescription Description = it1::describe("IT1ZoomModuleSenseController", Rows, FocusModeId);

constexpr PortRecipe LensPort{.key = "RS485",
                              .deviceFailure = "get RS485DeviceName from detail failed",
                              .openFailure = "RS485 uart open(%s) failed",
                              .settingFailure = "RS485 setParameter failed(%s,%d,%d,%d,%d)"};

constexpr FramePattern lensFrame(int selector, int value) {
    return FramePattern(0x81, 0x01, 0x04, selector, value, 0xff);
}

} // namespace

IT1ZoomModuleSenseController::IT1ZoomModuleSenseController() : IBaseIT1SenseController(9, Description) {}

IT1ZoomModuleSenseController::~IT1ZoomModuleSenseController() { stopThreads(); }

const ModelDescription& IT1ZoomModuleSenseController::model() { return Description; }

int IT1ZoomModuleSenseController::initController(int videoSystem, const ModuleConfigure& configure) {
    m_bisZoomModule = true;
    if (!IBaseIT1SenseController::initController(videoSystem, configure)) {
        ErrorPrintf("baseIT1SenseController init failed ");
        return 0;
    }
    ModuleKeys keys(*this, configure);
    std::string device;
    std::string lineText;
    if (!keys.parseDetail() || !keys.detail(LensPort.key, device, LensPort.deviceFailure) || !keys.parseParameters() ||
        !keys.parameter(LensPort.key, lineText, LensPort.lineFailure) ||
        !openPort(*this, *m_pUARTController, LensPort, device, lineText, m_nRS485Handle))
        return 0;
    // What the base class sends of its own, the end of pan and tilt, is the lens's too: on the block's port it would
    // be the beginning of a frame.
    m_nUartHandle = m_nRS485Handle;
    return 1;
}

int IT1ZoomModuleSenseController::setAutoFocus(int distance) {
    switch (distance) {
    case 1:
        std::puts("auto focus 5cm");
        return sendToLens(lensFrame(0xb1, 0x04));
    case 2:
        std::puts("auto focus 1m ");
        return sendToLens(lensFrame(0xb1, 0x00));
    case 3:
        std::puts("auto focus 2m ");
        return sendToLens(lensFrame(0xb1, 0x01));
    case 4:
        std::puts("auto focus 3m ");
        return sendToLens(lensFrame(0xb1, 0x02));
    default:
        return 0;
    }
}

int IT1ZoomModuleSenseController::setFocusMode(int mode) {
    switch (mode) {
    case 1:
        return sendToLens(lensFrame(0x38, 0x02));
    case 2:
        return sendToLens(lensFrame(0x18, 0x01));
    default:
        return 0;
    }
}

int IT1ZoomModuleSenseController::setAdjustLens(int) { return sendToLens(lensFrame(0xb1, 0x03)); }

int IT1ZoomModuleSenseController::sendToLens(const FramePattern& frame) {
    const FramePattern::Frame bytes = frame.build(0);
    const int length = static_cast<int>(frame.size());
    const SerialLine lens{*this, *m_pUARTController, m_nRS485Handle, m_UartMutex, {}};
    const sensorhost::ScopedLock lock(lens.mutex);
    const int sent = sendRaw(lens, {bytes.data(), frame.size()});
    if (sent == length)
        return 1;
    ErrorPrintf("send data failed nRet=%d", sent);
    return 0;
}
