// The band loader: raster data from a scanner stored straight into the
// pixmap's leaf, turned on the way so that the start of every scan line ends
// up on the peg side.
//
// Raster coordinates: i is the position within a scan line (0..W-1), j the
// line (0..H-1). Destination coordinates are the leaf's; the caller's x and y
// are destination coordinates of the next pixel to come.
#include "scan/pixmap_pixmap.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <climits>
#include <cstring>
#include <type_traits>
#include <vector>

#include "suite/base/assertion.h"

namespace {

enum PegSide : int32_t { PEG_LEFT = 1, PEG_TOP = 2, PEG_RIGHT = 3, PEG_BOTTOM = 4 };

// Lines turned together by a quarter turn: each destination row then gets
// this many neighbouring pixels in one go instead of one pixel per row.
constexpr size_t kGroupLines = 16;

struct Geometry {
    int32_t side;
    size_t W; // scan line length
    size_t H; // number of lines
    size_t DW; // destination row length
    size_t DH; // destination rows

    bool quarterTurn() const { return side == PEG_TOP || side == PEG_BOTTOM; }
};

Geometry geometry_of(int32_t side, int32_t width, int32_t height)
{
    Geometry g{side, size_t(width), size_t(height), size_t(width), size_t(height)};
    if (g.quarterTurn())
        std::swap(g.DW, g.DH);
    return g;
}

// Destination position of raster position (i, j); j == H names the end.
void destination_of(const Geometry &g, int64_t i, int64_t j, int32_t *x, int32_t *y)
{
    const int64_t W = int64_t(g.W), H = int64_t(g.H);
    switch (g.side) {
    case PEG_LEFT:
        *x = int32_t(i), *y = int32_t(j);
        break;
    case PEG_TOP:
        *x = int32_t(H - 1 - j), *y = int32_t(i);
        break;
    case PEG_RIGHT:
        *x = int32_t(W - 1 - i), *y = int32_t(H - 1 - j);
        break;
    default:
        *x = int32_t(j), *y = int32_t(W - 1 - i);
        break;
    }
}

void raster_of(const Geometry &g, int64_t x, int64_t y, int64_t *i, int64_t *j)
{
    const int64_t W = int64_t(g.W), H = int64_t(g.H);
    switch (g.side) {
    case PEG_LEFT:
        *i = x, *j = y;
        break;
    case PEG_TOP:
        *i = y, *j = H - 1 - x;
        break;
    case PEG_RIGHT:
        *i = W - 1 - x, *j = H - 1 - y;
        break;
    default:
        *i = W - 1 - y, *j = x;
        break;
    }
}

// Pixel readers: the k-th pixel of a run of raster bytes, as stored. `wide`
// may read one byte past the pixel, which every pixel of a run but its last
// has; `exact` reads only the pixel's own bytes.
static_assert(std::endian::native == std::endian::little, "RGBA8 pixels are built as little-endian words");

struct RgbReader {
    uint32_t mask; // 0x00FFFFFF complements the colour bytes and keeps alpha 0
    static constexpr size_t kBytes = 3;
    uint32_t wide(const uint8_t *run, size_t k) const
    {
        uint32_t v;
        std::memcpy(&v, run + 3 * k, 4);
        return (v & 0x00FFFFFFu) ^ mask;
    }
    uint32_t exact(const uint8_t *run, size_t k) const
    {
        const uint8_t *p = run + 3 * k;
        return (uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16) ^ mask;
    }
    static void put(CEL_RGBA8Pixel *dst, uint32_t v) { std::memcpy(dst, &v, 4); }
};

struct GreyReader {
    uint8_t mask;
    static constexpr size_t kBytes = 1;
    uint8_t wide(const uint8_t *run, size_t k) const { return run[k] ^ mask; }
    uint8_t exact(const uint8_t *run, size_t k) const { return run[k] ^ mask; }
    static void put(uint8_t *dst, uint8_t v) { *dst = v; }
};

template <class Reader>
constexpr bool kGrey = std::is_same_v<Reader, GreyReader>;

// Grey forward run: plain lines are copied whole; inverted ones 64 bytes at
// a time, which the compiler turns into wide operations.
void grey_forward(uint8_t *dst, const uint8_t *src, size_t count, uint8_t mask)
{
    if (!mask) {
        std::memcpy(dst, src, count);
        return;
    }
    constexpr size_t kBlock = 64;
    size_t k = 0;
    for (; k + kBlock <= count; k += kBlock)
        for (size_t b = 0; b < kBlock; ++b)
            dst[k + b] = src[k + b] ^ mask;
    for (; k < count; ++k)
        dst[k] = src[k] ^ mask;
}

// Grey backward run: dst[-k] = src[k], eight bytes at a time by a byte swap.
void grey_backward(uint8_t *dst, const uint8_t *src, size_t count, uint8_t mask)
{
    const uint64_t mask64 = mask ? ~uint64_t(0) : 0;
    size_t k = 0;
    for (; k + 8 <= count; k += 8) {
        uint64_t v;
        std::memcpy(&v, src + k, 8);
        v = __builtin_bswap64(v) ^ mask64;
        std::memcpy(dst - k - 7, &v, 8);
    }
    for (; k < count; ++k)
        *(dst - k) = src[k] ^ mask;
}

// One line's run of `count` pixels written along a destination row, forward
// (dir 1) or mirrored (dir -1).
template <class Px, class Reader>
void store_run(Px *dst, int dir, const uint8_t *src, size_t count, Reader read)
{
    if constexpr (kGrey<Reader>) {
        if (dir > 0)
            grey_forward(dst, src, count, read.mask);
        else
            grey_backward(dst, src, count, read.mask);
    } else if (count > 0) {
        const size_t last = count - 1;
        if (dir > 0) {
            for (size_t k = 0; k < last; ++k)
                Reader::put(dst + k, read.wide(src, k));
        } else {
            for (size_t k = 0; k < last; ++k)
                Reader::put(dst - k, read.wide(src, k));
        }
        Reader::put(dst + ptrdiff_t(last) * dir, read.exact(src, last));
    }
}

// 16 x 16 bytes: column k of the sixteen rows goes to dst + k * step.
void transpose16x16(uint8_t *dst, ptrdiff_t step, const uint8_t *const *rows, size_t k0, uint8_t mask)
{
    __m128i a[16], b[16];
    for (int c = 0; c < 16; ++c)
        a[c] = _mm_loadu_si128(reinterpret_cast<const __m128i *>(rows[c] + k0));
    for (int p = 0; p < 8; ++p) {
        b[p] = _mm_unpacklo_epi8(a[2 * p], a[2 * p + 1]);
        b[p + 8] = _mm_unpackhi_epi8(a[2 * p], a[2 * p + 1]);
    }
    for (int q = 0; q < 4; ++q) {
        a[q] = _mm_unpacklo_epi16(b[2 * q], b[2 * q + 1]);
        a[q + 4] = _mm_unpackhi_epi16(b[2 * q], b[2 * q + 1]);
        a[q + 8] = _mm_unpacklo_epi16(b[8 + 2 * q], b[8 + 2 * q + 1]);
        a[q + 12] = _mm_unpackhi_epi16(b[8 + 2 * q], b[8 + 2 * q + 1]);
    }
    for (int g = 0; g < 16; g += 4) {
        b[g] = _mm_unpacklo_epi32(a[g], a[g + 1]);
        b[g + 1] = _mm_unpackhi_epi32(a[g], a[g + 1]);
        b[g + 2] = _mm_unpacklo_epi32(a[g + 2], a[g + 3]);
        b[g + 3] = _mm_unpackhi_epi32(a[g + 2], a[g + 3]);
    }
    const __m128i m = _mm_set1_epi8(char(mask));
    for (int g = 0; g < 16; g += 4) {
        const __m128i cols[4] = {_mm_unpacklo_epi64(b[g], b[g + 2]), _mm_unpackhi_epi64(b[g], b[g + 2]),
                                 _mm_unpacklo_epi64(b[g + 1], b[g + 3]), _mm_unpackhi_epi64(b[g + 1], b[g + 3])};
        for (int c = 0; c < 4; ++c)
            _mm_storeu_si128(reinterpret_cast<__m128i *>(dst + (g + c) * step), _mm_xor_si128(cols[c], m));
    }
}

// Columns of `lines` raster runs side by side: pixel k of run c goes to
// dst[k * step + c].
template <class Px, class Reader>
void store_columns(Px *dst, ptrdiff_t step, const uint8_t *const *rows, size_t lines, size_t count, Reader read)
{
    size_t k = 0;
    if constexpr (kGrey<Reader>) {
        if (lines == 16)
            for (; k + 16 <= count; k += 16)
                transpose16x16(dst + ptrdiff_t(k) * step, step, rows, k, read.mask);
    }
    for (; k + 1 < count; ++k) {
        Px *d = dst + ptrdiff_t(k) * step;
        for (size_t c = 0; c < lines; ++c)
            Reader::put(d + c, read.wide(rows[c], k));
    }
    for (; k < count; ++k) {
        Px *d = dst + ptrdiff_t(k) * step;
        for (size_t c = 0; c < lines; ++c)
            Reader::put(d + c, read.exact(rows[c], k));
    }
}

// Stores pixels i .. i+count-1 of raster lines j .. j+lines-1 (at most
// kGroupLines), line l's run starting at src + l * stride.
template <class Px, class Reader>
void store_block(const Geometry &g, Px *dest, size_t j, size_t lines, size_t i, size_t count, const uint8_t *src,
                 size_t stride, Reader read)
{
    switch (g.side) {
    case PEG_LEFT:
        for (size_t l = 0; l < lines; ++l)
            store_run(dest + (j + l) * g.DW + i, 1, src + l * stride, count, read);
        return;
    case PEG_RIGHT:
        for (size_t l = 0; l < lines; ++l)
            store_run(dest + (g.H - 1 - j - l) * g.DW + (g.W - 1 - i), -1, src + l * stride, count, read);
        return;
    default:
        break;
    }
    std::array<const uint8_t *, kGroupLines> rows;
    if (g.side == PEG_TOP) {
        // Line j goes to column H-1-j: the group's last line is its leftmost column.
        for (size_t c = 0; c < lines; ++c)
            rows[c] = src + (lines - 1 - c) * stride;
        store_columns(dest + i * g.DW + (g.H - j - lines), ptrdiff_t(g.DW), rows.data(), lines, count, read);
    } else {
        for (size_t c = 0; c < lines; ++c)
            rows[c] = src + c * stride;
        store_columns(dest + (g.W - 1 - i) * g.DW + j, -ptrdiff_t(g.DW), rows.data(), lines, count, read);
    }
}

// Whole raster lines j .. j+lines-1, in groups.
template <class Px, class Reader>
void store_lines(const Geometry &g, Px *dest, size_t j, size_t lines, const uint8_t *src, size_t stride, Reader read)
{
    for (size_t done = 0; done < lines; done += kGroupLines) {
        const size_t n = std::min(kGroupLines, lines - done);
        store_block(g, dest, j + done, n, 0, g.W, src + done * stride, stride, read);
    }
}

// RGB pixels from raster position (i, j) on: a head up to the end of a line,
// whole lines, and a tail that stops within a line.
void store_rgb(const Geometry &g, CEL_RGBA8Pixel *dest, size_t i, size_t j, const uint8_t *src, size_t pixels,
               RgbReader read)
{
    if (i > 0) {
        const size_t head = std::min(pixels, g.W - i);
        store_block(g, dest, j, 1, i, head, src, 0, read);
        src += head * RgbReader::kBytes;
        pixels -= head;
        ++j;
    }
    const size_t lines = pixels / g.W;
    store_lines(g, dest, j, lines, src, g.W * RgbReader::kBytes, read);
    src += lines * g.W * RgbReader::kBytes;
    pixels -= lines * g.W;
    if (pixels > 0)
        store_block(g, dest, j + lines, 1, 0, pixels, src, 0, read);
}

// Eight stored bytes for every value of a packed byte, bit 7 first.
struct BitExpansion {
    std::array<uint64_t, 256> bytes;
    BitExpansion()
    {
        for (int v = 0; v < 256; ++v) {
            uint8_t out[8];
            for (int b = 0; b < 8; ++b)
                out[b] = (v & (0x80 >> b)) ? 0xFF : 0x00;
            std::memcpy(&bytes[size_t(v)], out, 8);
        }
    }
};

// Spreads one packed line to W bytes of 255 for a set bit (0 with invert).
void expand_bits(const uint8_t *packed, size_t width, uint8_t *out, uint64_t mask)
{
    static const BitExpansion table;
    size_t b = 0;
    for (; (b + 1) * 8 <= width; ++b) {
        const uint64_t v = table.bytes[packed[b]] ^ mask;
        std::memcpy(out + 8 * b, &v, 8);
    }
    if (const size_t rest = width - 8 * b) {
        const uint64_t v = table.bytes[packed[b]] ^ mask;
        std::memcpy(out + 8 * b, &v, rest); // bits beyond the line's end are dropped
    }
}

// One-bit lines are spread to grey a group at a time, then stored as grey.
void store_bits(const Geometry &g, uint8_t *dest, size_t j, size_t lines, const uint8_t *src, bool invert)
{
    const size_t packed = (g.W + 7) / 8;
    const uint64_t mask = invert ? ~uint64_t(0) : 0;
    std::vector<uint8_t> grey(kGroupLines * g.W);
    for (size_t done = 0; done < lines; done += kGroupLines) {
        const size_t n = std::min(kGroupLines, lines - done);
        for (size_t l = 0; l < n; ++l)
            expand_bits(src + (done + l) * packed, g.W, grey.data() + l * g.W, mask);
        store_block(g, dest, j + done, n, 0, g.W, grey.data(), g.W, GreyReader{0});
    }
}

// Gives the leaf its block on the first band, and checks that a later band
// finds the leaf of the size the turn needs. Returns its pixels or null. The
// block starts black, so a scan that stops early leaves no stale memory in
// the picture; fresh pages cost the same either way.
template <class Leaf>
typename Leaf::Pixel *pixels_for_band(Leaf &leaf, const Geometry &g, bool first)
{
    if (first)
        leaf.setData(Leaf::makeBlock(int(g.DW), int(g.DH), true), int(g.DW), int(g.DH));
    LMV_ASSERT_RET(size_t(leaf.width()) == g.DW && size_t(leaf.height()) == g.DH, nullptr);
    return leaf.data();
}

// Stores one band at the position (x, y) and moves the position past it.
// Exactly one of `rgba` and `grey` is set. A band that isn't whole lines
// where whole lines are needed, or that would run past the image, is dropped.
void store_band(const Geometry &g, CEL_RGBA8Pixel *rgba, uint8_t *grey, const uint8_t *data, size_t length,
                bool invert, bool one_bit, int32_t *x, int32_t *y)
{
    const size_t line_bytes = rgba ? 3 * g.W : one_bit ? (g.W + 7) / 8 : g.W;
    LMV_ASSERT_VOID(rgba || length % line_bytes == 0);
    const size_t pixels = rgba ? length / 3 : length / line_bytes * g.W;
    int64_t i = 0, j = 0;
    raster_of(g, *x, *y, &i, &j);
    LMV_ASSERT_VOID(i >= 0 && size_t(i) < g.W && j >= 0);
    const size_t total = g.W * g.H;
    const size_t start = size_t(j) * g.W + size_t(i);
    LMV_ASSERT_VOID(start <= total && pixels <= total - start);
    const uint8_t mask = invert ? 0xFF : 0x00;
    if (rgba) {
        store_rgb(g, rgba, size_t(i), size_t(j), data, pixels, RgbReader{invert ? 0x00FFFFFFu : 0u});
    } else {
        LMV_ASSERT_VOID(i == 0);
        if (one_bit)
            store_bits(g, grey, size_t(j), pixels / g.W, data, invert);
        else
            store_lines(g, grey, size_t(j), pixels / g.W, data, g.W, GreyReader{mask});
    }
    const size_t next = start + pixels;
    destination_of(g, int64_t(next % g.W), int64_t(next / g.W), x, y);
}

} // namespace

