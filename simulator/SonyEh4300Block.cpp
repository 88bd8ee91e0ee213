#include "simulator/SonyEh4300Block.h"

#include "simulator/ViscaRows.h"

#include <array>

namespace camerasim {

using namespace visca;

namespace {

constexpr std::array<std::uint8_t, 5> ExposureModes{0x00, 0x03, 0x0a, 0x0b, 0x0d};
// Closed, or an opening.
constexpr std::array<std::uint8_t, 14> Irises{0, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};
constexpr auto Brights = std::to_array<std::uint8_t>(
    {0, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31});

constexpr std::array<ValueWord, 5> ExposureWords{
    {{0x00, "automatic"}, {0x03, "manual"}, {0x0a, "shutter priority"}, {0x0b, "iris priority"}, {0x0d, "bright"}}};
constexpr std::array<ValueWord, 6> WhiteBalanceWords{
    {{0, "automatic"}, {1, "indoor"}, {2, "outdoor"}, {3, "one push"}, {4, "tracing"}, {5, "manual"}}};
constexpr std::array<ValueWord, 1> TriggerWords{{{5, "now"}}};
constexpr std::array<ValueWord, 3> FocusTriggerWords{{{0, "continuous"}, {1, "interval"}, {2, "after zoom"}}};
constexpr std::array<ValueWord, 2> FocusSensitivityWords{{{2, "normal"}, {3, "low"}}};
constexpr std::array<ValueWord, 2> SyncWords{{{0, "off"}, {1, "on"}}};

constexpr std::array<ViscaField, 2> LensFields{{{.name = "lens movement", .shift = 8, .bits = 8, .last = 0xff},
                                                {.name = "lens interval", .bits = 8, .last = 0xff}}};
constexpr std::array<ViscaField, 2> SpotFields{{{.name = "spot column", .shift = 8}, {.name = "spot line"}}};
// Two bytes behind the last field are always 0.
constexpr std::array<ViscaField, 5> WideRangeFields{
    {{.name = "wide range display", .shift = 28, .last = 3},
     {.name = "wide range sensitivity", .shift = 24, .last = 2},
     {.name = "wide range black correction", .shift = 20, .last = 3},
     {.name = "wide range white correction", .shift = 16, .last = 2},
     {.name = "wide range short exposure", .shift = 8, .bits = 8, .first = 1, .last = 150}}};

constexpr auto RegisterTable = joined(
    CommonRows,
    std::to_array<ViscaRegister>({
        {.code = 0x06, .name = "digital zoom", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x10,
         .name = "white balance trigger",
         .first = 5,
         .last = 5,
         .words = TriggerWords,
         .persistent = false},
        {.code = 0x11, .name = "infrared correction", .last = 1},
        {.code = 0x27, .name = "lens interval times", .payload = 4, .factory = 0x0505, .fields = LensFields},
        {.code = 0x28, .name = "focus near limit", .payload = 4, .factory = 0x7000, .first = 0x1000, .last = 0xf000},
        {.code = 0x29, .name = "spot position", .payload = 4, .factory = 0x0808, .fields = SpotFields},
        {.code = 0x2c, .name = "gain limit", .factory = 15, .first = 4, .last = 15},
        {.code = 0x2d, .name = "wide range settings", .payload = 8, .factory = 0x00301400, .fields = WideRangeFields},
        {.code = 0x33, .name = "backlight compensation", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x35, .name = "white balance", .factory = 4, .last = 8, .words = WhiteBalanceWords},
        {.code = 0x39, .name = "exposure mode", .listed = ExposureModes, .words = ExposureWords},
        {.code = 0x3d, .name = "wide dynamic range", .factory = 3, .last = 4},
        {.code = 0x42, .name = "sharpness", .payload = 4, .factory = 10, .last = 15},
        {.code = 0x43, .name = "red gain", .payload = 4, .factory = 203, .last = 255},
        {.code = 0x44, .name = "blue gain", .payload = 4, .factory = 173, .last = 255},
        {.code = 0x4a, .name = "shutter", .payload = 4, .factory = 5, .last = 21},
        {.code = 0x4b, .name = "iris", .payload = 4, .factory = 17, .first = 5, .last = 17, .listed = Irises},
        {.code = 0x4c, .name = "gain", .payload = 4, .factory = 1, .last = 15, .metered = true},
        {.code = 0x4d, .name = "bright", .payload = 4, .factory = 19, .listed = Brights},
        {.code = 0x4f, .name = "hue", .payload = 4, .factory = 7, .last = 14},
        {.code = 0x52, .name = "high resolution", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x53, .name = "noise reduction", .factory = 3, .last = 5},
        {.code = 0x57, .name = "focus trigger", .last = 2, .words = FocusTriggerWords},
        {.code = 0x58,
         .name = "focus sensitivity",
         .factory = 2,
         .first = 2,
         .last = 3,
         .words = FocusSensitivityWords},
        {.code = 0x59, .name = "spot exposure", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x5a, .name = "automatic slow shutter", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x5b, .name = "gamma", .last = 5},
        {.code = 0x5d, .name = "exposure response", .factory = 1, .first = 1, .last = 48},
        {.code = 0x5e, .name = "high sensitivity", .factory = 3, .first = 2, .last = 3, .words = OnOff},
        {.code = 0x5f, .name = "chroma suppression", .last = 3},
        {.code = 0x62, .name = "still image", .factory = 3, .first = 2, .last = 3, .words = OnOff, .persistent = false},
        {.code = 0x2456, .name = "inter-sync", .payload = 2, .last = 1, .words = SyncWords, .atRestart = true},
    }));

constexpr ViscaModel Eh4300{.name = "sony_eh4300",
                            .registers = RegisterTable,
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

const ViscaModel& SonyEh4300Block::model() { return Eh4300; }

SonyEh6300Block::SonyEh6300Block(const BlockSettings& settings) : ViscaBlock(Eh6300, settings) {}

} // namespace camerasim
