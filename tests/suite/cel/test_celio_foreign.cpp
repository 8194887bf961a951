// Files made by other programs: TIFF layouts written with libtiff directly,
// and the formats Qt writes.
#include <QFile>
#include <QImage>
#include <QImageWriter>

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <tuple>
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

    size_t rowBytes() const { return (size_t(width) * bps * (planar == PLANARCONFIG_SEPARATE ? 1 : spp) + 7) / 8; }
    size_t bytes() const { return rowBytes() * height * (planar == PLANARCONFIG_SEPARATE ? spp : 1); }
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

class ForeignTiff : public ScratchDir {
protected:
    // Writes `l` with `data` and reads it back: the leaf if it is a Leaf of the
    // file's size, null otherwise.
    template <class Leaf>
    const Leaf *roundTrip(const Layout &l, const std::vector<uint8_t> &data)
    {
        writeByHand(file("f.tif"), l, data);
        last_ = readFile(file("f.tif"));
        EXPECT_TRUE(last_.ok) << CELIO_Manager::getInstance().lastError().toStdString();
        const auto *leaf = dynamic_cast<const Leaf *>(last_.rep.get());
        return leaf && uint32_t(leaf->width()) == l.width && uint32_t(leaf->height()) == l.height ? leaf : nullptr;
    }
    // Every pixel of a colour leaf against the samples of the file; alpha only
    // where the file has a fourth sample.
    template <class Leaf>
    void expectColour(const Layout &l, const std::vector<uint8_t> &data)
    {
        const Leaf *c = roundTrip<Leaf>(l, data);
        ASSERT_NE(c, nullptr);
        using V = decltype(c->data()->r);
        const size_t n = c->pixelCount();
        auto sample = [&](size_t i, size_t s) -> V {
            const size_t k = l.planar == PLANARCONFIG_SEPARATE ? s * n + i : i * l.spp + s;
            return l.bps == 16 ? reinterpret_cast<const uint16_t *>(data.data())[k] : data[k];
        };
        for (size_t i = 0; i < n; ++i)
            ASSERT_EQ(c->data()[i], (typename Leaf::Pixel{sample(i, 0), sample(i, 1), sample(i, 2),
                                                          l.spp == 4 ? sample(i, 3) : V(0)}))
                << i;
        EXPECT_EQ(last_.info.hasAlpha, l.spp == 4);
    }
    ReadBack last_;
};

}  // namespace

