// Commands are short ASCII texts of fixed length, without terminator, length or sum. Digits are upper-case hexadecimal.
// A write comes back as it was, a read with the value in its last digits:
//     brightness to 7F:    :WFD9E7F    ->  :WFD9E7F
//     is it day or night?  :RFFE700    ->  :RFFE701 (day), :RFFE700 (night)
//     store the settings:  :rE1ED0000  ->  nothing
//
// Deliberate: a reply to a read is only compared up to its value. One whose value is no number reads as 0.

#include "drivers/regtext/RegisterTextController.h"

#include "controller/DriverServices.h"
#include "drivers/Exchange.h"
#include "drivers/ITrellisZoomSensorController.h"
#include "drivers/ModelDescription.h"
#include "drivers/PortBringUp.h"
#include "drivers/regtext/RegisterTextFrames.h"
#include "drivers/regtext/VideoSystems.h"
#include "host/BreltoTime.h"
#include "host/VideoResolution.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace sensorcontrol {

namespace {

constexpr std::string_view StoreCommand = ":rE1ED0000";

constexpr int LongestText = 19;
constexpr int MostValueChars = 8; ///< what an int holds

constexpr ExchangeRule WriteRule{.link = {.timeout = 5, .accepts = isEcho, .clearsBuffer = true},
                                 .name = "sendData",
                                 .sendName = "setParameterValue"};
constexpr ExchangeRule StoreRule{.link = {.timeout = 5}, .name = "sendData", .sendName = "setParameterValue"};

template <std::size_t ValueChars>
bool isEchoButValue(std::span<const char> command, std::span<const char> reply) {
    return std::ranges::equal(command.first(command.size() - ValueChars), reply.first(reply.size() - ValueChars));
}

/// The rules of reads by the length of their value.
constexpr auto ReadRules = []<std::size_t... ValueChars>(std::index_sequence<ValueChars...>) {
    return std::array{ExchangeRule{.link = {.timeout = 4, .accepts = isEchoButValue<ValueChars>, .clearsBuffer = true},
                                   .name = "getParameterValue"}...};
}
(std::make_index_sequence<MostValueChars + 1>());

} // namespace

template <class Base>
RegisterTextController<Base>::RegisterTextController(int moduleType, const ModelDescription& model)
    : PortController<Base>(moduleType, model), m_pDNThread(new GThread(bind(this, &RegisterTextController::getDNbody),
                                                                       "getDN", GThread::emptyFun, GThread::emptyFun)) {
    this->m_bDNThreadSwitch = false; // the block decides by itself
}

template <class Base>
RegisterTextController<Base>::~RegisterTextController() {
    stopThreads();
}

template <class Base>
void RegisterTextController<Base>::stopThreads() {
    // First the one whose stop makes exchanges end after the try that they are at, those of the other thread too.
    this->stopDNChangeThread();
    m_pDNThread->stop();
}

template <class Base>
int RegisterTextController<Base>::initController(int, const ModuleConfigure& configure) {
    ModuleKeys keys(*this, configure);
    std::string deviceName;
    return beginStart(keys, deviceName) && this->openDevice(keys, deviceName) ? startStatusThread() : 0;
}

template <class Base>
int RegisterTextController<Base>::beginStart(ModuleKeys& keys, std::string& deviceName) {
    this->m_bisZoomModule = true; // the block moves its filter itself
    return this->readDevice(keys, deviceName);
}

template <class Base>
int RegisterTextController<Base>::startStatusThread() {
    return m_pDNThread->start() ? 1 : 0;
}

template <class Base>
int RegisterTextController<Base>::NotifySensorInitComplate() {
    return sendData(std::string(StoreCommand));
}

template <class Base>
std::string RegisterTextController<Base>::assembleString(const std::string& prefix, unsigned int value, int width) {
    char text[LongestText + 1];
    const int digits = std::clamp(width, 0, LongestText);
    const int length = std::min(std::snprintf(text, sizeof text, "%s%0*x", prefix.c_str(), digits, value), LongestText);
    for (int i = std::max(length - digits, 0); i < length; ++i)
        if (text[i] >= 'a' && text[i] <= 'z')
            text[i] = static_cast<char>(text[i] - 'a' + 'A');
    return {text, static_cast<std::size_t>(length)};
}

