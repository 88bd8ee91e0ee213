#include "drivers/regtext/HitachCompatSenseController.h"

#include "controller/DriverServices.h"
#include "drivers/ModelDescription.h"
#include "drivers/PortBringUp.h"
#include "drivers/RowMakers.h"
#include "drivers/TableProof.h"
#include "drivers/regtext/HitachRows.h"
#include "drivers/regtext/VideoSystems.h"
#include "host/BreltoTime.h"

#include <cstdio>

namespace {

using namespace sensorcontrol;
using regtext::write;
using Block = HitachCompatSenseController;
using hitach::CameraModeId;

constexpr std::uint8_t FocusDistances[] = {0x00, 0xf9, 0xf8, 0xf7};
constexpr std::uint8_t FocusModes[] = {0x09, 0x00, 0x08};
constexpr std::uint8_t WhiteBalances[] = {0x00, 0x08};

// The shutter goes out as it is stored.
constexpr auto CameraModeSteps = followedBy(
    hitach::CameraModeSteps,
    {.when = oneOf(hitach::FixShutterMode), .of = hitach::FixShutterId, .frame = write(hitach::FixShutterRegister)});
// In mode 3 the other way round than the Hitach blocks have it.
constexpr std::uint8_t SensitivitiesInModeThree[] = {0x31, 0x21, 0x11};
constexpr auto SensitivitySteps = hitach::sensitivitySteps(SensitivitiesInModeThree);

constexpr Step FocusUpSteps[] = {{.frame = FramePattern(":WFCBBAA")}, {.frame = FramePattern(":WFCBBFE")}};
// One character longer than a write is.
constexpr Step FocusDownSteps[] = {{.frame = FramePattern(":WFCBBAA9")}, {.frame = FramePattern(":WFCBBFE")}};

constexpr auto Rows = std::to_array<ParameterRow>({
    {.id = 1,
     .name = "Brightness",
     .accepts = range(0, 100),
     .send = write(0xfd9e),
     .value = scaled(1, 5, 80),
     .factory = 50},
    {.id = 2,
     .name = "VerticalSharpness",
     .accepts = range(0, 100),
     .send = write(0xfbf9),
     .value = hitach::SharpnessNumber,
     .factory = 50},
    {.id = 3,
     .name = "Saturation",
     .accepts = range(0, 100),
     .send = write(0xfc10),
     .value = scaled(255, 100),
     .factory = 49},
    {.id = 4, .name = "NightColor", .accepts = range(0, 255), .send = write(0xfc11), .factory = 48},
    {.id = CameraModeId,
     .name = "CameraMode",
     .accepts = range(0, 4),
     .steps = CameraModeSteps,
     .get = ask<&Block::getCameraMode>},
    {.id = 7,
     .name = "MaxGain",
     .accepts = range(0, 160),
     .refusal = "p_nMaxGain out of range",
     .onlyWhile = afterRange(unlessStored(CameraModeId, 2, 3)),
     .send = write(0xfa20),
     .factory = 112},
    hitach::sensitivityRow(SensitivitySteps),
    {.id = hitach::FixShutterId,
     .name = "FixShutter",
     .accepts = AnyValue,
     .onlyWhile = whileStored(CameraModeId, hitach::FixShutterMode),
     .send = write(hitach::FixShutterRegister),
     .factory = 13},
    regtext::mirrorRow(hitach::MirrorId),
    {.id = 13,
     .name = "FocusDistance",
     .accepts = range(0, 3),
     .send = write(0xe139),
     .value = lookedUp(FocusDistances),
     .factory = 3},
    {.id = hitach::FocusModeId,
     .name = "FocusMode",
     .accepts = range(0, 2),
     .send = write(0xff0e),
     .value = lookedUp(FocusModes),
     .factory = 0},
    {.id = 16,
     .name = "HoriSharpness",
     .accepts = range(0, 100),
     .send = write(0xfbf6),
     .value = hitach::SharpnessNumber,
     .factory = 50},
    {.id = 17, .name = "AutoIris", .accepts = range(0, 1), .send = write(0xfffb), .factory = 1},
    {.id = 18,
     .name = "IrisVoltage",
     .accepts = range(112, 145),
     .refusal = "p_nIrisVoltage is out of range",
     .send = write(0xfffd),
     .factory = 128},
    {.id = 19,
     .name = "WBMode",
     .accepts = range(0, 1),
     .refusal = console("setWBMode is out of range"),
     .send = write(0xfbff),
     .value = lookedUp(WhiteBalances),
     .factory = 0},
    {.id = 20, .name = "setAdjustLens", .kind = IdManager::SetOnly, .accepts = AnyValue, .send = write(0xe139, 0xf4)},
    filterModeRow(21),
    {.id = 54, .name = "FocusUp", .kind = IdManager::SetOnly, .accepts = AnyValue, .steps = FocusUpSteps},
    {.id = 55, .name = "FocusDown", .kind = IdManager::SetOnly, .accepts = AnyValue, .steps = FocusDownSteps},
});
static_assert(isWellFormed(Rows));

constexpr ModelDescription Description{.className = "HitachCompatSenseController",
                                       .rows = Rows,
                                       .version = 3,
                                       .subVersion = 6,
                                       .mirrorId = hitach::MirrorId,
                                       .focusModeId = hitach::FocusModeId,
                                       .failureText = nullptr,
                                       .transmit = Block::transmit};

constexpr regtext::VideoSystemRead VideoSystemReads[] = {{":RFFFE00", "get video system failed"}};
constexpr regtext::VideoSystem VideoSystemRows[] = {
    {.videoSystem = 1, .width = 1280, .height = 720, .state = {0x00}, .writes = {":WFFFE00"}},
    {.videoSystem = 0, .width = 1280, .height = 960, .state = {0x02}, .writes = {":WFFFE02"}},
    {.videoSystem = 0, .width = 1280, .height = 720, .state = {0x03}, .writes = {":WFFFE03"}},
};
constexpr regtext::VideoSystems BlockVideoSystems{.reads = VideoSystemReads, .systems = VideoSystemRows};

/// From this version on the blocks tell day and night as the rest of the family does.
constexpr int FirstVersionWithStatus = 107;

} // namespace

