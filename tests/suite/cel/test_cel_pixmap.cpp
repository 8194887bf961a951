// Pixel leaves: the shared count under threads, screen pictures and grey conversions.
#include <gtest/gtest.h>

#include <thread>
#include <tuple>
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

// Copies, moves and casts are used throughout the code under the sanitizers;
// what those can't see is a count that is not atomic.
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

// The picture of each leaf, pixel by pixel, for widths that pad QImage lines:
// colours opaque, grey levels as they are, in pixels the image owns.
TEST(CelLeaf, ImagesShowEveryPixel)
{
    for (const auto &[w, h] : {std::pair{1, 1}, {3, 2}, {1, 5}, {7, 1}, {5, 3}}) {
        SCOPED_TRACE(testing::Message() << w << "x" << h);
        const auto rgba8 = patternLeaf<CEL_PixmapRGBA8>(w, h);
        const auto rgba16 = patternLeaf<CEL_PixmapRGBA16>(w, h);
        const auto matte16 = patternLeaf<CEL_PixmapMatte16>(w, h);
        auto matte8 = std::make_unique<CEL_PixmapMatte8>(patternLeaf<CEL_PixmapMatte8>(w, h));
        const QImage a = rgba8.getImage(), b = rgba16.getImage(), g = matte8->getImage(), g16 = matte16.getImage();
        const std::vector<uint8_t> grey(matte8->data(), matte8->data() + matte8->pixelCount());
        matte8.reset();
        EXPECT_EQ(std::tuple(a.format(), b.format(), g.format(), g16.format()),
                  std::tuple(QImage::Format_RGBX8888, QImage::Format_RGBX64, QImage::Format_Grayscale8, QImage::Format_Grayscale16));
        for (const QImage *image : {&a, &b, &g, &g16})
            ASSERT_EQ(image->size(), QSize(w, h));
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const auto p = rgba8.at(x, y);
                const auto q = rgba16.at(x, y);
                EXPECT_EQ(a.pixel(x, y), qRgb(p.r, p.g, p.b)) << x << "," << y;
                EXPECT_EQ(b.pixelColor(x, y).rgba64(), QRgba64::fromRgba64(q.r, q.g, q.b, 0xffff)) << x << "," << y;
                EXPECT_EQ(g.constScanLine(y)[x], grey[size_t(y) * w + x]);
                EXPECT_EQ(reinterpret_cast<const uint16_t *>(g16.constScanLine(y))[x], matte16.at(x, y));
            }
    }
    for (const QImage &empty : {CEL_Util::getGrayScaleImage(nullptr), CEL_PixmapMatte8(0, 0).getImage(),
                                CEL_PixmapRGBA8(4, 0).getImage(), CEL_PixmapMatte16(0, 3).getImage()})
        EXPECT_TRUE(empty.isNull());
}

TEST(CelMatte8, GreyFromColourAndSixteenBits)
{
    // Grey colours keep their level whatever their alpha; then pure red,
    // green and blue, weighed as Rec. 601 does: 0.299, 0.587, 0.114 of 255.
    CEL_PixmapRGBA8 colour(259, 1);
    CEL_PixmapRGBA16 deep(256, 1);
    for (int v = 0; v < 256; ++v) {
        colour.at(v, 0) = {uint8_t(v), uint8_t(v), uint8_t(v), uint8_t(255 - v)};
        deep.at(v, 0) = {uint16_t(v * 257), uint16_t(v * 257), uint16_t(v * 257), 0};
    }
    colour.at(256, 0) = {255, 0, 0, 0};
    colour.at(257, 0) = {0, 255, 0, 0};
    colour.at(258, 0) = {0, 0, 255, 0};
    const CEL_PixmapMatte8 a(colour), b(deep);
    ASSERT_EQ(a.width(), 259);
    ASSERT_EQ(b.height(), 1);
    for (int v = 0; v < 256; ++v) {
        EXPECT_EQ(a.at(v, 0), v);
        EXPECT_EQ(b.at(v, 0), v);
    }
    EXPECT_NEAR(a.at(256, 0), 76, 1);
    EXPECT_NEAR(a.at(257, 0), 150, 1);
    EXPECT_NEAR(a.at(258, 0), 29, 1);
    // Sixteen-bit grey rounds to the nearest level.
    CEL_PixmapMatte16 matte(6, 1);
    const uint16_t in[] = {0, 128, 129, 257 * 100 + 128, 257 * 100 + 129, 65535};
    std::copy(std::begin(in), std::end(in), matte.data());
    const CEL_PixmapMatte8 grey(matte);
    const uint8_t expected[] = {0, 0, 1, 100, 101, 255};
    for (int x = 0; x < 6; ++x)
        EXPECT_EQ(grey.at(x, 0), expected[x]) << in[x];
}
