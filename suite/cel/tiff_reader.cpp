// Reading TIFF files, ours and other programs'. The common layouts (grey of 1
// to 16 bits, palette, RGB and RGBA of 8 or 16 bits, striped or tiled) are
// decoded a strip or tile at a time and converted row by row; anything else
// libtiff can decode goes through its RGBA interface.
#include <QFile>
#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "suite/cel/celio_backends.h"
#include "suite/cel/tiff_handle.h"

namespace celio {
namespace {

// A strip or tile bigger than this is read a row at a time instead.
constexpr uint64_t kMaxBlockBytes = uint64_t(16) << 20;
// No real image produces more decoded bytes than this per byte of file,
// whatever its compression: a blank 1200 dpi page in G4 comes close.
constexpr uint64_t kMaxOutputPerFileByte = uint64_t(1) << 17;

enum class Kind { Grey, Palette, Rgb, Generic };

struct Header {
    uint32_t width = 0, height = 0;
    uint16_t bps = 1, spp = 1, photometric = PHOTOMETRIC_MINISBLACK, planar = PLANARCONFIG_CONTIG;
    uint16_t compression = COMPRESSION_NONE, sampleFormat = SAMPLEFORMAT_UINT;
    bool tiled = false;
    int alphaSample = -1;  // index of the alpha sample within a pixel
    Kind kind = Kind::Generic;
    int outType = CEL_TYPE_RGBA8;
};

// Most decoded bytes per byte of compressed data that each compression can
// plausibly reach; it guards memory against small files claiming huge pictures.
uint64_t maxExpansion(uint16_t compression)
{
    switch (compression) {
    case COMPRESSION_NONE:
        return 1;
    case COMPRESSION_PACKBITS:
        return 128;
    case COMPRESSION_LZW:
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
        return 4096;
    default:  // CCITT, JBIG, ZSTD, LZMA: a blank page shrinks to almost nothing
        return 16384;
    }
}

QString compressionName(uint16_t c)
{
    switch (c) {
    case COMPRESSION_NONE: return QStringLiteral("none");
    case COMPRESSION_CCITTRLE: return QStringLiteral("CCITT RLE");
    case COMPRESSION_CCITTFAX3: return QStringLiteral("CCITT G3");
    case COMPRESSION_CCITTFAX4: return QStringLiteral("CCITT G4");
    case COMPRESSION_LZW: return QStringLiteral("LZW");
    case COMPRESSION_OJPEG:
    case COMPRESSION_JPEG: return QStringLiteral("JPEG");
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE: return QStringLiteral("Deflate");
    case COMPRESSION_PACKBITS: return QStringLiteral("PackBits");
    default:
        if (const TIFFCodec *codec = TIFFFindCODEC(c))
            return QString::fromLatin1(codec->name);
        return QStringLiteral("compression %1").arg(c);
    }
}

QString photometricName(uint16_t p)
{
    switch (p) {
    case PHOTOMETRIC_MINISWHITE: return QStringLiteral("min-is-white");
    case PHOTOMETRIC_MINISBLACK: return QStringLiteral("min-is-black");
    case PHOTOMETRIC_RGB: return QStringLiteral("RGB");
    case PHOTOMETRIC_PALETTE: return QStringLiteral("palette");
    case PHOTOMETRIC_SEPARATED: return QStringLiteral("separated");
    case PHOTOMETRIC_YCBCR: return QStringLiteral("YCbCr");
    case PHOTOMETRIC_CIELAB: return QStringLiteral("CIELab");
    default: return QStringLiteral("photometric %1").arg(p);
    }
}

void readHeader(TIFF *tif, Header &h)
{
    TIFFGetField(tif, TIFFTAG_IMAGEWIDTH, &h.width);
    TIFFGetField(tif, TIFFTAG_IMAGELENGTH, &h.height);
    TIFFGetFieldDefaulted(tif, TIFFTAG_BITSPERSAMPLE, &h.bps);
    TIFFGetFieldDefaulted(tif, TIFFTAG_SAMPLESPERPIXEL, &h.spp);
    TIFFGetFieldDefaulted(tif, TIFFTAG_PLANARCONFIG, &h.planar);
    TIFFGetFieldDefaulted(tif, TIFFTAG_COMPRESSION, &h.compression);
    TIFFGetFieldDefaulted(tif, TIFFTAG_SAMPLEFORMAT, &h.sampleFormat);
    if (!TIFFGetField(tif, TIFFTAG_PHOTOMETRIC, &h.photometric)) {
        // Writers that leave it out mean the obvious thing.
        const bool fax = h.compression == COMPRESSION_CCITTFAX3 || h.compression == COMPRESSION_CCITTFAX4 ||
                         h.compression == COMPRESSION_CCITTRLE;
        h.photometric = h.spp >= 3 ? PHOTOMETRIC_RGB : fax ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
    }
    h.tiled = TIFFIsTiled(tif) != 0;

    uint16_t extraCount = 0;
    uint16_t *extra = nullptr;
    const bool hasExtra = TIFFGetField(tif, TIFFTAG_EXTRASAMPLES, &extraCount, &extra) && extraCount > 0;
    if (h.photometric == PHOTOMETRIC_RGB && h.spp >= 4) {
        // A fourth sample without a declared meaning is alpha in practice.
        if (!hasExtra || extra[0] == EXTRASAMPLE_ASSOCALPHA || extra[0] == EXTRASAMPLE_UNASSALPHA)
            h.alphaSample = 3;
    }

    const bool plainSamples = h.sampleFormat == SAMPLEFORMAT_UINT || h.sampleFormat == SAMPLEFORMAT_VOID;
    const bool interleaved = h.planar == PLANARCONFIG_CONTIG || h.spp == 1;
    if (!plainSamples || !interleaved)
        return;
    if ((h.photometric == PHOTOMETRIC_MINISBLACK || h.photometric == PHOTOMETRIC_MINISWHITE) && h.bps >= 1 &&
        h.bps <= 16) {
        // Deeper than 8 bits (scanners write 10, 12 or 14) keeps its precision.
        h.kind = Kind::Grey;
        h.outType = h.bps > 8 ? CEL_TYPE_MATTE16 : CEL_TYPE_MATTE8;
    } else if (h.photometric == PHOTOMETRIC_PALETTE && h.spp == 1 && h.bps >= 1 && h.bps <= 8) {
        h.kind = Kind::Palette;
    } else if (h.photometric == PHOTOMETRIC_RGB && h.spp >= 3 && (h.bps == 8 || h.bps == 16)) {
        h.kind = Kind::Rgb;
        h.outType = h.bps == 16 ? CEL_TYPE_RGBA16 : CEL_TYPE_RGBA8;
    }
}

int outBytesPerPixel(int type)
{
    switch (type) {
    case CEL_TYPE_MATTE8: return 1;
    case CEL_TYPE_MATTE16: return 2;
    case CEL_TYPE_RGBA16: return 8;
    default: return 4;
    }
}

// Refuses a picture whose decoded bytes this file couldn't plausibly hold.
bool plausible(const Header &h, qint64 fileSize, const QString &path)
{
    if (!sizeIsSane(h.width, h.height, outBytesPerPixel(h.outType))) {
        setSizeError(path, h.width, h.height, true);
        return false;
    }
    const uint64_t pixels = uint64_t(h.width) * h.height;
    const uint64_t raw = (uint64_t(h.width) * h.bps * h.spp + 7) / 8 * h.height;
    const uint64_t out = pixels * uint64_t(outBytesPerPixel(h.outType));
    const uint64_t size = uint64_t(std::max<qint64>(fileSize, 1));
    if (raw > size * maxExpansion(h.compression) || out > size * kMaxOutputPerFileByte) {
        setSizeError(path, h.width, h.height, false);
        return false;
    }
    return true;
}

// Unpacks the first sample of each of `n` pixels of `spp` samples of `bps`
// bits (1 to 16), packed from the most significant bit, through a table of
// output values.
template <class Out>
void unpackRow(const uint8_t *src, int n, int bps, int spp, const Out *lut, Out *dst)
{
    if (spp == 1 && bps == 8) {
        for (int i = 0; i < n; ++i)
            dst[i] = lut[src[i]];
        return;
    }
    if (spp == 1 && 8 % bps == 0) {
        const int perByte = 8 / bps;
        const unsigned mask = (1u << bps) - 1;
        int i = 0;
        for (; i + perByte <= n; i += perByte, ++src) {
            const unsigned b = *src;
            for (int k = 0; k < perByte; ++k)
                dst[i + k] = lut[(b >> (8 - bps * (k + 1))) & mask];
        }
        for (int k = 0; i < n; ++i, ++k)
            dst[i] = lut[(*src >> (8 - bps * (k + 1))) & mask];
        return;
    }
    // Samples that straddle bytes: gather the (at most three) bytes of each,
    // and no byte past its end, which may be the end of the buffer.
    const uint64_t pixelBits = uint64_t(bps) * uint64_t(spp);
    const unsigned mask = (1u << bps) - 1;
    for (int i = 0; i < n; ++i) {
        const uint64_t bit = uint64_t(i) * pixelBits;
        const uint8_t *p = src + bit / 8;
        const unsigned used = unsigned(bit % 8) + unsigned(bps);
        uint32_t v = 0;
        for (unsigned b = 0; b < (used + 7) / 8; ++b)
            v = (v << 8) | p[b];
        dst[i] = lut[(v >> ((8 - used % 8) % 8)) & mask];
    }
}

// One sample out of each pixel of `spp` samples, complemented by `flip`.
template <class T>
void pickSamples(const uint8_t *src, int n, int spp, T flip, T *dst)
{
    const auto *s = reinterpret_cast<const T *>(src);
    if (spp == 1 && flip == 0) {
        std::memcpy(dst, s, size_t(n) * sizeof(T));
        return;
    }
    for (int i = 0; i < n; ++i)
        dst[i] = T(s[size_t(i) * spp] ^ flip);
}

// RGB with an optional alpha sample into the four-sample leaf; no alpha
// sample gives alpha 0, as a scanned pixel has.
template <class T, class Pixel>
void rgbRow(const uint8_t *src, int n, int spp, int alphaSample, Pixel *dst)
{
    const auto *s = reinterpret_cast<const T *>(src);
    if (spp == 4 && alphaSample == 3) {
        std::memcpy(dst, s, size_t(n) * sizeof(Pixel));
        return;
    }
    for (int i = 0; i < n; ++i, s += spp)
        dst[i] = Pixel{s[0], s[1], s[2], T(alphaSample >= 0 ? s[alphaSample] : 0)};
}

// Calls row(src, x, y, count) for every row of every strip or tile, in file
// order, with `count` the pixels of that row inside the picture.
template <class RowFn>
bool forEachRow(TIFF *tif, const Header &h, RowFn &&row)
{
    if (h.tiled) {
        uint32_t tw = 0, th = 0;
        TIFFGetField(tif, TIFFTAG_TILEWIDTH, &tw);
        TIFFGetField(tif, TIFFTAG_TILELENGTH, &th);
        const uint64_t tileBytes = TIFFTileSize64(tif);
        const uint64_t tileRowBytes = TIFFTileRowSize64(tif);
        if (tw == 0 || th == 0 || tileBytes == 0 || tileBytes > kMaxBlockBytes)
            return false;
        auto buf = std::make_unique<uint8_t[]>(tileBytes);
        for (uint32_t y = 0; y < h.height; y += th) {
            for (uint32_t x = 0; x < h.width; x += tw) {
                if (TIFFReadEncodedTile(tif, TIFFComputeTile(tif, x, y, 0, 0), buf.get(), tmsize_t(tileBytes)) < 0)
                    return false;
                const int count = int(std::min(tw, h.width - x));
                for (uint32_t r = 0; r < th && y + r < h.height; ++r)
                    row(buf.get() + r * tileRowBytes, int(x), int(y + r), count);
            }
        }
        return true;
    }

    const uint64_t rowBytes = TIFFScanlineSize64(tif);
    uint32_t rowsPerStrip = h.height;
    TIFFGetFieldDefaulted(tif, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
    rowsPerStrip = std::clamp<uint32_t>(rowsPerStrip, 1, h.height);
    if (rowBytes == 0)
        return false;
    if (rowBytes * rowsPerStrip > kMaxBlockBytes) {
        // One huge strip: the decoder hands it out row by row.
        if (rowBytes > kMaxBlockBytes)
            return false;
        auto buf = std::make_unique<uint8_t[]>(rowBytes);
        for (uint32_t y = 0; y < h.height; ++y) {
            if (TIFFReadScanline(tif, buf.get(), y, 0) < 0)
                return false;
            row(buf.get(), 0, int(y), int(h.width));
        }
        return true;
    }
    // Zeroed: a fax strip that ends early is accepted by the decoder, and its
    // missing rows must not show stale memory.
    auto buf = std::make_unique<uint8_t[]>(rowBytes * rowsPerStrip);
    uint32_t strip = 0;
    for (uint32_t y = 0; y < h.height; y += rowsPerStrip, ++strip) {
        const uint32_t rows = std::min(rowsPerStrip, h.height - y);
        const tmsize_t want = tmsize_t(rows * rowBytes);
        if (TIFFReadEncodedStrip(tif, strip, buf.get(), want) != want)
            return false;
        for (uint32_t r = 0; r < rows; ++r)
            row(buf.get() + r * rowBytes, 0, int(y + r), int(h.width));
    }
    return true;
}

template <class Leaf>
UT_SharePtr<Leaf> makeLeaf(const Header &h)
{
    auto leaf = UT_makeShared<Leaf>();
    leaf->setData(Leaf::makeBlock(int(h.width), int(h.height), false), int(h.width), int(h.height));
    return leaf;
}

// Grey of any other depth, its levels spread over the leaf's full range and
// rounded: 1 bit gives 0 and 255, 12 bits 0 to 65535.
template <class Leaf>
CEL_RepresentationPtr readScaledGrey(TIFF *tif, const Header &h, bool invert)
{
    using Level = typename Leaf::Pixel;
    const uint32_t top = (1u << h.bps) - 1;
    const uint32_t full = std::numeric_limits<Level>::max();
    std::vector<Level> lut(size_t(top) + 1);
    for (uint32_t v = 0; v <= top; ++v)
        lut[v] = Level(((invert ? top - v : v) * uint64_t(full) + top / 2) / top);
    auto leaf = makeLeaf<Leaf>(h);
    const bool ok = forEachRow(tif, h, [&](const uint8_t *src, int x, int y, int n) {
        unpackRow<Level>(src, n, h.bps, h.spp, lut.data(), leaf->row(y) + x);
    });
    return ok ? CEL_RepresentationPtr(leaf) : nullptr;
}

// Grey of 8 or 16 bits: the first sample of each pixel as it stands.
template <class Leaf>
CEL_RepresentationPtr readPickedGrey(TIFF *tif, const Header &h, bool invert)
{
    using Level = typename Leaf::Pixel;
    const Level flip = invert ? std::numeric_limits<Level>::max() : Level(0);
    auto leaf = makeLeaf<Leaf>(h);
    const bool ok = forEachRow(tif, h, [&](const uint8_t *src, int x, int y, int n) {
        pickSamples<Level>(src, n, h.spp, flip, leaf->row(y) + x);
    });
    return ok ? CEL_RepresentationPtr(leaf) : nullptr;
}

CEL_RepresentationPtr readGrey(TIFF *tif, const Header &h)
{
    const bool invert = h.photometric == PHOTOMETRIC_MINISWHITE;
    switch (h.bps) {
    case 16: return readPickedGrey<CEL_PixmapMatte16>(tif, h, invert);
    case 8: return readPickedGrey<CEL_PixmapMatte8>(tif, h, invert);
    default:
        return h.bps > 8 ? readScaledGrey<CEL_PixmapMatte16>(tif, h, invert)
                         : readScaledGrey<CEL_PixmapMatte8>(tif, h, invert);
    }
}

CEL_RepresentationPtr readPalette(TIFF *tif, const Header &h)
{
    uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
    if (!TIFFGetField(tif, TIFFTAG_COLORMAP, &red, &green, &blue))
        return nullptr;
    const int entries = 1 << h.bps;
    // Some writers store 8-bit values in the 16-bit map.
    bool eightBit = true;
    for (int i = 0; i < entries; ++i)
        eightBit = eightBit && red[i] < 256 && green[i] < 256 && blue[i] < 256;
    const int shift = eightBit ? 0 : 8;
    std::array<CEL_RGBA8Pixel, 256> lut{};
    for (int i = 0; i < entries; ++i)
        lut[i] = {uint8_t(red[i] >> shift), uint8_t(green[i] >> shift), uint8_t(blue[i] >> shift), 0};

    auto leaf = makeLeaf<CEL_PixmapRGBA8>(h);
    const bool ok = forEachRow(tif, h, [&](const uint8_t *src, int x, int y, int n) {
        unpackRow<CEL_RGBA8Pixel>(src, n, h.bps, 1, lut.data(), leaf->row(y) + x);
    });
    return ok ? CEL_RepresentationPtr(leaf) : nullptr;
}

template <class Leaf, class T>
CEL_RepresentationPtr readRgbAs(TIFF *tif, const Header &h)
{
    auto leaf = makeLeaf<Leaf>(h);
    const bool ok = forEachRow(tif, h, [&](const uint8_t *src, int x, int y, int n) {
        rgbRow<T>(src, n, h.spp, h.alphaSample, leaf->row(y) + x);
    });
    return ok ? CEL_RepresentationPtr(leaf) : nullptr;
}

// Everything else libtiff understands (YCbCr, CMYK, Lab, separate planes,
// odd sample sizes), reduced to 8-bit colour by libtiff itself.
CEL_RepresentationPtr readGeneric(TIFF *tif, const Header &h, QString &why)
{
    char message[1024] = {};
    if (!TIFFRGBAImageOK(tif, message)) {
        why = QString::fromLatin1(message);
        return nullptr;
    }
    auto leaf = makeLeaf<CEL_PixmapRGBA8>(h);
    static_assert(sizeof(CEL_RGBA8Pixel) == sizeof(uint32_t));
    auto *raster = reinterpret_cast<uint32_t *>(leaf->data());
    if (!TIFFReadRGBAImageOriented(tif, h.width, h.height, raster, ORIENTATION_TOPLEFT, 1))
        return nullptr;
    const bool keepAlpha = h.alphaSample >= 0;
    CEL_RGBA8Pixel *p = leaf->data();
    for (size_t i = 0, n = leaf->pixelCount(); i < n; ++i) {
        const uint32_t v = raster[i];  // packed as A B G R from the top byte down
        p[i] = {uint8_t(TIFFGetR(v)), uint8_t(TIFFGetG(v)), uint8_t(TIFFGetB(v)), uint8_t(keepAlpha ? TIFFGetA(v) : 0)};
    }
    return leaf;
}

QString decodeDescription(const char *text)
{
    // Other programs may write Latin-1 here; ours writes UTF-8.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString s = utf8(QByteArrayView(text));
    return utf8.hasError() ? QString::fromLatin1(text) : s;
}

void readTextTags(TIFF *tif, ReadResult &out)
{
    uint32_t count = 0;
    const char *bytes = nullptr;
    const char *description = nullptr;
    const bool hasCopy = TIFFGetField(tif, kCommentTag, &count, &bytes) && bytes;
    const bool hasDescription = TIFFGetField(tif, TIFFTAG_IMAGEDESCRIPTION, &description) && description;
    // The private copy keeps what the description can't (bytes after a NUL),
    // but only while the description still says the same: a tool that edited
    // the description knows nothing of the copy.
    const QByteArrayView copy(bytes, hasCopy ? qsizetype(count) : 0);
    const QByteArrayView copyAsDescription = copy.first(copy.indexOf('\0') < 0 ? copy.size() : copy.indexOf('\0'));
    if (hasCopy && (!hasDescription || copyAsDescription == QByteArrayView(description)))
        out.comment = QString::fromUtf8(copy);
    else if (hasDescription)
        out.comment = decodeDescription(description);

    const char *stamp = nullptr;
    if (TIFFGetField(tif, TIFFTAG_DATETIME, &stamp) && stamp)
        out.date = QDateTime::fromString(QString::fromLatin1(stamp).trimmed(), QStringLiteral("yyyy:MM:dd HH:mm:ss"));
}

}  // namespace

bool readTiff(const QString &path, qint64 fileSize, ReadResult &out)
{
    TiffHandle file(path, "r");
    if (!file) {
        setLastError(QStringLiteral("Cannot read %1: %2").arg(path, file.error(QStringLiteral("not a TIFF file"))));
        return false;
    }
    TIFF *tif = file.get();
    Header h;
    readHeader(tif, h);
    if (h.width == 0 || h.height == 0) {
        setLastError(QStringLiteral("Cannot read %1: the picture has no pixels.").arg(path));
        return false;
    }
    if (!plausible(h, fileSize, path))
        return false;

    QString why;
    switch (h.kind) {
    case Kind::Grey: out.rep = readGrey(tif, h); break;
    case Kind::Palette: out.rep = readPalette(tif, h); break;
    case Kind::Rgb:
        out.rep = h.bps == 16 ? readRgbAs<CEL_PixmapRGBA16, uint16_t>(tif, h) : readRgbAs<CEL_PixmapRGBA8, uint8_t>(tif, h);
        break;
    case Kind::Generic: out.rep = readGeneric(tif, h, why); break;
    }
    if (!out.rep || file.failed()) {
        out.rep.reset();
        setLastError(QStringLiteral("Cannot read %1: %2").arg(path, file.error(why.isEmpty() ? QStringLiteral("damaged picture data") : why)));
        return false;
    }
    readTextTags(tif, out);
    out.info.container = QStringLiteral("TIFF");
    out.info.compression = compressionName(h.compression);
    out.info.photometric = photometricName(h.photometric);
    out.info.bitsPerSample = h.bps;
    out.info.samplesPerPixel = h.spp;
    out.info.hasAlpha = h.alphaSample >= 0;
    return true;
}

}  // namespace celio
