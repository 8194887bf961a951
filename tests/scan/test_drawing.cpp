// The drawing record: parameters, its pixmap, peg side names, flipping.
#include <QString>

#include <gtest/gtest.h>

#include <vector>

#include "scan/drawing.h"
#include "scan/parameters.h"
#include "scan/pixmap_pixmap.h"
#include "scan/vector_scaninfo.h"

TEST(Drawing, ParametersCopyOnlyThePresentGroups) {
    Standard_parameters p;
    ASSERT_TRUE(init_black_point_of_Standard_parameters(&p, 0, 255, 20));
    ASSERT_TRUE(init_white_point_of_Standard_parameters(&p, 0, 255, 235));
    ASSERT_TRUE(init_gamma_of_Standard_parameters(&p, 0.01f, 3.0f, 1.0f));
    set_white_point_of_Standard_parameters(&p, 200);
    Drawing *d = create_Drawing(QStringLiteral("A"), QStringLiteral("1"), QStringLiteral("."));
    set_threshold_of_Drawing(d, 77);
    set_speed_of_Drawing(d, 9);
    copy_parameters_to_Drawing(&p, d);
    const LMV_scaninfo *info = scaninfo_of_Drawing(d);
    EXPECT_EQ(info->black_point, 20);
    EXPECT_EQ(info->white_point, 200);  // the current value, not the default
    EXPECT_EQ(info->gamma, 1.0f);
    EXPECT_EQ(info->threshold, 77);  // no threshold group: left alone
    EXPECT_EQ(info->speed, 9);
    destroy_Drawing(&d);
    EXPECT_EQ(d, nullptr);
}

TEST(Drawing, PegSideNames) {
    for (auto [side, name] : {std::pair{1, "left"}, {2, "top"}, {3, "right"}, {4, "bottom"}, {0, ""}, {7, ""}, {-1, ""}}) {
        EXPECT_STREQ(peg_side_name(side), name);
        EXPECT_STREQ(last_peg_side_name, name);
    }
}

// The record holds one reference to its pixmap, and flips it so that the
// pegs stay on their side.
TEST(Drawing, PixmapIsHeldOnceAndFlippedWithThePegs) {
    // A small grey pixmap whose pixel (x, y) holds 10 * y + x.
    const auto numbered = [](int32_t width, int32_t height) {
        LMV_pixmap *p = create_pixmap(PIXMAP_MATTE8, width, height);
        for (int32_t i = 0; i < width * height; ++i) matte8_data_of_pixmap(p)[i] = uint8_t(10 * (i / width) + i % width);
        return p;
    };
    Drawing *d = create_Drawing(QStringLiteral("A"), QStringLiteral("1"), QStringLiteral("."));
    flip_Drawing(d);  // no pixmap: nothing to do
    LMV_pixmap *first = numbered(4, 3);
    const CEL_PixmapMatte8Ptr firstLeaf = matte8_of_pixmap(first);
    set_pixmap_of_Drawing(d, first);
    set_pixmap_of_Drawing(d, first);
    EXPECT_EQ(first->ref_count, 1);
    EXPECT_EQ(firstLeaf->refCount(), 2);  // ours and the pixmap's
    set_pixmap_of_Drawing(d, numbered(3, 2));
    EXPECT_EQ(firstLeaf->refCount(), 1);  // the first pixmap is gone

    const uint8_t *data = matte8_data_of_pixmap(pixmap_of_Drawing(d));
    set_peg_side_of_Drawing(d, 1);  // pegs on the left: upside down
    flip_Drawing(d);
    EXPECT_EQ((std::vector<uint8_t>(data, data + 6)), (std::vector<uint8_t>{10, 11, 12, 0, 1, 2}));
    flip_Drawing(d);
    set_peg_side_of_Drawing(d, 2);  // pegs on top: left to right
    flip_Drawing(d);
    EXPECT_EQ((std::vector<uint8_t>(data, data + 6)), (std::vector<uint8_t>{2, 1, 0, 12, 11, 10}));
    destroy_Drawing(&d);
}
