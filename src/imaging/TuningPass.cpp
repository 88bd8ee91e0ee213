#include "imaging/TuningPass.h"

#include "host/ImagingLibraries.h"
#include "host/ScopedLock.h"
#include "imaging/EE.h"
#include "imaging/ISPParam.h"
#include "imaging/ISPParamParse.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace sensorcontrol {

namespace {

using sensorhost::ScopedLock;

// Values of the tuning table with a meaning of their own.
constexpr int TurnOff = -1;
constexpr int TurnEnhancementOn = -2; ///< with the tables as they are
constexpr int NoValue = -100;

// Modes of the temporal noise filter. In any other one the table drives it.
constexpr int FilterOff = 1;
constexpr int FilterOfUser = 2;

void closeFilter() { DRV_SetKTNFWorkMode(0); }

void openFilter() {
    DRV_SetKTNFWorkMode(1);
    DRV_SetKTNF_TYPE(1);
}

void applyPair(int a0, int tm) {
    if (a0 == TurnOff || tm == TurnOff) {
        std::puts("close TNF");
        closeFilter();
        return;
    }
    openFilter();
    DRV_SetKTNF_TNF_A0(a0);
    DRV_SetKTNF_TNF_TM(tm);
}

} // namespace

int TuningPass::load() {
    ISPParamParse parser;
    const int isRead = parser.parse();
    ScopedLock lock(m_Mutex);
    m_State.table.clear();
    if (!isRead)
        return 0;
    parser.getISPParam(m_State.table);
    m_State.isRealTime = parser.getRealTimeUpdate();
    m_State.seconds = parser.getDelayTime();
    return 1;
}

bool TuningPass::isEnabled(const std::string& type) {
    ScopedLock lock(m_Mutex);
    bool enabled = false;
    return m_State.table.getEnableFlag(type, enabled) && enabled;
}

bool TuningPass::look(const std::string& type, const char* name, int key, int& value) const {
    return m_State.table.getParam(type, name, key, value) != 0;
}

int TuningPass::applyFilter(const std::string& type, int key) {
    ScopedLock lock(m_Mutex);
    if (m_State.filterMode == FilterOff || m_State.filterMode == FilterOfUser)
        return 1;

    // The two values go out one after the other, each with the last one of its partner. After the user's mode had
    // closed the filter that partner is still TurnOff, so that the second step is the one that opens the filter again.
    int a0 = 0;
    if (look(type, "A0", key, a0) && a0 != m_State.lastA0) {
        const int tm = m_State.lastTM;
        if (a0 != TurnOff && tm != TurnOff)
            std::printf("set A0=%d,TM=%d\n", a0, tm);
        applyPair(a0, tm);
        m_State.lastA0 = a0;
    }

    int tm = 0;
    if (look(type, "TM", key, tm) && tm != m_State.lastTM) {
        const int lastA0 = m_State.lastA0;
        if (lastA0 != TurnOff && tm != TurnOff)
            std::printf("set TM=%d,A0=%d\n", tm, lastA0);
        applyPair(lastA0, tm);
        m_State.lastTM = tm;
    }
    return 1;
}

int TuningPass::applyDC(const std::string& type, int key) {
    ScopedLock lock(m_Mutex);
    int value = 0;
    if (look(type, "DC", key, value) && value != m_State.lastDC) {
        std::printf("set DC=%d\n", value);
        DRV_isifSetDcSub(static_cast<std::int16_t>(value));
        m_State.lastDC = value;
    }
    return 1;
}

int TuningPass::applyEdges(const std::string& type, int key) {
    if (!m_bEdgesByTable)
        return 1;
    ScopedLock lock(m_Mutex);
    int value = NoValue;
    if (m_bEdgesOffWithFilter && m_State.filterMode == FilterOff)
        value = TurnOff;
    else
        look(type, "EE", key, value);
    if (value == NoValue || value == m_State.lastEE)
        return 1;

    if (value == TurnOff) {
        std::puts("close EE");
        DRV_ipipeSetEEEnable(0);
    } else if (value == TurnEnhancementOn) {
        std::puts("open EE");
        DRV_ipipeSetEEEnable(1);
    } else {
        std::printf("set ee=%d\n", value);
        m_State.edgeEnhancement.setEE(value);
    }
    m_State.lastEE = value;
    return 1;
}

int TuningPass::setFilter(int value) {
    ScopedLock lock(m_Mutex);
    sendFilter(value);
    return 1;
}

void TuningPass::sendFilter(int value) {
    if (value == 0) {
        closeFilter();
    } else {
        openFilter();
        // Backwards: strength 1 is 255 and 100 is 0. In 64 bits, as nothing has checked the value so far.
        const auto a0 = static_cast<int>(std::abs((value * 255LL - 255) / 99 - 255));
        std::printf("setTNF=%d\n", a0);
        DRV_SetKTNF_TNF_A0(a0);
    }
    m_State.filterValue = value;
}

int TuningPass::setFilterMode(int mode) {
    ScopedLock lock(m_Mutex);
    if (mode == FilterOff) {
        closeFilter();
        m_State.lastA0 = TurnOff;
        m_State.lastTM = TurnOff;
    } else if (mode == FilterOfUser) {
        sendFilter(m_State.filterValue);
    }
    m_State.filterMode = mode;
    return 1;
}

} // namespace sensorcontrol
