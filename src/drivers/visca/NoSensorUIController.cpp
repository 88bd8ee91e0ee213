#include "drivers/visca/NoSensorUIController.h"

#include "controller/DriverServices.h"
#include "drivers/PortBringUp.h"
#include "drivers/SerialLine.h"
#include "drivers/visca/ViscaFrames.h"
#include "host/BreltoTime.h"
#include "host/ModuleConfigure.h"
#include "host/ScopedLock.h"

#include <cstdio>

namespace {

using namespace sensorcontrol;

constexpr ModelDescription Description{
    .className = "NoSensorUIController",
    .rows = {},
    .port = {.lineTextFailure = "parse RS485 param failed,nRet=%d",
             .openFailure = "open uart (%s) failed",
             .outlet = Message::Console,
             .startedAs = "NoSenseUIController"},
};

constexpr int RefusedPause = 3; ///< seconds until the next question after one without an answer

} // namespace

NoSensorUIController::NoSensorUIController()
    : ISensorController(17), m_pDNThread(new GThread(bind(this, &NoSensorUIController::getDNbody), "getDN",
                                                     GThread::emptyFun, GThread::emptyFun)) {
    m_bDNThreadSwitch = false; // the block decides by itself
}

NoSensorUIController::~NoSensorUIController() {
    stopDNChangeThread();
    m_pDNThread->stop();
}

const ModelDescription& NoSensorUIController::model() { return Description; }

int NoSensorUIController::getMirrorValue(int&) { return 1; }

int NoSensorUIController::getParameterFromSensor(int, int&) { return 1; }

int NoSensorUIController::setParameterToSensor(int, int) { return 1; }

int NoSensorUIController::setSensorVideoSystem(int, const VideoResolution&) { return 1; }

int NoSensorUIController::NotifySensorInitComplate() { return 1; }

int NoSensorUIController::initFactorySetting() { return 1; }

int NoSensorUIController::initController(int, const ModuleConfigure& configure) {
    const PortRecipe& recipe = Description.port;
    std::printf("%s::init,ModuleConfigure is(%s,%s)\n", recipe.startedAs, configure.getDetail().c_str(),
                configure.getParameters().c_str());
    ModuleKeys keys(*this, configure, recipe.outlet);
    std::string deviceName;
    std::string lineText;
    if (!keys.parseDetail() || !keys.detail(recipe.key, deviceName, recipe.deviceFailure) || !keys.parseParameters() ||
        !keys.parameter(recipe.key, lineText, recipe.lineFailure) ||
        !openPort(*this, *m_pUARTController, recipe, deviceName, lineText, m_nUartHandle))
        return 0;
    m_pDNThread->start();
    return 1;
}

int NoSensorUIController::setParameterValue(const char* command, int length) {
    if (length < 0)
        return 0;
    sensorhost::ScopedLock lock(m_SendMutex);
    const SerialLine line{*this, *m_pUARTController, m_nUartHandle, m_SendMutex, {}};
    const int sent = sendRaw(line, {command, static_cast<std::size_t>(length)});
    DriverServices::tellPort(*this, sent == length);
    if (sent == length)
        return 1;
    std::printf("sendData !! send data failed , sendcommand=%.*s  ,nRet=%d\n", length, command, sent);
    return 0;
}

int NoSensorUIController::getDNbody() {
    const auto giveUp = [] {
        BreltoTime::wait(BreltoTime(RefusedPause, 0));
        return 0;
    };
    constexpr FramePattern Question = visca::inquiry(0x01);
    constexpr FramePattern::Frame Frame = Question.build(0);
    if (!setParameterValue(Frame.data(), static_cast<int>(Question.size())))
        return giveUp();
    char reply[4] = {};
    const int received = m_pUARTController->recv(m_nUartHandle, reply, sizeof reply, 3);
    if (received != static_cast<int>(sizeof reply)) {
        std::printf("recv @getDNbody failed,nRet = %d\n", received);
        return giveUp();
    }
    if (reply[2] != 2 && reply[2] != 3) {
        std::printf("get daynight value out of range value = %d\n", static_cast<unsigned char>(reply[2]));
        return giveUp();
    }
    DriverServices::putInForce(*this, reply[2] == 3 ? 1 : 0);
    BreltoTime::wait(BreltoTime(1, 0));
    return 0;
}
