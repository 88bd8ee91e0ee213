// Beside the family's frames the block has registers by page and number, with two nibbles of value:
//     write 35 hex to 04 0C:  81 01 7F 7F 02 0B 04 0C 03 05 FF  ->  90 41 FF
//     what does it hold?      81 09 7F 7F 01 0B 04 0C FF        ->  90 50 00 00 03 05 FF

#include "drivers/visca/SONYCV7500SenseController.h"

#include "drivers/ModelDescription.h"
#include "drivers/ParameterTable.h"
#include "drivers/TableEdits.h"
#include "drivers/TableProof.h"
#include "drivers/visca/SonyEH.h"
#include "host/BreltoTime.h"
#include "host/SystemHelper.h"
#include "host/VideoResolution.h"

#include <algorithm>
#include <cstdio>

namespace {

using namespace sensorcontrol;
using sony::InAutoExposure;
using visca::inquiry;
using visca::setting;
using Block = SONYCV7500SenseController;

constexpr std::uint8_t WideDynamics[] = {0x03, 0x02, 0x06};

/// Back light is no setting here.
constexpr Resend ByExposalMode[] = {
    {.when = oneOf(0), .ids = {15, 16, sony::ExpCompId, 18}},
    sony::ByExposalMode[1],
    sony::ByExposalMode[2],
    sony::ByExposalMode[3],
    sony::ByExposalMode[4],
};

/// One frame for three parameters: level, compensation, sensitivity.
template <class Level, class Compensation, class Sens>
constexpr FramePattern compensationFrame(Level level, Compensation compensation, Sens sens) {
    return setting(0x2d, 0, level, compensation, sens, 0, 0, 0, 0);
}

constexpr auto Common = joined(sony::Rows<Block>, sony::LensRows<Block>);
constexpr auto Changes = std::to_array<ParameterRow>({
    withFactory(rowOf(Common, 2), 2),
    accepting(rowOf(Common, sony::WBModeId), range(1, 10), 1),
    {.id = 28,
     .name = "WDMode",
     .accepts = range(1, 3),
     .onlyWhile = beforeRange(InAutoExposure),
     .send = setting(0x3d, V),
     .value = lookedUp(1, WideDynamics),
     .factory = 1},
    accepting(rowOf(Common, sony::FocusModeId), range(1, 2), 1),
    {.id = 39,
     .name = "CompensLevel",
     .accepts = range(0, 2),
     .refusal = "p_nSens(%d) is out of range",
     .send = compensationFrame(stored(44), stored(40), V),
     .factory = 0},
    {.id = 40,
     .name = "BrightCompens",
     .accepts = range(0, 3),
     .refusal = "p_nBrightCompens(%d) is out of range",
     .send = compensationFrame(stored(44), V, stored(39)),
     .factory = 2},
    {.id = 44,
     .name = "BrightLevel",
     .accepts = range(0, 6),
     .refusal = "p_nBrightLevel(%d) is out of range",
     .send = compensationFrame(V, stored(40), stored(39)),
     .factory = 3},
});
constexpr auto OwnRows = std::to_array<ParameterRow>({
    {.id = 56,
     .name = "Stabilizer",
     .accepts = oneOf(0) | range(2, 3),
     .refusal = "p_nStabilizer(%d) is out of range",
     .send = setting(0x34, V),
     .factory = 3},
    {.id = 57,
     .name = "Defog",
     .accepts = range(2, 3),
     .refusal = "p_nDefog(%d) is out of range",
     .onlyWhile = beforeRange(InAutoExposure),
     .send = setting(0x37, V, 0),
     .factory = 3},
    sony::brightnessRow<Block>(58, 56),
    nearLightRow(59),
    middleLightRow(60),
    farLightRow(61),
    visca::hourOfDay(62),
    visca::minuteOfDay(63),
    visca::hourOfNight(64),
    visca::minuteOfNight(65),
    powerModeRow(66),
    saying(visca::commandRow(67, "OpenPointLightFocus", run<&Block::OpenPointLightFocus>),
           "setPointLightFocusMode failed"),
    saying(visca::commandRow(68, "ClosePointLightFocus", run<&Block::ClosePointLightFocus>),
           "confirmPointLightFocusMode failed"),
});
constexpr auto Rows = joined(without<22, 38, 41, 51>(replaced(Common, Changes)), OwnRows);
static_assert(isWellFormed(Rows));

constexpr ModelDescription Description{
    .className = "SONYCV7500SenseController",
    .rows = Rows,
    .version = 0,
    .subVersion = 3,
    .mirrorId = sony::MirrorId,
    .focusModeId = sony::FocusModeId,
    .dayNightModeId = sony::DayNightModeId,
    .port = {.openFailure = "open uart (%s) failed", .startedAs = "CV7500SenseController"},
    .statusText = "m_SensorStatus != ISensorController::InitSuccess!",
};

constexpr ViscaHabits Turns{.turnToDay = sony::ToDay, .turnToNight = sony::ToNight, .turnToAuto = sony::ToAuto};

constexpr SonyHabits Habits{.byExposalMode = ByExposalMode,
                            .nearLimit = 4,
                            .toNtsc = sony::EH.toNtsc,
                            .toPal = sony::EH.toPal,
                            .gainFailure = "get currentGain failed",
                            .gainBytesTold = 7,
                            .restartTimeout = "recv time out in reset sensor"};

/// The video system's byte, by resolution; the block has no others.
int videoSystemByte(int videoSystem, const VideoResolution& resolution) {
    struct Bytes {
        int width;
        int height;
        int bySystem[5];
    };
    static constexpr Bytes Table[] = {
        {1920, 1080, {0x06, 0x08, 0x00, 0x13, 0x14}},
        {1280, 720, {0x0e, 0x11, 0x00, 0x09, 0x0c}},
    };
    for (const Bytes& row : Table)
        if (resolution.getVideoWidth() == row.width && resolution.getVideoHeight() == row.height && videoSystem >= 0 &&
            videoSystem < 5)
            return row.bySystem[videoSystem];
    return 0;
}

// Point-light focus: the registers in the order in which they are written and read back.

struct PointLightRegister {
    std::uint8_t page;
    std::uint8_t number;
    std::uint8_t closed[2];
    std::uint8_t open[2];
};

constexpr PointLightRegister PointLightRegisters[] = {
    {0x04, 0x09, {0x0f, 0x00}, {0x03, 0x00}}, {0x04, 0x0b, {0x0f, 0x00}, {0x03, 0x00}},
    {0x04, 0x0c, {0x0f, 0x0f}, {0x03, 0x05}}, {0x04, 0x0d, {0x0f, 0x0f}, {0x00, 0x05}},
    {0x04, 0x08, {0x00, 0x00}, {0x00, 0x01}}, {0x0f, 0x06, {0x0e, 0x00}, {0x0a, 0x00}},
    {0x0f, 0x07, {0x0d, 0x00}, {0x09, 0x08}}, {0x0f, 0x08, {0x0f, 0x0f}, {0x0e, 0x00}},
    {0x0f, 0x09, {0x00, 0x00}, {0x00, 0x02}},
};
constexpr std::size_t UncheckedStep = 1; ///< its register does not keep what is written

constexpr int Closed = 0;
constexpr int Open = 1;

void pauseBetweenFrames() { BreltoTime::wait(BreltoTime(0, 30000)); }

void printBytes(std::span<const char> bytes) {
    for (const char byte : bytes)
        std::printf("0x%x ", static_cast<unsigned char>(byte));
    std::puts("");
}

} // namespace

