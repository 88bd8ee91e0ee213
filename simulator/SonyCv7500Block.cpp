#include "simulator/SonyCv7500Block.h"

#include "simulator/SonyRows.h"

namespace camerasim {

using namespace visca;

namespace {

constexpr std::array<std::uint8_t, 3> WideRangeModes{0x02, 0x03, 0x06};
constexpr std::array<std::uint8_t, 3> StabilizerModes{0x00, 0x02, 0x03};
// The byte behind the switch is always 0.
constexpr std::array<std::uint8_t, 2> DefogStates{0x20, 0x30};
constexpr std::array<ValueWord, 2> DefogWords{{{0x20, "on"}, {0x30, "off"}}};
constexpr auto SizedVideoSystems = std::to_array<std::uint8_t>({0x06, 0x08, 0x13, 0x14, 0x0e, 0x11, 0x09, 0x0c});
constexpr auto SizedVideoWords = std::to_array<ValueWord>({{0x06, "NTSC"},
                                                           {0x08, "PAL"},
                                                           {0x13, "1080 lines, system 3"},
                                                           {0x14, "1080 lines, system 4"},
                                                           {0x0e, "720 lines, NTSC"},
                                                           {0x11, "720 lines, PAL"},
                                                           {0x09, "720 lines, system 3"},
                                                           {0x0c, "720 lines, system 4"}});

constexpr std::array<ViscaField, 3> CompensationFields{{{.name = "bright level", .shift = 24, .last = 6},
                                                        {.name = "bright compensation", .shift = 20, .last = 3},
                                                        {.name = "compensation level", .shift = 16, .last = 2}}};

using Pair = std::array<ValueWord, 2>;
constexpr Pair pointLight(std::uint32_t closed, std::uint32_t open) { return {{{closed, "closed"}, {open, "open"}}}; }
constexpr std::array<Pair, 9> PointLight{pointLight(0xf0, 0x30), pointLight(0xf0, 0x30), pointLight(0xff, 0x35),
                                         pointLight(0xff, 0x05), pointLight(0x00, 0x01), pointLight(0xe0, 0xa0),
                                         pointLight(0xd0, 0x98), pointLight(0xff, 0xe0), pointLight(0x00, 0x02)};

constexpr ViscaRegister pointLightRow(std::uint32_t address, std::string_view name, const Pair& words) {
    return {.code = 0x7f0b0000 | address, .name = name, .payload = 2, .factory = words[0].value, .words = words};
}

constexpr std::array<std::uint32_t, 2> Missing{0x33, 0x2456};

constexpr auto Rows = joined(
    replaced(without(SonyRows, Missing),
             std::to_array<ViscaRegister>({
                 {.code = 0x28,
                  .name = "focus near limit",
                  .payload = 4,
                  .factory = 0x4000,
                  .first = 0x1000,
                  .last = 0xf000},
                 {.code = 0x2d,
                  .name = "bright compensation settings",
                  .payload = 8,
                  .factory = 0x03200000,
                  .fields = CompensationFields},
                 {.code = 0x35, .name = "white balance", .last = 9, .words = SonyWhiteBalanceWords},
                 {.code = 0x3d, .name = "wide dynamic range", .factory = 3, .listed = WideRangeModes},
                 {.code = 0x5f, .name = "chroma suppression", .factory = 2, .last = 3},
                 {.code = 0x2472,
                  .name = "video system",
                  .payload = 2,
                  .wholeByte = true,
                  .factory = 8,
                  .listed = SizedVideoSystems,
                  .words = SizedVideoWords,
                  .atRestart = true},
             })),
    std::to_array<ViscaRegister>({
        {.code = 0x34, .name = "stabilizer", .factory = 3, .listed = StabilizerModes},
        {.code = 0x37, .name = "defog", .payload = 2, .factory = 0x30, .listed = DefogStates, .words = DefogWords},
        {.code = 0x7f000001, .name = "page access", .payload = 2, .last = 1, .persistent = false},
        pointLightRow(0x0409, "point light 0", PointLight[0]),
        {.code = 0x7f0b040b, .name = "point light 1", .payload = 2, .words = PointLight[1], .forgets = true},
        pointLightRow(0x040c, "point light 2", PointLight[2]),
        pointLightRow(0x040d, "point light 3", PointLight[3]),
        pointLightRow(0x0408, "point light 4", PointLight[4]),
        pointLightRow(0x0f06, "point light 5", PointLight[5]),
        pointLightRow(0x0f07, "point light 6", PointLight[6]),
        pointLightRow(0x0f08, "point light 7", PointLight[7]),
        pointLightRow(0x0f09, "point light 8", PointLight[8]),
    }));

constexpr ViscaModel Cv7500{.name = "sony_cv7500",
                            .registers = Rows,
                            .steps = LensSteps,
                            .version = {0x00, 0x20, 0x07, 0x50},
                            .hasRestartCommand = true,
                            .hasPages = true,
                            .lamps = BoardLamps};

} // namespace

SonyCv7500Block::SonyCv7500Block(const BlockSettings& settings) : ViscaBlock(Cv7500, settings) {}

} // namespace camerasim
