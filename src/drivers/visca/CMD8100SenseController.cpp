#include "drivers/visca/CMD8100SenseController.h"

#include "drivers/MaskRows.h"
#include "drivers/ModelDescription.h"
#include "drivers/TableEdits.h"
#include "drivers/TableProof.h"
#include "drivers/visca/CmdHabits.h"
#include "drivers/visca/CmdRows.h"
#include "host/BreltoTime.h"

namespace {

using namespace sensorcontrol;

constexpr auto Rows = joined(cmd::Rows<CMD8100SenseController>, MaskRows);
static_assert(isWellFormed(Rows));

constexpr ModelDescription Description{
    .className = "CMD8100SenseController",
    .rows = Rows,
    .version = 4,
    .subVersion = 3,
    .mirrorId = cmd::MirrorId,
    .focusModeId = cmd::FocusModeId,
    .port = {.openFailure = "open uart (%s) failed", .startedAs = "CMD8100SenseController"},
};

} // namespace

CMD8100SenseController::CMD8100SenseController() : CmdController(16, Description, cmd::Turns) {}

CMD8100SenseController::~CMD8100SenseController() { stopDNChangeThread(); }

const ModelDescription& CMD8100SenseController::model() { return Description; }

int CMD8100SenseController::initController(int, const ModuleConfigure& configure) {
    if (!bringUpPort(configure, &m_nGeneration))
        return 0;
    if (!openBrightness())
        ErrorPrintf("Brightness on Failed.");
    return 1;
}

int CMD8100SenseController::setSensorVideoSystem(int videoSystem, const VideoResolution&) {
    BreltoTime::wait(BreltoTime(0, 100));
    return changeVideoSystem(cmd::VideoSystems, videoSystem);
}
