// Keeps the on-chip pipeline tuned, on every pass of the background thread, and serves the temporal noise filter as a
// parameter.

#include "controller/ControllerRooms.h"
#include "controller/Recorder.h"
#include "host/BRFile.h"
#include "host/BreltoTime.h"
#include "host/DevicePaths.h"

#include <algorithm>
#include <optional>

namespace {

using sensorcontrol::TuningPass;
namespace recorder = sensorcontrol::recorder;

// The file's "time" is not checked when it is read. Below the shortest pass the thread would spin, above the longest
// one the controller would look dead to whoever edits the file.
constexpr int ShortestPass = 1;
constexpr int LongestPass = 3600;

} // namespace

int ISensorController::ISPParamThreadInit() {
    if (m_pRooms->tuning.load())
        return 1;
    // A module without a tuning file is the rule.
    std::optional<recorder::LogOnly> nothingWrong;
    if (!BRFile::isExist(sensorcontrol::paths::TuningFile))
        nothingWrong.emplace();
    ErrorPrintf("objISPParamParse.parse failed");
    return 0;
}

int ISensorController::ISPParamBody() {
    // Short enough to take no memory.
    const std::string dayNight = TuningPass::DayNightType;
    const std::string gainType = TuningPass::GainType;
    if (m_bISPRealTimeUpdate)
        ISPParamThreadInit();

    if (m_pRooms->tuning.isEnabled(dayNight)) {
        const int status = m_nDNState;
        setISPParam(dayNight, status);
        m_nISPDNState = status;
    }
    if (m_pRooms->tuning.isEnabled(gainType)) {
        int gain = 0;
        if (getCurrentGain(gain))
            setISPParam(gainType, gain);
        else
            ErrorPrintf("get current gain failed\n");
    }

    // The only sleep of the background thread: also a pass without a gain has to take it.
    BreltoTime::wait(BreltoTime(std::clamp(m_nISPDelayTime.load(), ShortestPass, LongestPass), 0));
    return 0;
}

int ISensorController::setISPParam(const std::string& type, int key) {
    setEEParam(type, key);
    setDCParam(type, key);
    set3DNRParam(type, key);
    return 1;
}

int ISensorController::set3DNRParam(const std::string& type, int key) {
    return m_pRooms->tuning.applyFilter(type, key);
}

int ISensorController::setDCParam(const std::string& type, int key) { return m_pRooms->tuning.applyDC(type, key); }

int ISensorController::setEEParam(const std::string& type, int key) { return m_pRooms->tuning.applyEdges(type, key); }

int ISensorController::setTNF(int value) { return m_pRooms->tuning.setFilter(value); }

int ISensorController::setTNFMode(int mode) { return m_pRooms->tuning.setFilterMode(mode); }

int ISensorController::getTNF(int& value) {
    value = m_nTNFEnable ? 50 : 0;
    return 1;
}

int ISensorController::getTNFMode(int& mode) {
    mode = m_nTNFEnable == 0 || m_pRooms->traits.filterOffAtFactory ? 1 : 0;
    return 1;
}
