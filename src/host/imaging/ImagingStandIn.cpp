#include "host/imaging/ImagingStandIn.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <span>
#include <utility>

namespace sensorhost {

namespace {

constexpr std::size_t CallLimit = 100'000;
constexpr std::size_t MisuseLimit = 100;
constexpr std::size_t CurveLength = 1024;

struct Function;
Function* g_pFirst = nullptr; ///< the list of all

/// One function of the libraries. Each that is defined below is in the list from the moment that this library is
/// loaded.
struct Function {
    explicit Function(std::string_view itsName) : name(itsName), next(std::exchange(g_pFirst, this)) {}

    std::string_view name;
    Function* next;
    std::optional<int> result; ///< that it was told to give
    std::optional<int> nextResult;
};

/// The name as the compiler writes it, "Of = " before it.
template <auto Of>
constexpr std::string_view nameOf() {
    std::string_view text = __PRETTY_FUNCTION__;
    text.remove_prefix(text.find("Of = ") + 5);
    text.remove_prefix(text.front() == '&' ? 1 : 0);
    return text.substr(0, text.find_first_of(";]"));
}

template <auto Of>
Function g_FunctionOf{nameOf<Of>()};

Function* findFunction(std::string_view name) {
    Function* function = g_pFirst;
    while (function != nullptr && function->name != name)
        function = function->next;
    return function;
}

std::size_t findVerb(std::string_view name) { return std::min(name.find("Get"), name.find("Set")); }

/// A read and its setter have one value: their names differ in the verb only.
struct LessByValue {
    bool operator()(std::string_view one, std::string_view other) const { return parts(one) < parts(other); }

    static std::pair<std::string_view, std::string_view> parts(std::string_view name) {
        const std::size_t verb = findVerb(name);
        return {name.substr(0, verb), verb != name.npos ? name.substr(verb + 3) : std::string_view()};
    }
};

enum class Stage { Off, Driver, Algorithms, Started };

} // namespace

struct ImagingStandIn::State {
    mutable std::mutex mutex;
    Stage stage = Stage::Off;
    std::map<std::string_view, int, LessByValue> values; ///< of what was set so far
    std::optional<double> lux;
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
        values = {{"BrAewb_UiGetBrtness", 50},
                  {"BrAewb_UiGetSatDgr", 50},
                  {"BrAewb_UiGetContrast", 50},
                  {"BrAewb_UiGetSharpness", 50},
                  {"BrAewb_UiGetGain", UnityGain},
                  {"BrAewb_UiGetIso", UnityGain},
                  {"BrAewb_UiGetMaxGain4Auto", 64 * UnityGain},
                  {"BrAewb_UiGetFixGain4Manu", UnityGain},
                  {"BrAewb_UiGetMaxShutr4Auto", 40000},
                  {"BrAewb_UiGetFixShutr4Manu", 10000},
                  {"BrAewb_UiGetDayToNightTransition", 32 * UnityGain},
                  {"BrAewb_UiGetNightToDayTransition", 4 * UnityGain}};
        lux.reset();
        for (Function* function = g_pFirst; function != nullptr; function = function->next) {
            function->result.reset();
            function->nextResult.reset();
        }
        edgeWords.clear();
        edgeCurve.clear();
        recording = false;
        calls.clear();
        misuses.clear();
    }

    int valueOf(std::string_view function) const {
        const auto found = values.find(function);
        return found != values.end() ? found->second : 0;
    }

    Exposure exposure() const {
        if (!lux)
            return {.shutter = 0, .gain = valueOf("BrAewb_UiGetGain"), .iso = valueOf("BrAewb_UiGetIso")};
        return exposeScene(*lux, {.isGainFixed = valueOf("BrAewb_UiGetGainCtrlMode") == 1,
                                  .isShutterFixed = valueOf("BrAewb_UiGetShutrCtrlMode") == 1,
                                  .mostGain = valueOf("BrAewb_UiGetMaxGain4Auto"),
                                  .fixedGain = valueOf("BrAewb_UiGetFixGain4Manu"),
                                  .longestShutter = valueOf("BrAewb_UiGetMaxShutr4Auto"),
                                  .fixedShutter = valueOf("BrAewb_UiGetFixShutr4Manu"),
                                  .brightness = valueOf("BrAewb_UiGetBrtness")});
    }

