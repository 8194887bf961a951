// Files made by other programs: TIFF layouts written with libtiff directly,
// a TIFF rewritten by tiffcp, and the formats Qt writes.
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <tiffio.h>
#include <vector>

#include "celio_test_util.h"

using namespace celio_test;

namespace {

// The layout of a TIFF written by hand. Samples of 16 bits are given in
// native order; libtiff swaps them for a big-endian file.
struct Layout {
    uint32_t width = 0, height = 0;
    uint16_t bps = 8, spp = 1, photometric = PHOTOMETRIC_MINISBLACK, compression = COMPRESSION_NONE;
    uint16_t planar = PLANARCONFIG_CONTIG;
    uint32_t tile = 0;  // 0 for strips
    std::vector<uint16_t> extraSamples{};
    std::vector<uint16_t> colormap{};  // red, then green, then blue entries
    QByteArray description{};
    bool bigEndian = false;

    size_t rowBytes() const
    {
        return (size_t(width) * bps * (planar == PLANARCONFIG_SEPARATE ? 1 : spp) + 7) / 8;
    }
};

// `data` holds packed rows top to bottom (for separate planes, one plane after the other).
void writeByHand(const QString &path, const Layout &l, const std::vector<uint8_t> &data)
{
    TIFF *tif = TIFFOpen(QFile::encodeName(path).constData(), l.bigEndian ? "wb" : "wl");
    ASSERT_NE(tif, nullptr);
    TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, l.width);
    TIFFSetField(tif, TIFFTAG_IMAGELENGTH, l.height);
    TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, l.bps);
    TIFFSetField(tif, TIFFTAG_SAMPLESPERPIXEL, l.spp);
    TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, l.photometric);
    TIFFSetField(tif, TIFFTAG_COMPRESSION, l.compression);
    TIFFSetField(tif, TIFFTAG_PLANARCONFIG, l.planar);
    if (!l.extraSamples.empty())
        TIFFSetField(tif, TIFFTAG_EXTRASAMPLES, uint16_t(l.extraSamples.size()), l.extraSamples.data());
    if (!l.colormap.empty()) {
        const size_t n = l.colormap.size() / 3;
        TIFFSetField(tif, TIFFTAG_COLORMAP, l.colormap.data(), l.colormap.data() + n, l.colormap.data() + 2 * n);
    }
    if (!l.description.isEmpty())
        TIFFSetField(tif, TIFFTAG_IMAGEDESCRIPTION, l.description.constData());

    const size_t rowBytes = l.rowBytes();
    if (l.tile) {
        TIFFSetField(tif, TIFFTAG_TILEWIDTH, l.tile);
        TIFFSetField(tif, TIFFTAG_TILELENGTH, l.tile);
        const size_t pixelBytes = size_t(l.bps / 8) * l.spp;
        std::vector<uint8_t> tile(TIFFTileSize(tif), 0);
        for (uint32_t ty = 0; ty < l.height; ty += l.tile)
            for (uint32_t tx = 0; tx < l.width; tx += l.tile) {
                std::fill(tile.begin(), tile.end(), 0);
                for (uint32_t r = 0; r < l.tile && ty + r < l.height; ++r)
                    for (uint32_t c = 0; c < l.tile && tx + c < l.width; ++c)
                        std::memcpy(&tile[(r * l.tile + c) * pixelBytes], &data[(ty + r) * rowBytes + (tx + c) * pixelBytes],
                                    pixelBytes);
                ASSERT_GE(TIFFWriteTile(tif, tile.data(), tx, ty, 0, 0), 0);
            }
    } else {
        TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, 3u);
        const uint16_t planes = l.planar == PLANARCONFIG_SEPARATE ? l.spp : 1;
        std::vector<uint8_t> row(rowBytes);
        for (uint16_t s = 0; s < planes; ++s)
            for (uint32_t y = 0; y < l.height; ++y) {
                std::memcpy(row.data(), &data[(size_t(s) * l.height + y) * rowBytes], rowBytes);
                ASSERT_EQ(TIFFWriteScanline(tif, row.data(), y, s), 1);
            }
    }
    TIFFClose(tif);
}

