#pragma once

#include "simulator/ViscaBlock.h"

namespace camerasim {

/// The first CMD8100 (module 24): coarser than its successor, without mask unit and limit of the shutter.
class Cmd8100OldBlock : public ViscaBlock {
public:
    explicit Cmd8100OldBlock(const BlockSettings& settings = {});
};

} // namespace camerasim
