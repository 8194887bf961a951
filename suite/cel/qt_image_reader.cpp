// Pictures in the formats Qt reads (PNG, JPEG, BMP, ...), mapped onto the
// closest leaf: grey stays grey, 16-bit stays 16-bit, black and white becomes
// 0 and 255.
#include <QFileInfo>
#include <QImage>
#include <QImageReader>

#include <algorithm>
#include <cstring>

#include "suite/cel/celio_backends.h"

namespace celio {
namespace {

// Decoded bytes a compressed picture may reach per byte of file.
constexpr qint64 kMaxExpansion = 2048;

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

}  // namespace

bool readQtImage(const QString &path, ReadResult &out)
{
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    // Qt's own guard (256 MB) would refuse a full sheet in colour; a bigger
    // file may decode to more, a small one keeps the default.
    const qint64 limitMiB = (QFileInfo(path).size() * kMaxExpansion) >> 20;
    reader.setAllocationLimit(int(std::clamp<qint64>(limitMiB, reader.allocationLimit(), 4096)));
    reader.setAutoTransform(false);
    const QSize size = reader.size();
    if (size.isValid() && !sizeIsSane(size.width(), size.height(), 8)) {
        setLastError(QStringLiteral("Cannot read %1: a picture of %2 x %3 pixels is too large.")
                         .arg(path).arg(size.width()).arg(size.height()));
        return false;
    }
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
