#include "simulator/Cmd7200Block.h"

#include <array>

namespace camerasim {

namespace {

constexpr std::uint32_t ExposureRegister = 0xfcc8;
constexpr std::uint32_t ChoiceRegister = 0xffe6;
constexpr std::uint32_t ReportRegister = 0xffe7;
constexpr std::uint32_t VideoSystemRegister = 0xfffe;

constexpr std::uint32_t AutomaticOpenShutter = 0x20;
constexpr std::uint32_t AutomaticFixedShutter = 0x0a;
constexpr std::uint32_t NightChoice = 0x80;
constexpr std::uint32_t DayChoice = 0xc0;
constexpr std::uint32_t NightReport = 0;
constexpr std::uint32_t DayReport = 1;

constexpr std::array<ValueWord, 4> ExposureWords{{{AutomaticOpenShutter, "automatic day/night, automatic shutter"},
                                                  {AutomaticFixedShutter, "automatic day/night, fixed shutter"},
                                                  {0x08, "chosen day/night, automatic shutter"},
                                                  {0x09, "chosen day/night, fixed shutter"}}};
constexpr std::array<ValueWord, 2> ChoiceWords{{{NightChoice, "night"}, {DayChoice, "day"}}};
constexpr std::array<ValueWord, 2> ReportWords{{{NightReport, "night"}, {DayReport, "day"}}};
constexpr std::array<ValueWord, 2> VideoWords{{{1, "PAL"}, {3, "NTSC"}}};

constexpr auto RegisterTable = std::to_array<TextRegister>({
    {.address = 0xe139, .name = "focus limit"},
    {.address = 0xfbf6, .name = "sharpness", .factory = 0x2f},
    {.address = 0xfbff, .name = "white balance"},
    {.address = ExposureRegister, .name = "exposure", .factory = AutomaticOpenShutter, .words = ExposureWords},
    {.address = 0xfcc9, .name = "fixed shutter", .factory = 7},
    {.address = 0xfd9e, .name = "brightness", .factory = 0x26},
    {.address = 0xff0e, .name = "focus mode"},
    {.address = 0xff30, .name = "mirror 1"},
    {.address = 0xff31, .name = "mirror 2"},
    {.address = ChoiceRegister, .name = "day/night choice", .factory = DayChoice, .words = ChoiceWords},
    {.address = ReportRegister, .name = "day/night", .factory = DayReport, .words = ReportWords, .readOnly = true},
    {.address = VideoSystemRegister, .name = "video system", .factory = 1, .words = VideoWords},
});

constexpr RegisterTextModel Cmd7200{
    .name = "cmd7200", .registers = RegisterTable, .videoSystem = VideoSystemRegister, .videoRestart = 5'000'000};

} // namespace

Cmd7200Block::Cmd7200Block(const BlockSettings& settings) : RegisterTextBlock(Cmd7200, settings) {}

Picture Cmd7200Block::picture() const { return at(ReportRegister) == NightReport ? Picture::Night : Picture::Day; }

bool Cmd7200Block::decidesDayNight() const {
    return at(ExposureRegister) == AutomaticOpenShutter || at(ExposureRegister) == AutomaticFixedShutter;
}

void Cmd7200Block::registersChanged() {
    if (decidesDayNight()) {
        put(ReportRegister, ambient() == Ambient::Dark ? NightReport : DayReport);
    } else if (at(ChoiceRegister) == DayChoice || at(ChoiceRegister) == NightChoice) {
        put(ReportRegister, at(ChoiceRegister) == DayChoice ? DayReport : NightReport);
    }
}

} // namespace camerasim
