#include "drivers/regtext/HitachSenseController.h"

#include "controller/DriverServices.h"
#include "drivers/ModelDescription.h"
#include "drivers/PortBringUp.h"
#include "drivers/RowMakers.h"
#include "drivers/TableProof.h"
#include "drivers/regtext/HitachRows.h"
#include "drivers/regtext/VideoSystems.h"
#include "host/BreltoTime.h"

namespace {

using namespace sensorcontrol;
using Block = HitachSenseController;

constexpr ParameterRow OwnRows[] = {filterModeRow(17)};
// The mirror is served, but remembers nothing.
constexpr auto Rows =
    withKind(joined(hitach::Rows<Block>, std::to_array(OwnRows)), {hitach::MirrorId}, IdManager::Unknown);
static_assert(isWellFormed(Rows));

constexpr ModelDescription Description{.className = "HitachSenseController",
                                       .rows = Rows,
                                       .version = 7,
                                       .subVersion = 2,
                                       .mirrorId = hitach::MirrorId,
                                       .focusModeId = hitach::FocusModeId,
                                       .failureText = nullptr,
                                       .transmit = Block::transmit};

// The block tells its registers in answer to a write's form with any value.
constexpr regtext::VideoSystemRead VideoSystemReads[] = {{":W170100", "get video system 1 failed"},
                                                         {":WFCC000", "get video system 2 failed"}};
constexpr regtext::VideoSystem VideoSystemRows[] = {
    {.videoSystem = 1,
     .width = 1280,
     .height = 720,
     .notice = "_______set PAL & 1280*720",
     .state = {0x01, 0x00},
     .writes = {":W170101", ":WFCC000", ":WFCAC00"}},
    {.videoSystem = 0,
     .width = 1280,
     .height = 960,
     .notice = "_______set NTSC & 1280*960",
     .state = {0xff, 0x01},
     .writes = {":W1701FF", ":WFCC001", ":WFCAC00"}},
    {.videoSystem = 0,
     .width = 1280,
     .height = 720,
     .notice = "_______set NTSC & 1280*720",
     .state = {0xff, 0x00},
     .writes = {":W1701FF", ":WFCC000", ":WFCAC00"}},
};
constexpr regtext::VideoSystems BlockVideoSystems{.reads = VideoSystemReads,
                                                  .systems = VideoSystemRows,
                                                  .changeNotice = "video system change!",
                                                  .writesOn = true,
                                                  .failure = "Hitach setSensorVideoSystem failed"};

} // namespace

HitachSenseController::HitachSenseController()
    : HitachController(7, Description), m_pCameraModeThread(new GThread(bind(this, &Block::threadBody), "threadBody",
                                                                        GThread::emptyFun, GThread::emptyFun)) {
    DriverServices::setLineMutex(*this, m_LineMutex);
}

HitachSenseController::~HitachSenseController() {
    stopThreads();
    m_pCameraModeThread->stop();
}

const ModelDescription& HitachSenseController::model() { return Description; }

int HitachSenseController::setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) {
    constexpr int KeptAsItIs = 2;
    return videoSystem == KeptAsItIs
               ? 1
               : changeVideoSystem(BlockVideoSystems, videoSystem, resolution, m_bThirdGeneration == 1 ? 20 : 10);
}

int HitachSenseController::NotifySensorInitComplate() {
    return m_bThirdGeneration == 1 ? HitachController::NotifySensorInitComplate() : 1;
}

int HitachSenseController::initController(int, const ModuleConfigure& configure) {
    ModuleKeys keys(*this, configure);
    std::string deviceName;
    if (!beginStart(keys, deviceName))
        return 0;
    int generation = 0;
    keys.optionalDetailNumber("isThridGeneration", generation, nullptr);
    m_bThirdGeneration = generation;
    if (!openDevice(keys, deviceName))
        return 0;
    if (m_nInfrared == 0 && m_bThirdGeneration == 0 && !m_pCameraModeThread->start())
        return 0;
    return startStatusThread();
}

int HitachSenseController::getCameraMode(int& mode) {
    mode = 0;
    m_nCameraMode = mode;
    return 1;
}

int HitachSenseController::threadBody() {
    const int mode = m_nCameraMode;
    if (mode != -1)
        setCameraMode(mode);
    BreltoTime::wait(BreltoTime(60, 0));
    return 0;
}
