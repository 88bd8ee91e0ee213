// Keeps the on-chip pipeline tuned: on every pass of the background thread the tuning table is asked for the values
// that belong to the present light, and what changed goes to the pipeline. Beside it stands the temporal noise filter
// as a parameter of the user, whose mode can take the filter away from the table.

#include "controller/ISensorController.h"
#include "host/BreltoTime.h"
#include "host/ImagingLibraries.h"
#include "host/ScopedLock.h"
#include "imaging/EE.h"
#include "imaging/ISPParam.h"
#include "imaging/ISPParamParse.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>

namespace {

constexpr const char* DayNightType = "DN";
constexpr const char* GainType = "GAIN";

// Values of the tuning table with a meaning of their own.
constexpr int TurnOff = -1;
constexpr int TurnEnhancementOn = -2; ///< with the tables as they are
constexpr int NoValue = -100;

// Modes of the temporal noise filter. In any other one the table drives it.
constexpr int FilterOff = 1;
constexpr int FilterOfUser = 2;

// The file's "time" is not checked when it is read. Below the shortest pass the thread would spin, above the longest
// one the controller would look dead to whoever edits the file.
constexpr int ShortestPass = 1;
constexpr int LongestPass = 3600;

bool isOneOf(int value, std::initializer_list<int> values) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

void closeFilter() { DRV_SetKTNFWorkMode(0); }

void openFilter() {
    DRV_SetKTNFWorkMode(1);
    DRV_SetKTNF_TYPE(1);
}

} // namespace

std::unique_ptr<ISPParam, ISensorController::TuningDeleter> ISensorController::createTuningTable() {
    return std::unique_ptr<ISPParam, TuningDeleter>(new ISPParam);
}

std::unique_ptr<EE, ISensorController::TuningDeleter> ISensorController::createEdgeEnhancement() {
    return std::unique_ptr<EE, TuningDeleter>(new EE);
}

void ISensorController::TuningDeleter::operator()(ISPParam* param) const { delete param; }

void ISensorController::TuningDeleter::operator()(EE* edgeEnhancement) const { delete edgeEnhancement; }

int ISensorController::ISPParamThreadInit() {
    ISPParamParse parser;
    m_pISPParam->clear();
    if (!parser.parse()) {
        ErrorPrintf("objISPParamParse.parse failed");
        return 0;
    }
    parser.getISPParam(*m_pISPParam);
    m_bISPRealTimeUpdate = parser.getRealTimeUpdate();
    m_nISPDelayTime = parser.getDelayTime();
    return 1;
}

int ISensorController::ISPParamBody() {
    if (m_bISPRealTimeUpdate)
        ISPParamThreadInit();

    bool enabled = false;
    if (m_pISPParam->getEnableFlag(DayNightType, enabled) && enabled) {
        const int status = m_nDNState;
        setISPParam(DayNightType, status);
        m_nISPDNState = status;
    }
    if (m_pISPParam->getEnableFlag(GainType, enabled) && enabled) {
        int gain = 0;
        if (getCurrentGain(gain))
            setISPParam(GainType, gain);
        else
            ErrorPrintf("get current gain failed\n");
    }

    // The only sleep of the background thread: also a pass without a gain has to take it.
    BreltoTime::wait(BreltoTime(std::clamp(m_nISPDelayTime, ShortestPass, LongestPass), 0));
    return 0;
}

int ISensorController::setISPParam(const std::string& type, int key) {
    setEEParam(type, key);
    setDCParam(type, key);
    set3DNRParam(type, key);
    return 1;
}

