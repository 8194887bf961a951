// The band loader against a pixel-by-pixel model of the turns, for every peg
// side, data form and band split.
#include <gtest/gtest.h>

#include <QImage>

#include <cstring>
#include <random>
#include <vector>

#include "pixmap_test_support.h"

namespace {

enum class Form { Rgb, Grey, Bits };

// Where raster pixel i of line j lands, for a line length W and H lines.
std::pair<int, int> turned(int side, int W, int H, int i, int j)
{
    switch (side) {
    case 1: return {i, j};
    case 2: return {H - 1 - j, i};
    case 3: return {W - 1 - i, H - 1 - j};
    default: return {j, W - 1 - i};
    }
}

bool quarter(int side) { return side == 2 || side == 4; }

// Bytes of one scan line.
int line_bytes(Form form, int W) { return form == Form::Rgb ? 3 * W : form == Form::Grey ? W : (W + 7) / 8; }

// A random raster in the form a scanner sends it.
std::vector<uint8_t> make_raster(Form form, int W, int H, std::mt19937 &rng)
{
    std::vector<uint8_t> raster(size_t(line_bytes(form, W) * H));
    for (auto &b : raster)
        b = uint8_t(rng());
    return raster;
}

// The expected leaf, built one pixel at a time from the table of turns: grey
// levels, or the RGBA bytes of a pixel read as one little-endian word.
std::vector<uint32_t> model(Form form, const std::vector<uint8_t> &raster, int W, int H, int side, bool invert)
{
    std::vector<uint32_t> leaf(size_t(W * H));
    const uint32_t m = invert ? 0xFF : 0;
    for (int j = 0; j < H; ++j)
        for (int i = 0; i < W; ++i) {
            const auto [x, y] = turned(side, W, H, i, j);
            uint32_t &px = leaf[size_t(y * (quarter(side) ? H : W) + x)];
            if (form == Form::Rgb)
                for (int c = 0; c < 3; ++c)
                    px |= (raster[size_t(3 * (j * W + i) + c)] ^ m) << (8 * c);
            else if (form == Form::Grey)
                px = raster[size_t(j * W + i)] ^ m;
            else
                px = bool(raster[size_t(j * line_bytes(Form::Bits, W) + i / 8)] & (0x80 >> (i % 8))) != invert ? 255 : 0;
        }
    return leaf;
}

std::vector<uint32_t> pixels_of(const CEL_PixmapPtr &leaf)
{
    std::vector<uint32_t> out(leaf->pixelCount());
    const auto *bytes = static_cast<const uint8_t *>(leaf->rawData());
    for (size_t k = 0; k < out.size(); ++k)
        if (leaf->bytesPerPixel() == 4)
            std::memcpy(&out[k], bytes + 4 * k, 4);
        else
            out[k] = bytes[k];
    return out;
}

// Every form, peg side and inversion, three random band splits each, on single rows and columns,
// a 13-pixel one-bit line (three bits dropped) and whole 16-line groups and 16-pixel blocks with rests.
TEST(BandLoader, MatchesTheTableOfTurnsForAnyBandSplit)
{
    std::vector<std::pair<int, int>> sizes{{67, 83}};
    for (int W : {13, 1, 50})
        for (int H : {1, 9, 37}) sizes.emplace_back(W, H);
    for (Form form : {Form::Rgb, Form::Grey, Form::Bits})
        for (auto [W, H] : sizes)
            for (int side = 1; side <= 4; ++side)
                for (bool invert : {false, true}) {
                    SCOPED_TRACE(testing::Message() << "form " << int(form) << " " << W << "x" << H << " side " << side
                                                    << (invert ? " inverted" : ""));
                    std::mt19937 rng(uint32_t(W * 7919 + H * 31 + side * 3 + invert));
                    const auto raster = make_raster(form, W, H, rng);
                    const auto want = model(form, raster, W, H, side, invert);
                    const auto size = quarter(side) ? std::pair(H, W) : std::pair(W, H);
                    for (int round = 0; round < 3; ++round) {
                        MessageCapture capture;
                        PixmapHolder pm(create_pixmap(form == Form::Rgb ? PIXMAP_RGBA8 : PIXMAP_MATTE8, W, H));
                        int32_t x = -7, y = -7;
                        // RGB bands of any whole number of pixels (ending within lines); whole lines
                        // otherwise, up to 40, so that groups of lines are turned together as well as rests.
                        const size_t unit = size_t(form == Form::Rgb ? 3 : line_bytes(form, W));
                        for (size_t offset = 0, len; offset < raster.size(); offset += len) {
                            len = std::min(raster.size() - offset, (1 + rng() % (form == Form::Rgb ? 3 * W : 40)) * unit);
                            const bool last = offset + len == raster.size();
                            load_band_of_pixmap(pm.get(), &x, &y, raster.data() + offset, int32_t(len), invert,
                                                form == Form::Bits, side, offset == 0, last);
                            if (!last) { // a quarter turn keeps the raster's size in the record until then
                                ASSERT_EQ(width_of_pixmap(pm.get()), W);
                            }
                        }
                        ASSERT_EQ(capture.assertions(), 0);
                        // After the last band the record agrees with the leaf.
                        ASSERT_EQ(std::pair(width_of_pixmap(pm.get()), height_of_pixmap(pm.get())), size);
                        const CEL_PixmapPtr leaf = best_of_pixmap(pm.get());
                        ASSERT_EQ(std::pair(leaf->width(), leaf->height()), size);
                        ASSERT_EQ(pixels_of(leaf), want);
                    }
                }
}

// Bad calls: an assertion each, nothing stored, the position kept. Four 13-pixel lines (13 grey
// or 2 packed bytes each), the first stored.
TEST(BandLoaderRejects, BadBandsStoreNothing)
{
    struct Case {
        const char *name;
        bool bits;
        int32_t x, y, length, side;
    };
    const Case cases[] = {
        {"ragged grey", false, 0, 1, 14, 1},      {"ragged bits", true, 0, 1, 3, 1},
        {"past the end", false, 0, 1, 52, 1},     {"below the raster", false, 0, 4, 13, 1},
        {"left of the raster", false, -1, 0, 13, 1}, {"right of the raster", false, 13, 0, 13, 1},
        {"within a line", false, 1, 1, 13, 1},    {"side 0", false, 0, 1, 13, 0},
        {"side 5", false, 0, 1, 13, 5},           {"no bytes", false, 0, 1, 0, 1},
    };
    const std::vector<uint8_t> first(13, 0xFF), bytes(52, 7);
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        PixmapHolder pm(create_pixmap(PIXMAP_MATTE8, 13, 4));
        int32_t x = 0, y = 0;
        load_band_of_pixmap(pm.get(), &x, &y, first.data(), c.bits ? 2 : 13, false, c.bits, 1, true, false);
        const uint8_t *px = matte8_data_of_pixmap(pm.get());
        const std::vector<uint8_t> before(px, px + 52);
        MessageCapture capture;
        x = c.x, y = c.y;
        load_band_of_pixmap(pm.get(), &x, &y, bytes.data(), c.length, false, c.bits, c.side, false, false);
        EXPECT_EQ(std::tuple(capture.assertions(), x, y, std::vector<uint8_t>(px, px + 52)),
                  std::tuple(1, c.x, c.y, before));
    }

