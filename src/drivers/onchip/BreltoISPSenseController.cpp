#include "drivers/onchip/BreltoISPSenseController.h"

#include "controller/FactoryValues.h"
#include "drivers/ParameterTable.h"
#include "drivers/PortBringUp.h"
#include "drivers/RowMakers.h"
#include "drivers/TableProof.h"
#include "host/BreltoTime.h"
#include "host/ImagingLibraries.h"
#include "host/ModuleConfigure.h"
#include "host/ScopedLock.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

using namespace sensorcontrol;
using Block = BreltoISPSenseController;

constexpr int DayToNightId = 11;
constexpr int NightToDayId = 12;
constexpr int NRManualId = 35;

constexpr int HDRByDayAndNight = 3;
constexpr int HighestBit = 31;

/// A text as template argument.
template <std::size_t Length>
struct Text {
    consteval Text(const char (&literal)[Length]) { std::copy_n(literal, Length, text); } // NOLINT
    char text[Length];
};

// Functions of the library as operations of a row.

template <auto Read>
int read(ISensorController&, int& value) {
    value = Read();
    return 1;
}

/// The library's answer must be 0 or 1.
template <auto Read, Text Strange>
int readSwitch(ISensorController& controller, int& value) {
    static_assert(detail::isTextSafe(Strange.text));
    value = Read();
    if (value == 0 || value == 1)
        return 1;
    ParameterTable::say(controller, Strange.text, value);
    return 0;
}

/// The library's result is not looked at.
template <auto Write>
int write(ISensorController&, int value) {
    Write(value);
    return 1;
}

/// The library's result must be 0.
template <auto Write, Text Failure = "">
int writeChecked(ISensorController& controller, int value) {
    static_assert(detail::isTextSafe(Failure.text));
    if (Write(value) == 0)
        return 1;
    if (Failure.text[0] != '\0')
        ParameterTable::say(controller, Failure.text, value);
    return 0;
}

// What a row cannot say. Between the thresholds lies the band in which the status stays: neither may cross the other.

int setDayToNightTransition(ISensorController& controller, int value) {
    int nightToDay = 0;
    if (!controller.getParameter(NightToDayId, nightToDay))
        return 0;
    if (value <= nightToDay) {
        controller.ErrorPrintf("ntd=%d,dtn=%d", nightToDay, value);
        return 0;
    }
    BrAewb_UiSetDayToNightTransition(value);
    return 1;
}

int setNightToDayTransition(ISensorController& controller, int value) {
    int dayToNight = 0;
    if (!controller.getParameter(DayToNightId, dayToNight))
        return 0;
    if (value >= dayToNight) {
        controller.ErrorPrintf("dtn=%d,ntd=%d", dayToNight, value);
        return 0;
    }
    BrAewb_UiSetNightToDayTransition(value);
    return 1;
}

int setNightColor(ISensorController&, int value) {
    BrAewb_UiSetNightColorMode(1, value);
    return 1;
}

int setDoorMode(ISensorController& controller, int mode) {
    if (braewb_ioctrlParam(0, 0, &mode) == -1) {
        controller.ErrorPrintf("setDoorMode error!");
        return 0;
    }
    std::printf("set to braewb_ioctrlParam() value is: %d\n", mode);
    return 1;
}

/// The library's numbers of the mirror modes none, 1, 2 and both.
constexpr std::uint8_t MirrorModes[] = {0, 2, 1, 3};

} // namespace

/// Some bits of one of the library's words, first to last, both included.
struct BreltoISPSenseController::Field {
    struct Word {
        std::uint32_t Block::*member;
        int (*read)();
        int (*write)(int);
    };

    Word word;
    int first;
    int last;
    // With a name the console tells of a change or a read.
    const char* setName = nullptr;
    const char* getName = nullptr;
};

