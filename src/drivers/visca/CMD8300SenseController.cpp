#include "drivers/visca/CMD8300SenseController.h"

#include "drivers/ModelDescription.h"
#include "drivers/PortBringUp.h"
#include "drivers/TableEdits.h"
#include "drivers/TableProof.h"
#include "drivers/visca/CmdRows.h"
#include "drivers/visca/ViscaExchange.h"
#include "drivers/visca/ViscaHabits.h"
#include "host/BreltoTime.h"
#include "host/SystemHelper.h"

namespace {

using namespace sensorcontrol;
using visca::setting;
using Block = CMD8300SenseController;

constexpr int MirrorId = 8;
constexpr int ExposalModeId = 10;
constexpr int WBModeId = 18;
constexpr int DayNightModeId = 22;
constexpr int FocusModeId = 27;
constexpr int Second = 1000000;
constexpr int LeastDistance = 10; ///< of the two sensitivities
constexpr int ScriptSeconds = 30;

constexpr std::uint8_t ExposalModes[] = {0x00, 0x03, 0x0a, 0x0b, 0x0d};

/// The block's own switching for 0, by hand for 3; the picture goes to day.
constexpr Step InfraredSteps[] = {
    {.when = oneOf(0), .frame = setting(0x51, 0x02), .pause = Second},
    {.when = oneOf(3), .frame = setting(0x51, 0x03), .pause = Second},
    {.frame = setting(0x01, 0x03)},
};
constexpr Step FocusModes[] = {
    {.when = range(1, 2), .frame = setting(0x38, 0x02)},
    {.when = oneOf(1), .frame = setting(0x57, 0x02)},
    {.when = oneOf(2), .frame = setting(0x57, 0x00)},
    {.when = oneOf(3), .frame = setting(0x38, 0x03)},
};
constexpr Step NearLimits[] = {
    {.when = range(0, 4), .frame = setting(0x28, V, 0, 0, 0)},
    {.when = oneOf(5), .frame = setting(0x18, 0x02)},
};

int takeAnything(ISensorController&, int) { return 1; }

constexpr auto Rows = std::to_array<ParameterRow>({
    {.id = 1,
     .name = "Saturation",
     .accepts = range(0, 100),
     .send = setting(0xa1, 0, 0, 0, V),
     .value = scaled(15, 100),
     .factory = 80},
    {.id = 2,
     .name = "Contrast",
     .accepts = range(0, 100),
     .send = setting(0xa2, 0, 0, 0, V),
     .value = scaled(15, 100),
     .setFailure = "setContrast failed,value is %d",
     .factory = 27},
    {.id = 3,
     .name = "Sharpness",
     .accepts = range(0, 100),
     .send = setting(0x42, 0, 0, 0, V),
     .value = scaled(15, 100),
     .factory = 27},
    {.id = 4, .name = "Gamma", .accepts = range(0, 5), .send = setting(0x5b, V), .factory = 1},
    {.id = 5, .name = "NoiseReductionMode", .set = takeAnything, .factory = 0},
    {.id = 6,
     .name = "NRMode",
     .accepts = range(0, 1),
     .send = setting(0xa5, V),
     .setFailure = "setNRMode failed,value is %d",
     .factory = 0},
    {.id = 7,
     .name = "DeFog",
     .accepts = range(0, 100),
     .send = setting(0xa3, V),
     .value = scaled(15, 100),
     .factory = 0},
    {.id = MirrorId,
     .name = "Mirror",
     .accepts = range(0, 3),
     .refusal = "setMirror(%d) is out of range",
     .set = call<&Block::setMirror>,
     .factory = 0},
    {.id = 9, .name = "StillImage", .accepts = range(2, 3), .send = setting(0x62, V), .factory = 3},
    {.id = ExposalModeId,
     .name = "ExposalMode",
     .accepts = range(0, 4),
     .send = setting(0x39, V),
     .value = lookedUp(ExposalModes),
     .factory = 0},
    {.id = 11,
     .name = "Shutter",
     .accepts = range(0, 21),
     .onlyWhile = beforeRange(whileStored(ExposalModeId, 1, 2)),
     .send = setting(0x4a, 0, 0, 0, V),
     .factory = 5},
    {.id = 12,
     .name = "Iris",
     .accepts = range(0, 13),
     .onlyWhile = beforeRange(whileStored(ExposalModeId, 1, 3)),
     .send = setting(0x4b, 0, 0, 0, V),
     .factory = 10},
    {.id = 13,
     .name = "Bright",
     .accepts = oneOf(0) | range(5, 31),
     .onlyWhile = beforeRange(whileStored(ExposalModeId, 1, 4)),
     .send = setting(0x4d, 0, 0, HI, LO),
     .factory = 11},
    {.id = 14,
     .name = "Gain",
     .accepts = range(0, 15),
     .onlyWhile = beforeRange(whileStored(ExposalModeId, 1)),
     .send = setting(0x4c, 0, 0, 0, V),
     .factory = 0},
    {.id = 15, .name = "MaxGain", .accepts = range(4, 15), .send = setting(0x2c, V), .factory = 15},
    {.id = 16, .name = "AutoSlowShutter", .accepts = range(2, 3), .send = setting(0x5a, V), .factory = 3},
    {.id = 17, .name = "BackLight", .accepts = range(2, 3), .send = setting(0x33, V), .factory = 3},
    {.id = WBModeId,
     .name = "WBMode",
     .accepts = range(0, 5) | range(8, 9),
     .refusal = "setWBMode(%d) out of range",
     .send = setting(0x35, V),
     .factory = 0},
    {.id = 19,
     .name = "RedGain",
     .accepts = range(0, 255),
     .refusal = "setRedGain(%d) out of range",
     .onlyWhile = beforeRange(whileStored(WBModeId, 5)),
     .send = setting(0x43, 0, 0, HI, LO),
     .setFailure = "setRedGain failed,value is %d",
     .factory = 38},
    {.id = 20,
     .name = "BlueGain",
     .accepts = range(0, 255),
     .refusal = "setBlueGain(%d) out of range",
     .onlyWhile = beforeRange(whileStored(WBModeId, 5)),
     .send = setting(0x44, 0, 0, HI, LO),
     .setFailure = "setBlueGain failed,value is %d",
     .factory = 34},
    {.id = 21,
     .name = "Infrared",
     .accepts = oneOf(0, 3),
     .refusal = "setInfrared(%d) out of range",
     .steps = InfraredSteps,
     .setFailure = "setInfrared failed,value is %d",
     .factory = 0},
    {.id = DayNightModeId,
     .name = "DayNightMode",
     .accepts = oneOf(1) | range(3, 5),
     .set = call<&Block::setDayNightMode>,
     .factory = 1},
    {.id = 23, .name = "WDRMode", .accepts = range(2, 3), .send = setting(0x3d, V), .factory = 3},
    {.id = 24, .name = "HighlightHold", .accepts = range(0, 1), .send = setting(0xa6, V), .factory = 0},
    {.id = 25,
     .name = "Brightness",
     .accepts = range(0, 100),
     .send = setting(0xa4, 0, 0, 0, V),
     .value = scaled(14, 100, 1),
     .factory = 72},
    {.id = 26, .name = "DZoom", .accepts = range(2, 3), .send = setting(0x06, V), .factory = 3},
    {.id = FocusModeId, .name = "FocusMode", .accepts = range(1, 3), .steps = FocusModes, .factory = 2},
    visca::commandRow(28, "OnePushTrigger", run<&Block::OnePushTrigger>),
    {.id = 29, .name = "AF_Sensitivity", .accepts = range(1, 3), .send = setting(0x58, V), .factory = 2},
    {.id = 30, .name = "FocusNearLimit", .accepts = range(0, 5), .steps = NearLimits, .factory = 3},
    // What these two accept depends on the other one.
    {.id = 31, .name = "NtoDSensitivity", .set = call<&Block::setNtoDSensitivity>, .factory = 5},
    {.id = 32, .name = "DtoNSensitivity", .set = call<&Block::setDtoNSensitivity>, .factory = 15},
    nearLightRow(57),
    middleLightRow(58),
    farLightRow(59),
    visca::hourOfNight(60),
    visca::minuteOfNight(61),
    visca::hourOfDay(62),
    visca::minuteOfDay(63),
    powerModeRow(64),
    {.id = 65,
     .name = "AutoNoiseReduction",
     .accepts = AnyValue,
     .send = setting(0x53, V),
     .setFailure = "setNoiseReduction error,value is %d",
     .factory = 1},
    {.id = 66,
     .name = "ManualNoiseReduction",
     .accepts = AnyValue,
     .send = setting(0x53, V),
     .setFailure = "setNoiseReduction error,value is %d",
     .factory = 1},
});
static_assert(isWellFormed(Rows));

constexpr ModelDescription Description{
    .className = "CMD8300SenseController",
    .rows = Rows,
    .version = 0,
    .subVersion = 1,
    .mirrorId = MirrorId,
    .focusModeId = FocusModeId,
    .dayNightModeId = DayNightModeId,
    .port = {.openFailure = "open uart (%s) failed", .startedAs = "CMD8300SenseController"},
    .refusalText = "(%d) is out of range",
};

// The picture's command goes out twice.
constexpr Step ToDay[] = {
    {.frame = setting(0x51, 0x02), .pause = Second}, {.frame = setting(0x01, 0x02)}, {.frame = setting(0x01, 0x02)}};
constexpr Step ToNight[] = {
    {.frame = setting(0x51, 0x03), .pause = Second}, {.frame = setting(0x01, 0x03)}, {.frame = setting(0x01, 0x03)}};
constexpr Step ToAuto[] = {
    {.frame = setting(0x51, 0x02), .pause = Second}, {.frame = setting(0x01, 0x03)}, {.frame = setting(0x01, 0x03)}};

constexpr ViscaHabits Habits{
    .autoNotice = "enter auto mode", .turnToDay = ToDay, .turnToNight = ToNight, .turnToAuto = ToAuto};

constexpr ViscaVideoSystem VideoSystems{
    .wanted = {0x06, 0x08, 0x00},
    .write = {setting(0x24, 0x72, 0x00, 0x06), setting(0x24, 0x72, 0x00, 0x08), setting(0x24, 0x72, 0x00, 0x00)},
    .restart = setting(0x19, 0x03),
    .secondsToRestart = 1};

void announce(const SerialLine& line, int number, std::span<const char> command) {
    line.controller.ErrorPrintf("===~~~~~~~~~~~~~~~~~~send(%d times) setParameterValue send:", number);
    line.controller.recodeArray(command.data(), static_cast<int>(command.size()));
}

constexpr ExchangeRule SettingRule{
    .link = visca::SettingLink, .name = "setParameterValue", .announce = announce, .report = visca::reportSetting};

} // namespace

