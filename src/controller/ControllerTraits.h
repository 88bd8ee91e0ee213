#pragma once

namespace sensorcontrol {

/// What the framework does otherwise for some modules. The catalogue knows which; see traitsOf.
struct ControllerTraits {
    bool edgesByTable = true;             ///< the tuning table drives the edge enhancement
    bool edgesOffWithFilter = false;      ///< no edge enhancement while the temporal noise filter is off
    bool filterOffAtFactory = false;      ///< factory mode of the temporal noise filter: 1 (off) instead of 0
    bool isParameterAccessClosed = false; ///< parameters never open to the host: the status stays NotInited
};

} // namespace sensorcontrol