std::vector<uint8_t> noiseBytes(size_t n, unsigned seed)
{
    std::mt19937 rng(seed);
    std::vector<uint8_t> v(n);
    for (auto &b : v)
        b = uint8_t(rng());
    return v;
}

template <class T>
const T *asSamples(const std::vector<uint8_t> &v)
{
    return reinterpret_cast<const T *>(v.data());
}

template <class Leaf>
const Leaf *leafOf(const ReadBack &r)
{
    return dynamic_cast<const Leaf *>(r.rep.get());
}

class ForeignTiff : public ScratchDir {
protected:
    // Writes `l` with `data` and reads it back, expecting success and a leaf of type Leaf.
    template <class Leaf>
    const Leaf *roundTrip(const Layout &l, const std::vector<uint8_t> &data)
    {
        writeByHand(file("f.tif"), l, data);
        last_ = readFile(file("f.tif"));
        EXPECT_TRUE(last_.ok) << CELIO_Manager::getInstance().lastError().toStdString();
        const Leaf *leaf = leafOf<Leaf>(last_);
        EXPECT_NE(leaf, nullptr);
        if (leaf) {
            EXPECT_EQ(uint32_t(leaf->width()), l.width);
            EXPECT_EQ(uint32_t(leaf->height()), l.height);
        }
        return leaf;
    }
    ReadBack last_;
};

}  // namespace

TEST_F(ForeignTiff, BilevelInEitherPhotometricReadsAsZeroAnd255)
{
    // 13 pixels a row: two bytes with three padding bits that must not show.
    Layout l{.width = 13, .height = 7, .bps = 1};
    const auto bits = noiseBytes(l.rowBytes() * l.height, 3);
    auto bitAt = [&](uint32_t x, uint32_t y) { return (bits[y * l.rowBytes() + x / 8] >> (7 - x % 8)) & 1; };

    for (const auto &[photometric, compression] :
         {std::pair{PHOTOMETRIC_MINISWHITE, COMPRESSION_NONE}, std::pair{PHOTOMETRIC_MINISWHITE, COMPRESSION_CCITTFAX3},
          std::pair{PHOTOMETRIC_MINISBLACK, COMPRESSION_PACKBITS}}) {
        SCOPED_TRACE(compression);
        l.photometric = uint16_t(photometric);
        l.compression = uint16_t(compression);
        const auto *m = roundTrip<CEL_PixmapMatte8>(l, bits);
        ASSERT_NE(m, nullptr);
        for (uint32_t y = 0; y < l.height; ++y)
            for (uint32_t x = 0; x < l.width; ++x) {
                const bool white = bitAt(x, y) == (photometric == PHOTOMETRIC_MINISBLACK ? 1 : 0);
                ASSERT_EQ(m->at(int(x), int(y)), white ? 255 : 0) << x << "," << y;
            }
    }
}

