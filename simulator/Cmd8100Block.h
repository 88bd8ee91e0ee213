#pragma once

#include "simulator/ViscaBlock.h"

namespace camerasim {

/// The CMD8100 zoom camera block (module 16) with its mask unit and infrared board.
class Cmd8100Block : public ViscaBlock {
public:
    explicit Cmd8100Block(const BlockSettings& settings = {});
};

} // namespace camerasim
