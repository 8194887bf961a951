// Screen pictures of the pixel leaves and the grey conversions between them.
#include "suite/cel/cel_pixmap.h"

#include <algorithm>
#include <limits>

#include "suite/cel/cel_algo.h"

namespace {

// Fills a QImage of `format` row by row; `convertRow(src, dst)` writes one
// row of the leaf into the image's scan line, which may be padded.
template <class Leaf, class Out, class ConvertRow>
QImage imageOf(const Leaf &leaf, QImage::Format format, ConvertRow convertRow)
{
    if (leaf.pixelCount() == 0)
        return QImage();
    QImage image(leaf.width(), leaf.height(), format);
    if (image.isNull())
        return image;  // out of memory: no picture rather than a crash
    for (int y = 0; y < leaf.height(); ++y)
        convertRow(leaf.row(y), reinterpret_cast<Out *>(image.scanLine(y)));
    return image;
}

template <class Leaf, class Out>
QImage copyRows(const Leaf &leaf, QImage::Format format)
{
    const int w = leaf.width();
    return imageOf<Leaf, Out>(leaf, format, [w](const auto *src, Out *dst) { std::copy_n(src, w, dst); });
}

// Colour leaves whose pixel layout is that of `format` with the alpha forced opaque.
template <class Leaf>
QImage opaqueColours(const Leaf &leaf, QImage::Format format)
{
    using P = typename Leaf::Pixel;
    constexpr auto kOpaque = std::numeric_limits<decltype(P::a)>::max();
    const int w = leaf.width();
    return imageOf<Leaf, P>(leaf, format, [w](const P *src, P *dst) {
        for (int x = 0; x < w; ++x)
            dst[x] = {src[x].r, src[x].g, src[x].b, kOpaque};
    });
}

// Rec. 601 weights in 256ths: 77 + 150 + 29 = 256, so white stays white.
constexpr uint32_t kLumaR = 77, kLumaG = 150, kLumaB = 29;

template <class P>
uint32_t lumaSum(const P &p)
{
    return kLumaR * p.r + kLumaG * p.g + kLumaB * p.b;
}

// Fills the Matte8 block from `src`, one grey byte per source pixel.
template <class Src, class ToGrey>
void convertInto(CEL_PixmapMatte8 &dst, const Src &src, ToGrey toGrey)
{
    auto block = CEL_PixmapMatte8::makeBlock(src.width(), src.height(), false);
    const auto *in = src.data();
    const size_t n = src.pixelCount();
    for (size_t i = 0; i < n; ++i)
        block[i] = toGrey(in[i]);
    dst.setData(std::move(block), src.width(), src.height());
}

} // namespace

// A scan's alpha is 0; the screen shows its colours opaque.
QImage CEL_PixmapRGBA8::getImage() const
{
    return opaqueColours(*this, QImage::Format_RGBX8888);
}

QImage CEL_PixmapRGBA16::getImage() const
{
    return opaqueColours(*this, QImage::Format_RGBX64);
}

QImage CEL_PixmapMatte16::getImage() const
{
    return copyRows<CEL_PixmapMatte16, uint16_t>(*this, QImage::Format_Grayscale16);
}

QImage CEL_PixmapMatte8::getImage() const
{
    return CEL_Util::getGrayScaleImage(this);
}

CEL_PixmapMatte8::CEL_PixmapMatte8(const CEL_PixmapRGBA8 &src)
{
    convertInto(*this, src, [](const CEL_RGBA8Pixel &p) { return uint8_t((lumaSum(p) + 128) >> 8); });
}

CEL_PixmapMatte8::CEL_PixmapMatte8(const CEL_PixmapRGBA16 &src)
{
    // Luminance in 16 bits times 256, brought to 8 bits with a single rounding:
    // 65535 * 256 maps to 255 through the factor 257 * 256.
    constexpr uint32_t kDiv = 257u * 256u;
    convertInto(*this, src, [](const CEL_RGBA16Pixel &p) { return uint8_t((lumaSum(p) + kDiv / 2) / kDiv); });
}

CEL_PixmapMatte8::CEL_PixmapMatte8(const CEL_PixmapMatte16 &src)
{
    convertInto(*this, src, [](uint16_t v) { return uint8_t((uint32_t(v) + 128) / 257); });
}

QImage CEL_Util::getGrayScaleImage(const CEL_PixmapMatte8 *leaf)
{
    if (!leaf)
        return QImage();
    return copyRows<CEL_PixmapMatte8, uint8_t>(*leaf, QImage::Format_Grayscale8);
}
