// The pixmap record, its slots and operations, and the SCSI byte helpers.
#include <gtest/gtest.h>

#include <QImage>

#include <array>
#include <tuple>

#include "pixmap_test_support.h"

namespace {

int filled_slots(const LMV_pixmap *pm)
{
    return !!rgba8_of_pixmap(pm) + !!rgba16_of_pixmap(pm) + !!matte8_of_pixmap(pm) + !!matte16_of_pixmap(pm);
}

TEST(PixmapCreate, EachKindFillsItsOwnSlotAndOtherKindsNone)
{
    for (auto [kind, cel_type] : {std::pair{PIXMAP_RGBA16, 6}, {PIXMAP_RGBA8, 7}, {PIXMAP_MATTE16, 9}, {PIXMAP_MATTE8, 8}}) {
        PixmapHolder pm(create_pixmap(kind, 6, 4, 2, 3));
        const CEL_PixmapPtr leaf = best_of_pixmap(pm.get());
        ASSERT_TRUE(leaf);
        EXPECT_EQ(std::tuple(type_of_pixmap(pm.get()), leaf->type(), leaf->width(), leaf->height(), pm->x_offset,
                             pm->y_offset, filled_slots(pm.get())),
                  std::tuple(kind, cel_type, 6, 4, 2, 3, 1));
    }
    MessageCapture capture;
    PixmapHolder none(create_pixmap(PIXMAP_NONE, 3, 3));
    EXPECT_EQ(capture.assertions(), 0);
    PixmapHolder unknown(create_pixmap(9, 3, 3));
    EXPECT_EQ(capture.assertions(), 1);
    for (LMV_pixmap *pm : {none.get(), unknown.get()})
        EXPECT_EQ(std::tuple(type_of_pixmap(pm), filled_slots(pm), width_of_pixmap(pm)), std::tuple(PIXMAP_NONE, 0, 3));
}

// Setting hands the block to a new leaf and empties the other slots; replacing takes a leaf of the
// same class only; releasing counts down before letting go of the leaf.
TEST(PixmapSlots, SetReplaceAndRelease)
{
    PixmapHolder pm(create_pixmap(PIXMAP_RGBA8, 8, 8));
    auto block = std::make_unique<uint16_t[]>(6);
    uint16_t *raw = block.get();
    set_matte16_of_pixmap(pm.get(), std::move(block), 3, 2, 0);
    EXPECT_EQ(std::tuple(type_of_pixmap(pm.get()), filled_slots(pm.get()), matte16_data_of_pixmap(pm.get())),
              std::tuple(PIXMAP_MATTE16, 1, raw));
    EXPECT_EQ(std::tuple(matte16_of_pixmap(pm.get())->width(), width_of_pixmap(pm.get()), height_of_pixmap(pm.get()),
                         pm->owns_data),
              std::tuple(3, 3, 2, 0));
    set_size_of_pixmap(pm.get(), 10, 11);  // the record only: the pixels stay as they are
    EXPECT_EQ(std::tuple(width_of_pixmap(pm.get()), height_of_pixmap(pm.get()), matte16_of_pixmap(pm.get())->width()),
              std::tuple(10, 11, 3));

    MessageCapture capture;
    const auto bigger = UT_makeShared<CEL_PixmapMatte16>(6, 5);
    replace_pixmap(pm.get(), bigger, 6, 5, 1);
    EXPECT_EQ(std::tuple(matte16_of_pixmap(pm.get()), width_of_pixmap(pm.get()), pm->owns_data, capture.assertions()),
              std::tuple(bigger, 6, uint8_t(1), 0));
    replace_pixmap(pm.get(), UT_makeShared<CEL_PixmapMatte8>(6, 5), 6, 5, 1);
    EXPECT_EQ(std::pair(type_of_pixmap(pm.get()), capture.assertions()), std::pair(int32_t(PIXMAP_NONE), 1));

    auto leaf = UT_makeShared<CEL_PixmapMatte8>(2, 2);
    LMV_pixmap *shared = wrap_matte8_pixmap(leaf, 2, 2, 1);
    shared->ref_count = 2;
    release_pixmap(shared);
    EXPECT_EQ(leaf->refCount(), 2);
    release_pixmap(shared);
    EXPECT_EQ(leaf->refCount(), 1);
}

TEST(PixmapClone, SharesNothingWithItsSource)
{
    PixmapHolder source(create_pixmap(PIXMAP_MATTE8, 3, 2, 4, 5));
    source->flags = 6;
    source->owns_data = 0;
    matte8_data_of_pixmap(source.get())[4] = 77;
    PixmapHolder copy(clone_pixmap(source.get()));
    ASSERT_TRUE(copy);
    matte8_data_of_pixmap(source.get())[4] = 1;
    EXPECT_EQ(matte8_data_of_pixmap(copy.get())[4], 77);
    EXPECT_EQ(std::tuple(copy->flags, copy->owns_data, copy->ref_count, copy->x_offset, copy->y_offset),
              std::tuple(6, uint8_t(1), 1, 4, 5));
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

// Flip mirrors in place; scale replaces the leaf; stretch turns colour to grey and spreads the
// levels; the image shows grey and colour.
TEST(PixmapOperations, FlipScaleStretchAndImage)
{
    using Pixels = std::vector<uint8_t>;
    for (auto [top_down, want] : {std::pair(true, Pixels{3, 4, 5, 0, 1, 2}), {false, Pixels{2, 1, 0, 5, 4, 3}}}) {
        PixmapHolder pm = counting_grey();
        flip_pixmap(pm.get(), top_down);
        EXPECT_EQ(grey_pixels(pm.get()), want);
    }
    PixmapHolder pm = counting_grey();
    pm->owns_data = 0;
    scale_pixmap(pm.get(), 1.0, 0.0, 4, 2, 1.0, 1.0);
    EXPECT_EQ(std::pair(width_of_pixmap(pm.get()), pm->owns_data), std::pair(4, uint8_t(1)));
    EXPECT_EQ(grey_pixels(pm.get()), (Pixels{0, 0, 1, 2, 0, 3, 4, 5}));
    QImage image;
    image_of_pixmap(pm.get(), &image);
    EXPECT_EQ(std::pair(image.size(), qGray(image.pixel(3, 1))), std::pair(QSize(4, 2), 5));

    PixmapHolder colour(create_pixmap(PIXMAP_RGBA8, 3, 1));
    CEL_RGBA8Pixel *px = rgba8_data_of_pixmap(colour.get());
    px[0] = {10, 10, 10, 0};
    px[1] = {200, 100, 50, 0};
    px[2] = {250, 250, 250, 0};
    image_of_pixmap(colour.get(), &image);
    EXPECT_EQ(image.pixel(1, 0) & 0xFFFFFF, qRgb(200, 100, 50) & 0xFFFFFF);
    px[1] = {128, 128, 128, 0};
    stretch_gray_pixmap(colour.get(), 64 / 255.0, 192 / 255.0);
    EXPECT_EQ(std::pair(type_of_pixmap(colour.get()), filled_slots(colour.get())), std::pair(int32_t(PIXMAP_MATTE8), 1));
    const auto grey = grey_pixels(colour.get());
    EXPECT_EQ(std::pair(grey[0], grey[2]), std::pair(uint8_t(0), uint8_t(255)));
    EXPECT_NEAR(grey[1], 128, 1);
}

TEST(ScsiBytes, BigAndLittleEndianForEveryCount)
{
    std::array<uint8_t, 6> buf{};
    buf.fill(0xEE);
    put_bytes_big_endian(buf.data(), 3, 0x11223344);
    EXPECT_EQ(buf, (std::array<uint8_t, 6>{0x22, 0x33, 0x44, 0xEE, 0xEE, 0xEE}));
    put_bytes_big_endian(buf.data(), 4, 0xA1B2C3D4);
    EXPECT_EQ(std::tuple(get_bytes_big_endian(buf.data(), 4), get_bytes_big_endian(buf.data(), 2),
                         get_bytes_little_endian(buf.data(), 4), get_bytes_little_endian(buf.data(), 1)),
              std::tuple(0xA1B2C3D4u, 0xA1B2u, 0xD4C3B2A1u, 0xA1u));

    // No bytes is a count like any other; more than four, or fewer than none, is refused.
    MessageCapture capture;
    const auto before = buf;
    put_bytes_big_endian(buf.data(), 0, 0xFFFFFFFF);
    put_bytes_big_endian(buf.data(), 5, 0xFFFFFFFF);
    EXPECT_EQ(get_bytes_big_endian(buf.data(), 0) + get_bytes_little_endian(buf.data(), 0) +
                  get_bytes_big_endian(buf.data(), 5) + get_bytes_little_endian(buf.data(), -1),
              0u);
    EXPECT_EQ(std::pair(buf, capture.assertions()), std::pair(before, 3));
}

} // namespace
