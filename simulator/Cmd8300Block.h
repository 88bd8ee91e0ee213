#pragma once

#include "simulator/ViscaBlock.h"

namespace camerasim {

/// The CMD8300 (module 25). Two registers together switch day and night, the ways to and from the night have a
/// threshold each, and a restart is a command that is acknowledged.
class Cmd8300Block : public ViscaBlock {
public:
    explicit Cmd8300Block(const BlockSettings& settings = {});
};

} // namespace camerasim
