// Mirroring and transposing leaves, against a pixel-by-pixel reference.
#include <gtest/gtest.h>

#include "suite/cel/cel_algo.h"
#include "tests/suite/cel/cel_leaf_fill.h"

template <class Leaf>
class CelPreFlipTyped : public ::testing::Test {};
TYPED_TEST_SUITE(CelPreFlipTyped, CelLeafTypes);

// Transposed first, then rows and columns mirrored; odd and even sizes,
// single rows and columns, and sizes beyond one tile.
TYPED_TEST(CelPreFlipTyped, EveryCombinationMatchesTheSteps)
{
    for (auto [w, h] : {std::pair{1, 1}, {1, 4}, {5, 1}, {2, 2}, {3, 2}, {4, 5}, {70, 131}, {129, 64}}) {
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
    }
    TypeParam empty(5, 0);
    CelAlgo::preFlip(&empty, true, true, false);
    EXPECT_EQ(empty.width(), 0);
    EXPECT_EQ(empty.height(), 5);
}
