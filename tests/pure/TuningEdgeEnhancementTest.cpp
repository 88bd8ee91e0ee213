#include "host/ImagingLibraries.h"
#include "imaging/EE.h"
#include "imaging/SensorEEDefine.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
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

    EXPECT_EQ(recordOf(30)[14], 84);
    EXPECT_EQ(recordOf(30)[17], 126);
    EXPECT_EQ(recordOf(35)[14], 93);
    EXPECT_EQ(recordOf(35)[17], 127);
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
    for (const int strength : {120, 255, INT_MAX})
        EXPECT_EQ(recordOf(strength), recordOf(100)) << strength;
    for (const int strength : {-1, -50, INT_MIN})
        EXPECT_EQ(recordOf(strength), recordOf(0)) << strength;
}

TEST(TuningEdgeEnhancement, CurveIsOneOddSaturatingCurve) {
    const auto& curve = SensorEdgeEnhanceTbl;
    static_assert(sizeof SensorEdgeEnhanceTbl == 4096);
    EXPECT_TRUE(std::is_sorted(curve.begin(), curve.begin() + 512));
    EXPECT_TRUE(std::is_sorted(curve.begin() + 512, curve.begin() + 1020));

    EXPECT_EQ(curve[0], 0);
    EXPECT_EQ(curve[2], 0) << "dead zone";
    EXPECT_EQ(curve[3], 1);
    EXPECT_EQ(curve[64], 63);
    EXPECT_EQ(curve[192], 101);
    EXPECT_EQ(curve[348], 127);
    EXPECT_TRUE(std::all_of(curve.begin() + 349, curve.begin() + 512, [](int entry) { return entry == 128; }));
    EXPECT_TRUE(std::all_of(curve.begin() + 512, curve.begin() + 674, [](int entry) { return entry == 384; }));
    EXPECT_EQ(curve[704], 389);
    EXPECT_EQ(curve[960], 451);
    EXPECT_EQ(curve[1019], 511);
    EXPECT_TRUE(std::all_of(curve.begin() + 1020, curve.end(), [](int entry) { return entry == 0; }));

    // The halves mirror each other but for a few steps, and neither jumps: a wrong point would show.
    for (std::size_t i = 5; i < 512; ++i)
        EXPECT_LE(std::abs(curve[i] + curve[1024 - i] - 512), 4) << i;
    for (std::size_t i = 1; i < 512; ++i)
        EXPECT_LE(curve[i] - curve[i - 1], 2) << i;
}

} // namespace