// Failure texts stand where a call can fail; those with a blank at the end have it on purpose.
struct SENSORCONTROL_LOCAL BreltoISPSenseController::Table {
    static constexpr Field::Word WhiteBalance{&Block::m_nWBCtrl, BrAewb_UiGetWbCtrlMode, BrAewb_UiSetWbCtrlMode};
    static constexpr Field WbMode{WhiteBalance, 0, 3};
    static constexpr Field WbManual{WhiteBalance, 4, 7};
    static constexpr Field RedGain{WhiteBalance, 8, 15};
    static constexpr Field BlueGain{WhiteBalance, 16, 31};

    static constexpr Field::Word Hdr{&Block::m_nHDRCtrl, BrAewb_UiGetHdrMode, BrAewb_UiSetHdrMode};
    static constexpr Field HdrLevel{Hdr, 0, 3};
    static constexpr Field HdrRunMode{Hdr, 4, 7};

    static constexpr Field::Word NoiseReduction{&Block::m_nNR, BrAewb_UiGetNrCtrl, BrAewb_UiSetNrCtrl};
    static constexpr Field NrControl{NoiseReduction, 0, 3, "nrcontrol", "nrcontrol"};
    static constexpr Field NrManual{NoiseReduction, 8, 15, "kongyu", "nrman"};
    static constexpr Field NrAuto{NoiseReduction, 16, 23, "max", "nrauto"};

    template <const Field& Bits>
    static int setBits(ISensorController& controller, int value) {
        return static_cast<Block&>(controller).setField(Bits, value);
    }
    template <const Field& Bits>
    static int getBits(ISensorController& controller, int& value) {
        return static_cast<Block&>(controller).getField(Bits, value);
    }

