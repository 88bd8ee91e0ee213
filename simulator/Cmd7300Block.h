#pragma once

#include "simulator/ViscaBlock.h"

namespace camerasim {

/// The CMD7300 (module 21): the registers of the CMD8100, a video system of two bytes, and a gain that can be asked for
/// and always follows the light. It has no mask unit.
class Cmd7300Block : public ViscaBlock {
public:
    explicit Cmd7300Block(const BlockSettings& settings = {});
};

} // namespace camerasim