TEST_F(ForeignTiff, GreyOfAnyDepthSpreadsOverTheLeafsRange)
{
    // Samples that straddle bytes, padded rows, extra samples, min-is-white, both
    // byte orders and tiles: up to 8 bits make Matte8, deeper ones Matte16.
    constexpr uint16_t B = PHOTOMETRIC_MINISBLACK, W = PHOTOMETRIC_MINISWHITE;
    const struct {
        uint16_t bps, spp, photometric, compression;
        bool alpha = false, bigEndian = false;
        uint32_t tile = 0;
    } depths[] = {{1, 1, W, COMPRESSION_NONE},   {1, 1, W, COMPRESSION_CCITTFAX3}, {1, 1, B, COMPRESSION_PACKBITS},
                  {2, 1, B, COMPRESSION_NONE},   {3, 1, B, COMPRESSION_NONE},     {4, 1, B, COMPRESSION_LZW},
                  {5, 1, W, COMPRESSION_NONE},   {6, 2, B, COMPRESSION_NONE},     {7, 1, B, COMPRESSION_NONE},
                  {8, 1, W, COMPRESSION_ADOBE_DEFLATE}, {8, 2, B, COMPRESSION_NONE, true},
                  {9, 1, B, COMPRESSION_NONE},   {10, 1, B, COMPRESSION_PACKBITS}, {12, 1, W, COMPRESSION_LZW},
                  {12, 2, B, COMPRESSION_ADOBE_DEFLATE},   {15, 1, B, COMPRESSION_NONE},
                  {16, 1, W, COMPRESSION_ADOBE_DEFLATE}, {16, 1, B, COMPRESSION_ADOBE_DEFLATE, false, true},
                  {16, 1, B, COMPRESSION_LZW, false, false, 16}};
    for (const auto &d : depths) {
        SCOPED_TRACE(testing::Message() << d.bps << " bits x " << d.spp << ", photometric " << d.photometric
                                        << (d.bigEndian ? ", big-endian" : "") << (d.tile ? ", tiled" : ""));
        Layout l{.width = 37, .height = 9, .bps = d.bps, .spp = d.spp, .photometric = d.photometric,
                 .compression = d.compression, .tile = d.tile, .bigEndian = d.bigEndian};
        if (d.alpha)
            l.extraSamples = {EXTRASAMPLE_UNASSALPHA};
        const uint32_t top = (1u << d.bps) - 1;
        std::mt19937 rng(d.bps);
        std::vector<uint32_t> levels(size_t(l.width) * l.height);
        for (auto &v : levels)
            v = rng() & top;
        levels[0] = 0;
        levels[1] = top;
        // Packed from the most significant bit; a pixel's other samples are noise.
        std::vector<uint8_t> packed(l.bytes(), 0);
        for (uint32_t y = 0; y < l.height; ++y)
            for (uint32_t k = 0; k < l.width * d.spp; ++k) {
                const uint32_t v = k % d.spp ? rng() & top : levels[y * l.width + k / d.spp];
                uint8_t *row = &packed[y * l.rowBytes()];
                if (d.bps == 16)
                    reinterpret_cast<uint16_t *>(row)[k] = uint16_t(v);
                else
                    for (uint32_t b = 0; b < d.bps; ++b)
                        if ((v >> (d.bps - 1 - b)) & 1)
                            row[(k * d.bps + b) / 8] |= uint8_t(0x80 >> ((k * d.bps + b) % 8));
            }
        const double full = d.bps > 8 ? 65535 : 255;
        auto expectLevels = [&](const auto *m) {
            ASSERT_NE(m, nullptr);
            for (size_t i = 0; i < levels.size(); ++i)
                ASSERT_EQ(m->data()[i], std::lround((d.photometric == W ? top - levels[i] : levels[i]) * full / top)) << i;
        };
        if (d.bps > 8)
            expectLevels(roundTrip<CEL_PixmapMatte16>(l, packed));
        else
            expectLevels(roundTrip<CEL_PixmapMatte8>(l, packed));
        EXPECT_EQ(last_.info.bitsPerSample, d.bps);
        EXPECT_EQ(last_.info.photometric, d.photometric == W ? "min-is-white" : "min-is-black");
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
            auto level = [&](int k) { return uint8_t(eightBitMap ? l.colormap[k] : l.colormap[k] >> 8); };
            const auto idx = noiseBytes(l.bytes(), bps);
            const auto *c = roundTrip<CEL_PixmapRGBA8>(l, idx);
            ASSERT_NE(c, nullptr);
            for (int y = 0; y < 5; ++y)
                for (int x = 0; x < 19; ++x) {
                    const int byte = idx[size_t(y) * l.rowBytes() + (bps == 8 ? x : x / 2)];
                    const int i = bps == 8 ? byte : (x % 2 ? byte & 15 : byte >> 4);
                    ASSERT_EQ(c->at(x, y), (CEL_RGBA8Pixel{level(i), level(n + i), level(2 * n + i), 0})) << x << "," << y;
                }
        }
    }
}

TEST_F(ForeignTiff, ColourLayoutsKeepEverySample)
{
    // Tiles of 16 over 40 x 37 stick out of the picture on the right and below.
    constexpr uint16_t RGB = PHOTOMETRIC_RGB;
    const struct {
        const char *name;
        Layout l;
    } cases[] = {
        {"rgb8", {.width = 23, .height = 11, .spp = 3, .photometric = RGB, .compression = COMPRESSION_LZW}},
        {"rgba8", {.width = 23, .height = 11, .spp = 4, .photometric = RGB, .compression = COMPRESSION_LZW,
                   .extraSamples = {EXTRASAMPLE_UNASSALPHA}}},
        {"rgb16 big-endian", {.width = 13, .height = 4, .bps = 16, .spp = 3, .photometric = RGB, .bigEndian = true}},
        {"rgba16 associated", {.width = 13, .height = 4, .bps = 16, .spp = 4, .photometric = RGB,
                               .extraSamples = {EXTRASAMPLE_ASSOCALPHA}, .bigEndian = true}},
        {"rgba8 tiles", {.width = 40, .height = 37, .spp = 4, .photometric = RGB,
                         .compression = COMPRESSION_ADOBE_DEFLATE, .tile = 16, .extraSamples = {EXTRASAMPLE_UNASSALPHA}}},
        {"rgb8 planes", {.width = 15, .height = 8, .spp = 3, .photometric = RGB, .planar = PLANARCONFIG_SEPARATE}},
    };
    unsigned seed = 8;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const auto data = noiseBytes(c.l.bytes(), seed++);
        if (c.l.bps == 16)
            expectColour<CEL_PixmapRGBA16>(c.l, data);
        else
            expectColour<CEL_PixmapRGBA8>(c.l, data);
    }
}