template <class Base>
int RegisterTextController<Base>::ascToHex(const std::string& text) {
    return static_cast<int>(std::clamp<long>(std::strtol(text.c_str(), nullptr, 16), INT_MIN, INT_MAX));
}

template <class Base>
int RegisterTextController<Base>::sendData(const std::string& command) {
    const int length = static_cast<int>(command.size());
    return command == StoreCommand ? exchange(this->line(), StoreRule, command.data(), length, 0)
                                   : exchange(this->line(), WriteRule, command.data(), length, length);
}

template <class Base>
int RegisterTextController<Base>::recvData(const std::string& command, int valueChars, int& value) {
    const int length = static_cast<int>(command.size());
    char reply[Base::ReceiveBufferSize];
    if (valueChars < 0 || valueChars > std::min(MostValueChars, length) ||
        !exchange(this->line(), ReadRules[static_cast<std::size_t>(valueChars)], command.data(), length, length, reply))
        return 0;
    value = ascToHex(std::string(reply + length - valueChars, static_cast<std::size_t>(valueChars)));
    return 1;
}

template <class Base>
int RegisterTextController<Base>::transmit(ISensorController& controller, const char* frame, int length) {
    return static_cast<RegisterTextController&>(controller).sendData({frame, static_cast<std::size_t>(length)});
}

template <class Base>
int RegisterTextController<Base>::getDNbody() {
    pollStatus(regtext::StatusRead, 0, 1, "recvData 1@getDNbody failed");
    return 0;
}

template <class Base>
void RegisterTextController<Base>::pollStatus(const char* command, int night, int day, const char* failure) {
    int value = 0;
    const bool isRead = recvData(command, 2, value) != 0;
    const bool isStatus = isRead && (value == night || value == day);
    if (isStatus)
        DriverServices::putInForce(*this, value == day ? 1 : 0);
    else if (isRead)
        this->ErrorPrintf("get nGetValue failed ,nGetValue = %d", value);
    else
        this->ErrorPrintf("%s", failure);
    BreltoTime::wait(BreltoTime(isStatus ? 1 : 3, 0));
}

template <class Base>
int RegisterTextController<Base>::changeVideoSystem(const regtext::VideoSystems& systems, int videoSystem,
                                                    const VideoResolution& resolution, int restartSeconds) {
    const auto wanted = std::ranges::find_if(systems.systems, [&](const regtext::VideoSystem& system) {
        return system.videoSystem == videoSystem &&
               (system.width == 0 ||
                (system.width == resolution.getVideoWidth() && system.height == resolution.getVideoHeight()));
    });
    if (wanted == systems.systems.end()) {
        this->ErrorPrintf("setSensorVideoSystem is out of range");
        return 0;
    }
    if (wanted->notice != nullptr)
        std::puts(wanted->notice);
    bool isInForce = true;
    for (std::size_t i = 0; i < systems.reads.size(); ++i) {
        int current = -1;
        if (!recvData(systems.reads[i].command, 2, current)) {
            this->ErrorPrintf("%s", systems.reads[i].failure);
            return 0;
        }
        isInForce = isInForce && current == wanted->state[i];
    }
    if (isInForce)
        return 1;
    if (systems.changeNotice != nullptr)
        std::puts(systems.changeNotice);
    bool isTaken = true;
    for (const char* command : wanted->writes)
        if (command != nullptr && (isTaken || systems.writesOn) && !sendData(command))
            isTaken = false;
    if (!isTaken && systems.failure != nullptr)
        this->ErrorPrintf("%s", systems.failure);
    if (!isTaken || (systems.restart != nullptr && !sendData(systems.restart)))
        return 0;
    DriverServices::waitForRestart(*this, restartSeconds);
    this->drainPort(); // under the lock: the other thread has been asking meanwhile
    return 1;
}

template class RegisterTextController<ISensorController>;
template class RegisterTextController<ITrellisZoomSensorController>;

} // namespace sensorcontrol