TEST_F(ForeignTiff, GreyOfAnyDepthSpreadsOverTheLeafsRange)
{
    // Samples that straddle bytes, several samples a pixel, min-is-white:
    // up to 8 bits become Matte8, deeper ones keep their precision in Matte16.
    const struct {
        uint16_t bps, spp, photometric, compression;
    } depths[] = {{2, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE},   {3, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE},
                  {4, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_LZW},    {5, 1, PHOTOMETRIC_MINISWHITE, COMPRESSION_NONE},
                  {6, 2, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE},   {7, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE},
                  {9, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE},   {10, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_PACKBITS},
                  {12, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_LZW},   {12, 1, PHOTOMETRIC_MINISWHITE, COMPRESSION_NONE},
                  {12, 2, PHOTOMETRIC_MINISBLACK, COMPRESSION_ADOBE_DEFLATE},
                  {14, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE}, {15, 1, PHOTOMETRIC_MINISBLACK, COMPRESSION_NONE}};
    for (const auto &d : depths) {
        SCOPED_TRACE(testing::Message() << d.bps << " bits x " << d.spp << ", photometric " << d.photometric);
        const Layout l{.width = 13, .height = 5, .bps = d.bps, .spp = d.spp, .photometric = d.photometric,
                       .compression = d.compression};
        const uint32_t top = (1u << d.bps) - 1;
        std::mt19937 rng(d.bps);
        std::vector<uint32_t> levels(size_t(l.width) * l.height);
        for (auto &v : levels)
            v = rng() & top;
        levels[0] = 0;
        levels[1] = top;
        // Packed from the most significant bit; a pixel's other samples are noise.
        std::vector<uint8_t> packed(l.rowBytes() * l.height, 0);
        for (uint32_t y = 0; y < l.height; ++y)
            for (uint32_t k = 0; k < l.width * d.spp; ++k) {
                const uint32_t v = k % d.spp ? rng() & top : levels[y * l.width + k / d.spp];
                for (uint32_t b = 0; b < d.bps; ++b)
                    if ((v >> (d.bps - 1 - b)) & 1)
                        packed[y * l.rowBytes() + (k * d.bps + b) / 8] |= uint8_t(0x80 >> ((k * d.bps + b) % 8));
            }
        const double full = d.bps > 8 ? 65535 : 255;
        auto expected = [&](size_t i) {
            const uint32_t v = d.photometric == PHOTOMETRIC_MINISWHITE ? top - levels[i] : levels[i];
            return std::lround(v * full / top);
        };
        if (d.bps > 8) {
            const auto *m = roundTrip<CEL_PixmapMatte16>(l, packed);
            ASSERT_NE(m, nullptr);
            for (size_t i = 0; i < levels.size(); ++i)
                ASSERT_EQ(m->data()[i], expected(i)) << i;
        } else {
            const auto *m = roundTrip<CEL_PixmapMatte8>(l, packed);
            ASSERT_NE(m, nullptr);
            for (size_t i = 0; i < levels.size(); ++i)
                ASSERT_EQ(m->data()[i], expected(i)) << i;
        }
        EXPECT_EQ(last_.info.bitsPerSample, d.bps);
    }
}

TEST_F(ForeignTiff, GreyLevelsOfEightAndSixteenBits)
{
    Layout l = Layout{.width = 33, .height = 9, .bps = 8, .photometric = PHOTOMETRIC_MINISWHITE, .compression = COMPRESSION_ADOBE_DEFLATE};
    const auto bytes = noiseBytes(l.rowBytes() * l.height, 5);
    const auto *m8 = roundTrip<CEL_PixmapMatte8>(l, bytes);
    ASSERT_NE(m8, nullptr);
    for (size_t i = 0; i < bytes.size(); ++i)
        ASSERT_EQ(m8->data()[i], 255 - bytes[i]);
    EXPECT_EQ(last_.info.photometric, "min-is-white");

    // Grey with an alpha sample keeps the grey.
    l = Layout{.width = 8, .height = 8, .bps = 8, .spp = 2, .extraSamples = {EXTRASAMPLE_UNASSALPHA}};
    const auto pairs = noiseBytes(l.rowBytes() * l.height, 6);
    const auto *ga = roundTrip<CEL_PixmapMatte8>(l, pairs);
    ASSERT_NE(ga, nullptr);
    for (size_t i = 0; i < ga->pixelCount(); ++i)
        ASSERT_EQ(ga->data()[i], pairs[2 * i]);

    for (const bool bigEndian : {false, true}) {
        for (const auto photometric : {PHOTOMETRIC_MINISBLACK, PHOTOMETRIC_MINISWHITE}) {
            l = Layout{.width = 17, .height = 6, .bps = 16, .photometric = uint16_t(photometric),
                       .compression = COMPRESSION_ADOBE_DEFLATE, .bigEndian = bigEndian};
            const auto words = noiseBytes(l.rowBytes() * l.height, 7);
            const auto *m16 = roundTrip<CEL_PixmapMatte16>(l, words);
            ASSERT_NE(m16, nullptr);
            const uint16_t flip = photometric == PHOTOMETRIC_MINISWHITE ? 0xFFFF : 0;
            for (size_t i = 0; i < m16->pixelCount(); ++i)
                ASSERT_EQ(m16->data()[i], asSamples<uint16_t>(words)[i] ^ flip) << bigEndian;
        }
    }
}

