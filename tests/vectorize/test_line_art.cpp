// The line art stages: thresholding with its jag filter, expansion and
// erosion; the edge follower in both instances; and ComputeLineArt's
// filtering, orientation and texture.
#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "suite/graphic/gr_drawing_access.h"
#include "vectorize/compute_line_art.h"
#include "vectorize/gr_bitmap2vector.h"
#include "vectorize/peg_info.h"
#include "vectorize/pix2vec_options.h"
#include "vectorize/threshold_bitmap.h"

namespace {

// Rows of text: '#' is ink (255), '+' light grey (100), anything else paper.
BM_GreyMap inkBitmap(const std::vector<std::string> &rows) {
    BM_GreyMap map(int(rows[0].size()), int(rows.size()));
    for (size_t y = 0; y < rows.size(); ++y)
        for (size_t x = 0; x < rows[y].size(); ++x)
            map.set(int(x), int(y), rows[y][x] == '#' ? 255 : rows[y][x] == '+' ? 100 : 0);
    return map;
}

BM_MaskMap maskOf(const std::vector<std::string> &rows) {
    BM_MaskMap mask(int(rows[0].size()), int(rows.size()));
    for (size_t y = 0; y < rows.size(); ++y)
        for (size_t x = 0; x < rows[y].size(); ++x) mask.set(int(x), int(y), rows[y][x] == '#');
    return mask;
}

int setPixels(const BM_MaskMap &mask) {
    int n = 0;
    for (int y = 0; y < mask.height(); ++y)
        for (int x = 0; x < mask.width(); ++x) n += int(mask.get(x, y));
    return n;
}

// A blank square page with one ink square of side `side` at (at, at).
BM_GreyMap page(int size, int at, int side, uint8_t ink = 255) {
    BM_GreyMap map(size, size);
    for (int y = at; y < at + side; ++y)
        for (int x = at; x < at + side; ++x) map.set(x, y, ink);
    return map;
}

const Math::Box2d kWhole{-1e9, -1e9, 1e9, 1e9};
const Math::Box2d kNone;

class LineArt : public ::testing::Test {
protected:
    LineArt() { currentVectorizeOptions() = &options; }

    PegInfo pegInfo(int w, int h) const {
        return PegInfo(false, 0, false, QString(), QStringLiteral("t.png"), false, uint16_t(w), uint16_t(h),
                       {0, 0, 0, 0}, true, 1.0, 0.0, options);
    }
    // ComputeLineArt with an identity matrix into a fresh drawing.
    CM_TexturePtr run(BM_GreyMap map, double dirt = 0, double holes = 0, bool texture = false, int downscale = 1) {
        auto bitmap = std::make_unique<BM_GreyMap>(std::move(map));
        const PegInfo info = pegInfo(bitmap->width(), bitmap->height());
        access.SetCurrentDrawing(&drawing);
        VectorizeColorKey key;
        return ComputeLineArt(access, bitmap, 0.5, texture, downscale, Math::Matrix2x3(), holes, dirt, info, 0, 0,
                              false, 0, QStringLiteral("tex"), key);
    }

    TUPix2vecOptions options;
    GR_PaletteInfo palettes;
    GR_ColorDict dict{palettes};
    GR_DrawingAccess access{dict};
    GR_VectorDrawingObj drawing;
};

}  // namespace

TEST(ThresholdBitmap, JagExpandAndErodeGiveTheNetGrowth) {
    // One ink pixel in the middle of a 41 x 41 page.
    struct Case {
        const char *name;
        int jag, expand;
        bool erode;
        int pixels;  // set in the mask
    } cases[] = {
        {"plain", 0, 0, false, 1},
        {"jag 3 expand 3: dilated by 3, no erosion", 3, 3, false, 29},
        {"jag 3 expand 0: a closing keeps a lone pixel", 3, 0, false, 1},
        {"expand 20 acts as 15", 0, 20, false, 709},
        {"erode removes a lone pixel", 0, 0, true, 0},
        {"expand 2 with erode grows by 1", 0, 2, true, 5},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        BM_GreyMap source = page(41, 20, 1);
        BM_MaskMap mask;
        thresholdBitmap(source, mask, 127, kWhole, kNone, c.jag, c.expand, c.erode);
        EXPECT_EQ(setPixels(mask), c.pixels);
    }
}

