#include "drivers/regtext/SC110N_CSenseController.h"

#include "drivers/Exchange.h"
#include "drivers/MaskRows.h"
#include "drivers/ModelDescription.h"
#include "drivers/PortBringUp.h"
#include "drivers/TableProof.h"
#include "drivers/regtext/HitachRows.h"
#include "drivers/regtext/VideoSystems.h"

namespace {

using namespace sensorcontrol;
using regtext::write;
using Block = SC110N_CSenseController;

constexpr int ManualNRId = 18;
constexpr int ManualNRMode = 4;

constexpr Step NRModeSteps[] = {
    {.when = oneOf(0), .frame = write(0xff4a, 0x00)},
    {.when = range(1, 4), .frame = write(0xff4a, 0x01)},
    {.when = range(1, 4), .frame = write(0xff4b), .value = shifted(-1)},
};
constexpr Resend ByNRMode[] = {{.when = oneOf(ManualNRMode), .ids = {ManualNRId}}};

constexpr auto NoiseRows = std::to_array<ParameterRow>({
    {.id = 17,
     .name = "NRMode",
     .accepts = range(0, 4),
     .refusal = console("p_nNRMode(%d) out of range"),
     .steps = NRModeSteps,
     .then = ByNRMode,
     .factory = 2},
    {.id = ManualNRId,
     .name = "ManualNR",
     .accepts = range(0, 15),
     .refusal = console("p_nManualNR(%d) out of range"),
     .send = write(0xff4f),
     .factory = 8},
});

/// The family's settings; the mirror is served, but remembers nothing, and the brightness is told.
constexpr auto PictureRows = [] {
    auto rows = withKind(hitach::Rows<Block>, {hitach::MirrorId}, IdManager::Unknown);
    rows[0].notice = console("set brightness %d");
    return rows;
}();

constexpr int MaskIds[] = {19, 20, 22, 23, 24, 25, 26, 27, 28, 29};
constexpr auto Rows = joined(joined(PictureRows, NoiseRows), renumbered(MaskRows, MaskIds));
static_assert(isWellFormed(Rows) && PictureRows[0].id == hitach::BrightnessId);

constexpr ModelDescription Description{.className = "SC110N_CSenseController",
                                       .rows = Rows,
                                       .version = 0,
                                       .subVersion = 3,
                                       .mirrorId = hitach::MirrorId,
                                       .focusModeId = hitach::FocusModeId,
                                       .failureText = nullptr,
                                       .transmit = Block::transmit};

constexpr regtext::VideoSystemRead VideoSystemReads[] = {{":R170100", "get video system 1 failed"}};
constexpr regtext::VideoSystem VideoSystemRows[] = {
    {.videoSystem = 1, .notice = "_______set PAL", .state = {0x00}, .writes = {":W170100"}},
    {.videoSystem = 0, .notice = "_______set NTSC", .state = {0xff}, .writes = {":W1701FF"}},
};
constexpr regtext::VideoSystems BlockVideoSystems{.reads = VideoSystemReads,
                                                  .systems = VideoSystemRows,
                                                  .changeNotice = "video system change!",
                                                  .failure = "setSensorVideoSystem failed",
                                                  .restart = ":WFCAC00"};

constexpr ExchangeRule RawRule{.link = {.timeout = 5, .accepts = isEcho}, .name = "sendData"};

} // namespace

SC110N_CSenseController::SC110N_CSenseController() : HitachController(23, Description) {}

SC110N_CSenseController::~SC110N_CSenseController() { stopThreads(); }

const ModelDescription& SC110N_CSenseController::model() { return Description; }

int SC110N_CSenseController::setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) {
    return changeVideoSystem(BlockVideoSystems, videoSystem, resolution, 20);
}

int SC110N_CSenseController::setParameterValue(const char* command, int length) {
    return exchange(line(), RawRule, command, length, length);
}

int SC110N_CSenseController::initController(int, const ModuleConfigure& configure) {
    ModuleKeys keys(*this, configure);
    const PortRecipe& recipe = m_Model.port;
    std::string deviceName;
    std::string filterPin;
    std::string lineText;
    if (!beginStart(keys, deviceName) || !keys.detail("GPIO", filterPin, "get GPIO from detail failed") ||
        !keys.parseParameters() || !parseFilterPin(filterPin) ||
        !keys.parameter(recipe.key, lineText, recipe.lineFailure) ||
        !openPort(*this, *m_pUARTController, recipe, deviceName, lineText, m_nUartHandle))
        return 0;
    drainPort();
    return startStatusThread();
}

int SC110N_CSenseController::getCurrentGain(int& gain) {
    constexpr int StepsPerUnit = 32;
    int value = 0;
    if (!recvData(":RFB380000", 4, value))
        return 0;
    gain = value / StepsPerUnit;
    return 1;
}

int SC110N_CSenseController::getCameraMode(int& mode) {
    mode = m_nInfrared != 0 ? 0 : 2;
    m_nCameraMode = mode;
    return 1;
}
