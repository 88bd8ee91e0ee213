#include "drivers/visca/CmdController.h"

#include "drivers/FramePattern.h"
#include "drivers/visca/ViscaFrames.h"

namespace sensorcontrol {

using visca::setting;

template <class Base>
int CmdController<Base>::setMirror(int mirror) {
    struct Commands {
        std::uint8_t leftRight;
        std::uint8_t upDown;
    };
    static constexpr Commands Common[] = {{0x03, 0x03}, {0x02, 0x03}, {0x03, 0x02}, {0x02, 0x02}};
    // The fourth generation is mounted upside down.
    static constexpr Commands Fourth[] = {{0x02, 0x02}, {0x03, 0x02}, {0x02, 0x03}, {0x03, 0x03}};
    if (mirror < 0 || mirror > 3)
        return 0;
    const Commands& commands = m_nGeneration == 4 ? Fourth[mirror] : Common[mirror];
    return this->send(setting(0x61, V), commands.leftRight) && this->send(setting(0x66, V), commands.upDown) ? 1 : 0;
}

template <class Base>
int CmdController<Base>::setDayNightMode(int mode) {
    this->m_nDayNightMode = mode == 0 ? 4 : mode;
    this->reInitDelayStartTime();
    return 1;
}

template <class Base>
int CmdController<Base>::NotifySensorInitComplate() {
    return this->notifyByInquiry();
}

template <class Base>
int CmdController<Base>::openBrightness() {
    return this->send(setting(0x3e, 0x02));
}

template class CmdController<ISensorController>;
template class CmdController<ITrellisZoomSensorController>;

} // namespace sensorcontrol