HitachCompatSenseController::HitachCompatSenseController() : RegisterTextController(14, Description) {
    DriverServices::setLineMutex(*this, m_LineMutex);
}

HitachCompatSenseController::~HitachCompatSenseController() { stopThreads(); }

const ModelDescription& HitachCompatSenseController::model() { return Description; }

int HitachCompatSenseController::setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) {
    return changeVideoSystem(BlockVideoSystems, videoSystem, resolution, 3);
}

int HitachCompatSenseController::initController(int, const ModuleConfigure& configure) {
    ModuleKeys keys(*this, configure);
    std::string deviceName;
    if (!beginStart(keys, deviceName) || !openDevice(keys, deviceName))
        return 0;
    int version = 0;
    if (!recvData(":RE1EE00", 2, version)) {
        ErrorPrintf("get SensorConfigVersion failed");
        return 0;
    }
    m_nSensorVersion = version;
    std::printf("m_nSensorVersion=%d\n", version);
    return startStatusThread();
}

int HitachCompatSenseController::getCameraMode(int& mode) {
    mode = m_nInfrared != 0 ? 0 : 2;
    return 1;
}

int HitachCompatSenseController::getDNbody() {
    constexpr int Night = 0x80;
    constexpr int Day = 0xc0;
    if (m_nSensorVersion >= FirstVersionWithStatus)
        return RegisterTextController::getDNbody();
    if (m_nInfrared == 1) {
        pollStatus(":RFFE600", Night, Day, "recvData @getDNbody failed");
    } else {
        DriverServices::putInForce(*this, -1);
        BreltoTime::wait(BreltoTime(1, 0));
    }
    return 0;
}