void load_band_of_pixmap(LMV_pixmap *pixmap, int32_t *x, int32_t *y, const uint8_t *data, int32_t length, bool invert,
                         bool one_bit, int32_t peg_side, bool first, bool last)
{
    LMV_ASSERT_VOID(pixmap && x && y && data);
    LMV_ASSERT_VOID(length >= 1);
    const int32_t kind = type_of_pixmap(pixmap);
    LMV_ASSERT_VOID(kind == PIXMAP_RGBA8 || kind == PIXMAP_MATTE8);
    if (kind == PIXMAP_RGBA8 && one_bit) {
        // Colour data have no packed form; read them as RGB.
        LMV_assertion_msg(__FILE__, __LINE__, "one-bit data for a colour pixmap");
        one_bit = false;
    }
    LMV_ASSERT_VOID(peg_side >= PEG_LEFT && peg_side <= PEG_BOTTOM);
    LMV_ASSERT_VOID(pixmap->width > 0 && pixmap->height > 0);

    const Geometry g = geometry_of(peg_side, pixmap->width, pixmap->height);
    CEL_RGBA8Pixel *rgba = nullptr;
    uint8_t *grey = nullptr;
    if (kind == PIXMAP_RGBA8)
        rgba = pixels_for_band(*pixmap->rgba8, g, first);
    else
        grey = pixels_for_band(*pixmap->matte8, g, first);
    if (first)
        destination_of(g, 0, 0, x, y);

    if (rgba || grey)
        store_band(g, rgba, grey, data, size_t(length), invert, one_bit, x, y);

    if (last && g.quarterTurn()) {
        // From here on the record agrees with the turned leaf.
        std::swap(*x, *y);
        std::swap(pixmap->width, pixmap->height);
    }
}

