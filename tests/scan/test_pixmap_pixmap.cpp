// The pixmap record, its slots and operations, and the SCSI byte helpers.
#include <gtest/gtest.h>

#include <QImage>

#include <array>
#include <tuple>

#include "pixmap_test_support.h"

namespace {

TEST(PixmapCreate, EachKindFillsItsOwnSlotAndOtherKindsNone)
{
    for (auto [kind, cel_type] : {std::pair{PIXMAP_RGBA16, 6}, {PIXMAP_RGBA8, 7}, {PIXMAP_MATTE16, 9}, {PIXMAP_MATTE8, 8}}) {
        PixmapHolder pm(create_pixmap(kind, 6, 4, 2, 3));
        EXPECT_EQ(type_of_pixmap(pm.get()), kind);
        const CEL_PixmapPtr leaf = best_of_pixmap(pm.get());
        ASSERT_TRUE(leaf);
        EXPECT_EQ(std::tuple(leaf->type(), leaf->width(), leaf->height(), pm->x_offset, pm->y_offset),
                  std::tuple(cel_type, 6, 4, 2, 3));
        EXPECT_EQ(!!rgba8_of_pixmap(pm.get()) + !!rgba16_of_pixmap(pm.get()) + !!matte8_of_pixmap(pm.get()) +
                      !!matte16_of_pixmap(pm.get()),
                  1);
    }
    MessageCapture capture;
    PixmapHolder none(create_pixmap(PIXMAP_NONE, 3, 3));
    EXPECT_EQ(assertion_count(capture), 0);
    PixmapHolder unknown(create_pixmap(9, 3, 3));
    EXPECT_EQ(assertion_count(capture), 1);
    for (LMV_pixmap *pm : {none.get(), unknown.get()}) {
        EXPECT_EQ(type_of_pixmap(pm), PIXMAP_NONE);
        EXPECT_FALSE(best_of_pixmap(pm));
        EXPECT_EQ(width_of_pixmap(pm), 3);
    }
}

TEST(PixmapSlots, TypeAndBestAskInTheirOwnOrders)
{
    // Only one slot is ever in use, but the two orders differ and callers
    // rely on each.
    PixmapHolder pm(create_pixmap(PIXMAP_MATTE8, 1, 1));
    pm->matte16 = UT_makeShared<CEL_PixmapMatte16>(1, 1);
    EXPECT_EQ(type_of_pixmap(pm.get()), PIXMAP_MATTE16);
    EXPECT_EQ(best_of_pixmap(pm.get())->type(), CEL_TYPE_MATTE8);
    pm->rgba16 = UT_makeShared<CEL_PixmapRGBA16>(1, 1);
    pm->rgba8 = UT_makeShared<CEL_PixmapRGBA8>(1, 1);
    EXPECT_EQ(type_of_pixmap(pm.get()), PIXMAP_RGBA16);
    EXPECT_EQ(best_of_pixmap(pm.get())->type(), CEL_TYPE_RGBA8);
}

TEST(PixmapSlots, SetHandsTheBlockToANewLeafAndEmptiesTheOthers)
{
    PixmapHolder pm(create_pixmap(PIXMAP_RGBA8, 8, 8));
    auto block = std::make_unique<uint16_t[]>(6);
    uint16_t *raw = block.get();
    set_matte16_of_pixmap(pm.get(), std::move(block), 3, 2, 0);
    EXPECT_EQ(type_of_pixmap(pm.get()), PIXMAP_MATTE16);
    EXPECT_FALSE(rgba8_of_pixmap(pm.get()));
    EXPECT_EQ(matte16_data_of_pixmap(pm.get()), raw);
    EXPECT_EQ(matte16_of_pixmap(pm.get())->width(), 3);
    EXPECT_EQ(width_of_pixmap(pm.get()), 3);
    EXPECT_EQ(height_of_pixmap(pm.get()), 2);
    EXPECT_EQ(pm->owns_data, 0);

    set_size_of_pixmap(pm.get(), 10, 11);
    EXPECT_EQ(width_of_pixmap(pm.get()), 10);
    EXPECT_EQ(matte16_of_pixmap(pm.get())->width(), 3) << "pixels untouched";
}

TEST(PixmapRelease, CountsDownAndLetsGoOfTheLeaf)
{
    auto leaf = UT_makeShared<CEL_PixmapMatte8>(2, 2);
    LMV_pixmap *pm = wrap_matte8_pixmap(leaf, 2, 2, 1);
    EXPECT_EQ(leaf->refCount(), 2);
    pm->ref_count = 2;
    release_pixmap(pm);
    EXPECT_EQ(leaf->refCount(), 2);
    release_pixmap(pm);
    EXPECT_EQ(leaf->refCount(), 1);
}

TEST(PixmapReplace, SameClassIsTakenOtherClassLeavesNoPixels)
{
    PixmapHolder pm(create_pixmap(PIXMAP_RGBA8, 4, 4));
    const auto bigger = UT_makeShared<CEL_PixmapRGBA8>(6, 5);
    MessageCapture capture;
    replace_pixmap(pm.get(), bigger, 6, 5, 0);
    EXPECT_EQ(assertion_count(capture), 0);
    EXPECT_EQ(rgba8_of_pixmap(pm.get()), bigger);
    EXPECT_EQ(width_of_pixmap(pm.get()), 6);
    EXPECT_EQ(pm->owns_data, 0);

    replace_pixmap(pm.get(), UT_makeShared<CEL_PixmapMatte8>(6, 5), 6, 5, 1);
    EXPECT_EQ(assertion_count(capture), 1);
    EXPECT_EQ(type_of_pixmap(pm.get()), PIXMAP_NONE);
    EXPECT_FALSE(best_of_pixmap(pm.get()));
}

TEST(PixmapClone, SharesNothingWithItsSource)
{
    PixmapHolder source(create_pixmap(PIXMAP_MATTE8, 3, 2, 4, 5));
    source->flags = 6;
    source->owns_data = 0;
    matte8_data_of_pixmap(source.get())[4] = 77;
    PixmapHolder copy(clone_pixmap(source.get()));
    ASSERT_TRUE(copy);
    EXPECT_NE(matte8_of_pixmap(copy.get()), matte8_of_pixmap(source.get()));
    EXPECT_EQ(matte8_data_of_pixmap(copy.get())[4], 77);
    matte8_data_of_pixmap(source.get())[4] = 1;
    EXPECT_EQ(matte8_data_of_pixmap(copy.get())[4], 77);
    EXPECT_EQ(copy->flags, 6);
    EXPECT_EQ(copy->owns_data, 1);
    EXPECT_EQ(copy->ref_count, 1);
    EXPECT_EQ(copy->x_offset, 4);
    EXPECT_EQ(matte8_of_pixmap(copy.get())->refCount(), 2); // the copy's slot and our getter's pointer
}

// A 3 x 2 grey pixmap holding 0..5 in reading order.
PixmapHolder counting_grey()
{
    PixmapHolder pm(create_pixmap(PIXMAP_MATTE8, 3, 2));
    for (int k = 0; k < 6; ++k)
        matte8_data_of_pixmap(pm.get())[k] = uint8_t(k);
    return pm;
}

std::vector<uint8_t> grey_pixels(const LMV_pixmap *pm)
{
    const auto leaf = matte8_of_pixmap(pm);
    return {leaf->data(), leaf->data() + leaf->pixelCount()};
}

TEST(PixmapOperations, FlipMirrorsAndScaleReplacesTheLeafWithTheMovedPicture)
{
    PixmapHolder pm = counting_grey();
    flip_pixmap(pm.get(), true);
    EXPECT_EQ(grey_pixels(pm.get()), (std::vector<uint8_t>{3, 4, 5, 0, 1, 2}));
    pm = counting_grey();
    flip_pixmap(pm.get(), false);
    EXPECT_EQ(grey_pixels(pm.get()), (std::vector<uint8_t>{2, 1, 0, 5, 4, 3}));

    pm = counting_grey();
    pm->owns_data = 0;
    scale_pixmap(pm.get(), 1.0, 0.0, 4, 2, 1.0, 1.0);
    EXPECT_EQ(width_of_pixmap(pm.get()), 4);
    EXPECT_EQ(pm->owns_data, 1);
    EXPECT_EQ(grey_pixels(pm.get()), (std::vector<uint8_t>{0, 0, 1, 2, 0, 3, 4, 5}));
}

TEST(PixmapOperations, StretchTurnsColourToGreyAndSpreadsLevels)
{
    PixmapHolder pm(create_pixmap(PIXMAP_RGBA8, 3, 1));
    CEL_RGBA8Pixel *px = rgba8_data_of_pixmap(pm.get());
    px[0] = {10, 10, 10, 0};
    px[1] = {128, 128, 128, 0};
    px[2] = {250, 250, 250, 0};
    stretch_gray_pixmap(pm.get(), 64 / 255.0, 192 / 255.0);
    EXPECT_EQ(type_of_pixmap(pm.get()), PIXMAP_MATTE8);
    EXPECT_FALSE(rgba8_of_pixmap(pm.get()));
    const auto grey = grey_pixels(pm.get());
    EXPECT_EQ(grey[0], 0);
    EXPECT_NEAR(grey[1], 128, 1);
    EXPECT_EQ(grey[2], 255);
}

TEST(PixmapOperations, ImageShowsGreyAndColour)
{
    PixmapHolder grey = counting_grey();
    QImage image;
    image_of_pixmap(grey.get(), &image);
    EXPECT_EQ(image.size(), QSize(3, 2));
    EXPECT_EQ(qGray(image.pixel(2, 1)), 5);

    PixmapHolder colour(create_pixmap(PIXMAP_RGBA8, 2, 1));
    rgba8_data_of_pixmap(colour.get())[1] = {200, 100, 50, 0};
    image_of_pixmap(colour.get(), &image);
    EXPECT_EQ(image.pixel(1, 0) & 0xFFFFFF, qRgb(200, 100, 50) & 0xFFFFFF);
}

TEST(ScsiBytes, BigAndLittleEndianForEveryCount)
{
    std::array<uint8_t, 6> buf{};
    buf.fill(0xEE);
    put_bytes_big_endian(buf.data(), 3, 0x11223344);
    EXPECT_EQ(buf, (std::array<uint8_t, 6>{0x22, 0x33, 0x44, 0xEE, 0xEE, 0xEE}));
    put_bytes_big_endian(buf.data(), 4, 0xA1B2C3D4);
    EXPECT_EQ(get_bytes_big_endian(buf.data(), 4), 0xA1B2C3D4u);
    EXPECT_EQ(get_bytes_big_endian(buf.data(), 2), 0xA1B2u);
    EXPECT_EQ(get_bytes_little_endian(buf.data(), 4), 0xD4C3B2A1u);
    EXPECT_EQ(get_bytes_little_endian(buf.data(), 1), 0xA1u);

    MessageCapture capture;
    const auto before = buf;
    put_bytes_big_endian(buf.data(), 0, 0xFFFFFFFF);
    EXPECT_EQ(get_bytes_big_endian(buf.data(), 0), 0u);
    EXPECT_EQ(get_bytes_little_endian(buf.data(), 0), 0u);
    EXPECT_EQ(assertion_count(capture), 0);
    put_bytes_big_endian(buf.data(), 5, 0xFFFFFFFF);
    EXPECT_EQ(buf, before);
    EXPECT_EQ(get_bytes_big_endian(buf.data(), 5), 0u);
    EXPECT_EQ(get_bytes_little_endian(buf.data(), -1), 0u);
    EXPECT_EQ(assertion_count(capture), 3);
}

} // namespace
