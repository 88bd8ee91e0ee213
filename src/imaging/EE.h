#pragma once

#include "host/Export.h"

struct CSL_IpipeEdgeEnhanceConfig;

/// Turns an edge-enhancement strength into the pipeline's record. Strengths run from 0 to 100; lower ones count as 0,
/// higher ones as 100. Without state: any thread may call.
class SENSORCONTROL_API EE {
public:
    EE() = default;
    ~EE() = default;

    /// Hands the record of a strength to the pipeline; strength 0 turns edge enhancement off. The driver's result.
    int setEE(int strength);

    /// Fills `config` with the record of a strength, enabled whatever the strength. Always 0. The first argument has no
    /// effect.
    int IpParaIntf_GetEdgeEnhanceCfg(int channel, int strength, CSL_IpipeEdgeEnhanceConfig* config);
};
