#include "host/imaging/ImagingStandIn.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>
#include <string_view>

namespace sensorhost {

namespace {

/// What the pipeline keeps.
enum class Slot {
    None,
    KTNFWorkMode,
    KTNFTYPE,
    KTNFTNFA0,
    KTNFTNFTM,
    DcSub,
    EEEnable,
    EdgeEnhance,
    DisplayMode,
    Brtness,
    SatDgr,
    Contrast,
    Sharpness,
    HlcCtrl,
    AeCtrlMode,
    NightColorMode,
    MaxGain4Auto,
    FixGain4Manu,
    MaxShutr4Auto,
    FixShutr4Manu,
    GainCtrlMode,
    ShutrCtrlMode,
    WbCtrlMode,
    HdrMode,
    NrCtrl,
    DayToNightTransition,
    NightToDayTransition,
    DayNightStat,
    IncreaseValue,
    IrisCtrlMod,
    MirrorFlipMode,
    VideoSystem,
    Gain,
    Iso,
    DoorMode,
    Count
};

enum class Function {
    DRV_init,
    DRV_exit,
    ALG_sysInit,
    brewfi_init,
    brewfi_exit,
    DRV_SetKTNFWorkMode,
    DRV_SetKTNF_TYPE,
    DRV_SetKTNF_TNF_A0,
    DRV_SetKTNF_TNF_TM,
    DRV_isifSetDcSub,
    DRV_ipipeSetEEEnable,
    DRV_ipipeSetEdgeEnhance,
    DRV_displaySetMode,
    BrAewb_UiGetBrtness,
    BrAewb_UiSetBrtness,
    BrAewb_UiGetSatDgr,
    BrAewb_UiSetSatDgr,
    BrAewb_UiGetContrast,
    BrAewb_UiSetContrast,
    BrAewb_UiGetSharpness,
    BrAewb_UiSetSharpness,
    BrAewb_UiGetHlcCtrl,
    BrAewb_UiSetHlcCtrl,
    BrAewb_UiGetAeCtrlMode,
    BrAewb_UiSetAeCtrlMode,
    BrAewb_UiGetNightColorMode,
    BrAewb_UiSetNightColorMode,
    BrAewb_UiGetMaxGain4Auto,
    BrAewb_UiSetMaxGain4Auto,
    BrAewb_UiGetFixGain4Manu,
    BrAewb_UiSetFixGain4Manu,
    BrAewb_UiGetMaxShutr4Auto,
    BrAewb_UiSetMaxShutr4Auto,
    BrAewb_UiGetFixShutr4Manu,
    BrAewb_UiSetFixShutr4Manu,
    BrAewb_UiGetGainCtrlMode,
    BrAewb_UiSetGainCtrlMode,
    BrAewb_UiGetShutrCtrlMode,
    BrAewb_UiSetShutrCtrlMode,
    BrAewb_UiGetWbCtrlMode,
    BrAewb_UiSetWbCtrlMode,
    BrAewb_UiGetHdrMode,
    BrAewb_UiSetHdrMode,
    BrAewb_UiGetNrCtrl,
    BrAewb_UiSetNrCtrl,
    BrAewb_UiGetDayToNightTransition,
    BrAewb_UiSetDayToNightTransition,
    BrAewb_UiGetNightToDayTransition,
    BrAewb_UiSetNightToDayTransition,
    BrAewb_UiSetDayNightStat,
    BrAewb_UiSetIncreaseValue,
    BrAewb_UiSetIrisCtrlMod,
    BrAewb_UiSetMirrorFlipMode,
    BrAewb_UiSetVideoSystem,
    BrAewb_UiGetGain,
    BrAewb_UiGetIso,
    braewb_ioctrlParam,
    Count
};

struct Row {
    std::string_view name; ///< ends with a zero byte
    Slot slot = Slot::None;
};

/// In the order of Function.
constexpr auto ROWS = std::to_array<Row>({
    {"DRV_init"},
    {"DRV_exit"},
    {"ALG_sysInit"},
    {"brewfi_init"},
    {"brewfi_exit"},
    {"DRV_SetKTNFWorkMode", Slot::KTNFWorkMode},
    {"DRV_SetKTNF_TYPE", Slot::KTNFTYPE},
    {"DRV_SetKTNF_TNF_A0", Slot::KTNFTNFA0},
    {"DRV_SetKTNF_TNF_TM", Slot::KTNFTNFTM},
    {"DRV_isifSetDcSub", Slot::DcSub},
    {"DRV_ipipeSetEEEnable", Slot::EEEnable},
    {"DRV_ipipeSetEdgeEnhance", Slot::EdgeEnhance},
    {"DRV_displaySetMode", Slot::DisplayMode},
    {"BrAewb_UiGetBrtness", Slot::Brtness},
    {"BrAewb_UiSetBrtness", Slot::Brtness},
    {"BrAewb_UiGetSatDgr", Slot::SatDgr},
    {"BrAewb_UiSetSatDgr", Slot::SatDgr},
    {"BrAewb_UiGetContrast", Slot::Contrast},
    {"BrAewb_UiSetContrast", Slot::Contrast},
    {"BrAewb_UiGetSharpness", Slot::Sharpness},
    {"BrAewb_UiSetSharpness", Slot::Sharpness},
    {"BrAewb_UiGetHlcCtrl", Slot::HlcCtrl},
    {"BrAewb_UiSetHlcCtrl", Slot::HlcCtrl},
    {"BrAewb_UiGetAeCtrlMode", Slot::AeCtrlMode},
    {"BrAewb_UiSetAeCtrlMode", Slot::AeCtrlMode},
    {"BrAewb_UiGetNightColorMode", Slot::NightColorMode},
    {"BrAewb_UiSetNightColorMode", Slot::NightColorMode},
    {"BrAewb_UiGetMaxGain4Auto", Slot::MaxGain4Auto},
    {"BrAewb_UiSetMaxGain4Auto", Slot::MaxGain4Auto},
    {"BrAewb_UiGetFixGain4Manu", Slot::FixGain4Manu},
    {"BrAewb_UiSetFixGain4Manu", Slot::FixGain4Manu},
    {"BrAewb_UiGetMaxShutr4Auto", Slot::MaxShutr4Auto},
    {"BrAewb_UiSetMaxShutr4Auto", Slot::MaxShutr4Auto},
    {"BrAewb_UiGetFixShutr4Manu", Slot::FixShutr4Manu},
    {"BrAewb_UiSetFixShutr4Manu", Slot::FixShutr4Manu},
    {"BrAewb_UiGetGainCtrlMode", Slot::GainCtrlMode},
    {"BrAewb_UiSetGainCtrlMode", Slot::GainCtrlMode},
    {"BrAewb_UiGetShutrCtrlMode", Slot::ShutrCtrlMode},
    {"BrAewb_UiSetShutrCtrlMode", Slot::ShutrCtrlMode},
    {"BrAewb_UiGetWbCtrlMode", Slot::WbCtrlMode},
    {"BrAewb_UiSetWbCtrlMode", Slot::WbCtrlMode},
    {"BrAewb_UiGetHdrMode", Slot::HdrMode},
    {"BrAewb_UiSetHdrMode", Slot::HdrMode},
    {"BrAewb_UiGetNrCtrl", Slot::NrCtrl},
    {"BrAewb_UiSetNrCtrl", Slot::NrCtrl},
    {"BrAewb_UiGetDayToNightTransition", Slot::DayToNightTransition},
    {"BrAewb_UiSetDayToNightTransition", Slot::DayToNightTransition},
    {"BrAewb_UiGetNightToDayTransition", Slot::NightToDayTransition},
    {"BrAewb_UiSetNightToDayTransition", Slot::NightToDayTransition},
    {"BrAewb_UiSetDayNightStat", Slot::DayNightStat},
    {"BrAewb_UiSetIncreaseValue", Slot::IncreaseValue},
    {"BrAewb_UiSetIrisCtrlMod", Slot::IrisCtrlMod},
    {"BrAewb_UiSetMirrorFlipMode", Slot::MirrorFlipMode},
    {"BrAewb_UiSetVideoSystem", Slot::VideoSystem},
    {"BrAewb_UiGetGain", Slot::Gain},
    {"BrAewb_UiGetIso", Slot::Iso},
    {"braewb_ioctrlParam", Slot::DoorMode},
});
static_assert(ROWS.size() == static_cast<std::size_t>(Function::Count));

constexpr std::size_t SLOT_COUNT = static_cast<std::size_t>(Slot::Count);
constexpr std::size_t CALL_LIMIT = 100'000;
constexpr std::size_t MISUSE_LIMIT = 100;
constexpr std::size_t CURVE_LENGTH = 1024;

constexpr std::size_t indexOf(Function function) { return static_cast<std::size_t>(function); }

enum class Stage { Off, Driver, Algorithms, Started };

} // namespace

struct ImagingStandIn::State {
    mutable std::mutex mutex;
    Stage stage = Stage::Off;
    std::array<int, SLOT_COUNT> values{};
    std::optional<double> lux;
    std::array<bool, ROWS.size()> failing{};
    std::array<bool, ROWS.size()> failingNext{};
    std::vector<std::int32_t> edgeWords;
    std::vector<std::int32_t> edgeCurve;
    bool recording = false;
    std::vector<Call> calls;
    std::vector<std::string> misuses;

