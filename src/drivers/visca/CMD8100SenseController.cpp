#include "drivers/visca/CMD8100SenseController.h"

#include "drivers/MaskRows.h"
#include "drivers/ModelDescription.h"
#include "drivers/TableEdits.h"
#include "drivers/TableProof.h"
#include "drivers/visca/ViscaFrames.h"
#include "drivers/visca/ViscaHabits.h"
#include "drivers/visca/ViscaRows.h"
#include "host/BreltoTime.h"

#include <cstdio>

namespace {

using namespace sensorcontrol;
using visca::commandRow;
using visca::hourOfDay;
using visca::hourOfNight;
using visca::minuteOfDay;
using visca::minuteOfNight;
using visca::setting;
using Block = CMD8100SenseController;

constexpr int ExposalModeId = 0;
constexpr int MirrorId = 4;
constexpr int IrisId = 5;
constexpr int ShutterId = 7;
constexpr int FocusModeId = 15;

/// Maximum gain 0 to 38 in the block's 16 steps.
constexpr std::uint8_t GainSteps[] = {
    0, 1, 1, 1, 2,  2,  3,  3,  3,  4,  4,  5,  5,  5,  6,  6,  7,  7,  7,  8,
    8, 9, 9, 9, 10, 10, 11, 11, 11, 12, 12, 13, 13, 13, 14, 14, 15, 15, 15,
};

/// 0 automatic after zooming, 1 always automatic, 2 manual; other values do nothing.
constexpr Step FocusModes[] = {
    {.when = range(0, 1), .frame = setting(0x38, 0x02)},
    {.when = oneOf(0), .frame = setting(0x57, 0x02)},
    {.when = oneOf(1), .frame = setting(0x57, 0x00)},
    {.when = oneOf(2), .frame = setting(0x38, 0x03)},
};

constexpr auto BlockRows = std::to_array<ParameterRow>({
    {.id = ExposalModeId,
     .name = "ExposalMode",
     .accepts = range(0, 3),
     .set = call<&Block::setExposalMode>,
     .factory = 0},
    {.id = 1,
     .name = "Brightness",
     .accepts = range(0, 100),
     .refusal = "p_nBrightness(%d) is out of range",
     .send = setting(0x4e, 0, 0, 0, V),
     .value = scaled(14, 100),
     .factory = 50},
    {.id = 2,
     .name = "Sharpness",
     .accepts = range(0, 100),
     .refusal = "p_Sharpness(%d) is out of range",
     .send = setting(0x42, 0, 0, 0, V),
     .value = scaled(14, 100),
     .factory = 40},
    {.id = 3,
     .name = "Saturation",
     .accepts = range(0, 100),
     .refusal = "p_nSaturation(%d) is out of range",
     .send = setting(0x49, 0, 0, 0, V),
     .value = scaled(14, 100),
     .factory = 90},
    {.id = MirrorId, .name = "Mirror", .accepts = range(0, 3), .set = call<&Block::setMirror>, .factory = 0},
    {.id = IrisId,
     .name = "Iris",
     .accepts = range(5, 17),
     .refusal = "p_nIris(%d) is out of range",
     .onlyWhile = whileStored(ExposalModeId, 2),
     .send = setting(0x4b, 0, 0, HI, LO),
     .factory = 16},
    {.id = 6,
     .name = "Photometry",
     .accepts = range(2, 3),
     .refusal = "setPhotometry(%d) out of range",
     .send = setting(0xa2, V),
     .factory = 2},
    {.id = ShutterId,
     .name = "Shutter",
     .accepts = range(0, 18),
     .refusal = "p_nShutter(%d) is out of range",
     .onlyWhile = whileStored(ExposalModeId, 1),
     .send = setting(0x4a, 0, 0, HI, LO),
     .factory = 0},
    {.id = 9,
     .name = "WDRMode",
     .accepts = range(2, 3),
     .refusal = "p_nWD(%d) is out of range",
     .send = setting(0x3d, V),
     .factory = 3},
    {.id = 10,
     .name = "DeFog",
     .accepts = range(2, 3),
     .refusal = "p_nDeFog(%d) is out of range",
     .send = setting(0xa1, V),
     .factory = 3},
    {.id = 11,
     .name = "NoiseReduction",
     .accepts = range(0, 6),
     .refusal = "p_nNR(%d) is out of range",
     .send = setting(0x53, V),
     .factory = 6},
    {.id = 12, .name = "DayNightMode", .set = call<&Block::setDayNightMode>, .factory = factory::DayNightMode},
    {.id = 13,
     .name = "Threshold",
     .accepts = range(0, 28),
     .refusal = "p_nThreshold(%d) is out of range",
     .onlyWhile = WithoutInfrared,
     .send = setting(0x21, 0, 0, HI, LO),
     .factory = 10},
    {.id = 14,
     .name = "MaxGain",
     .accepts = range(0, 38),
     .refusal = "p_nMaxGain(%d) is out of range",
     .send = setting(0x2c, V),
     .value = lookedUp(GainSteps),
     .factory = 30,
     .getFailure = "getGainLimit error,value is %d"},
    {.id = FocusModeId, .name = "FocusMode", .accepts = AnyValue, .steps = FocusModes, .factory = 1},
    {.id = 16,
     .name = "FocusNearLimit",
     .accepts = range(0, 4),
     .refusal = "p_nFocusNearLimit(%d) is out of range",
     .send = setting(0x28, 0, 0, 0, V),
     .factory = 2},
    {.id = 17,
     .name = "Sensitivity",
     .accepts = range(1, 6),
     .refusal = "setSensitivity(%d) out of range",
     .send = setting(0x58, V),
     .value = shifted(-1),
     .factory = 2},
    {.id = 19,
     .name = "WBMode",
     .accepts = oneOf(0, 4, 9),
     .refusal = "setWBMode(%d) out of range",
     .send = setting(0x35, V),
     .factory = 4},
    {.id = 20,
     .name = "ShutDownLimit",
     .accepts = range(0, 12),
     .refusal = "setShutDownLimit(%d) is out of range",
     .send = setting(0xa3, 0, 0, HI, LO),
     .factory = 0},
    commandRow(52, "IrisUp", run<&Block::IrisUp>),
    commandRow(53, "IrisDown", run<&Block::IrisDown>),
    commandRow(54, "FocusUp", run<&Block::FocusUp>),
    commandRow(55, "FocusDown", run<&Block::FocusDown>),
    powerModeRow(56),
    nearLightRow(57),
    middleLightRow(58),
    farLightRow(59),
    hourOfNight(60),
    minuteOfNight(61),
    hourOfDay(62),
    minuteOfDay(63),
    saying(commandRow(64, "OnePushTrigger", run<&Block::OnePushTrigger>), "OnePushTrigger failed\n"),
});

constexpr auto Rows = joined(BlockRows, MaskRows);
static_assert(isWellFormed(Rows));

constexpr ModelDescription Description{
    .className = "CMD8100SenseController",
    .rows = Rows,
    .version = 4,
    .subVersion = 3,
    .mirrorId = MirrorId,
    .focusModeId = FocusModeId,
    .port = {.openFailure = "open uart (%s) failed", .startedAs = "CMD8100SenseController"},
};

constexpr Step ToDay[] = {{.frame = setting(0x51, 0x03)}, {.frame = setting(0x01, 0x03)}};
constexpr Step ToNight[] = {{.frame = setting(0x51, 0x03)}, {.frame = setting(0x01, 0x02)}};
constexpr Step ToAuto[] = {{.frame = setting(0x51, 0x02)}};

constexpr ViscaHabits Habits{
    .statusFailure = "get dn failed ", .turnToDay = ToDay, .turnToNight = ToNight, .turnToAuto = ToAuto};

constexpr ViscaVideoSystem VideoSystems{
    .ntsc = 0x06, .pal = 0x08, .restart = FramePattern(0xfe, 0x05, 0x03, 0x01, 0x01, 0x0a, 0xff)};

} // namespace

