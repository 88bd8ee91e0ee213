#include "host/ImagingLibraries.h"
#include "imaging/EE.h"
#include "imaging/SensorEEDefine.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

using SensorEEDefine::SensorEdgeEnhanceTbl;

namespace {

using Words = std::vector<std::int32_t>;

Words recordOf(int strength) {
    CSL_IpipeEdgeEnhanceConfig config{};
    std::fill(std::begin(config.words), std::end(config.words), -4711);
    EXPECT_EQ(EE().IpParaIntf_GetEdgeEnhanceCfg(0, strength, &config), 0);
    EXPECT_EQ(config.curveTable, SensorEdgeEnhanceTbl.data());
    return {std::begin(config.words), std::end(config.words)};
}

TEST(TuningEdgeEnhancement, RecordsAtTheBaseStrengthsAndBetween) {
    EXPECT_EQ(recordOf(0), (Words{1, 0, 1, 4, 8, -2, 0, -2, 0, 0, 0, 0, 0, 31, 30, 312, 24, 45, 24}));
    EXPECT_EQ(recordOf(25), (Words{1, 0, 1, 4, 16, -3, 0, -3, -1, 0, 0, 0, 0, 17, 75, 220, 28, 112, 24}));
    EXPECT_EQ(recordOf(50), (Words{1, 0, 1, 4, 64, -10, 0, -10, -6, 0, 0, 0, 0, 4, 120, 128, 32, 127, 24}));
    EXPECT_EQ(recordOf(100), (Words{1, 0, 1, 4, 144, -18, 0, -18, -18, 0, 0, 0, 0, 4, 200, 100, 34, 127, 24}));

    for (const auto& [strength, word, value] : {std::tuple{30, 14U, 84}, {30, 17U, 126}, {35, 14U, 93}, {35, 17U, 127}})
        EXPECT_EQ(recordOf(strength)[word], value) << strength;
}

TEST(TuningEdgeEnhancement, EveryWordMovesOneWay) {
    Words last = recordOf(0);
    for (int strength = 1; strength <= 100; ++strength) {
        SCOPED_TRACE(strength);
        const Words next = recordOf(strength);
        for (const std::size_t falling : {3U, 13U, 15U})
            EXPECT_LE(next[falling], last[falling]);
        for (const std::size_t rising : {4U, 14U, 16U, 17U})
            EXPECT_GE(next[rising], last[rising]);
        const bool sameFilter = std::equal(next.begin() + 4, next.begin() + 13, last.begin() + 4);
        EXPECT_EQ(sameFilter, strength % 10 != 0) << "filters go by tens";
        last = next;
    }
}

TEST(TuningEdgeEnhancement, StrengthsOutsideTheScaleCountAsItsEnds) {
    for (const auto& [strength, end] :
         {std::pair{120, 100}, {255, 100}, {INT_MAX, 100}, {-1, 0}, {-50, 0}, {INT_MIN, 0}})
        EXPECT_EQ(recordOf(strength), recordOf(end)) << strength;
}

TEST(TuningEdgeEnhancement, CurveIsOneOddSaturatingCurve) {
    const auto& curve = SensorEdgeEnhanceTbl;
    static_assert(sizeof SensorEdgeEnhanceTbl == 4096);
    EXPECT_TRUE(std::is_sorted(curve.begin(), curve.begin() + 512));
    EXPECT_TRUE(std::is_sorted(curve.begin() + 512, curve.begin() + 1020));

    // Behind the dead zone each half rises to its end, where it stays.
    for (const auto& [entry, value] : {std::pair{0U, 0},
                                       {2U, 0},
                                       {3U, 1},
                                       {64U, 63},
                                       {192U, 101},
                                       {348U, 127},
                                       {704U, 389},
                                       {960U, 451},
                                       {1019U, 511}})
        EXPECT_EQ(curve[entry], value) << entry;
    for (const auto& [first, end, value] : {std::tuple{349, 512, 128}, {512, 674, 384}, {1020, 1024, 0}})
        EXPECT_EQ(std::count(curve.begin() + first, curve.begin() + end, value), end - first) << first;

    // The halves mirror each other but for a few steps, and neither jumps: a wrong point would show.
    for (std::size_t i = 5; i < 512; ++i)
        EXPECT_LE(std::abs(curve[i] + curve[1024 - i] - 512), 4) << i;
    for (std::size_t i = 1; i < 512; ++i)
        EXPECT_LE(curve[i] - curve[i - 1], 2) << i;
}

} // namespace
