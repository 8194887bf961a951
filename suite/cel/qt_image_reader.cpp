// Pictures in the formats Qt reads (PNG, JPEG, BMP, ...), mapped onto the
// closest leaf: grey stays grey, 16-bit stays 16-bit, black and white becomes
// 0 and 255.
#include <QFile>
#include <QtEndian>
#include <QImage>
#include <QImageReader>

#include <algorithm>
#include <cstring>

#include "suite/cel/celio_backends.h"

namespace celio {
namespace {

// Decoded bytes a compressed picture may reach per byte of file; Deflate,
// the strongest of these formats, stops near 1032.
constexpr qint64 kMaxExpansion = 2048;
// Any file may decode to this much: small pictures are never refused.
constexpr qint64 kMinBudget = qint64(16) << 20;

bool isSixteenBitColour(QImage::Format f)
{
    switch (f) {
    case QImage::Format_RGBX64:
    case QImage::Format_RGBA64:
    case QImage::Format_RGBA64_Premultiplied:
    case QImage::Format_RGBX16FPx4:
    case QImage::Format_RGBA16FPx4:
    case QImage::Format_RGBA16FPx4_Premultiplied:
    case QImage::Format_RGBX32FPx4:
    case QImage::Format_RGBA32FPx4:
    case QImage::Format_RGBA32FPx4_Premultiplied:
        return true;
    default:
        return false;
    }
}

// Copies the rows of an image already in the leaf's pixel layout.
template <class Leaf>
UT_SharePtr<Leaf> copyRows(const QImage &image)
{
    auto leaf = UT_makeShared<Leaf>();
    const int w = image.width();
    const int h = image.height();
    leaf->setData(Leaf::makeBlock(w, h, false), w, h);
    const size_t rowBytes = size_t(w) * sizeof(typename Leaf::Pixel);
    for (int y = 0; y < h; ++y)
        std::memcpy(leaf->row(y), image.constScanLine(y), rowBytes);
    return leaf;
}

// A picture without alpha reads with alpha 0, as a scanned pixel has.
template <class Leaf>
void clearAlpha(Leaf &leaf)
{
    auto *p = leaf.data();
    for (size_t i = 0, n = leaf.pixelCount(); i < n; ++i)
        p[i].a = 0;
}

CEL_RepresentationPtr toLeaf(const QImage &image, CELIO_FileInfo &info)
{
    const QImage::Format f = image.format();
    info.hasAlpha = image.hasAlphaChannel();
    if (image.depth() == 1) {
        info.bitsPerSample = 1;
        info.samplesPerPixel = 1;
        auto leaf = copyRows<CEL_PixmapMatte8>(image.convertToFormat(QImage::Format_Grayscale8));
        uint8_t *p = leaf->data();
        for (size_t i = 0, n = leaf->pixelCount(); i < n; ++i)
            p[i] = p[i] >= 128 ? 255 : 0;
        return leaf;
    }
    if (f == QImage::Format_Grayscale16) {
        info.bitsPerSample = 16;
        info.samplesPerPixel = 1;
        return copyRows<CEL_PixmapMatte16>(image);
    }
    if (image.isGrayscale() && !info.hasAlpha) {
        info.bitsPerSample = 8;
        info.samplesPerPixel = 1;
        return copyRows<CEL_PixmapMatte8>(image.convertToFormat(QImage::Format_Grayscale8));
    }
    info.samplesPerPixel = info.hasAlpha ? 4 : 3;
    if (isSixteenBitColour(f)) {
        info.bitsPerSample = 16;
        auto leaf = copyRows<CEL_PixmapRGBA16>(image.convertToFormat(QImage::Format_RGBA64));
        if (!info.hasAlpha)
            clearAlpha(*leaf);
        return leaf;
    }
    info.bitsPerSample = 8;
    auto leaf = copyRows<CEL_PixmapRGBA8>(image.convertToFormat(QImage::Format_RGBA8888));
    if (!info.hasAlpha)
        clearAlpha(*leaf);
    return leaf;
}

// libpng allocates what a chunk's length claims before it reads the chunk, so
// a PNG is walked first: every chunk up to the end must lie within the file.
bool pngChunksFit(const QString &path, qint64 fileSize)
{
    QFile f(path);
    uchar head[8];
    if (!f.open(QIODevice::ReadOnly) || f.read(reinterpret_cast<char *>(head), 8) != 8 ||
        std::memcmp(head, "\x89PNG\r\n\x1a\n", 8) != 0)
        return true;  // not a PNG
    for (qint64 pos = 8; pos < fileSize;) {
        if (!f.seek(pos) || f.read(reinterpret_cast<char *>(head), 8) != 8)
            break;  // a cut-off file: the decoder says so
        const quint32 length = qFromBigEndian<quint32>(head);
        if (length > fileSize - pos - 12) {
            setLastError(QStringLiteral("Cannot read %1: a PNG chunk claims %2 bytes, more than the file holds.")
                             .arg(path, QString::number(length)));
            return false;
        }
        if (std::memcmp(head + 4, "IEND", 4) == 0)
            break;
        pos += 12 + qint64(length);
    }
    return true;
}

}  // namespace

bool readQtImage(const QString &path, qint64 fileSize, ReadResult &out)
{
    if (!pngChunksFit(path, fileSize))
        return false;
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(false);
    // What the picture may take, by what its file's bytes could decode to.
    const qint64 budget = std::clamp(fileSize * kMaxExpansion, kMinBudget, kMaxImageBytes);
    qint64 allowed = budget;
    const QSize size = reader.size();
    if (size.isValid()) {
        const QImage::Format decoded = reader.imageFormat();
        const int bits = QImage::toPixelFormat(decoded).bitsPerPixel();
        const int leafBytes = isSixteenBitColour(decoded) ? 8 : 4;
        const qint64 pixels = qint64(size.width()) * size.height();
        const bool tooLarge = !sizeIsSane(size.width(), size.height(), leafBytes);
        if (tooLarge || pixels * (bits > 0 ? bits : 32) / 8 > budget) {
            setSizeError(path, size.width(), size.height(), tooLarge);
            return false;
        }
        // Qt's guard counts four bytes a pixel whatever the picture decodes
        // to, and would refuse a blank black-and-white sheet.
        allowed = pixels * leafBytes;
    }
    // One limit for the whole process in Qt; files are read one at a time.
    QImageReader::setAllocationLimit(int((allowed + (1 << 20) - 1) >> 20));
    const QByteArray format = reader.format();  // known only until the read ends
    const QImage image = reader.read();
    if (image.isNull()) {
        setLastError(QStringLiteral("Cannot read %1: %2").arg(path, reader.errorString()));
        return false;
    }
    for (const char *key : {"Description", "Comment"}) {
        const QString text = image.text(QLatin1String(key));
        if (!text.isEmpty()) {
            out.comment = text;
            break;
        }
    }
    out.info.container = QString::fromLatin1(format).toUpper();
    out.info.photometric = image.isGrayscale() ? QStringLiteral("min-is-black") : QStringLiteral("RGB");
    out.rep = toLeaf(image, out.info);
    return true;
}

}  // namespace celio