    State() { switchOn(); }

    // A picture in the middle of its ranges, at a gain of 1, exposed automatically: up to a frame's time at 25 frames a
    // second. Night falls at half the gain there is, a light below which colours drown in noise, and ends well above.
    void switchOn() {
        stage = Stage::Off;
        values.fill(0);
        lux.reset();
        for (const Slot slot : {Slot::Brtness, Slot::SatDgr, Slot::Contrast, Slot::Sharpness})
            valueOf(slot) = 50;
        valueOf(Slot::Gain) = UnityGain;
        valueOf(Slot::Iso) = UnityGain;
        valueOf(Slot::MaxGain4Auto) = 64 * UnityGain;
        valueOf(Slot::FixGain4Manu) = UnityGain;
        valueOf(Slot::MaxShutr4Auto) = 40000;
        valueOf(Slot::FixShutr4Manu) = 10000;
        valueOf(Slot::DayToNightTransition) = 32 * UnityGain;
        valueOf(Slot::NightToDayTransition) = 4 * UnityGain;
        failing.fill(false);
        failingNext.fill(false);
        edgeWords.clear();
        edgeCurve.clear();
        recording = false;
        calls.clear();
        misuses.clear();
    }

    Exposure exposure() {
        if (!lux)
            return {.shutter = 0, .gain = valueOf(Slot::Gain), .iso = valueOf(Slot::Iso)};
        return exposeScene(*lux, {.isGainFixed = valueOf(Slot::GainCtrlMode) == 1,
                                  .isShutterFixed = valueOf(Slot::ShutrCtrlMode) == 1,
                                  .mostGain = valueOf(Slot::MaxGain4Auto),
                                  .fixedGain = valueOf(Slot::FixGain4Manu),
                                  .longestShutter = valueOf(Slot::MaxShutr4Auto),
                                  .fixedShutter = valueOf(Slot::FixShutr4Manu),
                                  .brightness = valueOf(Slot::Brtness)});
    }

