// Scan files are TIFF: two-valued pictures as 1-bit CCITT G4, the rest
// Deflate with horizontal differencing, which is lossless and fast to decode.
#include <QFile>

#include <algorithm>
#include <cstring>
#include <memory>

#include "suite/cel/celio_backends.h"
#include "suite/cel/tiff_handle.h"

namespace celio {
namespace {

// Strips of about this many bytes keep the encoder's buffers in cache while
// costing nothing measurable in compression.
constexpr tmsize_t kStripBytes = 128 * 1024;
// Deflate level: on a full sheet, level 2 writes colour several times faster
// than the default level 6 for files under a tenth bigger, and grey about as
// small; a scan station waits on the write, disks are cheap.
constexpr int kDeflateLevel = 2;
// Past this many uncompressed bytes the file might not fit classic TIFF's
// 32-bit offsets, so it is written as BigTIFF.
constexpr uint64_t kClassicLimit = (uint64_t(1) << 32) - (uint64_t(1) << 28);

struct Layout {
    uint16_t bitsPerSample = 8;
    uint16_t samplesPerPixel = 1;
    uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    uint16_t compression = COMPRESSION_ADOBE_DEFLATE;
    bool alpha = false;
    tmsize_t rowBytes = 0;
};

// Whether every pixel is 0 or 255; stops at the first chunk with another value.
bool isTwoValued(const uint8_t *p, size_t n)
{
    constexpr size_t kChunk = 4096;
    for (size_t start = 0; start < n; start += kChunk) {
        const size_t end = std::min(n, start + kChunk);
        unsigned other = 0;
        for (size_t i = start; i < end; ++i)
            other |= unsigned(uint8_t(p[i] + 1) > 1);  // 0 -> 1, 255 -> 0, anything else above 1
        if (other)
            return false;
    }
    return true;
}

// Min-is-white bits: black (0) is a set bit, white (255) a clear one.
void packBilevelRow(const uint8_t *src, int width, uint8_t *dst)
{
    const int whole = width / 8;
    for (int b = 0; b < whole; ++b, src += 8) {
        unsigned byte = 0;
        for (int k = 0; k < 8; ++k)
            byte = (byte << 1) | unsigned(src[k] == 0);
        dst[b] = uint8_t(byte);
    }
    if (const int rest = width % 8) {
        unsigned byte = 0;
        for (int k = 0; k < rest; ++k)
            byte = (byte << 1) | unsigned(src[k] == 0);
        dst[whole] = uint8_t(byte << (8 - rest));
    }
}

// Whether any pixel has an alpha other than 0. A scan never has: its alpha is
// 0 throughout, which other programs would show as a transparent sheet.
template <class Leaf>
bool anyAlpha(const CEL_Pixmap &pixmap)
{
    const auto *p = static_cast<const typename Leaf::Pixel *>(pixmap.rawData());
    return std::any_of(p, p + pixmap.pixelCount(), [](const auto &px) { return px.a != 0; });
}

// RGBA to RGB for either sample size.
template <class Sample>
void dropAlphaRow(const uint8_t *src, int width, uint8_t *dst)
{
    const auto *s = reinterpret_cast<const Sample *>(src);
    auto *d = reinterpret_cast<Sample *>(dst);
    for (int x = 0; x < width; ++x, s += 4, d += 3) {
        d[0] = s[0];
        d[1] = s[1];
        d[2] = s[2];
    }
}

Layout chooseLayout(const CEL_Pixmap &pixmap, const TiffWritePolicy &policy)
{
    Layout l;
    const tmsize_t w = pixmap.width();
    switch (pixmap.type()) {
    case CEL_TYPE_MATTE8:
        if (policy.bilevelAsG4 && isTwoValued(static_cast<const uint8_t *>(pixmap.rawData()), pixmap.pixelCount())) {
            l.bitsPerSample = 1;
            l.photometric = PHOTOMETRIC_MINISWHITE;
            l.compression = COMPRESSION_CCITTFAX4;
            l.rowBytes = (w + 7) / 8;
            return l;
        }
        l.rowBytes = w;
        return l;
    case CEL_TYPE_MATTE16:
        l.bitsPerSample = 16;
        l.rowBytes = w * 2;
        return l;
    case CEL_TYPE_RGBA8:
    case CEL_TYPE_RGBA16:
        l.bitsPerSample = pixmap.type() == CEL_TYPE_RGBA8 ? 8 : 16;
        l.photometric = PHOTOMETRIC_RGB;
        // An alpha of 0 everywhere is left out: the file then opens opaque
        // elsewhere, and a colour file without alpha reads back as alpha 0.
        l.alpha = policy.colourAlpha && (pixmap.type() == CEL_TYPE_RGBA8 ? anyAlpha<CEL_PixmapRGBA8>(pixmap)
                                                                          : anyAlpha<CEL_PixmapRGBA16>(pixmap));
        l.samplesPerPixel = l.alpha ? 4 : 3;
        l.rowBytes = w * l.samplesPerPixel * (l.bitsPerSample / 8);
        return l;
    default:
        l.rowBytes = 0;
        return l;
    }
}

void setTags(TIFF *tif, const CEL_Pixmap &pixmap, const Layout &l, const QString &comment, const QDateTime &date,
             double dpi)
{
    TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, uint32_t(pixmap.width()));
    TIFFSetField(tif, TIFFTAG_IMAGELENGTH, uint32_t(pixmap.height()));
    TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, l.bitsPerSample);
    TIFFSetField(tif, TIFFTAG_SAMPLESPERPIXEL, l.samplesPerPixel);
    TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, l.photometric);
    TIFFSetField(tif, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tif, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tif, TIFFTAG_COMPRESSION, l.compression);
    if (l.compression == COMPRESSION_ADOBE_DEFLATE) {
        TIFFSetField(tif, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
        TIFFSetField(tif, TIFFTAG_ZIPQUALITY, kDeflateLevel);
    }
    if (l.alpha) {
        const uint16_t extra[] = {EXTRASAMPLE_UNASSALPHA};
        TIFFSetField(tif, TIFFTAG_EXTRASAMPLES, uint16_t(1), extra);
    }
    if (dpi > 0) {
        TIFFSetField(tif, TIFFTAG_XRESOLUTION, float(dpi));
        TIFFSetField(tif, TIFFTAG_YRESOLUTION, float(dpi));
        TIFFSetField(tif, TIFFTAG_RESOLUTIONUNIT, uint16_t(RESUNIT_INCH));
    }
    TIFFSetField(tif, TIFFTAG_SOFTWARE, "Scanning station");
    TIFFSetField(tif, TIFFTAG_DATETIME, date.toString(QStringLiteral("yyyy:MM:dd HH:mm:ss")).toLatin1().constData());
    const QByteArray bytes = comment.toUtf8();
    if (!bytes.isEmpty()) {
        // Other tools read the description; it ends at the first NUL, so the
        // exact bytes also go into the private tag that this reader prefers.
        const QByteArray description = bytes.left(bytes.indexOf('\0') < 0 ? bytes.size() : bytes.indexOf('\0'));
        if (!description.isEmpty())
            TIFFSetField(tif, TIFFTAG_IMAGEDESCRIPTION, description.constData());
        TIFFSetField(tif, kCommentTag, uint32_t(bytes.size()), bytes.constData());
    }
}

