// Pixel leaves: shared ownership, copies, screen pictures and grey conversions.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "suite/cel/cel_algo.h"
#include "suite/cel/cel_pixmap.h"
#include "tests/suite/cel/cel_leaf_fill.h"

namespace {

// Counts its destructions, to see when the last owner lets go.
struct Tracked : UT_ShareBaseSafe {
    explicit Tracked(int *deaths) : deaths(deaths) {}
    ~Tracked() override { ++*deaths; }
    int *deaths;
};

} // namespace

TEST(CelShare, CountFollowsCopiesAndDeletesAtZero)
{
    int deaths = 0;
    {
        auto a = UT_makeShared<Tracked>(&deaths);
        EXPECT_EQ(a->refCount(), 1);
        {
            UT_SharePtr<Tracked> b = a;
            UT_SharePtr<UT_ShareBaseSafe> base = a;
            EXPECT_EQ(a->refCount(), 3);
            UT_SharePtr<Tracked> moved = std::move(b);
            EXPECT_EQ(a->refCount(), 3);
            EXPECT_FALSE(b);
        }
        EXPECT_EQ(a->refCount(), 1);
        UT_SharePtr<Tracked> c = a;
        c.reset();
        EXPECT_EQ(a->refCount(), 1);
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 1);
}

TEST(CelShare, CopiesFromManyThreadsKeepTheCount)
{
    int deaths = 0;
    auto shared = UT_makeShared<Tracked>(&deaths);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&shared] {
            for (int i = 0; i < 50000; ++i) {
                UT_SharePtr<Tracked> a = shared, b = a;
            }
        });
    for (auto &t : threads)
        t.join();
    EXPECT_EQ(shared->refCount(), 1);
    shared.reset();
    EXPECT_EQ(deaths, 1);
}

TEST(CelShare, DynamicCastKeepsTheReferenceOrGivesNull)
{
    CEL_PixmapPtr any = UT_makeShared<CEL_PixmapMatte8>(2, 2);
    auto matte = UT_dynamicCast<CEL_PixmapMatte8>(any);
    ASSERT_TRUE(matte);
    EXPECT_EQ(any->refCount(), 2);
    EXPECT_FALSE(UT_dynamicCast<CEL_PixmapRGBA8>(any));
    EXPECT_EQ(any->refCount(), 2);
}

TEST(CelLeaf, CopySharesNoDataAndStartsItsOwnCount)
{
    auto original = UT_makeShared<CEL_PixmapRGBA8>(patternLeaf<CEL_PixmapRGBA8>(3, 2));
    auto copy = UT_makeShared<CEL_PixmapRGBA8>(*original);
    EXPECT_EQ(original->refCount(), 1);
    EXPECT_EQ(copy->refCount(), 1);
    ASSERT_NE(copy->data(), original->data());
    EXPECT_EQ(copy->at(2, 1), original->at(2, 1));
    copy->at(2, 1).r ^= 0xff;
    EXPECT_NE(copy->at(2, 1), original->at(2, 1));
}

// The picture of a leaf, pixel by pixel, for widths that pad QImage lines.
TEST(CelLeaf, ColourImagesAreOpaqueWithTheLeafColours)
{
    for (const auto &[w, h] : {std::pair{1, 1}, {3, 2}, {1, 5}, {5, 1}}) {
        const auto rgba8 = patternLeaf<CEL_PixmapRGBA8>(w, h);
        const QImage a = rgba8.getImage();
        ASSERT_EQ(a.size(), QSize(w, h));
        EXPECT_EQ(a.format(), QImage::Format_RGBX8888);
        const auto rgba16 = patternLeaf<CEL_PixmapRGBA16>(w, h);
        const QImage b = rgba16.getImage();
        ASSERT_EQ(b.size(), QSize(w, h));
        EXPECT_EQ(b.format(), QImage::Format_RGBX64);
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const auto p = rgba8.at(x, y);
                EXPECT_EQ(a.pixel(x, y), qRgb(p.r, p.g, p.b)) << x << "," << y;
                const auto q = rgba16.at(x, y);
                const QColor c = b.pixelColor(x, y);
                EXPECT_EQ(c.rgba64(), QRgba64::fromRgba64(q.r, q.g, q.b, 0xffff)) << x << "," << y;
            }
        }
    }
}