    int record(const Function& function, std::span<const int> arguments, int result) {
        if (recording && calls.size() < CallLimit)
            calls.push_back({function.name, {arguments.begin(), arguments.end()}, result});
        return result;
    }

    void noteMisuse(const Function& function) {
        if (misuses.size() < MisuseLimit)
            misuses.emplace_back(function.name);
    }

    /// What the call was told to give, if anything.
    std::optional<int> takeResult(Function& function, Stage needed) {
        if (stage < needed)
            noteMisuse(function);
        const std::optional<int> once = std::exchange(function.nextResult, std::nullopt);
        return once ? once : function.result;
    }
};

ImagingStandIn::State& imagingState() { return *ImagingStandIn::getInstance().m_pState; }

namespace {

using Guard = std::lock_guard<std::mutex>;

/// `scene` says which part of the exposure is read, null for a value that was set.
template <auto Of>
int read(int Exposure::*scene = nullptr) {
    ImagingStandIn::State& s = imagingState();
    Function& function = g_FunctionOf<Of>;
    const Guard guard(s.mutex);
    const std::optional<int> told = s.takeResult(function, Stage::Started);
    const int value = scene != nullptr ? s.exposure().*scene : s.valueOf(function.name);
    return s.record(function, {}, told.value_or(value));
}

/// Keeps the last argument, unless the call fails.
int write(Function& function, std::span<const int> arguments) {
    ImagingStandIn::State& s = imagingState();
    const Guard guard(s.mutex);
    const int result = s.takeResult(function, Stage::Started).value_or(0);
    if (result == 0)
        s.values[function.name] = arguments.back();
    return s.record(function, arguments, result);
}

template <auto Of, class... Arguments>
int write(Arguments... arguments) {
    return write(g_FunctionOf<Of>, std::initializer_list<int>{arguments...});
}

/// A call with arguments of which nobody knows what the library makes of them.
template <auto Of, class... Arguments>
int refuse(Arguments... arguments) {
    ImagingStandIn::State& s = imagingState();
    const Guard guard(s.mutex);
    s.noteMisuse(g_FunctionOf<Of>);
    return s.record(g_FunctionOf<Of>, std::initializer_list<int>{arguments...}, -1);
}

template <auto Of>
int changeStage(Stage needed, Stage reached) {
    ImagingStandIn::State& s = imagingState();
    const Guard guard(s.mutex);
    const int result = s.takeResult(g_FunctionOf<Of>, needed).value_or(0);
    if (result == 0)
        s.stage = reached;
    return s.record(g_FunctionOf<Of>, {}, result);
}

int writeEdges(Function& function, const CSL_IpipeEdgeEnhanceConfig& config) {
    const int result = write(function, config.words);
    ImagingStandIn::State& s = imagingState();
    const Guard guard(s.mutex);
    if (result != 0)
        return result;
    s.edgeWords.assign(std::begin(config.words), std::end(config.words));
    s.edgeCurve.clear();
    if (config.curveTable != nullptr)
        s.edgeCurve.assign(config.curveTable, config.curveTable + CurveLength);
    return 0;
}

} // namespace

ImagingStandIn& ImagingStandIn::getInstance() {
    // Never destroyed: a controller among the static objects may still call it.
    static ImagingStandIn* const Instance = new ImagingStandIn;
    return *Instance;
}

ImagingStandIn::ImagingStandIn() : m_pState(std::make_unique<State>()) {}

ImagingStandIn::~ImagingStandIn() = default;

void ImagingStandIn::reset() {
    const Guard guard(m_pState->mutex);
    m_pState->switchOn();
}