/// One direction of the change, with its texts.
struct SONYCV7500SenseController::PointLightChange {
    int mode;
    bool pausesAfterEach;
    const char* entryFailure;
    const char* writeFailure;
    const char* checkFailure;
    const char* valueFailure;
    const char* rebootReason;
};

SONYCV7500SenseController::SONYCV7500SenseController() : SonyController(19, Description, Turns, Habits) {}

SONYCV7500SenseController::~SONYCV7500SenseController() { stopDNChangeThread(); }

const ModelDescription& SONYCV7500SenseController::model() { return Description; }

int SONYCV7500SenseController::initController(int, const ModuleConfigure& configure) { return bringUpPort(configure); }

int SONYCV7500SenseController::setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) {
    char reply[5];
    inquire(inquiry(0x24, 0x72), reply); // without an answer no video system is in force
    const int current = static_cast<unsigned char>(reply[3]);
    const int wanted = videoSystemByte(videoSystem, resolution);
    if (current == wanted) {
        std::puts("Video system not change!");
        return 1;
    }
    std::printf("set video system,nValue=%d,szRecv[3]=%d\n", wanted, current);
    setVideoSystem(videoSystem);
    return restart();
}

int SONYCV7500SenseController::OpenPointLightFocus() {
    static constexpr PointLightChange Change{
        Open,
        false,
        "set OpenPointLightFocus 1 falied\n",
        "set OpenPointLightFocus 2 falied\n",
        "checkPointLightFocusMode @openPointLightFocusMode failed",
        "checkPointLightFocusMode value(%d) @openPointLightFocusMode failed",
        "SensorController OpenPointLightFocus mode",
    };
    return changePointLight(Change);
}