TEST(CelLeaf, GreyImagesCopyEveryRow)
{
    for (const auto &[w, h] : {std::pair{1, 1}, {3, 3}, {1, 4}, {7, 1}}) {
        auto matte8 = std::make_unique<CEL_PixmapMatte8>(patternLeaf<CEL_PixmapMatte8>(w, h));
        const QImage g = matte8->getImage();
        ASSERT_EQ(g.format(), QImage::Format_Grayscale8);
        const auto matte16 = patternLeaf<CEL_PixmapMatte16>(w, h);
        const QImage g16 = matte16.getImage();
        ASSERT_EQ(g16.format(), QImage::Format_Grayscale16);
        std::vector<uint8_t> expected(matte8->data(), matte8->data() + matte8->pixelCount());
        matte8.reset();  // the image owns its pixels
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                EXPECT_EQ(g.constScanLine(y)[x], expected[size_t(y) * w + x]);
                EXPECT_EQ(reinterpret_cast<const uint16_t *>(g16.constScanLine(y))[x], matte16.at(x, y));
            }
        }
    }
}

TEST(CelLeaf, EmptyOrMissingLeavesGiveNullImages)
{
    EXPECT_TRUE(CEL_Util::getGrayScaleImage(nullptr).isNull());
    EXPECT_TRUE(CEL_PixmapMatte8(0, 0).getImage().isNull());
    EXPECT_TRUE(CEL_PixmapRGBA8(4, 0).getImage().isNull());
    EXPECT_TRUE(CEL_PixmapMatte16(0, 3).getImage().isNull());
}

TEST(CelMatte8, GreyColoursKeepTheirLevel)
{
    CEL_PixmapRGBA8 colour(256, 1);
    CEL_PixmapRGBA16 deep(256, 1);
    for (int v = 0; v < 256; ++v) {
        colour.at(v, 0) = {uint8_t(v), uint8_t(v), uint8_t(v), uint8_t(255 - v)};
        deep.at(v, 0) = {uint16_t(v * 257), uint16_t(v * 257), uint16_t(v * 257), 0};
    }
    const CEL_PixmapMatte8 a(colour), b(deep);
    ASSERT_EQ(a.width(), 256);
    ASSERT_EQ(b.height(), 1);
    for (int v = 0; v < 256; ++v) {
        EXPECT_EQ(a.at(v, 0), v);
        EXPECT_EQ(b.at(v, 0), v);
    }
}

TEST(CelMatte8, GreenWeighsMostAndBlueLeast)
{
    CEL_PixmapRGBA8 colour(3, 1);
    colour.at(0, 0) = {255, 0, 0, 0};
    colour.at(1, 0) = {0, 255, 0, 0};
    colour.at(2, 0) = {0, 0, 255, 0};
    const CEL_PixmapMatte8 grey(colour);
    // Rec. 601: 0.299, 0.587, 0.114 of 255.
    EXPECT_NEAR(grey.at(0, 0), 76, 1);
    EXPECT_NEAR(grey.at(1, 0), 150, 1);
    EXPECT_NEAR(grey.at(2, 0), 29, 1);
}

TEST(CelMatte8, SixteenBitsRoundToTheNearestLevel)
{
    CEL_PixmapMatte16 deep(6, 1);
    const uint16_t in[] = {0, 128, 129, 257 * 100 + 128, 257 * 100 + 129, 65535};
    std::copy(std::begin(in), std::end(in), deep.data());
    const CEL_PixmapMatte8 grey(deep);
    const uint8_t expected[] = {0, 0, 1, 100, 101, 255};
    for (int x = 0; x < 6; ++x)
        EXPECT_EQ(grey.at(x, 0), expected[x]) << in[x];
}