    static constexpr auto Rows = std::to_array<ParameterRow>({
        {.id = 1, .name = "Brightness", .set = writeChecked<BrAewb_UiSetBrtness>, .get = read<BrAewb_UiGetBrtness>},
        {.id = 2, .name = "Saturation", .set = write<BrAewb_UiSetSatDgr>, .get = read<BrAewb_UiGetSatDgr>},
        {.id = 3, .name = "Contrast", .set = write<BrAewb_UiSetContrast>, .get = read<BrAewb_UiGetContrast>},
        {.id = 4,
         .name = "GainMode",
         .accepts = range(0, 1),
         .refusal = "no such gain mode value(%d)",
         .set = writeChecked<BrAewb_UiSetGainCtrlMode, "BrAewb_UiSetGainCtrlMode(%d) failed">,
         .setFailure = "setGainMode failed ",
         .get = readSwitch<BrAewb_UiGetGainCtrlMode, "getGainModeFailed mode=%d">,
         .getFailure = "getGainMode failed "},
        {.id = 5,
         .name = "MaxGain",
         .set = writeChecked<BrAewb_UiSetMaxGain4Auto, "BrAewb_UiSetMaxGain4Auto failed Gain=%d">,
         .setFailure = "setMaxGain failed ",
         .get = read<BrAewb_UiGetMaxGain4Auto>},
        {.id = 6,
         .name = "FixedGain",
         .set = writeChecked<BrAewb_UiSetFixGain4Manu, "BrAewb_UiSetFixGain4Manu failed ,Gain=%d">,
         .setFailure = "setFixedGain failed ",
         .get = read<BrAewb_UiGetFixGain4Manu>},
        {.id = 7,
         .name = "ShutterMode",
         .accepts = range(0, 1),
         .refusal = "set shutter mode(%d) failed",
         .set = writeChecked<BrAewb_UiSetShutrCtrlMode, "BrAewb_UiSetShutrCtrlMode(%d) failed">,
         .setFailure = "setShutterMode failed ",
         .get = readSwitch<BrAewb_UiGetShutrCtrlMode, "get shutter mode failed mode=%d">,
         .getFailure = "getShutterMode failed "},
        {.id = 8,
         .name = "MaxShutterTime",
         .set = writeChecked<BrAewb_UiSetMaxShutr4Auto, "BrAewb_UiSetMaxShutr4Auto failed MaxShutterTime = %d">,
         .setFailure = "setMaxShutterMode failed ",
         .get = read<BrAewb_UiGetMaxShutr4Auto>},
        {.id = 9,
         .name = "FixedShutterTime",
         .set = writeChecked<BrAewb_UiSetFixShutr4Manu, "BrAewb_UiSetFixShutr4Manu failed FixedShutterTime = %d">,
         .setFailure = "setFixedShutterMode failed ",
         .get = read<BrAewb_UiGetFixShutr4Manu>},
        {.id = 10,
         .name = "DayNightMode",
         .set = call<&ISensorController::setDayNightMode>,
         .setFailure = "setDayNightSetup failed ",
         .factory = factory::DayNightMode},
        {.id = DayToNightId,
         .name = "DayToNightTransition",
         .set = setDayToNightTransition,
         .setFailure = Silent,
         .get = read<BrAewb_UiGetDayToNightTransition>},
        {.id = NightToDayId,
         .name = "NightToDayTransition",
         .set = setNightToDayTransition,
         .setFailure = Silent,
         .get = read<BrAewb_UiGetNightToDayTransition>},
        {.id = 13,
         .name = "Sharpness",
         .kind = IdManager::Unknown,
         .set = write<BrAewb_UiSetSharpness>,
         .get = read<BrAewb_UiGetSharpness>},
        {.id = 14, .name = "Reserved", .kind = IdManager::Unknown, .factory = 0},
        {.id = 15, .name = "NightColor", .set = setNightColor, .get = read<BrAewb_UiGetNightColorMode>},
        {.id = 16, .name = "IrisSpeed", .set = write<BrAewb_UiSetIncreaseValue>, .factory = 16},
        {.id = 18, .name = "AutoIris", .set = write<BrAewb_UiSetIrisCtrlMod>, .get = ask<&Block::getAutoIris>},
        {.id = 23,
         .name = "PowerFrequency",
         .kind = IdManager::Unknown,
         .set = call<&Block::setPowerFrequency>,
         .get = ask<&Block::getPowerFrequency>},
        {.id = 24, .name = "HighlightHold", .set = write<BrAewb_UiSetHlcCtrl>, .get = read<BrAewb_UiGetHlcCtrl>},
        {.id = 25, .name = "PhotometryArea", .set = write<BrAewb_UiSetAeCtrlMode>, .get = read<BrAewb_UiGetAeCtrlMode>},
        {.id = 26,
         .name = "WBmode",
         .accepts = range(0, 1),
         .refusal = "p_nWBmode is out of range",
         .set = setBits<WbMode>,
         .get = getBits<WbMode>},
        {.id = 27,
         .name = "WBmanual",
         .accepts = range(0, 5),
         .refusal = "p_nWBmanual is out of range",
         .set = setBits<WbManual>,
         .get = getBits<WbManual>},
        {.id = 28,
         .name = "RedGain",
         .accepts = range(0, 100),
         .refusal = "p_nRedGain is out of range",
         .set = setBits<RedGain>,
         .get = getBits<RedGain>},
        {.id = 29,
         .name = "BlueGain",
         .accepts = range(0, 100),
         .refusal = "p_nBlueGain is out of range",
         .set = setBits<BlueGain>,
         .get = getBits<BlueGain>},
        {.id = 30,
         .name = "MirrorMode",
         .accepts = range(0, 3),
         .refusal = "CommonOperator.setMirrorMode Error: value(%d)",
         .value = lookedUp(MirrorModes),
         .set = write<BrAewb_UiSetMirrorFlipMode>,
         .factory = 0},
        {.id = 32,
         .name = "HDRMode",
         .accepts = range(0, 3),
         .set = call<&Block::setHDRMode>,
         .get = ask<&Block::getHDRMode>},
        {.id = 33,
         .name = "HDRRunMode",
         .accepts = range(0, 1),
         .refusal = "setHDRMode out of range,setHDRMode=%d",
         .set = setBits<HdrRunMode>,
         .get = getBits<HdrRunMode>},
        {.id = 34, .name = "NRMode", .set = call<&Block::setNRMode>, .factory = 0},
        {.id = NRManualId, .name = "NRManual", .set = setBits<NrManual>, .get = getBits<NrManual>},
        {.id = 36, .name = "NRAuto", .set = setBits<NrAuto>, .get = getBits<NrAuto>},
        {.id = 37, .name = "TNF", .set = call<&ISensorController::setTNF>, .get = ask<&ISensorController::getTNF>},
        {.id = 39,
         .name = "DoorMode",
         .accepts = range(0, 1),
         .refusal = "setDoorMode out of range,p_nMode=%d",
         .set = setDoorMode,
         .factory = 1},
        saying(switchDelayRow(57), "setDNSwitchDelay failed "),
        hourOfNightRow(58),
        minuteOfNightRow(59),
        hourOfDayRow(60),
        minuteOfDayRow(61),
        filterModeRow(62),
    });
    static_assert(isWellFormed(Rows));

