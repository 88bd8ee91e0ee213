#include "drivers/regtext/CMD7200SenseController.h"

#include "drivers/ModelDescription.h"
#include "drivers/RowMakers.h"
#include "drivers/TableProof.h"
#include "drivers/regtext/RegisterTextRows.h"
#include "drivers/regtext/VideoSystems.h"

#include <array>

namespace {

using namespace sensorcontrol;
using regtext::mirrorRow;
using regtext::write;
using Block = CMD7200SenseController;

constexpr int MirrorId = 3;
constexpr int ShutterModeId = 5;
constexpr int FixShutterId = 6;
constexpr int FocusModeId = 7;

constexpr int ExposureRegister = 0xfcc8;
constexpr int DayNightRegister = 0xffe6;

constexpr std::uint8_t ShutterSpeeds[] = {2, 7, 6, 9, 8, 10, 12, 13, 14, 15, 16};
constexpr std::uint8_t FocusModes[] = {0x00, 0x08, 0x09};
constexpr std::uint8_t FocusLimits[] = {0x00, 0xf9, 0xf8, 0xf7, 0xf4};
constexpr std::uint8_t WhiteBalances[] = {0x00, 0x08};

constexpr auto Rows = std::to_array<ParameterRow>({
    {.id = 1,
     .name = "Brightness",
     .accepts = range(0, 100),
     .send = write(0xfd9e),
     .value = scaled(255, 100),
     .factory = 15},
    {.id = 2,
     .name = "Sharpness",
     .accepts = range(0, 100),
     .send = write(0xfbf6),
     .value = scaled(63, 100),
     .factory = 76},
    mirrorRow(MirrorId, "mirror value out of range"),
    {.id = 4, .name = "DNMode", .accepts = range(0, 2), .set = call<&Block::setDNMode>, .factory = 0},
    {.id = ShutterModeId,
     .name = "ShutterMode",
     .accepts = range(0, 1),
     .set = call<&Block::setShutterMode>,
     .factory = 0},
    {.id = FixShutterId,
     .name = "FixShutter",
     .accepts = range(0, 10),
     .refusal = "setFixShutter out of range",
     .onlyWhile = beforeRange(whileStored(ShutterModeId, 1)),
     .send = write(0xfcc9),
     .value = lookedUp(ShutterSpeeds),
     .factory = 1},
    {.id = FocusModeId,
     .name = "FocusMode",
     .accepts = range(0, 2),
     .refusal = "setFocusMode out of range",
     .send = write(0xff0e),
     .value = lookedUp(FocusModes),
     .factory = 0},
    {.id = 8,
     .name = "FocusLimit",
     .accepts = range(1, 5),
     .refusal = "setFocusLimit is out of range",
     .send = write(0xe139),
     .value = lookedUp(1, FocusLimits),
     .factory = 1},
    {.id = 9,
     .name = "WBMode",
     .accepts = range(0, 1),
     .refusal = consoleIfPrinting("setWBMode is out of range"),
     .send = write(0xfbff),
     .value = lookedUp(WhiteBalances),
     .factory = 0},
    filterModeRow(10),
});
static_assert(isWellFormed(Rows));

constexpr regtext::VideoSystemRead VideoSystemReads[] = {{":RFFFE00", "get video system failed"}};
constexpr regtext::VideoSystem VideoSystemRows[] = {
    {.videoSystem = 1, .state = {0x01}, .writes = {":WFFFE01"}},
    {.videoSystem = 0, .state = {0x03}, .writes = {":WFFFE03"}},
};
constexpr regtext::VideoSystems BlockVideoSystems{.reads = VideoSystemReads, .systems = VideoSystemRows};

constexpr ModelDescription Description{.className = "CMD7200SenseController",
                                       .rows = Rows,
                                       .version = 0,
                                       .subVersion = 1,
                                       .mirrorId = MirrorId,
                                       .focusModeId = FocusModeId,
                                       .failureText = nullptr,
                                       .transmit = Block::transmit};

} // namespace

CMD7200SenseController::CMD7200SenseController() : RegisterTextController(22, Description) {}

CMD7200SenseController::~CMD7200SenseController() { stopThreads(); }

const ModelDescription& CMD7200SenseController::model() { return Description; }

int CMD7200SenseController::setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) {
    return changeVideoSystem(BlockVideoSystems, videoSystem, resolution, 5);
}

// The register that chooses the shutter chooses as well whether the block decides day and night: either setting
// writes what the other one was.
int CMD7200SenseController::writeExposure(int isDNFixed, int shutterMode) {
    static constexpr std::uint8_t Exposures[2][2] = {{0x20, 0x0a}, {0x08, 0x09}};
    return send(write(ExposureRegister), Exposures[isDNFixed][shutterMode]);
}

int CMD7200SenseController::setDNMode(int mode) {
    if (mode < 0 || mode > 2) {
        ErrorPrintf("setDNMode is out of range");
        return 0;
    }
    const int isFixed = mode == 0 ? 0 : 1;
    if (!writeExposure(isFixed, m_nShutterMode) ||
        (isFixed != 0 && !send(write(DayNightRegister), mode == 1 ? 0xc0 : 0x80)))
        return 0;
    m_nDNFixed = isFixed;
    return 1;
}

int CMD7200SenseController::setShutterMode(int mode) {
    if (mode != 0 && mode != 1) {
        ErrorPrintf("setShutterMode out of range");
        return 0;
    }
    int shutter = 0;
    if (!writeExposure(m_nDNFixed, mode) ||
        (mode == 1 && (!getParameter(FixShutterId, shutter) || !apply(FixShutterId, shutter))))
        return 0;
    m_nShutterMode = mode;
    return 1;
}
