#include "simulator/Cmd7300Block.h"

#include "simulator/Cmd8100Rows.h"

namespace camerasim {

using namespace visca;

namespace {

constexpr auto Rows = joined(replaced(Cmd8100Rows, std::to_array({WideVideoRow})), std::to_array<ViscaRegister>({
                                                                                       {.code = 0x4c,
                                                                                        .name = "gain",
                                                                                        .payload = 4,
                                                                                        .last = 15,
                                                                                        .persistent = false,
                                                                                        .readOnly = true,
                                                                                        .metering = Metering::Gain},
                                                                                   }));

constexpr ViscaModel Cmd7300{.name = "cmd7300",
                             .registers = Rows,
                             .steps = LensSteps,
                             .version = {0x00, 0x20, 0x01, 0x07},
                             .hasPrivateRestart = true,
                             .lamps = BoardLamps};

} // namespace

Cmd7300Block::Cmd7300Block(const BlockSettings& settings) : ViscaBlock(Cmd7300, settings) {}

} // namespace camerasim
