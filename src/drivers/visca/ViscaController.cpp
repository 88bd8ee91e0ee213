// Frames begin with the receiver's address (81, replies with 90) and end with FF; there is no length field. A setting
// is answered by an acknowledgement, a completion or both, an inquiry by its data:
//     brightness 7:        81 01 04 4E 00 00 00 07 FF  ->  90 41 FF (acknowledged) or 90 51 FF (completed)
//     is it day or night?  81 09 04 01 FF              ->  90 50 03 FF (day), 90 50 02 FF (night)
//     IR lights off:       FE 01 1E 02 00 02 23 FF     ->  90 41 FF
//
// Deliberate: of the answer to a setting three bytes are read. Where a block sends the completion after the
// acknowledgement, it stays in the port, and the next setting takes it for its own.

#include "drivers/visca/ViscaController.h"

#include "controller/DriverServices.h"
#include "controller/Recorder.h"
#include "drivers/Exchange.h"
#include "drivers/ITrellisZoomSensorController.h"
#include "drivers/ParameterTable.h"
#include "drivers/PortBringUp.h"
#include "drivers/visca/ViscaFrames.h"
#include "drivers/visca/ViscaModel.h"
#include "host/BreltoTime.h"
#include "host/ModuleConfigure.h"
#include "host/ScopedLock.h"

#include <cstdio>