    // A kind the loader has no form for stores nothing; one-bit colour is read
    // as RGB. An assertion each.
    MessageCapture capture;
    PixmapHolder wide(create_pixmap(PIXMAP_MATTE16, 4, 1)), rgb(create_pixmap(PIXMAP_RGBA8, 2, 1));
    int32_t x = 0, y = 0;
    load_band_of_pixmap(wide.get(), &x, &y, bytes.data(), 4, false, false, 1, true, true);
    const uint8_t six[] = {1, 2, 3, 4, 5, 6};
    load_band_of_pixmap(rgb.get(), &x, &y, six, 6, false, true, 1, true, true);
    EXPECT_EQ(std::tuple(matte16_data_of_pixmap(wide.get())[0], rgba8_data_of_pixmap(rgb.get())[1], capture.assertions()),
              std::tuple(uint16_t(0), CEL_RGBA8Pixel{4, 5, 6, 0}, 2));
}

// Images from files: one bit spread to 0 and 255 (Qt pads lines to four bytes), colour without
// its alpha; both turned like scans, and like the continuous turn registration charts use.
TEST(PixmapFromQImage, MonoAndColourImagesAreTurnedLikeScans)
{
    std::mt19937 rng(5);
    const int W = 13, H = 3;
    for (Form form : {Form::Bits, Form::Rgb}) {
        const auto raster = make_raster(form, W, H, rng);
        QImage image(W, H, form == Form::Bits ? QImage::Format_Mono : QImage::Format_ARGB32);
        for (int j = 0; j < H; ++j)
            for (int i = 0; i < W; ++i) {
                const size_t k = size_t(3 * (j * W + i)), bit = size_t(j * line_bytes(form, W) + i / 8);
                image.setPixel(i, j, form == Form::Bits ? uint(raster[bit] >> (7 - i % 8) & 1)
                                                        : qRgba(raster[k], raster[k + 1], raster[k + 2], 128));
            }
        ASSERT_TRUE(form != Form::Bits || image.bytesPerLine() != line_bytes(form, W));
        for (int side = 1; side <= 4; ++side) {
            SCOPED_TRACE(testing::Message() << "form " << int(form) << " side " << side);
            const CEL_PixmapPtr leaf = pixmap_from_QImage(image, side);
            ASSERT_TRUE(leaf);
            ASSERT_EQ(leaf->width(), quarter(side) ? H : W);
            EXPECT_EQ(pixels_of(leaf), model(form, raster, W, H, side, false));
            for (auto [i, j] : {std::pair(0, 0), {W - 1, 0}, {0, H - 1}}) {
                const auto [x, y] = turned(side, W, H, i, j);
                EXPECT_EQ(turn_of_peg_side(side, W, H).map(QPointF(i + 0.5, j + 0.5)), QPointF(x + 0.5, y + 0.5));
            }
        }
    }
    EXPECT_FALSE(pixmap_from_QImage(QImage(), 1));
}

} // namespace
