// Stretching grey levels.
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <vector>

#include "suite/cel/cel_algo.h"

namespace {

CEL_PixmapMatte8 allLevels()
{
    CEL_PixmapMatte8 leaf(16, 16);
    for (int v = 0; v < 256; ++v)
        leaf.data()[v] = uint8_t(v);
    return leaf;
}

} // namespace

// Each level of a leaf through black and white points: the full range leaves
// it alone, points spread the levels between them, no range makes two values.
TEST(CelStretch, PointsSpreadTheLevelsBetween)
{
    const auto stretched = [](double black, double white) {
        auto leaf = allLevels();
        CelAlgo::stretchGrayPixmap(&leaf, black, white);
        return std::vector<uint8_t>(leaf.data(), leaf.data() + 256);
    };
    std::vector<uint8_t> all(256);
    for (int v = 0; v < 256; ++v)
        all[size_t(v)] = uint8_t(v);
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
