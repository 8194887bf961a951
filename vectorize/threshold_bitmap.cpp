#include "vectorize/threshold_bitmap.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

// Pixel bounds [x0, x1) x [y0, y1), rows counted down from the top.
struct PixelBounds {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    bool contains(int x, int y) const { return x >= x0 && x < x1 && y >= y0 && y < y1; }
};

PixelBounds bounds(const Math::Box2d &box) {
    if (box.isEmpty()) return {};
    return {static_cast<int>(std::floor(box.x0)), static_cast<int>(std::floor(box.y0)),
            static_cast<int>(std::ceil(box.x1)), static_cast<int>(std::ceil(box.y1))};
}

// The same box with y counted up from the bottom edge of the last row.
Math::Box2d flipped(const Math::Box2d &box, int height) {
    if (box.isEmpty()) return box;
    return {box.x0, height - box.y1, box.x1, height - box.y0};
}

// Sets bits [x0, x1) of a 1-bit row.
void setSpan(uint8_t *row, int x0, int x1) {
    for (int x = x0; x < x1; ++x) row[x >> 3] |= static_cast<uint8_t>(0x80u >> (x & 7));
}

// The disk of radius r as a half width per row offset -r..r.
std::vector<int> diskHalfWidths(int r) {
    std::vector<int> half(static_cast<size_t>(2 * r + 1));
    for (int dy = -r; dy <= r; ++dy) {
        int w = 0;
        while ((w + 1) * (w + 1) + dy * dy <= r * r) ++w;
        half[static_cast<size_t>(dy + r)] = w;
    }
    return half;
}

}  // namespace

namespace {

// Bit i of a byte moved to bit 7 - i: a 1-bit row keeps x = 0 in the top bit.
constexpr std::array<uint8_t, 256> kReversed = [] {
    std::array<uint8_t, 256> t{};
    for (int v = 0; v < 256; ++v)
        for (int i = 0; i < 8; ++i)
            if (v & (1 << i)) t[size_t(v)] |= uint8_t(0x80u >> i);
    return t;
}();

// Sets in a 1-bit row the pixels of [x0, x1) darker than `level`, sixteen at
// a time where the span allows: a page is millions of pixels.
void thresholdSpan(const uint8_t *src, uint8_t *mask, int x0, int x1, int level) {
    int x = x0;
    for (; x < x1 && (x & 7); ++x)
        if (src[x] > level) mask[x >> 3] |= static_cast<uint8_t>(0x80u >> (x & 7));
#ifdef __SSE2__
    const __m128i limit = _mm_set1_epi8(static_cast<char>(level));
    for (; x + 16 <= x1; x += 16) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(src + x));
        // v > level exactly when max(v, level) differs from level.
        const __m128i notAbove = _mm_cmpeq_epi8(_mm_max_epu8(v, limit), limit);
        const unsigned bits = ~unsigned(_mm_movemask_epi8(notAbove)) & 0xffffu;
        // Paper writes nothing, so the mask of a white page stays unwritten.
        if (bits == 0) continue;
        mask[x >> 3] |= kReversed[bits & 0xff];
        mask[(x >> 3) + 1] |= kReversed[bits >> 8];
    }
#endif
    for (; x < x1; ++x)
        if (src[x] > level) mask[x >> 3] |= static_cast<uint8_t>(0x80u >> (x & 7));
}

// The values seen in the picture, up to three: fewer is a two-valued picture.
struct SeenValues {
    int values[3] = {-1, -1, -1};
    int count = 0;
    // Looks at [x0, x1) until a third value turns up.
    void look(const uint8_t *src, int x0, int x1) {
        int x = x0;
        for (; x < x1 && count < 2; ++x) add(src[x]);
#ifdef __SSE2__
        // Two values known: a scan is mostly those two, so sixteen pixels
        // are passed over at a time until one differs.
        if (count == 2) {
            const __m128i a = _mm_set1_epi8(static_cast<char>(values[0]));
            const __m128i b = _mm_set1_epi8(static_cast<char>(values[1]));
            for (; x + 16 <= x1; x += 16) {
                const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(src + x));
                const __m128i known = _mm_or_si128(_mm_cmpeq_epi8(v, a), _mm_cmpeq_epi8(v, b));
                if (_mm_movemask_epi8(known) != 0xffff) break;
            }
        }
#endif
        for (; x < x1 && count < 3; ++x) add(src[x]);
    }
    void add(int v) {
        if (v != values[0] && v != values[1]) values[count++] = v;
    }
};

}  // namespace