bool writeStrips(TIFF *tif, const CEL_Pixmap &pixmap, const Layout &l)
{
    const int width = pixmap.width();
    const int height = pixmap.height();
    const uint32_t rowsPerStrip = uint32_t(std::clamp<tmsize_t>(kStripBytes / l.rowBytes, 1, height));
    TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, rowsPerStrip);

    const auto *pixels = static_cast<const uint8_t *>(pixmap.rawData());
    const size_t srcRowBytes = size_t(width) * size_t(pixmap.bytesPerPixel());
    const bool dropAlpha = (pixmap.type() == CEL_TYPE_RGBA8 || pixmap.type() == CEL_TYPE_RGBA16) && !l.alpha;
    // The encoder may change the buffer in place (the predictor does), so the
    // picture's own rows are always copied first.
    auto buffer = std::make_unique_for_overwrite<uint8_t[]>(size_t(rowsPerStrip) * size_t(l.rowBytes));

    uint32_t strip = 0;
    for (int y0 = 0; y0 < height; y0 += int(rowsPerStrip), ++strip) {
        const int rows = std::min(int(rowsPerStrip), height - y0);
        for (int r = 0; r < rows; ++r) {
            const uint8_t *src = pixels + size_t(y0 + r) * srcRowBytes;
            uint8_t *dst = buffer.get() + size_t(r) * size_t(l.rowBytes);
            if (l.bitsPerSample == 1)
                packBilevelRow(src, width, dst);
            else if (dropAlpha && l.bitsPerSample == 8)
                dropAlphaRow<uint8_t>(src, width, dst);
            else if (dropAlpha)
                dropAlphaRow<uint16_t>(src, width, dst);
            else
                std::memcpy(dst, src, srcRowBytes);
        }
        if (TIFFWriteEncodedStrip(tif, strip, buffer.get(), tmsize_t(rows) * l.rowBytes) < 0)
            return false;
    }
    return true;
}

}  // namespace

bool policyForFormatName(const QString &name, TiffWritePolicy &policy)
{
    struct Named {
        const char *name;
        TiffWritePolicy policy;
    };
    static const Named kNames[] = {
        {"SCAN", {true, true}},
        {"SCAN32", {true, true}},
        {"SCAN24", {true, false}},
        {"TIFF", {false, true}},
    };
    for (const auto &n : kNames) {
        if (name.compare(QLatin1String(n.name), Qt::CaseInsensitive) == 0) {
            policy = n.policy;
            return true;
        }
    }
    return false;
}

bool writeTiff(const CEL_Pixmap &pixmap, const QString &path, const TiffWritePolicy &policy,
               const QString &comment, const QDateTime &date, double dpi)
{
    if (pixmap.width() <= 0 || pixmap.height() <= 0 || !pixmap.rawData()) {
        setLastError(QStringLiteral("The picture to write to %1 is empty.").arg(path));
        return false;
    }
    const Layout layout = chooseLayout(pixmap, policy);
    if (layout.rowBytes == 0) {
        setLastError(QStringLiteral("A picture of type %1 can't be written to a file.").arg(pixmap.type()));
        return false;
    }
    const bool big = uint64_t(layout.rowBytes) * uint64_t(pixmap.height()) > kClassicLimit;
    TiffHandle file(path, big ? "w8" : "w");
    if (!file) {
        setLastError(QStringLiteral("Cannot create %1: %2").arg(path, file.error(QStringLiteral("unknown error"))));
        return false;
    }
    setTags(file.get(), pixmap, layout, comment, date, dpi);
    const bool ok = writeStrips(file.get(), pixmap, layout) && TIFFWriteDirectory(file.get()) && file.close();
    if (!ok) {
        const QString why = file.error(QStringLiteral("write failed"));
        file.close();
        QFile::remove(path);
        setLastError(QStringLiteral("Cannot write %1: %2").arg(path, why));
        return false;
    }
    return true;
}

}  // namespace celio