TEST(ThresholdBitmap, BoxesTwoValuesAndCleaning) {
    // Rows count down; boxes count up from the last row.
    BM_GreyMap source = inkBitmap({
        "##......",
        "##...+..",
        "........",
        "......##",
    });
    BM_MaskMap mask;
    // The outer box leaves out the bottom row; the peg box takes the top left corner.
    const bool twoValued =
        thresholdBitmap(source, mask, 127, Math::Box2d{0, 1, 8, 4}, Math::Box2d{0, 0, 2, 1}, 0, 0, false);
    EXPECT_FALSE(twoValued) << "0, 100 and 255 inside the box";
    EXPECT_EQ(setPixels(mask), 2) << "row 1's ink is left; row 0's is in the peg box, row 3's outside";
    EXPECT_EQ(source.get(0, 0), 0u);
    EXPECT_EQ(source.get(6, 3), 0u);
    EXPECT_EQ(source.get(5, 1), 100u) << "no jag filter: the grey stays in the source";

    // A jag filter of 3 cleans the source where the closed mask is clear.
    BM_GreyMap speck = page(30, 10, 5);
    speck.set(25, 25, 100);
    EXPECT_FALSE(thresholdBitmap(speck, mask, 127, kWhole, kNone, 3, 0, false));
    EXPECT_EQ(speck.get(25, 25), 0u);
    EXPECT_EQ(speck.get(12, 12), 255u);

    BM_GreyMap bw = page(30, 10, 5);
    EXPECT_TRUE(thresholdBitmap(bw, mask, 127, kWhole, kNone, 0, 0, false));
}

TEST(ErodeBitmap, PeelsOneLayerAPass) {
    BM_MaskMap mask = maskOf({
        "..........",
        ".#######..",
        ".#######..",
        ".#######..",
        ".#######..",
        ".#######..",
        "..........",
    });
    erodeBitmap(mask, 1);
    EXPECT_EQ(setPixels(mask), 15);  // 5 x 3
    erodeBitmap(mask, 1);
    EXPECT_EQ(setPixels(mask), 3);  // one row of 3
    EXPECT_TRUE(mask.get(4, 3));
}

TEST(ExpandIndexBitmap, ColoursGrowOverBlackTakingTheLeftFirst) {
    struct Case {
        int rounds;
        int coloured;  // non-black pixels after
    } cases[] = {{0, 2}, {1, 9}, {-1, 21}, {20, 21}};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.rounds);
        // Two colours two pixels apart in the middle row of a 7 x 3 inner
        // area, which a negative count fills as 15 rounds would; the frame
        // of one pixel is never written.
        BM_IndexMap map(9, 5);
        map.set(3, 2, 0x0a0000);
        map.set(5, 2, 0x00000b);
        expandIndexBitmap(map, c.rounds);
        int coloured = 0;
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 9; ++x) coloured += map.get(x, y) != 0;
        EXPECT_EQ(coloured, c.coloured);
        if (c.rounds) {
            EXPECT_EQ(map.get(4, 2), 0x0a0000u) << "between the two, the left one wins";
        }
    }
}

TEST(EdgeFollower, MonoJoinsInkAcrossDiagonalsAndClosesEveryLoop) {
    CColorList colors;
    colors.set(1, std::make_shared<const GR_Color>());
    struct Case {
        const char *name;
        std::vector<std::string> rows;
        int strokes;
    } cases[] = {
        {"diagonal pixels are one piece of ink", {"......", "......", "..#...", "...#..", "......", "......"}, 1},
        {"a ring is two loops", {".......", ".......", "..###..", "..#.#..", "..###..", ".......", "......."}, 2},
        {"a speck in the two border rows vanishes", {"#.....", ".#....", "......", "......"}, 0},
    };
    for (Case &c : cases) {
        SCOPED_TRACE(c.name);
        BM_MaskMap mask = maskOf(c.rows);
        const std::vector<GR_StrokeData> strokes = GR_Bitmap2Vector<BM_Pixel1>(mask, colors).run();
        ASSERT_EQ(int(strokes.size()), c.strokes);
        for (const GR_StrokeData &s : strokes) EXPECT_TRUE(s.isClosed());
    }
}