    static constexpr ModelDescription Description{.className = "BreltoISPSenseController",
                                                  .rows = Rows,
                                                  .version = 23,
                                                  .subVersion = 4,
                                                  .hasPort = false,
                                                  .wait = 0,
                                                  .unservedText = "paramid=%d error ",
                                                  .isReadFromZero = false,
                                                  .failureText = " failed"};
};

BreltoISPSenseController::BreltoISPSenseController(int moduleId) : TableController(moduleId, Table::Description) {}

BreltoISPSenseController::~BreltoISPSenseController() { stopDNChangeThread(); }

const ModelDescription& BreltoISPSenseController::model() { return Table::Description; }

int BreltoISPSenseController::initController(int, const ModuleConfigure& configure) {
    ModuleKeys keys(*this, configure);
    std::string pin;
    if (!keys.parseDetail() || !keys.detailNumber("isInfrared", m_nInfrared, "get isInfrared from detail failed") ||
        !keys.detailNumber("autoIris", m_nAutoIris, "get autoIris from detail failed") || !keys.parseParameters())
        return 0;
    if (!keys.detail("GPIO", pin, "get GPIO from detail failed") || !parseFilterPin(pin))
        return 0;
    readInfraredKeys(keys);

    m_nTNFEnable = 0;
    keys.optionalDetailNumber("TNF", m_nTNFEnable, "get TNF from detail failed");
    m_nHDR = 0;
    keys.optionalDetailNumber("HDR", m_nHDR, "get HDR from detail failed");
    enterDayMode();
    return 1;
}

int BreltoISPSenseController::initFactorySetting() { return 1; }

int BreltoISPSenseController::setSensorVideoSystem(int videoSystem, const VideoResolution&) {
    if (videoSystem != 0 && videoSystem != 1) {
        ErrorPrintf("BreltoISPSenseController::setSensorVideoSystem Failed, VideoSystem = %d", videoSystem);
        return 0;
    }
    setPowerFrequency(videoSystem == 1 ? 0 : 1); // PAL lands have 50 Hz
    BreltoTime::wait(BreltoTime(3, 0));
    return 1;
}

int BreltoISPSenseController::getMirrorValue(int&) { return 0; }

int BreltoISPSenseController::getDNStatusFromSensor(int& status) {
    const int gain = BrAewb_UiGetGain();
    if (gain >= BrAewb_UiGetDayToNightTransition())
        status = 0;
    else if (gain <= BrAewb_UiGetNightToDayTransition())
        status = 1;
    return 1;
}

int BreltoISPSenseController::turnPictureToDay() {
    BrAewb_UiSetDayNightStat(0);
    return 1;
}

int BreltoISPSenseController::turnPictureToNight() {
    BrAewb_UiSetDayNightStat(1);
    return 1;
}

int BreltoISPSenseController::getCurrentGain(int& gain) {
    gain = static_cast<int>(BrAewb_UiGetIso() * 100LL / 4096);
    return 1;
}

int BreltoISPSenseController::updateHDRMode(int level) { return setField(Table::HdrLevel, level); }

