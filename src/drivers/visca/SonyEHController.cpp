#include "drivers/visca/SonyEHController.h"

#include "drivers/visca/SonyHabits.h"
#include "drivers/visca/ViscaFrames.h"
#include "host/BreltoTime.h"

#include <cstdio>

namespace sensorcontrol {

namespace {

using visca::inquiry;
using visca::setting;

} // namespace

template <class Base>
int SonyEHController<Base>::initController(int, const ModuleConfigure& configure) {
    if (!this->bringUpPort(configure))
        return 0;
    char reply[5];
    this->inquire(inquiry(0x24, 0x56), reply); // without an answer inter-sync counts as off
    printInterSync(reply);
    if (reply[3] != 0)
        return 1;
    std::puts("Open inter-sync");
    if (!this->send(setting(0x24, 0x56, 0x00, 0x01)))
        return 0;
    m_nNeedRestart = 1;
    return 1;
}

template <class Base>
int SonyEHController<Base>::setSensorVideoSystem(int videoSystem, const VideoResolution&) {
    BreltoTime::wait(BreltoTime(0, 100));
    char reply[5];
    this->inquire(inquiry(0x24, 0x72), reply); // without an answer no video system is in force
    printVideoSystem(reply);
    const int current = static_cast<unsigned char>(reply[3]);
    const int wanted = videoSystem == 0 ? 0x06 : videoSystem == 1 ? 0x08 : 0x00;
    if (current == wanted) {
        std::puts("Video system not change!");
        if (m_nNeedRestart != 1)
            return 1;
    } else {
        std::printf("set video system,nValue=%d,szRecv[3]=%d\n", wanted, current);
        this->setVideoSystem(videoSystem);
        m_nNeedRestart = 1;
    }
    return this->restart();
}

template <class Base>
void SonyEHController<Base>::printInterSync(const char (&reply)[5]) const {
    std::printf("_szRecv[3]=%d\n", static_cast<unsigned char>(reply[3]));
}

template <class Base>
void SonyEHController<Base>::printVideoSystem(const char (&)[5]) const {}

template class SonyEHController<ISensorController>;
template class SonyEHController<ITrellisZoomSensorController>;

} // namespace sensorcontrol
