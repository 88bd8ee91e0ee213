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
#include "drivers/ITrellisZoomSensorController.h"
#include "drivers/ParameterTable.h"
#include "drivers/PortBringUp.h"
#include "drivers/visca/ViscaExchange.h"
#include "drivers/visca/ViscaFrames.h"
#include "drivers/visca/ViscaHabits.h"
#include "host/BreltoTime.h"
#include "host/ModuleConfigure.h"

#include <algorithm>
#include <cstdio>

namespace sensorcontrol {

namespace visca {

bool isAccepted(std::span<const char>, std::span<const char> reply) {
    static constexpr char Acknowledgement[] = {'\x90', 0x41, '\xff'};
    static constexpr char Completion[] = {'\x90', 0x51, '\xff'};
    const auto holds = [reply](std::span<const char> answer) {
        return std::search(reply.begin(), reply.end(), answer.begin(), answer.end()) != reply.end();
    };
    return holds(Acknowledgement) || holds(Completion);
}

void reportSetting(const SerialLine& line, const ExchangeRule& rule, int number, std::span<const char> command,
                   const Attempt& failed) {
    if (failed.outcome != Outcome::Refused) {
        reportAttempt(line, rule, number, command, failed);
        return;
    }
    const auto byte = [&failed](std::size_t index) { return static_cast<unsigned char>(failed.reply[index]); };
    line.controller.ErrorPrintf("===send:");
    line.controller.recodeArray(command.data(), static_cast<int>(command.size()));
    line.controller.ErrorPrintf("===%s(%d times) recv error,recv:0x%x,0x%x,0x%x", rule.name, number, byte(0), byte(1),
                                byte(2));
}

} // namespace visca

namespace {

using visca::infraredFrame;
using visca::inquiry;
using visca::setting;

constexpr int RestartSeconds = 20;

constexpr ExchangeRule InquiryRule{.link = {.timeout = 4}, .name = "getParameterValue"};
constexpr ExchangeRule SettingRule{
    .link = visca::SettingLink, .name = "setParameterValue", .report = visca::reportSetting};

} // namespace

template <class Base>
ViscaController<Base>::ViscaController(int moduleType, const ModelDescription& model, const ViscaHabits& habits)
    : PortController<Base>(moduleType, model), m_Habits(habits) {}

template <class Base>
int ViscaController<Base>::OnePushTrigger() {
    return this->send(setting(0x18, 0x01));
}

template <class Base>
int ViscaController<Base>::getParameterValue(const char* command, int length, char* reply, int replyLength) {
    return exchange(this->line(), InquiryRule, command, length, replyLength, reply);
}

template <class Base>
int ViscaController<Base>::setParameterValue(const char* command, int length) {
    return exchange(this->line(), SettingRule, command, length, visca::AcknowledgementLength);
}

template <class Base>
int ViscaController<Base>::inquire(const FramePattern& frame, std::span<char> reply) {
    std::ranges::fill(reply, '\0');
    const FramePattern::Frame bytes = frame.build(0);
    return this->getParameterValue(bytes.data(), static_cast<int>(frame.size()), reply.data(),
                                   static_cast<int>(reply.size()));
}

template <class Base>
int ViscaController<Base>::enterAutoMode() {
    if (m_Habits.autoNotice != nullptr)
        std::puts(m_Habits.autoNotice);
    return turn(m_Habits.turnToAuto, infraredFrame(0x00, 0x00));
}

template <class Base>
int ViscaController<Base>::turnPictureToNight() {
    return turn(m_Habits.turnToNight, infraredFrame(0x00, 0x01));
}

template <class Base>
int ViscaController<Base>::turnPictureToDay() {
    return turn(m_Habits.turnToDay, infraredFrame(0x00, 0x02));
}

template <class Base>
int ViscaController<Base>::turn(std::span<const Step> steps, const FramePattern& infraredBoardFrame) {
    return this->m_nInfrared != 0 ? this->send(infraredBoardFrame)
                                  : ParameterTable::sendSteps(*this, this->m_Model, steps, 0);
}

template <class Base>
int ViscaController<Base>::getDNStatusFromSensor(int& status) {
    char reply[4];
    if (!inquire(inquiry(0x01), reply)) {
        this->ErrorPrintf("%s", m_Habits.statusFailure);
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
        reportStatus(reply);
        this->drainPort(); // foreign bytes before the reply leave its tail in the port, and every later inquiry as far
                           // off
        return 0;
    }
}

template <class Base>
void ViscaController<Base>::reportStatus(const char (&reply)[4]) {
    const auto byte = [&reply](std::size_t index) { return static_cast<unsigned char>(reply[index]); };
    if (m_Habits.isStatusToldWhole)
        this->ErrorPrintf("get daynight value out of range:0x%x,0x%x,0x%x,0x%x", byte(0), byte(1), byte(2), byte(3));
    else
        this->ErrorPrintf("get daynight value out of range value = %d", byte(2));
}

template <class Base>
int ViscaController<Base>::bringUpPort(const ModuleConfigure& configure, int* generation) {
    announceStart(configure);
    ModuleKeys keys(*this, configure);
    std::string deviceName;
    if (!this->readDevice(keys, deviceName) || (generation != nullptr && !readGeneration(keys, *generation)) ||
        !this->openDevice(keys, deviceName))
        return 0;
    this->clearUartBuffer();
    return 1;
}

template <class Base>
void ViscaController<Base>::announceStart(const ModuleConfigure& configure) {
    std::printf("__%s::init,ModuleConfigure is(%s,%s)\n", this->m_Model.port.startedAs, configure.getDetail().c_str(),
                configure.getParameters().c_str());
    this->m_bisZoomModule = true; // the block moves its filter itself
}

template <class Base>
int ViscaController<Base>::readGeneration(ModuleKeys& keys, int& generation) {
    keys.detailNumber("generation", generation, "get generation from detail failed");
    std::printf("m_nGeneration=%d\n", generation);
    return 1;
}

template <class Base>
int ViscaController<Base>::changeVideoSystem(const ViscaVideoSystem& rules, int videoSystem) {
    const std::size_t index = videoSystem == 0 || videoSystem == 1 ? static_cast<std::size_t>(videoSystem) : 2;
    int current = 0;
    if (!askVideoSystem(current))
        return 0;
    if (current == rules.wanted[index]) {
        std::puts("Video system not change!");
        return 1;
    }
    std::printf("set video system,nValue=%d,szRecv[3]=%d\n", rules.wanted[index], current);
    if (!this->send(rules.write[index]))
        return 0;
    if (rules.secondsToRestart > 0)
        DriverServices::wait(*this, BreltoTime(rules.secondsToRestart, 0));
    return restartUnanswered(rules.restart);
}

template <class Base>
int ViscaController<Base>::askVideoSystem(int& current) {
    char reply[5];
    if (!inquire(inquiry(0x24, 0x72), reply)) {
        this->ErrorPrintf("get sensor video system failed");
        return 0;
    }
    current = static_cast<unsigned char>(reply[3]);
    return 1;
}

template <class Base>
int ViscaController<Base>::restartUnanswered(const FramePattern& frame) {
    if (this->sendUnanswered(frame) != static_cast<int>(frame.size())) {
        DriverServices::wait(*this, BreltoTime(1, 0));
        return 0;
    }
    std::puts("Restarting sensor");
    waitForRestart();
    return 1;
}

template <class Base>
void ViscaController<Base>::waitForRestart() {
    DriverServices::waitForRestart(*this, RestartSeconds);
    this->clearUartBuffer();
}

template <class Base>
int ViscaController<Base>::notifyByInquiry() {
    constexpr FramePattern VersionInquiry = inquiry(0x22);
    const int sent = this->sendUnanswered(VersionInquiry);
    if (sent == static_cast<int>(VersionInquiry.size()))
        return 1;
    this->ErrorPrintf("send @NotifySensorInitComplate failed,nRet=%d", sent);
    DriverServices::wait(*this, BreltoTime(1, 0));
    return 0;
}

template <class Base>
int ViscaLensController<Base>::IrisUp() {
    return this->send(setting(0x0b, 0x02));
}

template <class Base>
int ViscaLensController<Base>::IrisDown() {
    return this->send(setting(0x0b, 0x03));
}

template <class Base>
int ViscaLensController<Base>::FocusUp() {
    return this->send(setting(0x08, 0x03));
}

template <class Base>
int ViscaLensController<Base>::FocusDown() {
    return this->send(setting(0x08, 0x02));
}

template class ViscaController<ISensorController>;
template class ViscaController<ITrellisZoomSensorController>;
template class ViscaLensController<ISensorController>;
template class ViscaLensController<ITrellisZoomSensorController>;

} // namespace sensorcontrol