    int answer(Function function) {
        switch (ROWS[indexOf(function)].slot) {
        case Slot::Gain:
            return exposure().gain;
        case Slot::Iso:
            return exposure().iso;
        default:
            return valueOf(function);
        }
    }

    int& valueOf(Slot slot) { return values[static_cast<std::size_t>(slot)]; }
    int& valueOf(Function function) { return valueOf(ROWS[indexOf(function)].slot); }

    void record(Function function, int value) {
        if (recording && calls.size() < CALL_LIMIT)
            calls.push_back({ROWS[indexOf(function)].name.data(), value});
    }

    void misused(Function function) {
        if (misuses.size() < MISUSE_LIMIT)
            misuses.emplace_back(ROWS[indexOf(function)].name);
    }

    /// Whether the call does its work.
    bool passes(Function function, Stage needed) {
        if (stage < needed)
            misused(function);
        const bool once = failingNext[indexOf(function)];
        failingNext[indexOf(function)] = false;
        return !once && !failing[indexOf(function)];
    }
};

ImagingStandIn::State& imagingState() { return *ImagingStandIn::getInstance().m_pState; }

namespace {

using Guard = std::lock_guard<std::mutex>;

std::size_t findRow(std::string_view name) {
    const auto found = std::find_if(ROWS.begin(), ROWS.end(), [name](const Row& row) { return row.name == name; });
    return static_cast<std::size_t>(found - ROWS.begin());
}

int read(Function function) {
    ImagingStandIn::State& s = imagingState();
    const Guard guard(s.mutex);
    const int value = s.passes(function, Stage::Started) ? s.answer(function) : -1;
    s.record(function, value);
    return value;
}

int write(Function function, int value) {
    ImagingStandIn::State& s = imagingState();
    const Guard guard(s.mutex);
    s.record(function, value);
    if (!s.passes(function, Stage::Started))
        return -1;
    s.valueOf(function) = value;
    return 0;
}

int changeStage(Function function, Stage needed, Stage reached) {
    ImagingStandIn::State& s = imagingState();
    const Guard guard(s.mutex);
    s.record(function, 0);
    if (!s.passes(function, needed))
        return -1;
    s.stage = reached;
    return 0;
}

} // namespace

ImagingStandIn& ImagingStandIn::getInstance() {
    // Never destroyed: a controller among the static objects may still call it.
    static ImagingStandIn* const instance = new ImagingStandIn;
    return *instance;
}

ImagingStandIn::ImagingStandIn() : m_pState(std::make_unique<State>()) {}

ImagingStandIn::~ImagingStandIn() = default;

void ImagingStandIn::reset() {
    const Guard guard(m_pState->mutex);
    m_pState->switchOn();
}

bool ImagingStandIn::setValue(const std::string& function, int value) {
    const std::size_t row = findRow(function);
    if (row == ROWS.size() || ROWS[row].slot == Slot::None)
        return false;
    const Guard guard(m_pState->mutex);
    m_pState->valueOf(ROWS[row].slot) = value;
    return true;
}

int ImagingStandIn::getValue(const std::string& function) const {
    const std::size_t row = findRow(function);
    if (row == ROWS.size())
        return 0;
    const Guard guard(m_pState->mutex);
    return m_pState->valueOf(ROWS[row].slot);
}

void ImagingStandIn::setScene(std::optional<double> lux) {
    const Guard guard(m_pState->mutex);
    m_pState->lux = lux;
}

std::optional<double> ImagingStandIn::getScene() const {
    const Guard guard(m_pState->mutex);
    return m_pState->lux;
}

Exposure ImagingStandIn::getExposure() const {
    const Guard guard(m_pState->mutex);
    return m_pState->exposure();
}

std::vector<std::int32_t> ImagingStandIn::getEdgeWords() const {
    const Guard guard(m_pState->mutex);
    return m_pState->edgeWords;
}

std::vector<std::int32_t> ImagingStandIn::getEdgeCurve() const {
    const Guard guard(m_pState->mutex);
    return m_pState->edgeCurve;
}

bool ImagingStandIn::setFailing(const std::string& function, bool failing) {
    const std::size_t row = findRow(function);
    if (row == ROWS.size())
        return false;
    const Guard guard(m_pState->mutex);
    m_pState->failing[row] = failing;
    return true;
}

bool ImagingStandIn::failNext(const std::string& function) {
    const std::size_t row = findRow(function);
    if (row == ROWS.size())
        return false;
    const Guard guard(m_pState->mutex);
    m_pState->failingNext[row] = true;
    return true;
}

void ImagingStandIn::setRecording(bool recording) {
    const Guard guard(m_pState->mutex);
    m_pState->recording = recording;
    if (recording)
        m_pState->calls.clear();
}

std::vector<ImagingStandIn::Call> ImagingStandIn::calls() const {
    const Guard guard(m_pState->mutex);
    return m_pState->calls;
}

std::vector<std::string> ImagingStandIn::misuses() const {
    const Guard guard(m_pState->mutex);
    return m_pState->misuses;
}

bool ImagingStandIn::isStarted() const {
    const Guard guard(m_pState->mutex);
    return m_pState->stage == Stage::Started;
}

} // namespace sensorhost