QTransform turn_of_peg_side(int32_t peg_side, int32_t width, int32_t height)
{
    // The continuous form of destination_of: the pixel whose corner is at
    // (i, j) has its corner, after the turn, at the image of (i, j) and of
    // (i + 1, j + 1); x' = m11 x + m21 y + dx, y' = m12 x + m22 y + dy.
    const double W = width, H = height;
    switch (peg_side) {
    case PEG_TOP: return QTransform(0, 1, -1, 0, H, 0);
    case PEG_RIGHT: return QTransform(-1, 0, 0, -1, W, H);
    case PEG_BOTTOM: return QTransform(0, -1, 1, 0, 0, W);
    default: return QTransform();
    }
}

CEL_PixmapPtr pixmap_from_QImage(const QImage &image, int32_t peg_side)
{
    if (image.isNull())
        return nullptr;
    const int32_t width = image.width();
    const int32_t height = image.height();
    const bool one_bit = image.format() == QImage::Format_Mono;

    std::vector<uint8_t> block;
    const uint8_t *data = nullptr;
    size_t length = 0;
    if (one_bit) {
        const size_t packed = (size_t(width) + 7) / 8;
        length = packed * size_t(height);
        if (size_t(image.bytesPerLine()) == packed) {
            data = image.constBits();
        } else {
            block.resize(length);
            for (int32_t row = 0; row < height; ++row)
                std::memcpy(block.data() + size_t(row) * packed, image.constScanLine(row), packed);
            data = block.data();
        }
    } else {
        QImage rgb = image.convertToFormat(QImage::Format_RGB32);
        rgb.invertPixels(QImage::InvertRgba);
        length = 3 * size_t(width) * size_t(height);
        block.resize(length);
        uint8_t *out = block.data();
        // The scan line of an RGB32 image holds the values QImage::pixel
        // returns, without a call per pixel.
        for (int32_t row = 0; row < height; ++row) {
            const auto *line = reinterpret_cast<const QRgb *>(rgb.constScanLine(row));
            for (int32_t col = 0; col < width; ++col) {
                // Complementing again undoes the inversion above.
                *out++ = uint8_t(~qRed(line[col]));
                *out++ = uint8_t(~qGreen(line[col]));
                *out++ = uint8_t(~qBlue(line[col]));
            }
        }
        data = block.data();
    }

    // The loader takes a band length of 32 bits.
    LMV_ASSERT_RET(length <= size_t(INT32_MAX), nullptr);
    LMV_pixmap *pixmap = create_pixmap(one_bit ? PIXMAP_MATTE8 : PIXMAP_RGBA8, width, height);
    int32_t x = 0, y = 0;
    load_band_of_pixmap(pixmap, &x, &y, data, int32_t(length), false, one_bit, peg_side, true, true);
    CEL_PixmapPtr leaf = best_of_pixmap(pixmap);
    release_pixmap(pixmap);
    return leaf;
}
