// The pixel kernels: flips, scaling and level stretch, against plain references.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <tuple>
#include <type_traits>
#include <vector>

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
        for (int y = 0; y < 6; ++y)
            for (int x = 0; x < 7; ++x) {
                const int sx = x - tx, sy = y - ty;
                const bool inside = sx >= 0 && sx < 5 && sy >= 0 && sy < 4;
                ASSERT_EQ(out->at(x, y), inside ? src.at(sx, sy) : CEL_RGBA16Pixel{})
                    << "shift " << tx << "," << ty << " at " << x << "," << y;
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

template <class Leaf>
class CelPreFlipTyped : public ::testing::Test {};
TYPED_TEST_SUITE(CelPreFlipTyped, CelLeafTypes);

// Transposed first, then rows and columns mirrored; odd and even sizes,
// single rows and columns, and sizes beyond one tile.
TYPED_TEST(CelPreFlipTyped, EveryCombinationMatchesTheSteps)
{
    for (auto [w, h] : {std::pair{1, 1}, {1, 4}, {5, 1}, {2, 2}, {3, 2}, {4, 5}, {70, 131}, {129, 64}})
        for (int mask = 0; mask < 8; ++mask) {
            SCOPED_TRACE(testing::Message() << w << "x" << h << " mask " << mask);
            const bool transpose = mask & 1, rows = mask & 2, columns = mask & 4;
            const TypeParam source = patternLeaf<TypeParam>(w, h, uint32_t(mask + 1));
            TypeParam leaf = source;
            CelAlgo::preFlip(&leaf, transpose, rows, columns);
            const int ow = transpose ? h : w, oh = transpose ? w : h;
            ASSERT_EQ(leaf.width(), ow);
            ASSERT_EQ(leaf.height(), oh);
            for (int y = 0; y < oh; ++y)
                for (int x = 0; x < ow; ++x) {
                    const int u = columns ? ow - 1 - x : x, v = rows ? oh - 1 - y : y;
                    ASSERT_EQ(leaf.at(x, y), transpose ? source.at(v, u) : source.at(u, v)) << x << "," << y;
                }
        }
    TypeParam empty(5, 0);
    CelAlgo::preFlip(&empty, true, true, false);
    EXPECT_EQ(empty.width(), 0);
    EXPECT_EQ(empty.height(), 5);
}

// Each level of a leaf through black and white points: the full range leaves
// it alone, points spread the levels between them, no range makes two values.
TEST(CelStretch, PointsSpreadTheLevelsBetween)
{
    std::vector<uint8_t> all(256);
    std::iota(all.begin(), all.end(), 0);
    const auto stretched = [&](double black, double white) {
        CEL_PixmapMatte8 leaf(16, 16);
        std::copy(all.begin(), all.end(), leaf.data());
        CelAlgo::stretchGrayPixmap(&leaf, black, white);
        return std::vector<uint8_t>(leaf.data(), leaf.data() + 256);
    };
    EXPECT_EQ(stretched(0.0, 1.0), all);
    const auto p = stretched(51 / 255.0, 153 / 255.0);
    EXPECT_EQ(std::tuple(p[0], p[51], p[52], p[102], p[153], p[255]), std::tuple(0, 0, 3, 128, 255, 255))
        << "2.5 and 127.5 round up";
    EXPECT_TRUE(std::is_sorted(p.begin(), p.end()));
    const auto two = stretched(0.5, 0.25);
    for (int v = 0; v < 256; ++v)
        EXPECT_EQ(two[size_t(v)], v >= 128 ? 255 : 0) << v;

    CEL_PixmapMatte8 empty(0, 0);
    CelAlgo::stretchGrayPixmap(&empty, 0.2, 0.8);
    CEL_PixmapMatte8 one(1, 1);
    one.data()[0] = 200;
    CelAlgo::stretchGrayPixmap(&one, 0.0, 200 / 255.0);
    EXPECT_EQ(one.data()[0], 255);
}