TEST(EdgeFollower, ColourChainsEndWhereThreeValuesMeet) {
    CColorList colors;
    for (uint32_t v : {1u, 2u, 5u, 7u, 0x030000u}) colors.set(v, std::make_shared<const GR_Color>(v, Math::Matrix2x3(), -1, Math::Matrix2x3()));
    // Three areas: 1 on the left, 2 top right, 0x030000 bottom right, in a
    // frame of 0 two pixels wide.
    BM_IndexMap map(10, 8);
    for (int y = 2; y < 6; ++y)
        for (int x = 2; x < 8; ++x) map.set(x, y, x < 5 ? 1 : (y < 4 ? 2 : 0x030000));
    const std::vector<GR_StrokeData> strokes = GR_Bitmap2Vector<BM_PixelBgr24>(map, colors).run();
    int open = 0;
    for (const GR_StrokeData &s : strokes) {
        open += s.isClosed() ? 0 : 1;
        ASSERT_TRUE(s.Color(0) || s.Color(1));
        if (s.Color(0) && s.Color(1)) {
            EXPECT_NE(s.Color(0)->colorId(), s.Color(1)->colorId());
        }
    }
    EXPECT_EQ(open, int(strokes.size())) << "every border touches a point of three values";
    // Every border between two values is one chain: 1|2, 1|3, 2|3, and the
    // frame against each of the three.
    EXPECT_EQ(strokes.size(), 6u);

    // A checkerboard of two values inside a frame of a third: the walks from
    // either end of a chain turn the same way at each crossing, so every
    // border between two pixels is followed exactly once (40 of them).
    BM_IndexMap board(8, 8);
    for (int y = 2; y < 6; ++y)
        for (int x = 2; x < 6; ++x) board.set(x, y, ((x + y) & 1) ? 1 : 2);
    std::set<std::pair<double, double>> edges;
    int visits = 0;
    for (const GR_StrokeData &s : GR_Bitmap2Vector<BM_PixelBgr24>(board, colors).run()) {
        const int n = s.path().pointCount() - (s.isClosed() ? 1 : 0);
        for (int i = 0; i < n; ++i) {
            // An edge's midpoint has one whole and one half coordinate; the
            // ends of chains are pixel corners.
            const Math::Point2d p = s.path().point(i);
            if ((p.x == std::floor(p.x)) != (p.y == std::floor(p.y))) {
                edges.insert({p.x, p.y});
                ++visits;
            }
        }
    }
    EXPECT_EQ(visits, 40);
    EXPECT_EQ(edges.size(), 40u);

    // Two pixels of one colour touching at a corner are one area, whichever
    // walk (from the start edge or back from it) reaches the corner: their
    // border with black is one chain between the points where it meets a
    // third colour. Rows of text: digits are values, '.' black.
    const std::vector<std::vector<std::string>> corners = {
        {"..........", "..........", "..........", "...5......", "....5777..", ".....777..", "..........", ".........."},
        {"..........", "..........", ".....777..", "....5777..", "...5......", "..........", "..........", ".........."},
        {"..........", "..........", "..........", "......5...", "..7775....", "..777.....", "..........", ".........."},
        {"..........", "..........", "..777.....", "..7775....", "......5...", "..........", "..........", ".........."},
    };
    for (const std::vector<std::string> &rows : corners) {
        BM_IndexMap map(10, 8);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 10; ++x) {
                const char c = rows[size_t(y)][size_t(x)];
                map.set(x, y, c == '.' ? 0u : unsigned(c - '0'));
            }
        int fiveAndBlack = 0;
        for (const GR_StrokeData &s : GR_Bitmap2Vector<BM_PixelBgr24>(map, colors).run()) {
            const uint64_t a = s.Color(0) ? s.Color(0)->colorId() : 0, b = s.Color(1) ? s.Color(1)->colorId() : 0;
            fiveAndBlack += (a == 5 && b == 0) || (a == 0 && b == 5);
        }
        EXPECT_EQ(fiveAndBlack, 1) << rows[3] << " / " << rows[4];
    }
}

