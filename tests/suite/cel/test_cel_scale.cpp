// Moving and scaling leaves, against a direct two-dimensional reference.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>

#include "suite/cel/cel_algo.h"
#include "tests/suite/cel/cel_leaf_fill.h"
#include "tests/support/message_capture.h"

namespace {

// Weight of source pixel `s` in destination pixel `d` along one axis: a tent
// around the sampled centre when enlarging, the covered length when reducing.
double axisWeight(int d, int s, double shift, double scale)
{
    if (std::fabs(scale) >= 1.0) {
        const double c = (d + 0.5 - shift) / scale - 0.5;
        return std::max(0.0, 1.0 - std::fabs(c - s));
    }
    const double a = (d - shift) / scale, b = (d + 1 - shift) / scale;
    const double lo = std::max(std::min(a, b), double(s)), hi = std::min(std::max(a, b), double(s + 1));
    return std::max(0.0, hi - lo) * std::fabs(scale);
}

template <class P>
std::array<double, 4> channels(const P &p)
{
    if constexpr (std::is_integral_v<P>)
        return {double(p), 0, 0, 0};
    else
        return {double(p.r), double(p.g), double(p.b), double(p.a)};
}

template <class Leaf>
void expectNearReference(const Leaf &src, int w, int h, double tx, double ty, double sx, double sy)
{
    SCOPED_TRACE(testing::Message() << "t=(" << tx << "," << ty << ") s=(" << sx << "," << sy << ")");
    const auto out = CelAlgo::scale(&src, w, h, tx, ty, sx, sy, nullptr);
    ASSERT_TRUE(out);
    ASSERT_EQ(out->width(), w);
    ASSERT_EQ(out->height(), h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            std::array<double, 4> ref{};
            for (int j = 0; j < src.height(); ++j)
                for (int i = 0; i < src.width(); ++i)
                    for (int c = 0; c < 4; ++c)
                        ref[c] += axisWeight(x, i, tx, sx) * axisWeight(y, j, ty, sy) * channels(src.at(i, j))[c];
            const auto got = channels(out->at(x, y));
            for (int c = 0; c < 4; ++c)
                ASSERT_NEAR(got[c], ref[c], 0.51 + ref[c] * 1e-5) << "at " << x << "," << y << " channel " << c;
        }
}

} // namespace

template <class Leaf>
class CelScaleTyped : public ::testing::Test {};
TYPED_TEST_SUITE(CelScaleTyped, CelLeafTypes);

// Fractional shifts, enlargements, reductions, mixed and mirrored axes, far
// off the picture, and sources of one pixel or one row.
TYPED_TEST(CelScaleTyped, FollowsTheReference)
{
    const TypeParam src = patternLeaf<TypeParam>(9, 7);
    const double moves[][4] = {{0.5, 0, 1, 1},      {-1.25, 2.75, 1, 1},     {0, 0, 2, 2},     {1.5, -0.5, 3, 1.5},
                               {0, 0, 0.5, 0.5},    {1, 0.25, 1.0 / 3, 0.4}, {0.3, 0, 2.5, 0.5}, {9, 0, -1, 1},
                               {-20, 0, 1, 0.7},    {2, 1, 0.999, 1.001}};
    for (const auto &m : moves)
        expectNearReference(src, 11, 8, m[0], m[1], m[2], m[3]);
    expectNearReference(patternLeaf<TypeParam>(1, 1), 3, 3, 0, 0, 3, 3);
    expectNearReference(patternLeaf<TypeParam>(6, 1), 4, 2, 0.5, 0, 0.6, 1);
}