TEST_F(ForeignTiff, PaletteIsExpandedToColour)
{
    for (const uint16_t bps : {uint16_t(4), uint16_t(8)}) {
        for (const bool eightBitMap : {false, true}) {
            SCOPED_TRACE(bps * 10 + eightBitMap);
            const int n = 1 << bps;
            Layout l{.width = 19, .height = 5, .bps = bps, .photometric = PHOTOMETRIC_PALETTE};
            l.colormap.resize(3 * n);
            for (int i = 0; i < 3 * n; ++i)
                l.colormap[i] = eightBitMap ? uint16_t((i * 37) & 255) : uint16_t(i * 997);
            const auto idx = noiseBytes(l.rowBytes() * l.height, bps);
            const auto *c = roundTrip<CEL_PixmapRGBA8>(l, idx);
            ASSERT_NE(c, nullptr);
            for (int y = 0; y < 5; ++y)
                for (int x = 0; x < 19; ++x) {
                    const int byte = idx[size_t(y) * l.rowBytes() + (bps == 8 ? x : x / 2)];
                    const int i = bps == 8 ? byte : (x % 2 ? byte & 15 : byte >> 4);
                    auto level = [&](int k) { return eightBitMap ? l.colormap[k] : l.colormap[k] >> 8; };
                    const CEL_RGBA8Pixel want{uint8_t(level(i)), uint8_t(level(n + i)), uint8_t(level(2 * n + i)), 0};
                    ASSERT_EQ(c->at(x, y), want) << x << "," << y;
                }
        }
    }
}

TEST_F(ForeignTiff, RgbWithAndWithoutAlphaIn8And16Bits)
{
    Layout l{.width = 23, .height = 11, .bps = 8, .spp = 3, .photometric = PHOTOMETRIC_RGB, .compression = COMPRESSION_LZW};
    const auto rgb = noiseBytes(l.rowBytes() * l.height, 8);
    const auto *c = roundTrip<CEL_PixmapRGBA8>(l, rgb);
    ASSERT_NE(c, nullptr);
    for (size_t i = 0; i < c->pixelCount(); ++i)
        ASSERT_EQ(c->data()[i], (CEL_RGBA8Pixel{rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2], 0}));
    EXPECT_FALSE(last_.info.hasAlpha);

    l.spp = 4;
    l.extraSamples = {EXTRASAMPLE_UNASSALPHA};
    const auto rgba = noiseBytes(l.rowBytes() * l.height, 9);
    auto expected = UT_makeShared<CEL_PixmapRGBA8>(23, 11);
    std::memcpy(expected->data(), rgba.data(), rgba.size());
    ASSERT_NE(roundTrip<CEL_PixmapRGBA8>(l, rgba), nullptr);
    EXPECT_TRUE(samePixels(*expected, last_.rep));
    EXPECT_TRUE(last_.info.hasAlpha);

    l = Layout{.width = 13, .height = 4, .bps = 16, .spp = 3, .photometric = PHOTOMETRIC_RGB, .bigEndian = true};
    const auto rgb16 = noiseBytes(l.rowBytes() * l.height, 10);
    const auto *c16 = roundTrip<CEL_PixmapRGBA16>(l, rgb16);
    ASSERT_NE(c16, nullptr);
    const auto *s = asSamples<uint16_t>(rgb16);
    for (size_t i = 0; i < c16->pixelCount(); ++i)
        ASSERT_EQ(c16->data()[i], (CEL_RGBA16Pixel{s[3 * i], s[3 * i + 1], s[3 * i + 2], 0}));

    l.spp = 4;
    l.extraSamples = {EXTRASAMPLE_ASSOCALPHA};
    const auto rgba16 = noiseBytes(l.rowBytes() * l.height, 11);
    auto expected16 = UT_makeShared<CEL_PixmapRGBA16>(13, 4);
    std::memcpy(expected16->data(), rgba16.data(), rgba16.size());
    ASSERT_NE(roundTrip<CEL_PixmapRGBA16>(l, rgba16), nullptr);
    EXPECT_TRUE(samePixels(*expected16, last_.rep));
}

