#include "drivers/visca/CMD7300SenseController.h"

#include "drivers/ModelDescription.h"
#include "drivers/TableEdits.h"
#include "drivers/TableProof.h"
#include "drivers/visca/CmdHabits.h"
#include "host/BreltoTime.h"

namespace {

using namespace sensorcontrol;
using visca::inquiry;
using visca::setting;

constexpr auto Common = cmd::Rows<CMD7300SenseController>;
constexpr auto Changes = std::to_array<ParameterRow>({
    saying(rowOf(Common, 12), "setDNMode error,value is %d", "getDNMode error,value is %d"),
});
constexpr auto Rows = joined(replaced(Common, Changes), std::to_array<ParameterRow>({filterModeRow(18)}));
static_assert(isWellFormed(Rows));

constexpr ModelDescription Description{
    .className = "CMD7300SenseController",
    .rows = Rows,
    .version = 2,
    .subVersion = 1,
    .mirrorId = cmd::MirrorId,
    .focusModeId = cmd::FocusModeId,
    .port = {.openFailure = "open uart (%s) failed", .startedAs = "CMD7300SenseController"},
};

constexpr ViscaHabits Habits{.statusFailure = cmd::Turns.statusFailure,
                             .isStatusToldWhole = true,
                             .turnToDay = cmd::ToDay,
                             .turnToNight = cmd::ToNight,
                             .turnToAuto = cmd::ToAuto};

constexpr ViscaVideoSystem VideoSystems{
    .wanted = {0x0e, 0x01, 0x00},
    .write = {setting(0x24, 0x72, 0x00, 0x0e), setting(0x24, 0x72, 0x01, 0x01), setting(0x24, 0x72, 0x00, 0x0e)},
    .restart = cmd::Restart};

} // namespace

CMD7300SenseController::CMD7300SenseController() : CmdController(21, Description, Habits) {}

CMD7300SenseController::~CMD7300SenseController() { stopDNChangeThread(); }

const ModelDescription& CMD7300SenseController::model() { return Description; }

int CMD7300SenseController::initController(int, const ModuleConfigure& configure) {
    return bringUpPort(configure, &m_nGeneration) && openBrightness() ? 1 : 0;
}

int CMD7300SenseController::setSensorVideoSystem(int videoSystem, const VideoResolution&) {
    return changeVideoSystem(VideoSystems, videoSystem);
}

int CMD7300SenseController::getCurrentGain(int& gain) {
    char reply[7];
    if (!inquire(inquiry(0x4c), reply)) {
        ErrorPrintf("get AGC failed ");
        BreltoTime::wait(BreltoTime(3, 0));
    }
    gain = (static_cast<unsigned char>(reply[4]) << 4 & 0xf0) | static_cast<unsigned char>(reply[5]);
    return 1;
}
