#pragma once

#include "drivers/visca/SonyController.h"

namespace sensorcontrol {

/// What the two EH blocks share: their inter-sync and their video system, both in force after a restart.
template <class Base>
class SENSORCONTROL_API SonyEHController : public SonyController<ViscaLensController<Base>> {
public:
    int setSensorVideoSystem(int videoSystem, const VideoResolution& resolution) override;
    int initController(int videoSystem, const ModuleConfigure& configure) override;

protected:
    using SonyController<ViscaLensController<Base>>::SonyController;

    /// What the start and the video system print of a reply.
    virtual void printInterSync(const char (&reply)[5]) const;
    virtual void printVideoSystem(const char (&reply)[5]) const;

    std::atomic<int> m_nNeedRestart{0}; ///< inter-sync or the video system was written
};

} // namespace sensorcontrol
