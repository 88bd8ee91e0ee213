#include "drivers/visca/SONYCH3310SenseController.h"

#include "drivers/ModelDescription.h"
#include "drivers/TableEdits.h"
#include "drivers/TableProof.h"
#include "drivers/visca/SonyEH.h"
#include "host/BreltoTime.h"

#include <algorithm>
#include <cstdio>

namespace {

using namespace sensorcontrol;
using visca::inquiry;
using visca::setting;
using Block = SONYCH3310SenseController;

constexpr auto Common = sony::Rows<Block>;
constexpr auto Changes = std::to_array<ParameterRow>({
    withFactory(rowOf(Common, 3), 0),
    readBy(rowOf(Common, sony::ExposalModeId), ask<&Block::getExposalMode>),
    readBy(rowOf(Common, 11), ask<&Block::getShutter>),
    {.id = 12,
     .name = "Iris",
     .accepts = oneOf(0) | range(3, 17),
     .refusal = "p_nIri(%d) is out of range",
     .onlyWhile = whileStored(sony::ExposalModeId, 1, 3),
     .send = setting(0x4b, 0, 0, HI, LO),
     .get = ask<&Block::getIris>},
    {.id = sony::BrightId,
     .name = "Bright",
     .accepts = range(0, 29),
     .refusal = "p_nBright(%d) is out of range",
     .onlyWhile = whileStored(sony::ExposalModeId, 4),
     .send = setting(0x4d, 0, 0, HI, LO),
     .value = lookedUp(sony::BrightSteps<29, 2>),
     .remember = {50, scaled(100, 29)},
     .factory = 21},
    readBy(rowOf(Common, 14), ask<&Block::getGain>),
    accepting(rowOf(Common, 18), range(1, 32), 1),
    {.id = 34,
     .name = "FocusNearLimit",
     .accepts = range(1, 13),
     .refusal = "p_nFocusNearLimit(%d) is out of range",
     .send = setting(0x28, V, 0, 0, 0),
     .factory = 11},
    withFactory(rowOf(Common, 40), 0),
    withFactory(rowOf(Common, 50), 72),
});
constexpr auto OwnRows = std::to_array<ParameterRow>({
    sony::brightnessRow<Block>(52, 50),
    powerModeRow(56),
    nearLightRow(57),
    middleLightRow(58),
    farLightRow(59),
    visca::hourOfNight(60),
    visca::minuteOfNight(61),
    visca::hourOfDay(62),
    visca::minuteOfDay(63),
});
constexpr auto Rows = joined(replaced(Common, Changes), OwnRows);
static_assert(isWellFormed(Rows));

constexpr ModelDescription Description{
    .className = "SONYCH3310SenseController",
    .rows = Rows,
    .version = 1,
    .subVersion = 4,
    .mirrorId = sony::MirrorId,
    .focusModeId = sony::FocusModeId,
    .dayNightModeId = sony::DayNightModeId,
    .port = {.lineFailure = "get RS485Parameter from senseParameter failed",
             .openFailure = "open uart (%s) failed",
             .startedAs = "SonyCH3310SenseController"},
};

constexpr ViscaHabits Turns{.turnToDay = sony::ToDay, .turnToNight = sony::ToNight, .turnToAuto = sony::ToAuto};

constexpr SonyHabits Habits{.byExposalMode = sony::ByExposalMode,
                            .brightSteps = 29,
                            .toNtsc = setting(0x24, 0x72, 0x00, 0x0e),
                            .toPal = setting(0x24, 0x72, 0x01, 0x01),
                            .restartTimeout = "restart sensor recv time out"};

} // namespace

SONYCH3310SenseController::SONYCH3310SenseController() : SonyController(18, Description, Turns, Habits) {}

SONYCH3310SenseController::~SONYCH3310SenseController() { stopDNChangeThread(); }

const ModelDescription& SONYCH3310SenseController::model() { return Description; }

