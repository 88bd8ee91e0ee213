#include "imaging/SensorEEDefine.h"

#include <cstddef>
#include <span>

namespace {

struct CurvePoint {
    int index;
    std::int32_t entry;
};

/// A dead zone that keeps noise from being sharpened, slope 1, then ever flatter until the curve saturates at 128.
constexpr CurvePoint PositiveHalf[] = {{0, 0},    {3, 1},     {12, 8},    {32, 31},   {64, 63},   {96, 76},
                                       {128, 88}, {192, 101}, {256, 114}, {320, 123}, {349, 128}, {511, 128}};

/// 384 is -128 and 511 is -1. No exact mirror of the other half.
constexpr CurvePoint NegativeHalf[] = {{512, 384}, {673, 384}, {704, 389}, {768, 399}, {832, 412},
                                       {896, 425}, {928, 437}, {960, 451}, {992, 483}, {1019, 511}};

using Curve = std::array<std::int32_t, 1024>;

constexpr void drawPieces(Curve& curve, std::span<const CurvePoint> points) {
    for (std::size_t i = 1; i < points.size(); ++i) {
        const CurvePoint& from = points[i - 1];
        const CurvePoint& to = points[i];
        for (int index = from.index; index <= to.index; ++index)
            curve[static_cast<std::size_t>(index)] =
                from.entry + (to.entry - from.entry) * (index - from.index) / (to.index - from.index);
    }
}

/// The four entries behind the negative half stay 0: they are -0, so to speak, the other side of the dead zone.
consteval Curve drawCurve() {
    Curve curve{};
    drawPieces(curve, PositiveHalf);
    drawPieces(curve, NegativeHalf);
    return curve;
}

} // namespace

constinit Curve SensorEEDefine::SensorEdgeEnhanceTbl = drawCurve();
