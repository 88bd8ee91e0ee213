#include "simulator/SonyCh3310Block.h"

#include "simulator/SonyRows.h"

namespace camerasim {

using namespace visca;

namespace {

constexpr auto Irises = std::to_array<std::uint8_t>({0, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17});
constexpr auto Brights = std::to_array<std::uint8_t>(
    {0, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31});

constexpr auto Rows = replaced(
    SonyRows,
    std::to_array<ViscaRegister>({
        {.code = 0x28, .name = "focus near limit", .payload = 4, .factory = 0xb000, .first = 0x1000, .last = 0xd000},
        {.code = 0x2d,
         .name = "wide range settings",
         .payload = 8,
         .factory = 0x00001400,
         .fields = SonyWideRangeFields},
        {.code = 0x4a, .name = "shutter", .payload = 4, .factory = 5, .last = 21, .metering = Metering::Shutter},
        {.code = 0x4b,
         .name = "iris",
         .payload = 4,
         .factory = 17,
         .first = 3,
         .last = 17,
         .listed = Irises,
         .metering = Metering::Iris},
        {.code = 0x4d, .name = "bright", .payload = 4, .factory = 23, .listed = Brights},
        {.code = 0x5d, .name = "exposure response", .factory = 1, .first = 1, .last = 32},
        WideVideoRow,
    }));

constexpr ViscaModel Ch3310{.name = "sony_ch3310",
                            .registers = Rows,
                            .steps = LensSteps,
                            .version = {0x00, 0x20, 0x03, 0x31},
                            .hasRestartCommand = true,
                            .lamps = BoardLamps};

} // namespace

SonyCh3310Block::SonyCh3310Block(const BlockSettings& settings) : ViscaBlock(Ch3310, settings) {}

} // namespace camerasim