using sensorhost::changeStage;
using sensorhost::Function;
using sensorhost::Guard;
using sensorhost::read;
using sensorhost::Stage;
using sensorhost::write;

int DRV_init() { return changeStage(Function::DRV_init, Stage::Off, Stage::Driver); }

int DRV_exit() { return changeStage(Function::DRV_exit, Stage::Driver, Stage::Off); }

int ALG_sysInit() { return changeStage(Function::ALG_sysInit, Stage::Driver, Stage::Algorithms); }

int brewfi_init() { return changeStage(Function::brewfi_init, Stage::Algorithms, Stage::Started); }

int brewfi_exit() { return changeStage(Function::brewfi_exit, Stage::Started, Stage::Off); }

int DRV_ipipeSetEdgeEnhance(const CSL_IpipeEdgeEnhanceConfig* config) {
    if (config == nullptr)
        return -1;
    const int result = write(Function::DRV_ipipeSetEdgeEnhance, 0);
    if (result != 0)
        return result;
    sensorhost::ImagingStandIn::State& s = sensorhost::imagingState();
    const Guard guard(s.mutex);
    s.edgeWords.assign(std::begin(config->words), std::end(config->words));
    if (config->curveTable != nullptr)
        s.edgeCurve.assign(config->curveTable, config->curveTable + sensorhost::CURVE_LENGTH);
    else
        s.edgeCurve.clear();
    return 0;
}

