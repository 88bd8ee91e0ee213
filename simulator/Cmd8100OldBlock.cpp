#include "simulator/Cmd8100OldBlock.h"

#include "simulator/Cmd8100Rows.h"

namespace camerasim {

using namespace visca;

namespace {

constexpr std::array<std::uint8_t, 3> ExposureModes{0x00, 0x0a, 0x0b};
constexpr std::array<std::uint8_t, 2> WhiteBalanceModes{0x00, 0x04};
constexpr std::array<std::uint32_t, 1> Missing{0xa3};

constexpr auto Rows =
    replaced(without(Cmd8100Rows, Missing),
             std::to_array<ViscaRegister>({
                 {.code = 0x21, .name = "day/night threshold", .payload = 4, .last = 28},
                 {.code = 0x2c, .name = "gain limit", .factory = 15, .last = 15},
                 {.code = 0x35, .name = "white balance", .factory = 4, .listed = WhiteBalanceModes},
                 {.code = 0x39, .name = "exposure mode", .listed = ExposureModes, .words = Cmd8100ExposureWords},
                 {.code = 0x42, .name = "sharpness", .payload = 4, .factory = 8, .last = 15},
                 {.code = 0x4a, .name = "shutter", .payload = 4, .last = 17},
                 {.code = 0x4b, .name = "iris", .payload = 4, .factory = 17, .first = 5, .last = 17},
                 {.code = 0x4e, .name = "brightness", .payload = 4, .factory = 7, .first = 2, .last = 12},
                 {.code = 0x58, .name = "focus sensitivity", .factory = 2, .first = 1, .last = 3},
             }));

constexpr ViscaModel Cmd8100Old{.name = "cmd8100_old",
                                .registers = Rows,
                                .steps = LensSteps,
                                .version = {0x00, 0x20, 0x01, 0x04},
                                .hasPrivateRestart = true,
                                .lamps = BoardLamps};

} // namespace

Cmd8100OldBlock::Cmd8100OldBlock(const BlockSettings& settings) : ViscaBlock(Cmd8100Old, settings) {}

} // namespace camerasim
