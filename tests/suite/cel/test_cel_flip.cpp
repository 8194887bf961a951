// Mirroring and transposing leaves, against a step-by-step reference.
#include <gtest/gtest.h>

#include <vector>

#include "suite/cel/cel_algo.h"
#include "tests/suite/cel/cel_leaf_fill.h"

namespace {

// The three steps one after the other, on a plain copy of the pixels.
template <class P>
struct Grid {
    int w, h;
    std::vector<P> px;
    P at(int x, int y) const { return px[size_t(y) * w + x]; }

    Grid transposed() const
    {
        Grid g{h, w, std::vector<P>(px.size())};
        for (int y = 0; y < g.h; ++y)
            for (int x = 0; x < g.w; ++x)
                g.px[size_t(y) * g.w + x] = at(y, x);
        return g;
    }
    Grid mapped(bool rows, bool columns) const
    {
        Grid g{w, h, std::vector<P>(px.size())};
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                g.px[size_t(y) * w + x] = at(columns ? w - 1 - x : x, rows ? h - 1 - y : y);
        return g;
    }
};

template <class Leaf>
void expectEveryFlipMatches(int w, int h)
{
    using P = typename Leaf::Pixel;
    for (int mask = 0; mask < 8; ++mask) {
        const bool transpose = mask & 1, rows = mask & 2, columns = mask & 4;
        Leaf leaf = patternLeaf<Leaf>(w, h, uint32_t(mask + 1));
        Grid<P> ref{w, h, std::vector<P>(leaf.data(), leaf.data() + leaf.pixelCount())};
        if (transpose)
            ref = ref.transposed();
        ref = ref.mapped(rows, columns);

        CelAlgo::preFlip(&leaf, transpose, rows, columns);
        ASSERT_EQ(leaf.width(), ref.w) << w << "x" << h << " mask " << mask;
        ASSERT_EQ(leaf.height(), ref.h);
        for (int y = 0; y < ref.h; ++y)
            for (int x = 0; x < ref.w; ++x)
                ASSERT_EQ(leaf.at(x, y), ref.at(x, y))
                    << w << "x" << h << " mask " << mask << " at " << x << "," << y;
    }
}

// Odd and even sizes, single rows and columns, and sizes beyond one tile.
const std::pair<int, int> kSizes[] = {{1, 1}, {1, 4}, {5, 1}, {2, 2}, {3, 2}, {4, 5}, {70, 131}, {129, 64}};

} // namespace

template <class Leaf>
class CelPreFlipTyped : public ::testing::Test {};
TYPED_TEST_SUITE(CelPreFlipTyped, CelLeafTypes);

TYPED_TEST(CelPreFlipTyped, EveryCombinationMatchesTheSteps)
{
    for (auto [w, h] : kSizes)
        expectEveryFlipMatches<TypeParam>(w, h);
}

TEST(CelPreFlip, TransposingAnEmptyLeafSwapsItsSize)
{
    CEL_PixmapMatte8 leaf(5, 0);
    CelAlgo::preFlip(&leaf, true, true, false);
    EXPECT_EQ(leaf.width(), 0);
    EXPECT_EQ(leaf.height(), 5);
}
