#pragma once

#include "simulator/ViscaBlock.h"

namespace camerasim {

/// A block of the family with what all of them have (module 17, whose host only asks it for day and night).
class PlainViscaBlock : public ViscaBlock {
public:
    explicit PlainViscaBlock(const BlockSettings& settings = {});
};

} // namespace camerasim