int SONYCV7500SenseController::ClosePointLightFocus() {
    static constexpr PointLightChange Change{
        Closed,
        true,
        "set ClosePointLightFocus 1 falied\n",
        "set ClosePointLightFocus 2 falied\n",
        "checkPointLightFocusMode @closePointLightFocusMode failed",
        "checkPointLightFocusMode value(%d) @closePointLightFocusMode failed",
        "SensorController ClosePointLightFocus mode",
    };
    return changePointLight(Change);
}

int SONYCV7500SenseController::changePointLight(const PointLightChange& change) {
    if (m_bPointLightBusy.exchange(true))
        return 1;
    const auto fail = [this](const char* text, int value) {
        ParameterTable::say(*this, text, value);
        m_bPointLightBusy = false;
        return 0;
    };
    if (!send(FramePattern(0x81, 0x01, 0x7f, 0x01, 0x7f, 0xff)))
        return fail(change.entryFailure, 0);
    pauseBetweenFrames();
    const auto write = [&](const FramePattern& frame) {
        if (!send(frame))
            return false;
        if (change.pausesAfterEach)
            pauseBetweenFrames();
        return true;
    };
    if (!write(FramePattern(0x81, 0x01, 0x7f, 0x7f, 0x02, 0x00, 0x00, 0x01, 0x00, 0x01, 0xff)))
        return fail(change.writeFailure, 0);
    for (const PointLightRegister& one : PointLightRegisters) {
        const auto& value = change.mode == Open ? one.open : one.closed;
        if (!write(FramePattern(0x81, 0x01, 0x7f, 0x7f, 0x02, 0x0b, one.page, one.number, value[0], value[1], 0xff)))
            return fail(change.writeFailure, 0);
    }
    if (!change.pausesAfterEach)
        pauseBetweenFrames();
    int mode = -1;
    if (!checkPointLightFocusMode(mode))
        return fail(change.checkFailure, 0);
    if (mode != change.mode)
        return fail(change.valueFailure, mode);
    SystemHelper::rebootDevice(change.rebootReason);
    return 1;
}

int SONYCV7500SenseController::checkPointLightFocusMode(int& mode) {
    std::puts("======================");
    int decided = -1;
    for (std::size_t step = 0; step < std::size(PointLightRegisters); ++step) {
        const PointLightRegister& one = PointLightRegisters[step];
        const FramePattern question(0x81, 0x09, 0x7f, 0x7f, 0x01, 0x0b, one.page, one.number, 0xff);
        const FramePattern::Frame frame = question.build(0);
        const std::span<const char> command(frame.data(), question.size());
        char reply[7];
        const int isAnswered = inquire(question, reply);
        printBytes(command);
        printBytes(reply);
        if (!isAnswered) {
            ErrorPrintf("checkPointLightFocusMode send:");
            recodeArray(command.data(), static_cast<int>(command.size()));
            ErrorPrintf("recv[%d]:", isAnswered);
            recodeArray(reply, sizeof reply);
            return 0;
        }
        const auto holds = [&reply](const std::uint8_t(&value)[2]) {
            const char expected[] = {'\x90', 0x50, 0, 0, static_cast<char>(value[0]), static_cast<char>(value[1]),
                                     '\xff'};
            return std::ranges::equal(reply, expected);
        };
        if (step == 0) {
            decided = holds(one.closed) ? Closed : holds(one.open) ? Open : -1;
            if (decided == -1) {
                std::puts("3 false");
                return 0;
            }
        } else if (step != UncheckedStep && !holds(decided == Open ? one.open : one.closed)) {
            std::puts(decided == Open ? "2 false" : "1 false");
            return 0;
        }
    }
    mode = decided;
    std::puts("======checkPointLightFocusMode return true=======");
    return 1;
}