bool thresholdBitmap(BM_GreyMap &source, BM_MaskMap &mask, uint8_t level, const Math::Box2d &outerBox,
                     const Math::Box2d &pegBox, int jag, int expand, bool erode) {
    const int e = std::min(expand, 15), j = std::min(jag, 15);
    const int r = std::max(std::max(e, j), 0);
    const std::vector<int> disk = diskHalfWidths(r);
    const int w = source.width(), h = source.height();
    mask.allocate(w, h);

    const PixelBounds outer = bounds(flipped(outerBox, h)), peg = bounds(pegBox);
    const bool hasPeg = !pegBox.isEmpty();
    SeenValues seen;

    for (int y = 0; y < h; ++y) {
        uint8_t *src = source.row(y);
        // The row's pixels inside the outer box and outside the peg box: at
        // most two spans.
        std::pair<int, int> spans[2] = {{0, 0}, {0, 0}};
        if (y >= outer.y0 && y < outer.y1) {
            const int a = std::clamp(outer.x0, 0, w), b = std::clamp(outer.x1, 0, w);
            if (hasPeg && y >= peg.y0 && y < peg.y1) {
                spans[0] = {a, std::max(a, std::min(b, peg.x0))};
                spans[1] = {std::min(b, std::max(a, peg.x1)), b};
            } else {
                spans[0] = {a, b};
            }
        }
        int cleared = 0;
        for (const auto &[x0, x1] : spans) {
            if (x1 <= x0) continue;
            std::fill(src + cleared, src + x0, uint8_t(0));
            cleared = x1;
            seen.look(src, x0, x1);
            if (r == 0) {
                thresholdSpan(src, mask.row(y), x0, x1, level);
                continue;
            }
            for (int x = x0; x < x1; ++x) {
                if (src[x] <= level) continue;
                for (int dy = std::max(-r, -y); dy <= r && y + dy < h; ++dy) {
                    const int half = disk[static_cast<size_t>(dy + r)];
                    setSpan(mask.row(y + dy), std::max(x - half, 0), std::min(x + half + 1, w));
                }
            }
        }
        std::fill(src + cleared, src + w, uint8_t(0));
    }

    if (r >= 2 && e <= r - 2 && !erode) {
        for (int y = 0; y < h; ++y) {
            uint8_t *src = source.row(y);
            for (int x = 0; x < w; ++x)
                if (!mask.get(x, y)) src[x] = 0;
        }
    }
    int n = r - e;
    if (erode && n == 0) n = 1;
    if (n > 0) erodeBitmap(mask, n);
    return seen.count < 3;
}

void erodeBitmap(BM_MaskMap &mask, int n) {
    const int w = mask.width(), h = mask.height();
    if (n <= 0 || w < 1 || h < 1) return;
    const auto full = static_cast<uint8_t>(std::min(n + 1, 255));
    std::vector<uint8_t> depth(static_cast<size_t>(w) * static_cast<size_t>(h));
    auto at = [&](int x, int y) -> uint8_t & { return depth[static_cast<size_t>(y) * static_cast<size_t>(w) + x]; };
    for (int y = 1; y < h; ++y)
        for (int x = 1; x < w; ++x) at(x, y) = mask.get(x, y) ? full : 0;

    for (int level = 0; level < n; ++level) {
        const auto lv = static_cast<uint8_t>(level), next = static_cast<uint8_t>(level + 1);
        for (int y = 1; y < h; ++y) {
            for (int x = 1; x < w; ++x) {
                uint8_t &p = at(x, y);
                uint8_t &left = at(x - 1, y);
                uint8_t &up = at(x, y - 1);
                if (p == full) {
                    if (left == lv || up == lv) p = next;
                } else if (p == lv) {
                    if (left == full) left = next;
                    if (up == full) up = next;
                }
            }
        }
    }
    for (int y = 0; y < h; ++y) {
        uint8_t *row = mask.row(y);
        std::fill(row, row + mask.bytesPerRow(), 0);
        if (y == 0) continue;
        for (int x = 1; x < w; ++x)
            if (at(x, y) == full) row[x >> 3] |= static_cast<uint8_t>(0x80u >> (x & 7));
    }
}

void expandIndexBitmap(BM_IndexMap &bitmap, int n) {
    if (n == 0) return;
    if (n < 0 || n > 15) n = 15;
    const int w = bitmap.width(), h = bitmap.height();
    BM_IndexMap other = bitmap;
    for (int round = 0; round < n; ++round) {
        for (int y = 1; y + 1 < h; ++y) {
            for (int x = 1; x + 1 < w; ++x) {
                unsigned v = bitmap.get(x, y);
                if (v == 0) {
                    for (const auto &[dx, dy] : {std::pair{-1, 0}, {0, -1}, {0, 1}, {1, 0}}) {
                        v = bitmap.get(x + dx, y + dy);
                        if (v != 0) break;
                    }
                }
                other.set(x, y, v);
            }
        }
        std::swap(bitmap, other);
    }
}