TEST_F(ForeignTiff, TilesAndSeparatePlanes)
{
    // 40 x 37 in tiles of 16: the right and bottom tiles stick out of the picture.
    Layout l{.width = 40, .height = 37, .bps = 8, .spp = 4, .photometric = PHOTOMETRIC_RGB,
             .compression = COMPRESSION_ADOBE_DEFLATE, .tile = 16, .extraSamples = {EXTRASAMPLE_UNASSALPHA}};
    const auto rgba = noiseBytes(l.rowBytes() * l.height, 12);
    auto expected = UT_makeShared<CEL_PixmapRGBA8>(40, 37);
    std::memcpy(expected->data(), rgba.data(), rgba.size());
    ASSERT_NE(roundTrip<CEL_PixmapRGBA8>(l, rgba), nullptr);
    EXPECT_TRUE(samePixels(*expected, last_.rep));

    l = Layout{.width = 50, .height = 20, .bps = 16, .compression = COMPRESSION_LZW, .tile = 32};
    const auto grey = noiseBytes(l.rowBytes() * l.height, 13);
    auto expected16 = UT_makeShared<CEL_PixmapMatte16>(50, 20);
    std::memcpy(expected16->data(), grey.data(), grey.size());
    ASSERT_NE(roundTrip<CEL_PixmapMatte16>(l, grey), nullptr);
    EXPECT_TRUE(samePixels(*expected16, last_.rep));

    // Red, green and blue planes one after the other.
    l = Layout{.width = 15, .height = 8, .bps = 8, .spp = 3, .photometric = PHOTOMETRIC_RGB,
               .planar = PLANARCONFIG_SEPARATE};
    const auto planes = noiseBytes(size_t(3) * 15 * 8, 14);
    const auto *c = roundTrip<CEL_PixmapRGBA8>(l, planes);
    ASSERT_NE(c, nullptr);
    for (size_t i = 0; i < c->pixelCount(); ++i)
        ASSERT_EQ(c->data()[i], (CEL_RGBA8Pixel{planes[i], planes[120 + i], planes[240 + i], 0}));
}

TEST_F(ForeignTiff, DescriptionInLatin1OrUtf8AndDateFromTheFileTime)
{
    Layout l{.width = 2, .height = 2, .description = QByteArray("Caf\xe9 cr\xe8me")};
    writeByHand(file("latin1.tif"), l, {1, 2, 3, 4});
    {
        QFile f(file("latin1.tif"));
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        ASSERT_TRUE(f.setFileTime(QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6)), QFileDevice::FileModificationTime));
    }
    const ReadBack r = readFile(file("latin1.tif"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.comment, QString::fromUtf8("Café crème"));
    EXPECT_EQ(r.date, QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6)));

    l.description = QString::fromUtf8("Café 線画").toUtf8();
    writeByHand(file("utf8.tif"), l, {1, 2, 3, 4});
    EXPECT_EQ(readFile(file("utf8.tif")).comment, QString::fromUtf8("Café 線画"));
}