int BreltoISPSenseController::setHDRMode(int mode) {
    if (mode < 0 || mode > HDRByDayAndNight) {
        ErrorPrintf("setHDRMode out of range,setHDRMode=%d", mode);
        return 0;
    }
    // A day/night switch between the look at the state and the new mode would not change the level, and nothing would
    // until the next one.
    sensorhost::ScopedLock lock(m_DNMutex);
    int level = mode;
    if (mode == HDRByDayAndNight) {
        const int state = m_nDNState;
        if (state != 0 && state != 1)
            return 0;
        level = state == 1 ? 1 : 2;
    }
    if (!updateHDRMode(level))
        return 0;
    m_nHDRMode = mode;
    return 1;
}

int BreltoISPSenseController::getHDRMode(int& value) {
    if (m_nHDR == 0 || m_nHDR == 1)
        value = m_nHDR == 1 ? 2 : 0;
    return 1;
}

int BreltoISPSenseController::setNRMode(int mode) {
    int strength = 0;
    switch (mode) {
    case 0:
        return setNRControl(0);
    case 1:
        return setNRControl(1) && getParameter(NRManualId, strength) && setNRManual(strength) ? 1 : 0;
    case 2:
        return setNRControl(1) && setNRManual(0) ? 1 : 0;
    default:
        return 1;
    }
}

int BreltoISPSenseController::setNRManual(int strength) { return setField(Table::NrManual, strength); }

int BreltoISPSenseController::setNRControl(int control) { return setField(Table::NrControl, control); }

int BreltoISPSenseController::getNRControl(int& control) { return getField(Table::NrControl, control); }

int BreltoISPSenseController::setPowerFrequency(int frequency) {
    m_nPowerFrequency = frequency;
    BrAewb_UiSetVideoSystem(frequency);
    if (frequency == 0 || frequency == 1)
        DRV_displaySetMode(1 - frequency);
    return 1;
}

int BreltoISPSenseController::getPowerFrequency(int& frequency) {
    frequency = m_nPowerFrequency;
    return 1;
}

int BreltoISPSenseController::getAutoIris(int& mode) {
    mode = m_nAutoIris == 1 ? 1 : 0;
    return 1;
}

// A lock, not a compare and swap: the words must also reach the library in the order in which they came about, or the
// older one of two stays there.
int BreltoISPSenseController::setField(const Field& field, int value) {
    sensorhost::ScopedLock lock(m_UartMutex);
    std::uint32_t& member = this->*field.word.member;
    int word = static_cast<int>(member);
    if (!modifyAppointValue(word, value, field.first, field.last))
        return 0;
    member = static_cast<std::uint32_t>(word);
    if (field.setName != nullptr)
        std::printf("set %s=%d,m_nNR=%d\n", field.setName, value, word);
    field.word.write(word);
    return 1;
}

int BreltoISPSenseController::getField(const Field& field, int& value) {
    sensorhost::ScopedLock lock(m_UartMutex);
    const int word = field.word.read();
    this->*field.word.member = static_cast<std::uint32_t>(word);
    if (field.getName != nullptr)
        std::printf("get %s = %d\n", field.getName, word);
    return getAppointValue(word, value, field.first, field.last);
}

int BreltoISPSenseController::modifyAppointValue(int& word, int value, int firstBit, int lastBit) {
    const auto [low, high] = std::minmax(firstBit, lastBit);
    if (low < 0 || high > HighestBit) {
        ErrorPrintf("modifyAppointValue() parameter error");
        return 0;
    }
    const std::uint32_t mask = ~0U >> (HighestBit - (high - low)) << low;
    word = static_cast<int>((static_cast<std::uint32_t>(word) & ~mask) | static_cast<std::uint32_t>(value) << low);
    return 1;
}

int BreltoISPSenseController::getAppointValue(int word, int& value, int firstBit, int lastBit) {
    const auto [low, high] = std::minmax(firstBit, lastBit);
    if (low < 0 || high > HighestBit) {
        ErrorPrintf("getAppointValue() parameter error");
        return 0;
    }
    const int above = HighestBit - high;
    value = static_cast<int>(static_cast<std::uint32_t>(word) << above >> (above + low));
    return 1;
}