CMD8100SenseController::CMD8100SenseController() : ViscaLensController(16, Description, Habits) {}

CMD8100SenseController::~CMD8100SenseController() { stopDNChangeThread(); }

const ModelDescription& CMD8100SenseController::model() { return Description; }

int CMD8100SenseController::initController(int, const ModuleConfigure& configure) {
    if (!bringUpPort(configure, &m_nGeneration))
        return 0;
    if (!send(setting(0x3e, 0x02)))
        ErrorPrintf("Brightness on Failed.");
    return 1;
}

int CMD8100SenseController::setSensorVideoSystem(int videoSystem, const VideoResolution&) {
    BreltoTime::wait(BreltoTime(0, 100));
    return changeVideoSystem(VideoSystems, videoSystem);
}

int CMD8100SenseController::NotifySensorInitComplate() { return notifyByInquiry(); }

int CMD8100SenseController::setExposalMode(int mode) {
    static constexpr std::uint8_t Modes[] = {0x00, 0x0a, 0x0b, 0xa0};
    if (mode < 0 || mode > 3 || !send(setting(0x39, V), Modes[mode]))
        return 0;
    if (mode != 1 && mode != 2)
        return 1;
    const int dependentId = mode == 1 ? ShutterId : IrisId;
    int value = 0;
    return getParameter(dependentId, value) ? apply(dependentId, value) : 0;
}

int CMD8100SenseController::setMirror(int mirror) {
    struct Commands {
        std::uint8_t leftRight;
        std::uint8_t upDown;
    };
    static constexpr Commands Common[] = {{0x03, 0x03}, {0x02, 0x03}, {0x03, 0x02}, {0x02, 0x02}};
    // The fourth generation is mounted upside down.
    static constexpr Commands Fourth[] = {{0x02, 0x02}, {0x03, 0x02}, {0x02, 0x03}, {0x03, 0x03}};
    if (mirror < 0 || mirror > 3) {
        ErrorPrintf("p_nMirror(%d) is out of range", mirror);
        return 0;
    }
    const Commands& commands = m_nGeneration == 4 ? Fourth[mirror] : Common[mirror];
    return send(setting(0x61, V), commands.leftRight) && send(setting(0x66, V), commands.upDown) ? 1 : 0;
}

int CMD8100SenseController::setDayNightMode(int mode) {
    m_nDayNightMode = mode == 0 ? 4 : mode;
    reInitDelayStartTime();
    return 1;
}
