#pragma once

#include "controller/ISensorController.h"

#include <optional>

/// The least that a controller can be: a module that takes every setting and reports nothing, with the base class's
/// state open to the test. Its exposure gain is the test's to give.
class BareController : public ISensorController {
public:
    explicit BareController(int sensorType = 0) : ISensorController(sensorType) {}
    ~BareController() override { stopDNChangeThread(); }

    int getMirrorValue(int& value) override {
        value = 0;
        return 1;
    }
    int setSensorVideoSystem(int, const VideoResolution&) override { return 1; }
    int initController(int, const ModuleConfigure&) override { return 1; }
    int getCurrentGain(int& gain) override {
        gain = m_Gain.value_or(gain);
        return m_Gain ? 1 : 0;
    }

    std::optional<int> m_Gain; ///< none: reading it fails

    using ISensorController::m_bISPRealTimeUpdate, ISensorController::m_nDNState, ISensorController::m_nISPDelayTime,
        ISensorController::m_nISPDNState, ISensorController::m_nTNFEnable, ISensorController::m_nTNFMode,
        ISensorController::m_nTNFValue;
};
