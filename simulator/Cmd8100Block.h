#pragma once

#include "simulator/ViscaBlock.h"

namespace camerasim {

/// The CMD8100 zoom camera block (module 16) with its mask unit and infrared board.
class Cmd8100Block : public ViscaBlock {
public:
    explicit Cmd8100Block(const BlockSettings& settings = {});

    /// Its tables, for relatives that differ in a few rows and for tests.
    static const ViscaModel& model();
};

} // namespace camerasim
