#include "imaging/EE.h"

#include "host/ImagingLibraries.h"
#include "imaging/SensorEEDefine.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>

namespace {

constexpr int StrongestEnhancement = 100;
constexpr int BaseStep = 50;
constexpr int FilterStep = 10;
constexpr std::int32_t MostWord17 = 127;

// Positions in the record.
constexpr std::size_t EnableWord = 0;
constexpr std::size_t FilterWord = 4; ///< the first of nine
constexpr std::size_t FallingWords[] = {3, 13, 15};
constexpr std::size_t RisingWords[] = {14, 16};
constexpr std::size_t Word14 = 14;
constexpr std::size_t Word17 = 17;

using Words = std::array<std::int32_t, std::extent_v<decltype(CSL_IpipeEdgeEnhanceConfig::words)>>;
using Filter = std::array<std::int32_t, 9>;

/// Hand-tuned records for the strengths 0, 50 and 100, without their filters, which have a finer table of their own.
constexpr Words BaseRecords[] = {
    {1, 0, 1, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 31, 30, 312, 24, 50, 24},
    {1, 0, 1, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 120, 128, 32, 127, 24},
    {1, 0, 1, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 200, 100, 34, 127, 24},
};
static_assert((std::size(BaseRecords) - 1) * BaseStep == StrongestEnhancement);

/// High-pass filters for the strengths from 0, 10, 20 and so on.
constexpr Filter Filters[] = {
    {8, -2, 0, -2, 0, 0, 0, 0, 0},       {12, -2, 0, -2, -1, 0, 0, 0, 0},     {16, -3, 0, -3, -1, 0, 0, 0, 0},
    {32, -5, 0, -5, -3, 0, 0, 0, 0},     {48, -8, 0, -8, -4, 0, 0, 0, 0},     {64, -10, 0, -10, -6, 0, 0, 0, 0},
    {80, -12, 0, -12, -8, 0, 0, 0, 0},   {96, -14, 0, -14, -10, 0, 0, 0, 0},  {112, -16, 0, -16, -12, 0, 0, 0, 0},
    {128, -18, 0, -18, -14, 0, 0, 0, 0}, {144, -18, 0, -18, -18, 0, 0, 0, 0},
};
static_assert((std::size(Filters) - 1) * FilterStep == StrongestEnhancement);

/// A symmetric high-pass passes nothing of an even surface: the centre outweighs its neighbours, four of each kind.
constexpr bool isHighPass(const Filter& filter) {
    return filter[0] + 4 * filter[1] + 4 * filter[4] == 0 && filter[1] == filter[3];
}
static_assert(std::all_of(std::begin(Filters), std::end(Filters), isHighPass));

} // namespace

int EE::setEE(int strength) {
    CSL_IpipeEdgeEnhanceConfig config;
    IpParaIntf_GetEdgeEnhanceCfg(0, strength, &config);
    if (strength <= 0)
        config.words[EnableWord] = 0;
    return DRV_ipipeSetEdgeEnhance(&config);
}

int EE::IpParaIntf_GetEdgeEnhanceCfg(int, int strength, CSL_IpipeEdgeEnhanceConfig* config) {
    strength = std::clamp(strength, 0, StrongestEnhancement);
    const auto base = static_cast<std::size_t>(strength / BaseStep);
    const Words& lower = BaseRecords[base];
    const Words& upper = BaseRecords[std::min(base + 1, std::size(BaseRecords) - 1)];
    const int above = strength % BaseStep;
    const int below = BaseStep - above;

    std::copy(lower.begin(), lower.end(), config->words);
    config->curveTable = SensorEEDefine::SensorEdgeEnhanceTbl.data();
    const Filter& filter = Filters[strength / FilterStep];
    std::copy(filter.begin(), filter.end(), config->words + FilterWord);

    // Each form starts from the end that keeps its difference positive, so that the division always rounds down.
    for (const std::size_t i : FallingWords)
        config->words[i] = upper[i] + (lower[i] - upper[i]) * below / BaseStep;
    for (const std::size_t i : RisingWords)
        config->words[i] = lower[i] + (upper[i] - lower[i]) * above / BaseStep;
    config->words[Word17] = std::min(config->words[Word14] * 3 / 2, MostWord17);
    return 0;
}