TEST_F(ScratchDir, DescriptionEditedByAnotherToolWinsOverThePrivateCopy)
{
    ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(noiseLeaf<CEL_PixmapMatte8>(4, 4)), file("s.tif"),
                          QStringLiteral("SCAN"), QStringLiteral("Version: 3 dpi 300")));
    // As a tag editor does it: the description is rewritten, the tag it
    // doesn't know is carried along untouched.
    TIFF *tif = TIFFOpen(QFile::encodeName(file("s.tif")).constData(), "r+");
    ASSERT_NE(tif, nullptr);
    TIFFSetField(tif, TIFFTAG_IMAGEDESCRIPTION, "Version: 3 dpi 600");
    ASSERT_TRUE(TIFFRewriteDirectory(tif));
    TIFFClose(tif);
    QFile f(file("s.tif"));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    ASSERT_TRUE(f.readAll().contains("Version: 3 dpi 300"));  // the private copy is still there
    EXPECT_EQ(readFile(file("s.tif")).comment, "Version: 3 dpi 600");
}

TEST_F(ScratchDir, TiffRewrittenByTiffcpReadsTheSame)
{
    const QString tiffcp = QStandardPaths::findExecutable(QStringLiteral("tiffcp"));
    if (tiffcp.isEmpty())
        GTEST_SKIP() << "tiffcp is not installed";
    auto colour = noiseLeaf<CEL_PixmapRGBA8>(70, 45);
    auto ink = UT_makeShared<CEL_PixmapMatte8>(70, 45);
    for (size_t i = 0; i < ink->pixelCount(); ++i)
        ink->data()[i] = (i * 7919 % 13) < 4 ? 0 : 255;
    ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(colour), file("c.tif"), QStringLiteral("SCAN"), QStringLiteral("note")));
    ASSERT_TRUE(writeLeaf(CEL_RepresentationPtr(ink), file("bw.tif"), QStringLiteral("SCAN")));

    const struct {
        QString in, out;
        QStringList options;
    } runs[] = {{file("c.tif"), file("c-tiled.tif"), {"-c", "lzw", "-t", "-w", "32", "-l", "32"}},
                {file("bw.tif"), file("bw-plain.tif"), {"-c", "none", "-r", "1"}}};
    for (const auto &run : runs) {
        ASSERT_EQ(QProcess::execute(tiffcp, run.options + QStringList{run.in, run.out}), 0);
    }
    const ReadBack tiled = readFile(file("c-tiled.tif"));
    ASSERT_TRUE(tiled.ok);
    EXPECT_EQ(tiled.info.compression, "LZW");
    EXPECT_TRUE(samePixels(*colour, tiled.rep));
    EXPECT_EQ(tiled.comment, "note");  // tiffcp keeps ImageDescription
    const ReadBack plain = readFile(file("bw-plain.tif"));
    ASSERT_TRUE(plain.ok);
    EXPECT_EQ(plain.info.compression, "none");
    EXPECT_TRUE(samePixels(*ink, plain.rep));
}