CMD8300SenseController::CMD8300SenseController() : CmdController(25, Description, Habits) {}

CMD8300SenseController::~CMD8300SenseController() { stopDNChangeThread(); }

const ModelDescription& CMD8300SenseController::model() { return Description; }

int CMD8300SenseController::initController(int, const ModuleConfigure& configure) {
    announceStart(configure);
    ModuleKeys keys(*this, configure);
    if (!readDevice(keys, m_strDeviceName) || !readGeneration(keys, m_nGeneration) ||
        !readLine(keys, m_strPortParameter) || !openUART())
        return 0;
    clearUartBuffer();
    return 1;
}

int CMD8300SenseController::openUART() {
    return openPort(*this, *m_pUARTController, Description.port, m_strDeviceName, m_strPortParameter, m_nUartHandle);
}

void CMD8300SenseController::closeUART() {
    if (m_nUartHandle >= 0)
        m_pUARTController->close(m_nUartHandle);
}

int CMD8300SenseController::initFactorySetting() { return 1; }

int CMD8300SenseController::UpdateParameters(std::string&) { return 1; }

int CMD8300SenseController::setParameterValue(const char* command, int length) {
    return exchange(line(), SettingRule, command, length, visca::AcknowledgementLength);
}

int CMD8300SenseController::updateSensorVideoSystem(int videoSystem, const VideoResolution&) {
    if (videoSystem == 1)
        sy_system("cp /mnt/mtd/hd1/system/modules/sensor/cmd8300/cmd8300_PAL.sh "
                  "/mnt/mtd/code/config_file/sensorInit.sh -rf",
                  ScriptSeconds);
    else if (videoSystem == 0)
        sy_system("cp /mnt/mtd/hd1/system/modules/sensor/cmd8300/cmd8300_NTSC.sh "
                  "/mnt/mtd/code/config_file/sensorInit.sh -rf",
                  ScriptSeconds);
    return 1;
}

