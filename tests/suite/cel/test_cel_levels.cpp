// Stretching grey levels.
#include <gtest/gtest.h>

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

TEST(CelStretch, FullRangeLeavesLevelsAlone)
{
    auto leaf = allLevels();
    CelAlgo::stretchGrayPixmap(&leaf, 0.0, 1.0);
    for (int v = 0; v < 256; ++v)
        EXPECT_EQ(leaf.data()[v], v);
}

TEST(CelStretch, BlackAndWhitePointsSpreadTheLevelsBetween)
{
    auto leaf = allLevels();
    CelAlgo::stretchGrayPixmap(&leaf, 51 / 255.0, 153 / 255.0);
    const uint8_t *p = leaf.data();
    EXPECT_EQ(p[0], 0);
    EXPECT_EQ(p[51], 0);
    EXPECT_EQ(p[52], 3);    // 2.5 rounds up
    EXPECT_EQ(p[102], 128); // 127.5 rounds up
    EXPECT_EQ(p[153], 255);
    EXPECT_EQ(p[255], 255);
    for (int v = 1; v < 256; ++v)
        EXPECT_GE(p[v], p[v - 1]);
}

TEST(CelStretch, NoRangeMakesTwoValues)
{
    auto leaf = allLevels();
    CelAlgo::stretchGrayPixmap(&leaf, 0.5, 0.25);
    for (int v = 0; v < 256; ++v)
        EXPECT_EQ(leaf.data()[v], v >= 128 ? 255 : 0) << v;
}

TEST(CelStretch, EmptyLeafAndSinglePixel)
{
    CEL_PixmapMatte8 empty(0, 0);
    CelAlgo::stretchGrayPixmap(&empty, 0.2, 0.8);
    CEL_PixmapMatte8 one(1, 1);
    one.data()[0] = 200;
    CelAlgo::stretchGrayPixmap(&one, 0.0, 200 / 255.0);
    EXPECT_EQ(one.data()[0], 255);
}