int braewb_ioctrlParam(int group, int command, int* value) {
    if (group != 0 || command != 0 || value == nullptr)
        return -1;
    return write(Function::braewb_ioctrlParam, *value);
}

int DRV_SetKTNFWorkMode(int mode) { return write(Function::DRV_SetKTNFWorkMode, mode); }

int DRV_SetKTNF_TYPE(int type) { return write(Function::DRV_SetKTNF_TYPE, type); }

int DRV_SetKTNF_TNF_A0(int value) { return write(Function::DRV_SetKTNF_TNF_A0, value); }

int DRV_SetKTNF_TNF_TM(int value) { return write(Function::DRV_SetKTNF_TNF_TM, value); }

int DRV_isifSetDcSub(std::int16_t value) { return write(Function::DRV_isifSetDcSub, value); }

int DRV_ipipeSetEEEnable(int enable) { return write(Function::DRV_ipipeSetEEEnable, enable); }

int DRV_displaySetMode(int mode) { return write(Function::DRV_displaySetMode, mode); }

int BrAewb_UiGetBrtness() { return read(Function::BrAewb_UiGetBrtness); }

int BrAewb_UiSetBrtness(int value) { return write(Function::BrAewb_UiSetBrtness, value); }

int BrAewb_UiGetSatDgr() { return read(Function::BrAewb_UiGetSatDgr); }

int BrAewb_UiSetSatDgr(int value) { return write(Function::BrAewb_UiSetSatDgr, value); }

int BrAewb_UiGetContrast() { return read(Function::BrAewb_UiGetContrast); }

int BrAewb_UiSetContrast(int value) { return write(Function::BrAewb_UiSetContrast, value); }

int BrAewb_UiGetSharpness() { return read(Function::BrAewb_UiGetSharpness); }

int BrAewb_UiSetSharpness(int value) { return write(Function::BrAewb_UiSetSharpness, value); }

int BrAewb_UiGetHlcCtrl() { return read(Function::BrAewb_UiGetHlcCtrl); }

int BrAewb_UiSetHlcCtrl(int value) { return write(Function::BrAewb_UiSetHlcCtrl, value); }

int BrAewb_UiGetAeCtrlMode() { return read(Function::BrAewb_UiGetAeCtrlMode); }