TEST(CelScale, WholeShiftsCopyExactlyAndClearTheRest)
{
    const auto src = patternLeaf<CEL_PixmapRGBA16>(5, 4);
    const std::pair<int, int> shifts[] = {{0, 0}, {2, 1}, {-3, 2}, {4, -3}, {-5, 0}, {6, 6}};
    for (auto [tx, ty] : shifts) {
        const auto out = CelAlgo::scale(&src, 7, 6, tx, ty, 1, 1, nullptr);
        ASSERT_TRUE(out);
        for (int y = 0; y < 6; ++y) {
            for (int x = 0; x < 7; ++x) {
                const int sx = x - tx, sy = y - ty;
                const bool inside = sx >= 0 && sx < 5 && sy >= 0 && sy < 4;
                ASSERT_EQ(out->at(x, y), inside ? src.at(sx, sy) : CEL_RGBA16Pixel{})
                    << "shift " << tx << "," << ty << " at " << x << "," << y;
            }
        }
    }
    // Far shifts leave an empty picture.
    for (double t : {1e15, -1e15, 3e9}) {
        const auto out = CelAlgo::scale(&src, 3, 3, t, -t, 1, 1, nullptr);
        ASSERT_TRUE(out);
        EXPECT_TRUE(std::all_of(out->data(), out->data() + 9, [](const CEL_RGBA16Pixel &v) { return v == CEL_RGBA16Pixel{}; })) << t;
    }
}

TEST(CelScale, HalvingAveragesBlocksAndHalfShiftsBlendNeighbours)
{
    CEL_PixmapMatte8 src(2, 2);
    const uint8_t px[] = {10, 20, 30, 41};
    std::copy(std::begin(px), std::end(px), src.data());
    const auto half = CelAlgo::scale(&src, 1, 1, 0, 0, 0.5, 0.5, nullptr);
    ASSERT_TRUE(half);
    EXPECT_EQ(half->at(0, 0), 25);  // 101 / 4 = 25.25

    const auto shifted = CelAlgo::scale(&src, 2, 2, 0.5, 0, 1, 1, nullptr);
    ASSERT_TRUE(shifted);
    EXPECT_EQ(shifted->at(0, 0), 5);  // half of 10 with the black outside
    EXPECT_EQ(shifted->at(1, 0), 15);
    EXPECT_EQ(shifted->at(1, 1), 36);  // 35.5 rounds up
}

TEST(CelScale, BadArgumentsGiveNullWithAnAssertion)
{
    const CEL_PixmapMatte8 src(2, 2);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    MessageCapture capture;
    EXPECT_FALSE(CelAlgo::scale(static_cast<const CEL_PixmapMatte8 *>(nullptr), 2, 2, 0, 0, 1, 1, nullptr));
    EXPECT_FALSE(CelAlgo::scale(&src, -1, 2, 0, 0, 1, 1, nullptr));
    EXPECT_FALSE(CelAlgo::scale(&src, 2, 2, 0, 0, 0, 1, nullptr));
    EXPECT_FALSE(CelAlgo::scale(&src, 2, 2, nan, 0, 1, 1, nullptr));
    EXPECT_FALSE(CelAlgo::scale(&src, 2, 2, 0, 0, 1, std::numeric_limits<double>::infinity(), nullptr));
    int assertions = 0;
    for (const auto &line : capture.texts('I'))
        assertions += line.starts_with("Internal assertion error detected (");
    EXPECT_EQ(assertions, 5);

    const auto empty = CelAlgo::scale(&src, 0, 3, 0, 0, 1, 1, nullptr);
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->pixelCount(), 0u);
}

namespace {
struct Recorder : CelAlgo::ScaleProgress {
    int stopAt = -1;
    std::vector<int> calls;
    bool rowsDone(int done, int total) override
    {
        EXPECT_EQ(total, 200);
        calls.push_back(done);
        return done != stopAt;
    }
};
} // namespace

TEST(CelScale, ProgressHearsEveryBandAndCanStop)
{
    const auto src = patternLeaf<CEL_PixmapMatte8>(10, 100);
    // Whole shift, fractional shift, and scaling: each has its own loop.
    for (auto [tx, sy] : {std::pair{0.0, 1.0}, {0.5, 1.0}, {0.5, 2.0}}) {
        Recorder all;
        ASSERT_TRUE(CelAlgo::scale(&src, 10, 200, tx, 0, 1, sy, &all));
        EXPECT_EQ(all.calls, (std::vector<int>{64, 128, 192, 200})) << tx << " " << sy;
        Recorder stop;
        stop.stopAt = 128;
        EXPECT_FALSE(CelAlgo::scale(&src, 10, 200, tx, 0, 1, sy, &stop));
        EXPECT_EQ(stop.calls, (std::vector<int>{64, 128})) << tx << " " << sy;
    }
}