int ISensorController::set3DNRParam(const std::string& type, int key) {
    sensorhost::ScopedLock lock(m_FilterMutex);
    const int mode = m_nTNFMode;
    if (mode == FilterOff || mode == FilterOfUser)
        return 1;

    // The two values go out one after the other, each with the last one of its partner. After the user's mode had
    // closed the filter that partner is still TurnOff, so that the second step is the one that opens the filter again.
    int a0 = NoValue;
    if (m_pISPParam->getParam(type, "A0", key, a0) && a0 != m_nLastA0) {
        const int tm = m_nLastTM;
        if (a0 == TurnOff || tm == TurnOff) {
            std::puts("close TNF");
            closeFilter();
        } else {
            std::printf("set A0=%d,TM=%d\n", a0, tm);
            openFilter();
            DRV_SetKTNF_TNF_A0(a0);
            DRV_SetKTNF_TNF_TM(tm);
        }
        m_nLastA0 = a0;
    }

    int tm = NoValue;
    if (m_pISPParam->getParam(type, "TM", key, tm) && tm != m_nLastTM) {
        const int lastA0 = m_nLastA0;
        if (lastA0 == TurnOff || tm == TurnOff) {
            std::puts("close TNF");
            closeFilter();
        } else {
            std::printf("set TM=%d,A0=%d\n", tm, lastA0);
            openFilter();
            DRV_SetKTNF_TNF_A0(lastA0);
            DRV_SetKTNF_TNF_TM(tm);
        }
        m_nLastTM = tm;
    }
    return 1;
}

int ISensorController::setDCParam(const std::string& type, int key) {
    int value = NoValue;
    if (m_pISPParam->getParam(type, "DC", key, value) && value != m_nLastDC) {
        std::printf("set DC=%d\n", value);
        DRV_isifSetDcSub(static_cast<std::int16_t>(value));
        m_nLastDC = value;
    }
    return 1;
}

int ISensorController::setEEParam(const std::string& type, int key) {
    // The modules of the on-chip pipeline: their edge enhancement is none of the table's business.
    if (isOneOf(m_nSensorType, {4, 5, 6}))
        return 1;

    int value = NoValue;
    // This module runs without edge enhancement while the noise filter is off.
    if (m_nTNFMode == FilterOff && m_nSensorType == 21)
        value = TurnOff;
    else
        m_pISPParam->getParam(type, "EE", key, value);
    if (value == NoValue || value == m_nLastEE)
        return 1;

    if (value == TurnOff) {
        std::puts("close EE");
        DRV_ipipeSetEEEnable(0);
    } else if (value == TurnEnhancementOn) {
        std::puts("open EE");
        DRV_ipipeSetEEEnable(1);
    } else {
        std::printf("set ee=%d\n", value);
        m_pEE->setEE(value);
    }
    m_nLastEE = value;
    return 1;
}

int ISensorController::setTNF(int value) {
    sensorhost::ScopedLock lock(m_FilterMutex);
    applyTNF(value);
    return 1;
}

void ISensorController::applyTNF(int value) {
    if (value == 0) {
        closeFilter();
    } else {
        openFilter();
        // Backwards: strength 1 is 255 and 100 is 0. In 64 bits, as nothing has checked the value so far.
        const auto a0 = static_cast<int>(std::abs((value * 255LL - 255) / 99 - 255));
        std::printf("setTNF=%d\n", a0);
        DRV_SetKTNF_TNF_A0(a0);
    }
    m_nTNFValue = value;
}

int ISensorController::setTNFMode(int mode) {
    sensorhost::ScopedLock lock(m_FilterMutex);
    if (mode == FilterOff) {
        closeFilter();
        m_nLastA0 = TurnOff;
        m_nLastTM = TurnOff;
    } else if (mode == FilterOfUser) {
        applyTNF(m_nTNFValue);
    }
    m_nTNFMode = mode;
    return 1;
}

int ISensorController::getTNF(int& value) {
    value = m_nTNFEnable ? 50 : 0;
    return 1;
}

int ISensorController::getTNFMode(int& mode) {
    mode = m_nTNFEnable == 0 || isOneOf(m_nSensorType, {16, 24, 11, 19}) ? 1 : 0;
    return 1;
}
