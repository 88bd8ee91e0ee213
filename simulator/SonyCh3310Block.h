#pragma once

#include "simulator/ViscaBlock.h"

namespace camerasim {

/// The Sony CH3310 (module 18): exposure that can be asked for and moves with the light while it is automatic, and a
/// video system of two bytes. Inter-sync is off from the factory.
class SonyCh3310Block : public ViscaBlock {
public:
    explicit SonyCh3310Block(const BlockSettings& settings = {});
};

} // namespace camerasim