int CMD8300SenseController::setSensorVideoSystem(int videoSystem, const VideoResolution&) {
    BreltoTime::wait(BreltoTime(0, 100));
    return changeVideoSystem(VideoSystems, videoSystem);
}

int CMD8300SenseController::setDayNightMode(int mode) {
    if (mode != 1 && (mode < 3 || mode > 5)) {
        ErrorPrintf("setDayNightMode(%d) out of range", mode);
        return 0;
    }
    m_nDayNightMode = mode == 1 ? 4 : mode - 2;
    reInitDelayStartTime();
    return 1;
}

void CMD8300SenseController::doDependOnThread() { setGainValue(); }

int CMD8300SenseController::setGainValue() { return 0; }

int CMD8300SenseController::setNtoDSensitivity(int value) {
    if (value < 5 || value > 116) {
        ErrorPrintf("setNtoDSensitivity(%d) out of range", value);
        return 0;
    }
    const int other = m_nDtoNSensitivity;
    if (other - value < LeastDistance) {
        ErrorPrintf("m_nDtoNSensitivity(%d) - p_nNtoDSensitivity(%d) < 10", other, value);
        return 0;
    }
    if (!send(setting(0x21, 0x00, 0x00, HI, LO), value))
        return 0;
    m_nNtoDSensitivity = value;
    return 1;
}

int CMD8300SenseController::setDtoNSensitivity(int value) {
    if (value < 15 || value > 126) {
        ErrorPrintf("setDtoNSensitivity(%d) out of range", value);
        return 0;
    }
    const int other = m_nNtoDSensitivity;
    if (value - other < LeastDistance) {
        ErrorPrintf("p_nDtoNSensitivity(%d) - m_nNtoDSensitivity(%d) < 10", value, other);
        return 0;
    }
    if (!send(setting(0x21, 0x01, 0x00, HI, LO), value))
        return 0;
    m_nDtoNSensitivity = value;
    return 1;
}
