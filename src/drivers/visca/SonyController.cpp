#include "drivers/visca/SonyController.h"

#include "controller/DriverServices.h"
#include "drivers/Exchange.h"
#include "drivers/ParameterTable.h"
#include "drivers/visca/SonyHabits.h"
#include "drivers/visca/SonyRows.h"
#include "drivers/visca/ViscaFrames.h"
#include "host/BreltoTime.h"

#include <cstdio>

namespace sensorcontrol {

namespace {

using visca::inquiry;
using visca::setting;

/// The restart is answered at once, by an acknowledgement of either number; what follows is waited for in vain.
constexpr Link RestartLink{.timeout = 5, .receives = 2};
constexpr FramePattern Restart = setting(0x19, 0x03);
constexpr int RestartReplyLength = 6;

constexpr int BrightModeOfExposal = 4;

} // namespace

template <class Family>
SonyController<Family>::SonyController(int moduleType, const ModelDescription& model, const ViscaHabits& habits,
                                       const SonyHabits& sony)
    : Family(moduleType, model, habits), m_Sony(sony) {}

template <class Family>
int SonyController<Family>::setExposalMode(int mode) {
    static constexpr std::uint8_t Modes[] = {0x00, 0x03, 0x0a, 0x0b, 0x0d};
    if (mode < 0 || mode > BrightModeOfExposal)
        return 0;
    // The block takes the brightness mode only from one with an automatic iris.
    if (mode == BrightModeOfExposal && (m_nLastExposalMode == 1 || m_nLastExposalMode == 3)) {
        if (!this->send(setting(0x39, 0x00))) {
            this->ErrorPrintf("setExposalMode failed");
            return 0;
        }
        BreltoTime::wait(BreltoTime(0, 100000));
    }
    if (!this->send(setting(0x39, V), Modes[mode]))
        return 0;
    m_nLastExposalMode = mode;
    return this->resend(m_Sony.byExposalMode, mode);
}

template <class Family>
int SonyController<Family>::setDayNightMode(int mode) {
    switch (mode) {
    case 1:
        this->m_nDayNightMode = 4;
        break;
    case 3:
    case 4:
    case 5:
        this->m_nDayNightMode = mode - 2;
        break;
    default:
        break;
    }
    this->reInitDelayStartTime();
    return 1;
}

template <class Family>
int SonyController<Family>::getFocusNearLimit(int& value) {
    value = this->m_nInfrared == 1 ? 14 : m_Sony.nearLimit;
    return 1;
}

template <class Family>
int SonyController<Family>::setBrightRemoteSensor2(int value) {
    if (value < 0 || value > 100) {
        this->ErrorPrintf("p_nBright(%d) is out of range", value);
        return 0;
    }
    const int step = value * m_Sony.brightSteps / 100;
    if (!this->apply(sony::BrightId, step)) {
        this->ErrorPrintf("setBright(%d) failed", step);
        return 0;
    }
    ParameterTable::keep(*this, sony::BrightId, step);
    return 1;
}

template <class Family>
int SonyController<Family>::setBrightness(int value) {
    if (value < 0 || value > 100) {
        this->ErrorPrintf("p_nBright(%d) is out of range", value);
        return 0;
    }
    const int compensation = value * 14 / 100;
    if (!this->apply(sony::ExpCompId, compensation))
        return 0;
    ParameterTable::keep(*this, sony::ExpCompId, compensation);
    return 1;
}

template <class Family>
int SonyController<Family>::NotifySensorInitComplate() {
    char version[7];
    return this->inquire(inquiry(0x22), version);
}

template <class Family>
int SonyController<Family>::UpdateParameters(std::string&) {
    return 1;
}

template <class Family>
int SonyController<Family>::getCurrentGain(int& gain) {
    char reply[7];
    const int isAnswered = this->inquire(inquiry(0x4c), reply);
    if (!isAnswered) {
        ParameterTable::say(*this, m_Sony.gainFailure, isAnswered);
        return 0;
    }
    const auto byte = [&reply](std::size_t index) { return static_cast<unsigned char>(reply[index]); };
    if (byte(0) != 0x90 || byte(1) != 0x50 || byte(2) != 0 || byte(3) != 0 || byte(6) != 0xff) {
        this->ErrorPrintf("get currentGain failed");
        for (std::size_t i = 0; i < m_Sony.gainBytesTold; ++i)
            this->ErrorPrintf("0x%x", byte(i));
        return 0;
    }
    gain = ((byte(4) & 0x0f) * 16 + (byte(5) & 0x0f)) * 2 - 2;
    return 1;
}

template <class Family>
int SonyController<Family>::setVideoSystem(int videoSystem) {
    switch (videoSystem) {
    case 0:
        std::puts("____set NTSC");
        return this->send(m_Sony.toNtsc);
    case 1:
        std::puts("____set PAL");
        return this->send(m_Sony.toPal);
    default:
        return 1;
    }
}

template <class Family>
int SonyController<Family>::restart() {
    char buffer[RestartReplyLength] = {};
    SerialLine line = this->line();
    line.buffer = buffer;
    const FramePattern::Frame frame = Restart.build(0);
    const Attempt made = attempt(line, RestartLink, {frame.data(), Restart.size()}, RestartReplyLength);
    if (made.outcome == Outcome::ShortSend) {
        DriverServices::wait(*this, BreltoTime(1, 0));
        return 0;
    }
    if (made.outcome == Outcome::NoReply && made.count == 0 && m_Sony.restartTimeout != nullptr) {
        this->ErrorPrintf("%s", m_Sony.restartTimeout);
        return 0;
    }
    const auto byte = [&buffer](std::size_t index) { return static_cast<unsigned char>(buffer[index]); };
    if (byte(0) != 0x90 || (byte(1) != 0x41 && byte(1) != 0x42) || byte(2) != 0xff) {
        this->ErrorPrintf("restart sensor recv failed");
        this->ErrorPrintf("recv:0x%x,0x%x,0x%x", byte(0), byte(1), byte(2));
        return 0;
    }
    std::puts("Restarting sensor.....Wait 20s");
    this->waitForRestart();
    return 1;
}

template class SonyController<ViscaController<ISensorController>>;
template class SonyController<ViscaLensController<ISensorController>>;
template class SonyController<ViscaLensController<ITrellisZoomSensorController>>;

} // namespace sensorcontrol
