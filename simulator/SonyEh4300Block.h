#pragma once

#include "simulator/ViscaBlock.h"

namespace camerasim {

/// The Sony EH4300 camera block (module 11) with mask unit and infrared board. Inter-sync is off from the factory, and
/// like the video system comes into force with the restart after it was written.
class SonyEh4300Block : public ViscaBlock {
public:
    explicit SonyEh4300Block(const BlockSettings& settings = {});
};

/// The EH6300: the same block, which answers from its second socket (90 42 FF).
class SonyEh6300Block : public ViscaBlock {
public:
    explicit SonyEh6300Block(const BlockSettings& settings = {});
};

} // namespace camerasim
