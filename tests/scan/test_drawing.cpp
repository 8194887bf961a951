// The drawing record: accessors, serial numbers, peg side names, flipping.
#include <QString>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "scan/drawing.h"
#include "scan/parameters.h"
#include "scan/pixmap_pixmap.h"
#include "scan/vector_scaninfo.h"
#include "support/message_capture.h"

namespace {

// A small grey pixmap whose pixel (x, y) holds 10 * y + x.
LMV_pixmap *numbered_matte8(int32_t width, int32_t height) {
    LMV_pixmap *p = create_pixmap(PIXMAP_MATTE8, width, height);
    uint8_t *data = matte8_data_of_pixmap(p);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) data[y * width + x] = uint8_t(10 * y + x);
    return p;
}

}  // namespace

TEST(Drawing, FreshRecordAndItsScanFields) {
    Drawing *d = create_Drawing(QStringLiteral("BG"), QStringLiteral("0001"), QStringLiteral("/scans"));
    EXPECT_EQ(name_of_Drawing(d), QStringLiteral("0001"));
    EXPECT_EQ(path_of_Drawing(d), QStringLiteral("/scans"));
    EXPECT_EQ(file_format_of_Drawing(d), 24);
    EXPECT_EQ(paper_size_of_Drawing(d), -1.0f);
    set_peg_side_of_Drawing(d, 2);
    set_pegged_of_Drawing(d, false);
    set_pages_of_Drawing(d, 1.0f);
    set_scan_host_of_Drawing(d, QStringLiteral("localhost"));
    rotation_of_Drawing(d, 0.25f, 100.0f, 50.0f);
    const LMV_scaninfo *info = scaninfo_of_Drawing(d);
    EXPECT_EQ(std::tie(info->peg_side, info->pegged, info->pages, info->scan_host), std::tuple(2, 0, 1.0f, "localhost"));
    EXPECT_EQ(std::tie(info->rotation_angle, info->rotation_center_x, info->rotation_center_y),
              std::tuple(0.25f, 100.0f, 50.0f));
    destroy_Drawing(&d);
    EXPECT_EQ(d, nullptr);
}

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
}

TEST(Drawing, SetPixmapReleasesTheOldOneButNotTheSameOne) {
    Drawing *d = create_Drawing(QStringLiteral("A"), QStringLiteral("1"), QStringLiteral("."));
    LMV_pixmap *first = numbered_matte8(4, 3);
    const CEL_PixmapMatte8Ptr firstLeaf = matte8_of_pixmap(first);
    set_pixmap_of_Drawing(d, first);
    set_pixmap_of_Drawing(d, first);
    EXPECT_EQ(first->ref_count, 1);
    EXPECT_EQ(firstLeaf->refCount(), 2);  // ours and the pixmap's
    EXPECT_EQ(pixmap_of_Drawing(d), first);

    LMV_pixmap *second = numbered_matte8(2, 2);
    set_pixmap_of_Drawing(d, second);
    EXPECT_EQ(firstLeaf->refCount(), 1);  // the first pixmap is gone
    EXPECT_EQ(pixmap_of_Drawing(d), second);
    destroy_Drawing(&d);
}

TEST(Drawing, SerialNumbersCountEveryRecord) {
    Drawing *a = create_Drawing(QStringLiteral("A"), QStringLiteral("1"), QStringLiteral("."));
    Drawing *b = create_Drawing(QStringLiteral("A"), QStringLiteral("2"), QStringLiteral("."));
    EXPECT_EQ(id_of_Drawing(&b), id_of_Drawing(&a) + 1);
    destroy_Drawing(&a);
    Drawing *c = create_Drawing(QStringLiteral("A"), QStringLiteral("3"), QStringLiteral("."));
    EXPECT_EQ(id_of_Drawing(&c), id_of_Drawing(&b) + 1);  // a destroyed record frees no number
    destroy_Drawing(&b);
    destroy_Drawing(&c);
}

TEST(Drawing, PegSideNames) {
    for (auto [side, name] : {std::pair{1, "left"}, {2, "top"}, {3, "right"}, {4, "bottom"}, {0, ""}, {7, ""}, {-1, ""}}) {
        EXPECT_STREQ(peg_side_name(side), name);
        EXPECT_STREQ(last_peg_side_name, name);
    }
}

TEST(Drawing, FlipKeepsThePegsOnTheirSide) {
    Drawing *d = create_Drawing(QStringLiteral("A"), QStringLiteral("1"), QStringLiteral("."));
    flip_Drawing(d);  // no pixmap: nothing to do
    set_pixmap_of_Drawing(d, numbered_matte8(3, 2));
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