/// The exchanges of the start and of the status are repeated once more as a whole.
template <std::size_t Length>
int SONYCH3310SenseController::inquireTwice(const FramePattern& frame, char (&reply)[Length], const char* notice,
                                            const char* failure) {
    if (inquire(frame, reply))
        return 1;
    if (notice != nullptr)
        std::puts(notice);
    if (inquire(frame, reply))
        return 1;
    ErrorPrintf("%s", failure);
    return 0;
}

int SONYCH3310SenseController::initController(int, const ModuleConfigure& configure) {
    if (!bringUpPort(configure))
        return 0;
    char reply[5];
    if (!inquireTwice(inquiry(0x24, 0x56), reply, nullptr, "get sync failed"))
        return 0;
    switch (reply[3]) {
    case 1:
        std::puts("it's inter-sync");
        return 1;
    case 0:
        std::puts("Open inter-sync");
        if (!send(setting(0x24, 0x56, 0x00, 0x01)))
            return 0;
        m_nNeedRestart = 1;
        return 1;
    default:
        ErrorPrintf("get sync error!");
        return 0;
    }
}

int SONYCH3310SenseController::setSensorVideoSystem(int videoSystem, const VideoResolution&) {
    char reply[5];
    if (!inquireTwice(inquiry(0x24, 0x72), reply, "get video system second", "get videosystem failed"))
        return 0;
    const int current = static_cast<unsigned char>(reply[2]) * 16 + static_cast<unsigned char>(reply[3]);
    const int wanted = videoSystem == 0 ? 0x0e : videoSystem == 1 ? 0x11 : 0x00;
    std::printf("nGetVideoSystem=%x\n", static_cast<unsigned int>(current));
    if (current == wanted) {
        std::puts("Video system not change!");
        if (m_nNeedRestart != 1)
            return 1;
    } else {
        std::printf("set video system,nValue=%d,szRecv[3]=%d\n", wanted, static_cast<unsigned char>(reply[3]));
        setVideoSystem(videoSystem);
        m_nNeedRestart = 1;
    }
    return restart();
}

int SONYCH3310SenseController::getDNStatusFromSensor(int& status) {
    char reply[4];
    if (!inquireTwice(inquiry(0x01), reply, "get day night status second", "get dn failed"))
        return 0;
    if (reply[2] != 2 && reply[2] != 3) {
        ErrorPrintf("get daynight value out of range value = %d", static_cast<unsigned char>(reply[2]));
        drainPort();
        BreltoTime::wait(BreltoTime(3, 0));
        return 0;
    }
    status = reply[2] == 3 ? 1 : 0;
    return 1;
}

int SONYCH3310SenseController::askLevel(int code, int& value) {
    char reply[7];
    if (!inquire(inquiry(code), reply))
        return 0;
    value = static_cast<unsigned char>(reply[4]) * 16 + static_cast<unsigned char>(reply[5]);
    return 1;
}

int SONYCH3310SenseController::getShutter(int& value) {
    if (!askLevel(0x4a, value)) {
        ErrorPrintf("getShutter failed");
        return 0;
    }
    std::printf("p_nShutter=%d\n", value);
    return 1;
}

int SONYCH3310SenseController::getIris(int& value) {
    int iris = 0;
    if (!askLevel(0x4b, iris)) {
        ErrorPrintf("getIri failed");
        return 0;
    }
    value = iris == 1 ? 0 : iris;
    std::printf("p_nIri=%d\n", value);
    return 1;
}

int SONYCH3310SenseController::getGain(int& value) {
    if (!askLevel(0x4c, value))
        return 0;
    std::printf("p_nGain=%d\n", value);
    return 1;
}

int SONYCH3310SenseController::getExposalMode(int& value) {
    static constexpr char Modes[] = {0x00, 0x03, 0x0a, 0x0b, 0x0d};
    if (!m_bisInited) {
        value = 0;
        return 1;
    }
    char reply[4];
    if (inquire(inquiry(0x39), reply)) {
        const auto* const mode = std::ranges::find(Modes, reply[2]);
        if (mode != std::end(Modes)) {
            value = static_cast<int>(mode - Modes);
            std::printf("p_nExposalMode=%d\n", value);
            return 1;
        }
    }
    ErrorPrintf("getExposalMode failed");
    return 0;
}