namespace sensorcontrol {

namespace {

using visca::infraredFrame;
using visca::inquiry;
using visca::setting;

constexpr int AcknowledgementLength = 3;
constexpr int RestartSeconds = 20;

bool isAccepted(ISensorController& controller, std::span<const char>, std::span<const char> reply) {
    static constexpr char Acknowledgement[] = {'\x90', 0x41, '\xff'};
    static constexpr char Completion[] = {'\x90', 0x51, '\xff'};
    const int length = static_cast<int>(reply.size());
    return controller.checkUARTRecv(Acknowledgement, AcknowledgementLength, reply.data(), length) ||
           controller.checkUARTRecv(Completion, AcknowledgementLength, reply.data(), length);
}

void reportRefusal(ISensorController& controller, const ExchangeRule& rule, int attempt, std::span<const char> command,
                   std::span<const char> reply) {
    controller.ErrorPrintf("===send:");
    controller.recodeArray(command.data(), static_cast<int>(command.size()));
    controller.ErrorPrintf("===%s(%d times) recv error,recv:0x%x,0x%x,0x%x", rule.name, attempt,
                           static_cast<unsigned char>(reply[0]), static_cast<unsigned char>(reply[1]),
                           static_cast<unsigned char>(reply[2]));
}

constexpr ExchangeRule InquiryRule{.name = "getParameterValue", .timeout = 4};
constexpr ExchangeRule SettingRule{
    .name = "setParameterValue", .timeout = 4, .accepts = isAccepted, .reportRefusal = reportRefusal};

} // namespace

template <class Base>
ViscaController<Base>::ViscaController(int moduleType, const ViscaModel& model) : Base(moduleType), m_Model(model) {
    ParameterTable::registerIds(*this->m_pIdManager, model.parameters);
}

template <class Base>
ViscaController<Base>::~ViscaController() {
    this->stopDNChangeThread();
}

template <class Base>
int ViscaController<Base>::IrisUp() {
    return send(setting(0x0b, 0x02));
}

template <class Base>
int ViscaController<Base>::IrisDown() {
    return send(setting(0x0b, 0x03));
}

template <class Base>
int ViscaController<Base>::FocusUp() {
    return send(setting(0x08, 0x03));
}

template <class Base>
int ViscaController<Base>::FocusDown() {
    return send(setting(0x08, 0x02));
}

template <class Base>
int ViscaController<Base>::OnePushTrigger() {
    return send(setting(0x18, 0x01));
}

template <class Base>
int ViscaController<Base>::getParameterFromSensor(int id, int& value) {
    return ParameterTable::get(*this, m_Model.parameters, id, value);
}

template <class Base>
int ViscaController<Base>::setParameterToSensor(int id, int value) {
    return ParameterTable::set(*this, m_Model.parameters, id, value);
}

template <class Base>
int ViscaController<Base>::getParameterValue(const char* command, int length, char* reply, int replyLength) {
    return runExchange(InquiryRule, command, length, replyLength, reply);
}

template <class Base>
int ViscaController<Base>::setParameterValue(const char* command, int length) {
    return runExchange(SettingRule, command, length, AcknowledgementLength, nullptr);
}

template <class Base>
int ViscaController<Base>::runExchange(const ExchangeRule& rule, const char* command, int length, int replyLength,
                                       char* reply) {
    const SerialLine line{*this,
                          *this->m_pUARTController,
                          this->m_nUartHandle,
                          this->m_UartMutex,
                          {this->m_pRecvBuffer.get(), Base::ReceiveBufferSize}};
    return exchange(line, rule, command, length, replyLength, reply);
}

template <class Base>
int ViscaController<Base>::enterAutoMode() {
    return turn(m_Model.turnToAuto, infraredFrame(0x00, 0x00));
}

template <class Base>
int ViscaController<Base>::turnPictureToNight() {
    return turn(m_Model.turnToNight, infraredFrame(0x00, 0x01));
}

template <class Base>
int ViscaController<Base>::turnPictureToDay() {
    return turn(m_Model.turnToDay, infraredFrame(0x00, 0x02));
}

template <class Base>
int ViscaController<Base>::turn(std::span<const FramePattern> frames, const FramePattern& infraredBoardFrame) {
    if (this->m_nInfrared != 0)
        return send(infraredBoardFrame);
    for (const FramePattern& frame : frames)
        if (!send(frame))
            return 0;
    return 1;
}

template <class Base>
int ViscaController<Base>::getDNStatusFromSensor(int& status) {
    constexpr FramePattern::Frame StateInquiry = inquiry(0x01).build(0);
    char reply[4];
    if (!this->getParameterValue(StateInquiry.data(), static_cast<int>(inquiry(0x01).size()), reply, sizeof reply)) {
        this->ErrorPrintf("%s", m_Model.statusFailure);
        return 0;
    }
    switch (reply[2]) {
    case 2:
        status = 0;
        return 1;
    case 3:
        status = 1;
        return 1;
    default:
        this->ErrorPrintf("get daynight value out of range value = %d", static_cast<unsigned char>(reply[2]));
        drain(); // foreign bytes before the reply leave its tail in the port, and every later inquiry as far off
        return 0;
    }
}

template <class Base>
void ViscaController<Base>::drain() {
    sensorhost::ScopedLock lock(this->m_UartMutex);
    this->clearUartBuffer();
}

template <class Base>
int ViscaController<Base>::bringUpPort(const ModuleConfigure& configure, int* generation) {
    std::printf("__%s::init,ModuleConfigure is(%s,%s)\n", m_Model.parameters.className, configure.getDetail().c_str(),
                configure.getParameters().c_str());
    this->m_bisZoomModule = true; // the block moves its filter itself

    ModuleKeys keys(*this, configure);
    std::string deviceName;
    std::string lineText;
    if (!keys.parseDetail() || !keys.detail("RS485", deviceName, "get RS232DeviceName from detail failed") ||
        !keys.detailNumber("isInfrared", this->m_nInfrared, "get isInfrared from detail failed"))
        return 0;
    if (generation != nullptr) {
        keys.detailNumber("generation", *generation, "get generation from detail failed");
        std::printf("m_nGeneration=%d\n", *generation);
    }
    if (!keys.parseParameters() || !keys.parameter("RS485", lineText, m_Model.portTextFailure))
        return 0;
    if (!openPort(*this, *this->m_pUARTController, deviceName, lineText, this->m_nUartHandle))
        return 0;
    this->clearUartBuffer();
    return 1;
}

template <class Base>
int ViscaController<Base>::changeVideoSystem(const ViscaVideoSystem& rules, int videoSystem) {
    constexpr FramePattern::Frame VideoInquiry = inquiry(0x24, 0x72).build(0);
    char reply[5];
    if (!this->getParameterValue(VideoInquiry.data(), static_cast<int>(inquiry(0x24, 0x72).size()), reply,
                                 sizeof reply)) {
        this->ErrorPrintf("get sensor video system failed");
        return 0;
    }
    const int current = static_cast<unsigned char>(reply[3]);
    const int wanted = videoSystem == 0 ? rules.ntsc : videoSystem == 1 ? rules.pal : 0;
    if (current == wanted) {
        std::puts("Video system not change!");
        return 1;
    }
    std::printf("set video system,nValue=%d,szRecv[3]=%d\n", wanted, current);
    if (!send(setting(0x24, 0x72, 0x00, V), wanted))
        return 0;
    if (sendRaw(rules.restart) != static_cast<int>(rules.restart.size())) {
        DriverServices::wait(*this, BreltoTime(1, 0));
        return 0;
    }
    std::puts("Restarting sensor");
    DriverServices::waitForRestart(*this, RestartSeconds);
    this->clearUartBuffer();
    return 1;
}

template <class Base>
int ViscaController<Base>::notifyByInquiry() {
    constexpr FramePattern VersionInquiry = inquiry(0x22);
    const int sent = sendRaw(VersionInquiry);
    if (sent == static_cast<int>(VersionInquiry.size()))
        return 1;
    this->ErrorPrintf("send @NotifySensorInitComplate failed,nRet=%d", sent);
    DriverServices::wait(*this, BreltoTime(1, 0));
    return 0;
}

template <class Base>
int ViscaController<Base>::send(const FramePattern& frame, int value) {
    const FramePattern::Frame bytes = frame.build(value);
    return this->setParameterValue(bytes.data(), static_cast<int>(frame.size()));
}

template <class Base>
int ViscaController<Base>::sendRaw(const FramePattern& frame) {
    const FramePattern::Frame bytes = frame.build(0);
    const std::span<const char> command(bytes.data(), frame.size());
    const int length = static_cast<int>(command.size());
    const int sent = this->m_pUARTController->send(this->m_nUartHandle, command.data(), length);
    recorder::frame(command, sent == length ? OperationReport::Answer::NotRead : OperationReport::Answer::PortFailed,
                    {});
    return sent;
}

template <class Base>
int ViscaController<Base>::apply(int id, int value) {
    return ParameterTable::apply(*this, m_Model.parameters, id, value);
}

template class ViscaController<ISensorController>;
template class ViscaController<ITrellisZoomSensorController>;

} // namespace sensorcontrol
