#pragma once

#include "simulator/It1Block.h"
#include "simulator/ViscaBlock.h"

namespace camerasim {

/// The IT1 camera block with a zoom lens (module 9). The lens has a line of its own, see LensMotorBlock.
class It1ZoomBlock : public It1Block {
public:
    explicit It1ZoomBlock(const BlockSettings& settings = {}) : It1Block(settings) {}

    std::string_view modelName() const override { return "it1_zoom"; }
};

/// The lens motor at the second port of that module: takes setting commands of the VISCA family and answers nothing.
/// It starts anew with every start.
class LensMotorBlock : public ViscaBlock {
public:
    explicit LensMotorBlock(const BlockSettings& settings = {});
};

} // namespace camerasim