TEST_F(ForeignTiff, DescriptionInLatin1OrUtf8AndDateFromTheFileTime)
{
    Layout l{.width = 2, .height = 2, .description = QByteArray("Caf\xe9 cr\xe8me")};
    writeByHand(file("latin1.tif"), l, {1, 2, 3, 4});
    ASSERT_TRUE(setModified(file("latin1.tif"), QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6))));
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

namespace {
// The kind of leaf and one of its pixels, as text.
std::string pixelOf(const CEL_RepresentationPtr &rep, int x, int y)
{
    std::ostringstream s;
    auto colour = [&](const char *kind, const auto &p) { s << kind << ' ' << +p.r << ' ' << +p.g << ' ' << +p.b << ' ' << +p.a; };
    if (auto *m8 = dynamic_cast<const CEL_PixmapMatte8 *>(rep.get()))
        s << "m8 " << int(m8->at(x, y));
    else if (auto *m16 = dynamic_cast<const CEL_PixmapMatte16 *>(rep.get()))
        s << "m16 " << m16->at(x, y);
    else if (auto *c8 = dynamic_cast<const CEL_PixmapRGBA8 *>(rep.get()))
        colour("c8", c8->at(x, y));
    else if (auto *c16 = dynamic_cast<const CEL_PixmapRGBA16 *>(rep.get()))
        colour("c16", c16->at(x, y));
    return s.str();
}
}  // namespace

TEST_F(ScratchDir, QtFormatsMapToTheClosestLeaf)
{
    QImage grey(31, 17, QImage::Format_Grayscale8);
    for (int y = 0; y < grey.height(); ++y)
        for (int x = 0; x < grey.width(); ++x)
            grey.scanLine(y)[x] = uint8_t(x * 7 + y);
    grey.setText(QStringLiteral("Description"), QString::fromUtf8("grey ✓"));
    QImage grey16(5, 4, QImage::Format_Grayscale16);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            reinterpret_cast<uint16_t *>(grey16.scanLine(y))[x] = uint16_t(x * 13001 + y * 7);
    QImage rgba(6, 3, QImage::Format_RGBA8888);
    rgba.fill(QColor(10, 20, 30, 40));
    rgba.setText(QStringLiteral("Comment"), QStringLiteral("from Comment"));
    QImage rgb(6, 3, QImage::Format_RGB32);
    rgb.fill(QColor(200, 100, 50));
    QImage deep(4, 4, QImage::Format_RGBX64);
    deep.fill(QColor::fromRgba64(1000, 30000, 65535));
    QImage mono(10, 3, QImage::Format_Mono);
    mono.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    mono.fill(0);
    mono.setPixel(2, 1, 1);

    const struct {
        const char *name, *format;
        const QImage &image;
        QPoint probe;
        std::string pixel;
        QString container, comment;
    } cases[] = {
        {"grey.png", "png", grey, {30, 16}, "m8 226", "PNG", QString::fromUtf8("grey ✓")},
        {"grey16.png", "png", grey16, {4, 3}, "m16 52025", "PNG", {}},
        {"rgba.png", "png", rgba, {5, 2}, "c8 10 20 30 40", "PNG", "from Comment"},
        {"rgb.bmp", "bmp", rgb, {0, 0}, "c8 200 100 50 0", "BMP", {}},
        {"deep.png", "png", deep, {3, 3}, "c16 1000 30000 65535 0", "PNG", {}},
        {"mono.bmp", "bmp", mono, {2, 1}, "m8 255", "BMP", {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QImageWriter w(file(c.name), c.format);
        ASSERT_TRUE(w.write(c.image)) << w.errorString().toStdString();
        const ReadBack r = readFile(file(c.name));
        ASSERT_TRUE(r.ok);
        EXPECT_EQ(std::tuple(pixelOf(r.rep, c.probe.x(), c.probe.y()), r.info.container, r.comment),
                  std::tuple(c.pixel, c.container, c.comment));
    }
}
