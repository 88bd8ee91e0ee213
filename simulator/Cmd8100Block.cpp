#include "simulator/Cmd8100Block.h"

#include "simulator/Cmd8100Rows.h"

namespace camerasim {

using namespace visca;

namespace {

constexpr ViscaModel Cmd8100{.name = "cmd8100",
                             .registers = Cmd8100Rows,
                             .steps = LensSteps,
                             .version = {0x00, 0x20, 0x01, 0x08},
                             .hasMaskUnit = true,
                             .hasPrivateRestart = true,
                             .lamps = BoardLamps};

} // namespace

Cmd8100Block::Cmd8100Block(const BlockSettings& settings) : ViscaBlock(Cmd8100, settings) {}

} // namespace camerasim
