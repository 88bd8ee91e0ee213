#pragma once

#include "simulator/ViscaBlock.h"

namespace camerasim {

/// The Sony CV7500 (module 19). Its point-light focus mode stands in registers of page 0B, one of which does not keep
/// what is written to it; its video system tells the picture's size as well.
class SonyCv7500Block : public ViscaBlock {
public:
    explicit SonyCv7500Block(const BlockSettings& settings = {});
};

} // namespace camerasim
