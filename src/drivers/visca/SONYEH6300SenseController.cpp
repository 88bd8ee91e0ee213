#include "drivers/visca/SONYEH6300SenseController.h"

#include "controller/Recorder.h"
#include "drivers/Exchange.h"
#include "drivers/ModelDescription.h"
#include "drivers/TableEdits.h"
#include "drivers/TableProof.h"
#include "drivers/visca/SonyEH.h"
#include "host/ScopedLock.h"

#include <algorithm>
#include <cstdio>

namespace {

using namespace sensorcontrol;

constexpr auto Rows = withKind(sony::EHTable<SONYEH6300SenseController>,
                               {37, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 64}, IdManager::Unknown);
static_assert(isWellFormed(Rows));

constexpr ModelDescription Description{
    .className = "SONYEH6300SenseController",
    .rows = Rows,
    .version = 9,
    .subVersion = 5,
    .mirrorId = sony::MirrorId,
    .focusModeId = sony::FocusModeId,
    .dayNightModeId = sony::DayNightModeId,
    .port = {.openFailure = "open uart (%s) failed", .startedAs = "EH6300SenseController"},
    .statusText = "m_BaseSensorStatus != ISensorController::InitSuccess!",
    .wait = 0,
    .unservedSetResult = 0,
};

// A restart that is not answered counts as answered wrongly.
constexpr SonyHabits Habits{.byExposalMode = sony::ByExposalMode,
                            .toNtsc = sony::EH.toNtsc,
                            .toPal = sony::EH.toPal,
                            .restartTimeout = nullptr};

constexpr int ModuleType = 81;
constexpr int AcknowledgementLength = 3;

bool isAcknowledged(std::span<const char>, std::span<const char> reply) {
    return reply[0] == '\x90' && (reply[1] == 0x41 || reply[1] == 0x42) && reply[2] == '\xff';
}

constexpr Link InquiryLink{.timeout = 5, .receives = 2};
constexpr Link SettingLink{.timeout = 5, .accepts = isAcknowledged, .receives = 2};

void recordEach(ISensorController& controller, std::span<const char> bytes) {
    for (const char byte : bytes)
        controller.ErrorPrintf("0x%x ", static_cast<unsigned char>(byte));
}

} // namespace

SONYEH6300SenseController::SONYEH6300SenseController()
    : SonyEHController(ModuleType, Description, sony::Turns, Habits) {}

SONYEH6300SenseController::~SONYEH6300SenseController() { stopDNChangeThread(); }

const ModelDescription& SONYEH6300SenseController::model() { return Description; }

int SONYEH6300SenseController::getParameterValue(const char* command, int length, char* reply, int replyLength) {
    const SerialLine port = line();
    if (!isExchangeable(port, "getParameterValue", length, replyLength))
        return 0;
    const recorder::LogOnly framesTellIt;
    sensorhost::ScopedLock lock(m_UartMutex);
    const Attempt made = attempt(port, InquiryLink, {command, static_cast<std::size_t>(length)}, replyLength);
    if (made.outcome == Outcome::ShortSend) {
        ErrorPrintf("send @getParameterValue failed, sendcommand=%.*s  ,nRet=%d", length, command, made.count);
        return 0;
    }
    // The caller gets what the buffer holds, however much of it came.
    std::copy_n(port.buffer.begin(), replyLength, reply);
    if (made.outcome == Outcome::Done)
        return 1;
    recordEach(*this, made.reply);
    clearUartBuffer();
    return 0;
}

int SONYEH6300SenseController::setParameterValue(const char* command, int length) {
    const SerialLine port = line();
    if (!isExchangeable(port, "setParameterValue", length, AcknowledgementLength))
        return 0;
    const recorder::LogOnly framesTellIt;
    sensorhost::ScopedLock lock(m_UartMutex);
    const Attempt made = attempt(port, SettingLink, {command, static_cast<std::size_t>(length)}, AcknowledgementLength);
    switch (made.outcome) {
    case Outcome::Done:
        return 1;
    case Outcome::ShortSend:
        ErrorPrintf("sendData !! send data failed , sendcommand=%.*s  ,nRet=%d", length, command, made.count);
        return 0;
    case Outcome::Refused:
        ErrorPrintf("setParameterValue recv error,recv:0x%x,0x%x,0x%x", static_cast<unsigned char>(made.reply[0]),
                    static_cast<unsigned char>(made.reply[1]), static_cast<unsigned char>(made.reply[2]));
        break;
    default:
        ErrorPrintf("setParameterValue failed:");
        recordEach(*this, made.reply);
        break;
    }
    clearUartBuffer();
    return 0;
}

void SONYEH6300SenseController::printInterSync(const char (&reply)[5]) const {
    EH6300_TOOL::printArray(reply, sizeof reply);
    std::printf("_szRecv[3]=0x%02x\n", static_cast<unsigned char>(reply[3]));
}

void SONYEH6300SenseController::printVideoSystem(const char (&reply)[5]) const {
    EH6300_TOOL::printArray(reply, sizeof reply);
}