TEST_F(ScratchDir, QtFormatsMapToTheClosestLeaf)
{
    auto save = [&](const QImage &image, const QString &name, const char *format) {
        QImageWriter w(file(name), format);
        EXPECT_TRUE(w.write(image)) << name.toStdString() << ": " << w.errorString().toStdString();
        return file(name);
    };

    QImage grey(31, 17, QImage::Format_Grayscale8);
    for (int y = 0; y < grey.height(); ++y)
        for (int x = 0; x < grey.width(); ++x)
            grey.scanLine(y)[x] = uint8_t(x * 7 + y);
    grey.setText(QStringLiteral("Description"), QString::fromUtf8("grey ✓"));
    ReadBack r = readFile(save(grey, "grey.png", "png"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.info.container, "PNG");
    EXPECT_EQ(r.comment, QString::fromUtf8("grey ✓"));
    const auto *m8 = dynamic_cast<const CEL_PixmapMatte8 *>(r.rep.get());
    ASSERT_NE(m8, nullptr);
    EXPECT_EQ(m8->at(30, 16), 30 * 7 + 16);

    QImage grey16(5, 4, QImage::Format_Grayscale16);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            reinterpret_cast<uint16_t *>(grey16.scanLine(y))[x] = uint16_t(x * 13001 + y * 7);
    r = readFile(save(grey16, "grey16.png", "png"));
    const auto *m16 = dynamic_cast<const CEL_PixmapMatte16 *>(r.rep.get());
    ASSERT_NE(m16, nullptr);
    EXPECT_EQ(m16->at(4, 3), 4 * 13001 + 3 * 7);

    QImage rgba(6, 3, QImage::Format_RGBA8888);
    rgba.fill(QColor(10, 20, 30, 40));
    rgba.setText(QStringLiteral("Comment"), QStringLiteral("from Comment"));
    r = readFile(save(rgba, "rgba.png", "png"));
    ASSERT_NE(dynamic_cast<const CEL_PixmapRGBA8 *>(r.rep.get()), nullptr);
    EXPECT_EQ(dynamic_cast<const CEL_PixmapRGBA8 *>(r.rep.get())->at(5, 2), (CEL_RGBA8Pixel{10, 20, 30, 40}));
    EXPECT_EQ(r.comment, "from Comment");

    QImage rgb(6, 3, QImage::Format_RGB32);
    rgb.fill(QColor(200, 100, 50));
    r = readFile(save(rgb, "rgb.bmp", "bmp"));
    EXPECT_EQ(r.info.container, "BMP");
    ASSERT_NE(dynamic_cast<const CEL_PixmapRGBA8 *>(r.rep.get()), nullptr);
    EXPECT_EQ(dynamic_cast<const CEL_PixmapRGBA8 *>(r.rep.get())->at(0, 0), (CEL_RGBA8Pixel{200, 100, 50, 0}));

    QImage deep(4, 4, QImage::Format_RGBX64);
    deep.fill(QColor::fromRgba64(1000, 30000, 65535));
    r = readFile(save(deep, "deep.png", "png"));
    ASSERT_NE(dynamic_cast<const CEL_PixmapRGBA16 *>(r.rep.get()), nullptr);
    EXPECT_EQ(dynamic_cast<const CEL_PixmapRGBA16 *>(r.rep.get())->at(3, 3), (CEL_RGBA16Pixel{1000, 30000, 65535, 0}));

    QImage mono(10, 3, QImage::Format_Mono);
    mono.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    mono.fill(1);
    mono.setPixel(2, 1, 0);
    r = readFile(save(mono, "mono.bmp", "bmp"));
    const auto *bw = dynamic_cast<const CEL_PixmapMatte8 *>(r.rep.get());
    ASSERT_NE(bw, nullptr);
    EXPECT_EQ(bw->at(2, 1), 0);
    EXPECT_EQ(bw->at(3, 1), 255);

    if (!QImageWriter::supportedImageFormats().contains("jpeg"))
        GTEST_SKIP() << "no JPEG plug-in";
    QImage photo(16, 16, QImage::Format_RGB32);
    photo.fill(QColor(180, 60, 90));
    r = readFile(save(photo, "photo.jpg", "jpeg"));
    ASSERT_TRUE(r.ok);
    EXPECT_EQ(r.info.container, "JPEG");
    const auto *c = dynamic_cast<const CEL_PixmapRGBA8 *>(r.rep.get());
    ASSERT_NE(c, nullptr);
    EXPECT_NEAR(c->at(8, 8).r, 180, 4);
    EXPECT_NEAR(c->at(8, 8).g, 60, 4);
    EXPECT_NEAR(c->at(8, 8).b, 90, 4);
}
