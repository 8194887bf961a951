#include "suite/cel/pixmap_format_list.h"

namespace {

// Every format is lossless for what a scan holds; they differ in how a
// black-and-white picture and a colour picture's alpha are stored.
const TUPixmapFormat kPixmapFormats[] = {
    {2, "tif", "SCAN", "scan: black and white as 1-bit CCITT G4, grey and colour Deflate, colour with alpha"},
    {4, "tif", "SCAN32", "colour scan with alpha, Deflate"},
    {24, "tif", "TIFF", "general lossless TIFF, Deflate, never 1-bit"},
};

constexpr int kPixmapAssets = 7;

}  // namespace

TUPixmapFormatList::TUPixmapFormatList(int assetType)
{
    if (assetType == kPixmapAssets)
        formats_ = QList<TUPixmapFormat>(std::begin(kPixmapFormats), std::end(kPixmapFormats));
}

const TUPixmapFormat *TUPixmapFormatList::find(int format) const
{
    for (const auto &f : formats_)
        if (f.number == format)
            return &f;
    return nullptr;
}

QString TUPixmapFormatList::fileExtentionFromFormat(int format) const
{
    const TUPixmapFormat *f = find(format);
    return f ? QString::fromLatin1(f->extension) : QString();
}

QString TUPixmapFormatList::pixmapNameFromFormat(int format) const
{
    const TUPixmapFormat *f = find(format);
    return f ? QString::fromLatin1(f->name) : QString();
}