int BrAewb_UiSetAeCtrlMode(int value) { return write(Function::BrAewb_UiSetAeCtrlMode, value); }

int BrAewb_UiGetNightColorMode() { return read(Function::BrAewb_UiGetNightColorMode); }

int BrAewb_UiSetNightColorMode(int constant, int value) {
    // The first argument has one value; with another the library's behaviour is not known.
    return constant == 1 ? write(Function::BrAewb_UiSetNightColorMode, value) : -1;
}

int BrAewb_UiGetMaxGain4Auto() { return read(Function::BrAewb_UiGetMaxGain4Auto); }

int BrAewb_UiSetMaxGain4Auto(int value) { return write(Function::BrAewb_UiSetMaxGain4Auto, value); }

int BrAewb_UiGetFixGain4Manu() { return read(Function::BrAewb_UiGetFixGain4Manu); }

int BrAewb_UiSetFixGain4Manu(int value) { return write(Function::BrAewb_UiSetFixGain4Manu, value); }

int BrAewb_UiGetMaxShutr4Auto() { return read(Function::BrAewb_UiGetMaxShutr4Auto); }

int BrAewb_UiSetMaxShutr4Auto(int value) { return write(Function::BrAewb_UiSetMaxShutr4Auto, value); }

int BrAewb_UiGetFixShutr4Manu() { return read(Function::BrAewb_UiGetFixShutr4Manu); }

int BrAewb_UiSetFixShutr4Manu(int value) { return write(Function::BrAewb_UiSetFixShutr4Manu, value); }

int BrAewb_UiGetGainCtrlMode() { return read(Function::BrAewb_UiGetGainCtrlMode); }

int BrAewb_UiSetGainCtrlMode(int value) { return write(Function::BrAewb_UiSetGainCtrlMode, value); }

int BrAewb_UiGetShutrCtrlMode() { return read(Function::BrAewb_UiGetShutrCtrlMode); }

int BrAewb_UiSetShutrCtrlMode(int value) { return write(Function::BrAewb_UiSetShutrCtrlMode, value); }

int BrAewb_UiGetWbCtrlMode() { return read(Function::BrAewb_UiGetWbCtrlMode); }

int BrAewb_UiSetWbCtrlMode(int value) { return write(Function::BrAewb_UiSetWbCtrlMode, value); }

int BrAewb_UiGetHdrMode() { return read(Function::BrAewb_UiGetHdrMode); }

int BrAewb_UiSetHdrMode(int value) { return write(Function::BrAewb_UiSetHdrMode, value); }

int BrAewb_UiGetNrCtrl() { return read(Function::BrAewb_UiGetNrCtrl); }

int BrAewb_UiSetNrCtrl(int value) { return write(Function::BrAewb_UiSetNrCtrl, value); }

int BrAewb_UiGetDayToNightTransition() { return read(Function::BrAewb_UiGetDayToNightTransition); }

int BrAewb_UiSetDayToNightTransition(int value) { return write(Function::BrAewb_UiSetDayToNightTransition, value); }

int BrAewb_UiGetNightToDayTransition() { return read(Function::BrAewb_UiGetNightToDayTransition); }

int BrAewb_UiSetNightToDayTransition(int value) { return write(Function::BrAewb_UiSetNightToDayTransition, value); }

int BrAewb_UiSetDayNightStat(int value) { return write(Function::BrAewb_UiSetDayNightStat, value); }

int BrAewb_UiSetIncreaseValue(int value) { return write(Function::BrAewb_UiSetIncreaseValue, value); }

int BrAewb_UiSetIrisCtrlMod(int value) { return write(Function::BrAewb_UiSetIrisCtrlMod, value); }

int BrAewb_UiSetMirrorFlipMode(int value) { return write(Function::BrAewb_UiSetMirrorFlipMode, value); }

int BrAewb_UiSetVideoSystem(int value) { return write(Function::BrAewb_UiSetVideoSystem, value); }

int BrAewb_UiGetGain() { return read(Function::BrAewb_UiGetGain); }

int BrAewb_UiGetIso() { return read(Function::BrAewb_UiGetIso); }