bool ImagingStandIn::setValue(std::string_view function, int value) {
    const Function* const found = findFunction(function);
    if (found == nullptr || findVerb(function) == function.npos)
        return false;
    const Guard guard(m_pState->mutex);
    m_pState->values[found->name] = value;
    return true;
}

int ImagingStandIn::getValue(std::string_view function) const {
    const Guard guard(m_pState->mutex);
    return m_pState->valueOf(function);
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

bool ImagingStandIn::setResult(std::string_view function, std::optional<int> result) {
    Function* const found = findFunction(function);
    const Guard guard(m_pState->mutex);
    if (found != nullptr)
        found->result = result;
    return found != nullptr;
}

bool ImagingStandIn::setNextResult(std::string_view function, int result) {
    Function* const found = findFunction(function);
    const Guard guard(m_pState->mutex);
    if (found != nullptr)
        found->nextResult = result;
    return found != nullptr;
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

using namespace sensorhost;

int DRV_init() { return changeStage<DRV_init>(Stage::Off, Stage::Driver); }
int DRV_exit() { return changeStage<DRV_exit>(Stage::Driver, Stage::Off); }
int ALG_sysInit() { return changeStage<ALG_sysInit>(Stage::Driver, Stage::Algorithms); }
int brewfi_init() { return changeStage<brewfi_init>(Stage::Algorithms, Stage::Started); }
int brewfi_exit() { return changeStage<brewfi_exit>(Stage::Started, Stage::Off); }

int DRV_SetKTNFWorkMode(int mode) { return write<DRV_SetKTNFWorkMode>(mode); }
int DRV_SetKTNF_TYPE(int type) { return write<DRV_SetKTNF_TYPE>(type); }
int DRV_SetKTNF_TNF_A0(int value) { return write<DRV_SetKTNF_TNF_A0>(value); }
int DRV_SetKTNF_TNF_TM(int value) { return write<DRV_SetKTNF_TNF_TM>(value); }
int DRV_isifSetDcSub(std::int16_t value) { return write<DRV_isifSetDcSub>(value); }
int DRV_ipipeSetEEEnable(int enable) { return write<DRV_ipipeSetEEEnable>(enable); }
int DRV_ipipeSetEdgeEnhance(const CSL_IpipeEdgeEnhanceConfig* config) {
    return config != nullptr ? writeEdges(g_FunctionOf<DRV_ipipeSetEdgeEnhance>, *config)
                             : refuse<DRV_ipipeSetEdgeEnhance>();
}
int DRV_displaySetMode(int mode) { return write<DRV_displaySetMode>(mode); }

int BrAewb_UiGetBrtness() { return read<BrAewb_UiGetBrtness>(); }
int BrAewb_UiSetBrtness(int value) { return write<BrAewb_UiSetBrtness>(value); }
int BrAewb_UiGetSatDgr() { return read<BrAewb_UiGetSatDgr>(); }
int BrAewb_UiSetSatDgr(int value) { return write<BrAewb_UiSetSatDgr>(value); }
int BrAewb_UiGetContrast() { return read<BrAewb_UiGetContrast>(); }
int BrAewb_UiSetContrast(int value) { return write<BrAewb_UiSetContrast>(value); }
int BrAewb_UiGetSharpness() { return read<BrAewb_UiGetSharpness>(); }
int BrAewb_UiSetSharpness(int value) { return write<BrAewb_UiSetSharpness>(value); }
int BrAewb_UiGetHlcCtrl() { return read<BrAewb_UiGetHlcCtrl>(); }
int BrAewb_UiSetHlcCtrl(int value) { return write<BrAewb_UiSetHlcCtrl>(value); }
int BrAewb_UiGetAeCtrlMode() { return read<BrAewb_UiGetAeCtrlMode>(); }
int BrAewb_UiSetAeCtrlMode(int value) { return write<BrAewb_UiSetAeCtrlMode>(value); }
int BrAewb_UiGetNightColorMode() { return read<BrAewb_UiGetNightColorMode>(); }
int BrAewb_UiSetNightColorMode(int constant, int value) {
    return constant == 1 ? write<BrAewb_UiSetNightColorMode>(constant, value)
                         : refuse<BrAewb_UiSetNightColorMode>(constant, value);
}
int BrAewb_UiGetMaxGain4Auto() { return read<BrAewb_UiGetMaxGain4Auto>(); }
int BrAewb_UiSetMaxGain4Auto(int value) { return write<BrAewb_UiSetMaxGain4Auto>(value); }
int BrAewb_UiGetFixGain4Manu() { return read<BrAewb_UiGetFixGain4Manu>(); }
int BrAewb_UiSetFixGain4Manu(int value) { return write<BrAewb_UiSetFixGain4Manu>(value); }
int BrAewb_UiGetMaxShutr4Auto() { return read<BrAewb_UiGetMaxShutr4Auto>(); }
int BrAewb_UiSetMaxShutr4Auto(int value) { return write<BrAewb_UiSetMaxShutr4Auto>(value); }
int BrAewb_UiGetFixShutr4Manu() { return read<BrAewb_UiGetFixShutr4Manu>(); }
int BrAewb_UiSetFixShutr4Manu(int value) { return write<BrAewb_UiSetFixShutr4Manu>(value); }
int BrAewb_UiGetGainCtrlMode() { return read<BrAewb_UiGetGainCtrlMode>(); }
int BrAewb_UiSetGainCtrlMode(int value) { return write<BrAewb_UiSetGainCtrlMode>(value); }
int BrAewb_UiGetShutrCtrlMode() { return read<BrAewb_UiGetShutrCtrlMode>(); }
int BrAewb_UiSetShutrCtrlMode(int value) { return write<BrAewb_UiSetShutrCtrlMode>(value); }
int BrAewb_UiGetWbCtrlMode() { return read<BrAewb_UiGetWbCtrlMode>(); }
int BrAewb_UiSetWbCtrlMode(int value) { return write<BrAewb_UiSetWbCtrlMode>(value); }
int BrAewb_UiGetHdrMode() { return read<BrAewb_UiGetHdrMode>(); }
int BrAewb_UiSetHdrMode(int value) { return write<BrAewb_UiSetHdrMode>(value); }
int BrAewb_UiGetNrCtrl() { return read<BrAewb_UiGetNrCtrl>(); }
int BrAewb_UiSetNrCtrl(int value) { return write<BrAewb_UiSetNrCtrl>(value); }
int BrAewb_UiGetDayToNightTransition() { return read<BrAewb_UiGetDayToNightTransition>(); }
int BrAewb_UiSetDayToNightTransition(int value) { return write<BrAewb_UiSetDayToNightTransition>(value); }
int BrAewb_UiGetNightToDayTransition() { return read<BrAewb_UiGetNightToDayTransition>(); }
int BrAewb_UiSetNightToDayTransition(int value) { return write<BrAewb_UiSetNightToDayTransition>(value); }
int BrAewb_UiSetDayNightStat(int value) { return write<BrAewb_UiSetDayNightStat>(value); }
int BrAewb_UiSetIncreaseValue(int value) { return write<BrAewb_UiSetIncreaseValue>(value); }
int BrAewb_UiSetIrisCtrlMod(int value) { return write<BrAewb_UiSetIrisCtrlMod>(value); }
int BrAewb_UiSetMirrorFlipMode(int value) { return write<BrAewb_UiSetMirrorFlipMode>(value); }
int BrAewb_UiSetVideoSystem(int value) { return write<BrAewb_UiSetVideoSystem>(value); }
int BrAewb_UiGetGain() { return read<BrAewb_UiGetGain>(&Exposure::gain); }
int BrAewb_UiGetIso() { return read<BrAewb_UiGetIso>(&Exposure::iso); }
int braewb_ioctrlParam(int group, int command, int* value) {
    return group == 0 && command == 0 && value != nullptr ? write<braewb_ioctrlParam>(group, command, *value)
                                                          : refuse<braewb_ioctrlParam>(group, command);
}
