#include "drivers/visca/CMD8100_OldSenseController.h"

#include "drivers/ModelDescription.h"
#include "drivers/TableEdits.h"
#include "drivers/TableProof.h"
#include "drivers/visca/CmdHabits.h"
#include "host/BreltoTime.h"

#include <cstdio>

namespace {

using namespace sensorcontrol;
using visca::setting;

/// Maximum gain 0 to 28 in the block's 16 steps.
constexpr std::uint8_t GainSteps[] = {0, 1, 2,  3,  3,  4,  4,  5,  5,  6,  6,  7,  7,  8, 8,
                                      9, 9, 10, 10, 11, 11, 12, 12, 13, 13, 14, 14, 15, 15};
constexpr std::uint8_t LeftRight[] = {0x03, 0x02, 0x03, 0x02};
constexpr std::uint8_t UpDown[] = {0x03, 0x03, 0x02, 0x02};
constexpr Step MirrorSteps[] = {
    {.frame = setting(0x61, V), .value = lookedUp(LeftRight)},
    {.frame = setting(0x66, V), .value = lookedUp(UpDown)},
};

constexpr auto Common = cmd::Rows<CMD8100_OldSenseController>;
constexpr auto Changes = std::to_array<ParameterRow>({
    accepting(rowOf(Common, cmd::ExposalModeId), range(0, 2), 0),
    mapping(rowOf(Common, 1), scaled(1, 10, 2)),
    mapping(withFactory(rowOf(Common, 2), 55), scaled(15, 100)),
    {.id = cmd::MirrorId,
     .name = "Mirror",
     .accepts = range(0, 3),
     .refusal = "p_nMirror(%d) is out of range",
     .steps = MirrorSteps,
     .factory = 0},
    withFactory(rowOf(Common, cmd::IrisId), 17),
    accepting(rowOf(Common, cmd::ShutterId), range(0, 17), 0),
    {.id = 13,
     .name = "Threshold",
     .accepts = range(0, 28),
     .refusal = "p_nThreshold(%d) is out of range",
     .send = setting(0x21, 0, 0, HI, LO),
     .factory = 0},
    mapping(accepting(rowOf(Common, 14), range(0, 28), 28), lookedUp(GainSteps)),
    mapping(accepting(rowOf(Common, 17), range(1, 3), 2), {}),
    accepting(rowOf(Common, 19), oneOf(0, 4), 4),
});
constexpr auto Rows = joined(without<20>(replaced(Common, Changes)), std::to_array<ParameterRow>({filterModeRow(18)}));
static_assert(isWellFormed(Rows));

constexpr ModelDescription Description{
    .className = "CMD8100_OldSenseController",
    .rows = Rows,
    .version = 4,
    .subVersion = 2,
    .mirrorId = cmd::MirrorId,
    .focusModeId = cmd::FocusModeId,
    .port = {.openFailure = "open uart (%s) failed", .startedAs = "CMD8100_OldSenseController"},
};

} // namespace

CMD8100_OldSenseController::CMD8100_OldSenseController() : CmdController(24, Description, cmd::Turns) {}

CMD8100_OldSenseController::~CMD8100_OldSenseController() { stopDNChangeThread(); }

const ModelDescription& CMD8100_OldSenseController::model() { return Description; }

int CMD8100_OldSenseController::initController(int, const ModuleConfigure& configure) {
    return bringUpPort(configure) && openBrightness() ? 1 : 0;
}

int CMD8100_OldSenseController::setSensorVideoSystem(int videoSystem, const VideoResolution&) {
    BreltoTime::wait(BreltoTime(0, 100));
    int current = 0;
    if (!askVideoSystem(current))
        return 0;
    const int wanted = videoSystem == 0 ? 0x06 : videoSystem == 1 ? 0x08 : 0x00;
    if (current == wanted) {
        std::puts("Video system not change!");
        if (m_nNeedRestart != 1)
            return 1;
    } else {
        std::printf("set video system,nValue=%d,szRecv[3]=%d\n", wanted, current);
        setVideoSystem(videoSystem);
        m_nNeedRestart = 1;
    }
    if (!restartUnanswered(cmd::Restart))
        return 0;
    m_nNeedRestart = 0;
    return 1;
}

int CMD8100_OldSenseController::setVideoSystem(int videoSystem) {
    switch (videoSystem) {
    case 0:
        std::puts("____set NTSC");
        return send(setting(0x24, 0x72, 0x00, 0x06));
    case 1:
        std::puts("____set PAL");
        return send(setting(0x24, 0x72, 0x00, 0x08));
    default:
        return 1;
    }
}