TEST_F(LineArt, OutlinesHaveTheInkOnTheirInkSide) {
    // A ring: an outer outline with the ink inside, a hole with the ink outside.
    BM_GreyMap map(20, 20);
    for (int y = 4; y < 16; ++y)
        for (int x = 4; x < 16; ++x) map.set(x, y, (x < 8 || x >= 12 || y < 8 || y >= 12) ? 255 : 0);
    const BM_GreyMap copy = map;
    run(std::move(map));
    ASSERT_EQ(drawing.layerCount(), 1);
    const GR_Layer &layer = *drawing.layer(0);
    ASSERT_EQ(layer.strokeCount(), 2);
    for (const GR_StrokeData &s : layer.strokes()) {
        // Half a pixel to the right of the first segment (side 0), in the
        // world with y up: is it ink?
        const Math::Point2d a = s.path().point(0), b = s.path().point(1);
        Math::Vector2d d = b - a;
        d.Normalize();
        const double x = (a.x + b.x) / 2 + d.y * 0.5, y = (a.y + b.y) / 2 - d.x * 0.5;
        const bool inkOnRight = copy.get(int(x), 20 - 1 - int(y)) != 0;
        EXPECT_EQ(bool(s.Color(0)), inkOnRight);
        EXPECT_EQ(bool(s.Color(1)), !inkOnRight);
        ASSERT_TRUE(s.Color(inkOnRight ? 0 : 1));
        EXPECT_EQ(s.Color(inkOnRight ? 0 : 1)->colorId(), CM_PaletteList::kLineColorId);
    }
}

TEST_F(LineArt, DirtAndHolesBelowTheirAreasGoAndTheBoundaryStays) {
    // A 2 x 2 speck's outline through the edge midpoints has area 3.5; a
    // 2 x 2 hole in a large blob likewise.
    auto speckAndHole = [] {
        BM_GreyMap map(40, 20);
        for (int y = 5; y < 7; ++y)
            for (int x = 5; x < 7; ++x) map.set(x, y, 255);
        for (int y = 4; y < 16; ++y)
            for (int x = 20; x < 34; ++x) map.set(x, y, (x >= 26 && x < 28 && y >= 9 && y < 11) ? 0 : 255);
        return map;
    };
    struct Case {
        double dirt, holes;
        int strokes;
    } cases[] = {{0, 0, 3}, {3.5, 3.5, 3}, {3.6, 0, 2}, {0, 3.6, 2}, {3.6, 3.6, 1}};
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << "dirt " << c.dirt << " holes " << c.holes);
        run(speckAndHole(), c.dirt, c.holes);
        EXPECT_EQ(drawing.topLayer()->strokeCount(), c.strokes);
    }
}

TEST_F(LineArt, TextureOnlyForGreyScansAndAtLeastOnePixel) {
    EXPECT_EQ(run(page(30, 10, 5), 0, 0, true), nullptr) << "two-valued: no texture";
    EXPECT_EQ(palettes.textures().size(), 0u);

    auto greyPage = [] {
        BM_GreyMap map = page(30, 10, 5, 200);
        map.set(12, 12, 100);
        return map;
    };
    const CM_TexturePtr grey = run(greyPage(), 0, 0, true);
    ASSERT_NE(grey, nullptr);
    EXPECT_EQ(grey->pixels.width(), 30);
    ASSERT_EQ(palettes.textures().size(), 1u);
    const GR_ColorPtr &ink = drawing.topLayer()->stroke(0).Color(0);
    ASSERT_TRUE(ink);
    EXPECT_EQ(ink->textureId(), grey->id);
    EXPECT_EQ(ink->textureMatrix().Apply(Math::Point2d{1, 1}), (Math::Point2d{30, 30}));

    const CM_TexturePtr tiny = run(greyPage(), 0, 0, true, 64);
    ASSERT_NE(tiny, nullptr);
    EXPECT_EQ(tiny->pixels.width(), 1);
    EXPECT_EQ(tiny->pixels.height(), 1);
}
