#include "simulator/SonyEh4300Block.h"

#include "simulator/SonyRows.h"

namespace camerasim {

using namespace visca;

namespace {

constexpr ViscaModel Eh4300{.name = "sony_eh4300",
                            .registers = SonyRows,
                            .steps = LensSteps,
                            .version = {0x00, 0x20, 0x04, 0x43},
                            .hasMaskUnit = true,
                            .hasRestartCommand = true,
                            .lamps = BoardLamps};

constexpr ViscaModel withSocket(ViscaModel model, std::string_view name, std::uint8_t socket) {
    model.name = name;
    model.socket = socket;
    return model;
}

constexpr ViscaModel Eh6300 = withSocket(Eh4300, "sony_eh6300", 2);

} // namespace

SonyEh4300Block::SonyEh4300Block(const BlockSettings& settings) : ViscaBlock(Eh4300, settings) {}

SonyEh6300Block::SonyEh6300Block(const BlockSettings& settings) : ViscaBlock(Eh6300, settings) {}

} // namespace camerasim
