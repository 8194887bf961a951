#include "scan/peg_mask.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr int kMaxRadius = 15;

// Inclusive pixel limits of a box: floor of the start, ceil of the end,
// clamped to the picture. Empty when first > last.
struct Limits {
    int x0 = 0, x1 = -1, y0 = 0, y1 = -1;
    bool hasRow(int y) const { return y >= y0 && y <= y1 && x0 <= x1; }
};

Limits limits_of(const Math::Box2d &box, int width, int height) {
    Limits l;
    auto clampTo = [](double v, int lo, int hi) {
        // Doubles far outside the picture would overflow an int cast.
        return static_cast<int>(std::clamp(v, static_cast<double>(lo), static_cast<double>(hi)));
    };
    l.x0 = clampTo(std::floor(box.x0), 0, width);
    l.x1 = clampTo(std::ceil(box.x1), -1, width - 1);
    l.y0 = clampTo(std::floor(box.y0), 0, height);
    l.y1 = clampTo(std::ceil(box.y1), -1, height - 1);
    return l;
}

// The first three distinct grey values in the order the pixels are met.
class DistinctValues {
public:
    bool full() const { return count_ >= 3; }
    int count() const { return count_; }

    void note(const uint8_t *p, int n) {
        int i = 0;
        while (i < n && !full()) {
            i += skipSeen(p + i, n - i);
            if (i < n) {
                values_[count_++] = p[i];
                ++i;
            }
        }
    }

private:
    bool seen(uint8_t v) const {
        for (int k = 0; k < count_; ++k)
            if (values_[k] == v) return true;
        return false;
    }
    // Index of the first pixel of p[0..n) whose value isn't seen yet, or n.
    int skipSeen(const uint8_t *p, int n) const {
        int i = 0;
        if (count_ == 0) return 0;
#if defined(__SSE2__)
        const __m128i a = _mm_set1_epi8(static_cast<char>(values_[0]));
        const __m128i b = _mm_set1_epi8(static_cast<char>(count_ > 1 ? values_[1] : values_[0]));
        auto seenIn = [&](const uint8_t *at) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
            return _mm_or_si128(_mm_cmpeq_epi8(v, a), _mm_cmpeq_epi8(v, b));
        };
        // A picture of two levels is read to its end: 64 pixels a step until
        // a block holds a new value, which the 16-pixel steps then find.
        for (; i + 64 <= n; i += 64) {
            const __m128i all = _mm_and_si128(_mm_and_si128(seenIn(p + i), seenIn(p + i + 16)),
                                              _mm_and_si128(seenIn(p + i + 32), seenIn(p + i + 48)));
            if (_mm_movemask_epi8(all) != 0xffff) break;
        }
        for (; i + 16 <= n; i += 16) {
            const unsigned same = static_cast<unsigned>(_mm_movemask_epi8(seenIn(p + i)));
            if (same != 0xffffu) return i + __builtin_ctz(~same);
        }
#endif
        for (; i < n; ++i)
            if (!seen(p[i])) return i;
        return n;
    }

    std::array<uint8_t, 3> values_{};
    int count_ = 0;
};

// Stamps discs of radius r into the mask a source row at a time: the bright
// pixels of a row become a bit row, which is widened once per distinct half
// width of the disc and ORed into the rows the disc covers.
class DiscStamp {
public:
    DiscStamp(int width, int radius) : width_(width), radius_(radius), words_((width + 63) / 64) {
        for (int dy = -radius; dy <= radius; ++dy) {
            int s = 0;
            while ((s + 1) * (s + 1) + dy * dy <= radius * radius) ++s;
            halfWidth_[dy + radius] = s;
        }
        hits_.assign(static_cast<size_t>(words_), 0);
        widened_.assign(static_cast<size_t>(radius + 1), std::vector<uint64_t>(static_cast<size_t>(words_), 0));
        bytes_.assign(static_cast<size_t>(radius + 1), std::vector<uint8_t>(static_cast<size_t>(words_) * 8, 0));
    }

    // Notes the pixels of g[x0..x1] brighter than `threshold`.
    void collect(const uint8_t *g, int x0, int x1, int threshold) {
        if (threshold >= 255) return;
        int x = x0;
        if (threshold < 0) {
            for (; x <= x1; ++x) setHit(x);
            return;
        }
#if defined(__SSE2__)
        // g > threshold exactly where g - threshold, saturated at 0, isn't 0.
        const __m128i limit = _mm_set1_epi8(static_cast<char>(threshold));
        const __m128i zero = _mm_setzero_si128();
        auto load = [&](int at) { return _mm_loadu_si128(reinterpret_cast<const __m128i *>(g + at)); };
        // Sixteen pixels from `at`, one bit each.
        auto hit16 = [&](int at, __m128i v) {
            const __m128i dark = _mm_cmpeq_epi8(_mm_subs_epu8(v, limit), zero);
            const uint64_t m = ~static_cast<unsigned>(_mm_movemask_epi8(dark)) & 0xffffu;
            if (!m) return;
            const int w = at >> 6, shift = at & 63;
            hits_[static_cast<size_t>(w)] |= m << shift;
            if (shift > 48) hits_[static_cast<size_t>(w) + 1] |= m >> (64 - shift);
            noteWord(w);
            noteWord(std::min(w + 1, words_ - 1));
        };
        // The band is mostly dark: 64 pixels with nothing bright go at once,
        // judged by their brightest.
        for (; x + 64 <= x1 + 1; x += 64) {
            const __m128i v0 = load(x), v1 = load(x + 16), v2 = load(x + 32), v3 = load(x + 48);
            const __m128i top = _mm_max_epu8(_mm_max_epu8(v0, v1), _mm_max_epu8(v2, v3));
            if (_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_subs_epu8(top, limit), zero)) == 0xffff) continue;
            hit16(x, v0);
            hit16(x + 16, v1);
            hit16(x + 32, v2);
            hit16(x + 48, v3);
        }
        for (; x + 16 <= x1 + 1; x += 16) hit16(x, load(x));
#endif
        for (; x <= x1; ++x)
            if (g[x] > threshold) setHit(x);
    }

    // ORs the discs of the collected pixels of row y into the mask and
    // forgets them.
    void stampInto(BM_MaskMap &mask, int y) {
        if (lo_ > hi_) return;
        // A disc reaches at most 15 pixels, so one word to each side.
        const int lo = std::max(lo_ - 1, 0), hi = std::min(hi_ + 1, words_ - 1);
        const size_t n = static_cast<size_t>(hi - lo + 1);
        std::copy_n(hits_.begin() + lo, n, widened_[0].begin() + lo);
        for (int s = 1; s <= radius_; ++s) widen(widened_[static_cast<size_t>(s - 1)], widened_[static_cast<size_t>(s)], lo, hi);
        const uint64_t tail = (width_ & 63) ? (uint64_t{1} << (width_ & 63)) - 1 : ~uint64_t{0};
        const int rowBytes = (width_ + 7) / 8;
        const int b0 = lo * 8, b1 = std::min((hi + 1) * 8, rowBytes);
        for (int s = 0; s <= radius_; ++s) {
            std::vector<uint64_t> &words = widened_[static_cast<size_t>(s)];
            // Cells that fall right of the picture are dropped.
            words[static_cast<size_t>(words_ - 1)] &= tail;
            toMaskBytes(words, bytes_[static_cast<size_t>(s)], lo, hi);
        }
        for (int dy = -radius_; dy <= radius_; ++dy) {
            const int ty = y + dy;
            if (ty < 0 || ty >= mask.height()) continue;
            const uint8_t *src = bytes_[static_cast<size_t>(halfWidth_[dy + radius_])].data();
            uint8_t *dst = mask.row(ty);
            for (int b = b0; b < b1; ++b) dst[b] |= src[b];
        }
        std::fill(hits_.begin() + lo, hits_.begin() + hi + 1, 0);
        lo_ = words_;
        hi_ = -1;
    }

private:
    void setHit(int x) {
        hits_[static_cast<size_t>(x >> 6)] |= uint64_t{1} << (x & 63);
        noteWord(x >> 6);
    }
    void noteWord(int w) {
        lo_ = std::min(lo_, w);
        hi_ = std::max(hi_, w);
    }
    // Pixel x is bit (x & 63) of word x / 64 here; widening by one pixel is a
    // shift each way with the carry from the neighbouring word.
    static void widen(const std::vector<uint64_t> &in, std::vector<uint64_t> &out, int lo, int hi) {
        for (int w = lo; w <= hi; ++w) {
            const uint64_t cur = in[static_cast<size_t>(w)];
            const uint64_t prev = w > lo ? in[static_cast<size_t>(w - 1)] : 0;
            const uint64_t next = w < hi ? in[static_cast<size_t>(w + 1)] : 0;
            out[static_cast<size_t>(w)] = cur | (cur << 1) | (prev >> 63) | (cur >> 1) | (next << 63);
        }
    }
    // Mask rows put x = 0 in bit 7 of the first byte: the bits of each byte
    // of a word are reversed, all eight bytes at once, and the word is stored
    // low byte first.
    static void toMaskBytes(const std::vector<uint64_t> &words, std::vector<uint8_t> &bytes, int lo, int hi) {
        for (int w = lo; w <= hi; ++w) {
            uint64_t v = words[static_cast<size_t>(w)];
            if (v) {
                v = ((v >> 1) & 0x5555555555555555u) | ((v & 0x5555555555555555u) << 1);
                v = ((v >> 2) & 0x3333333333333333u) | ((v & 0x3333333333333333u) << 2);
                v = ((v >> 4) & 0x0f0f0f0f0f0f0f0fu) | ((v & 0x0f0f0f0f0f0f0f0fu) << 4);
            }
            uint8_t bytesOfWord[8];
            for (int j = 0; j < 8; ++j) bytesOfWord[j] = static_cast<uint8_t>(v >> (8 * j));
            std::memcpy(bytes.data() + static_cast<size_t>(w) * 8, bytesOfWord, 8);
        }
    }

    int width_, radius_, words_;
    std::array<int, 2 * kMaxRadius + 1> halfWidth_{};
    std::vector<uint64_t> hits_;
    std::vector<std::vector<uint64_t>> widened_;  // by half width 0..radius
    std::vector<std::vector<uint8_t>> bytes_;     // the same in mask byte order
    int lo_ = 1 << 30, hi_ = -1;                  // words holding hits
};

// Sets rows [from, to) of the picture to 0.
void clear_rows(BM_GreyMap &grey, int from, int to) {
    if (from >= to) return;
    std::memset(grey.row(from), 0, static_cast<size_t>(grey.bytesPerRow()) * static_cast<size_t>(to - from));
}

// Peels k layers off the mask. Layer i + 1 is every set pixel with a
// 4-neighbour in layer i, layer 0 being the clear pixels together with row 0
// and column 0. (Labelling the pixels and sweeping once a layer comes to the
// same, since a pixel of layer i never changes while layer i + 1 is found;
// here each layer is a bit plane, worked on a byte at a time.)
void thin_mask(BM_MaskMap &mask, int k) {
    const int h = mask.height(), stride = mask.bytesPerRow(), rowBytes = (mask.width() + 7) / 8;
    if (h == 0 || rowBytes == 0) return;
    std::vector<uint8_t> valid(static_cast<size_t>(stride), 0);
    std::fill_n(valid.begin(), rowBytes, 0xff);
    if (mask.width() & 7) valid[static_cast<size_t>(rowBytes) - 1] = static_cast<uint8_t>(0xff00u >> (mask.width() & 7));

    const size_t planeBytes = static_cast<size_t>(stride) * static_cast<size_t>(h);
    std::vector<uint8_t> front(planeBytes), peeled(planeBytes);
    std::memset(mask.row(0), 0, static_cast<size_t>(stride));
    for (int y = 0; y < h; ++y) {
        uint8_t *in = mask.row(y);
        uint8_t *f = front.data() + static_cast<size_t>(y) * static_cast<size_t>(stride);
        in[0] &= 0x7f;
        for (int j = 0; j < stride; ++j) {
            in[j] &= valid[static_cast<size_t>(j)];
            f[j] = static_cast<uint8_t>(~in[j] & valid[static_cast<size_t>(j)]);
        }
    }
    const std::vector<uint8_t> none(static_cast<size_t>(stride), 0);
    for (int i = 0; i < k; ++i) {
        for (int y = 0; y < h; ++y) {
            const size_t at = static_cast<size_t>(y) * static_cast<size_t>(stride);
            const uint8_t *f = front.data() + at;
            const uint8_t *above = y > 0 ? f - stride : none.data();
            const uint8_t *below = y + 1 < h ? f + stride : none.data();
            uint8_t *in = mask.row(y);
            uint8_t *p = peeled.data() + at;
            for (int j = 0; j < rowBytes; ++j) {
                // x = 0 is the top bit: >> 1 brings each pixel its left
                // neighbour, << 1 its right one.
                const unsigned fromLeft = (f[j] >> 1) | (j > 0 ? (f[j - 1] << 7) & 0x80u : 0u);
                const unsigned fromRight = (f[j] << 1) | (j + 1 < rowBytes ? f[j + 1] >> 7 : 0u);
                const uint8_t near = static_cast<uint8_t>(fromLeft | fromRight | above[j] | below[j]);
                p[j] = in[j] & near;
                in[j] &= static_cast<uint8_t>(~near);
            }
        }
        front.swap(peeled);
    }
}

}  // namespace

void allocate_peg_mask(BM_MaskMap &mask, int width, int height, const Math::Box2d &search, int r) {
    r = std::clamp(r, 0, kMaxRadius);
    const Limits box = limits_of(search, width, height);
    if (box.hasRow(box.y0))
        mask.allocateRows(width, height, box.y0 - r, box.y1 + r);
    else
        mask.allocateRows(width, height, 0, -1);
}

bool build_peg_mask(BM_GreyMap &grey, BM_MaskMap &mask, int threshold, const Math::Box2d &search,
                    const Math::Box2d &exclusion, int r1, int r2, bool keep) {
    const int width = grey.width(), height = grey.height();
    r1 = std::clamp(r1, 0, kMaxRadius);
    r2 = std::clamp(r2, 0, kMaxRadius);
    const int r = std::max(r1, r2);
    const bool thins = r != r2 || keep;

    const Limits box = limits_of(search, width, height);
    // A mask of the picture's size is kept when it is whole, or when it
    // stores every row that a stamp can reach and no thinning, which works on
    // whole masks, follows.
    const bool whole = mask.firstRow() == 0 && mask.lastRow() == height - 1;
    const bool reaches = !box.hasRow(box.y0) ||
                         (mask.stores(std::max(box.y0 - r, 0)) && mask.stores(std::min(box.y1 + r, height - 1)));
    const bool fits = mask.width() == width && mask.height() == height && (whole || (!thins && reaches));
    if (fits)
        mask.clear();
    else
        mask.allocate(width, height);
    Limits excluded;  // empty
    if (!exclusion.isEmpty()) excluded = limits_of(exclusion, width, height);

    // Rows outside the box are cleared whole, each run of them in one go: on
    // a large scan that is most of the picture, and one long write is much
    // quicker than a row at a time.
    const bool anyRow = box.hasRow(box.y0);
    const int firstRow = anyRow ? box.y0 : height, lastRow = anyRow ? box.y1 : height - 1;
    clear_rows(grey, 0, firstRow);
    clear_rows(grey, lastRow + 1, height);

    DistinctValues values;
    DiscStamp stamp(width, r);
    for (int y = firstRow; y <= lastRow; ++y) {
        uint8_t *g = grey.row(y);
        std::memset(g, 0, static_cast<size_t>(box.x0));
        std::memset(g + box.x1 + 1, 0, static_cast<size_t>(width - box.x1 - 1));

        // The part of the row that is looked at: one span, or two around
        // the exclusion box.
        std::array<int, 4> spans{box.x0, box.x1, 1, 0};
        if (excluded.hasRow(y) && excluded.x0 <= box.x1 && excluded.x1 >= box.x0) {
            const int e0 = std::max(excluded.x0, box.x0), e1 = std::min(excluded.x1, box.x1);
            std::memset(g + e0, 0, static_cast<size_t>(e1 - e0 + 1));
            spans = {box.x0, e0 - 1, e1 + 1, box.x1};
        }
        for (int s = 0; s < 4; s += 2) {
            const int a = spans[static_cast<size_t>(s)], b = spans[static_cast<size_t>(s) + 1];
            if (a > b) continue;
            if (!values.full()) values.note(g + a, b - a + 1);
            stamp.collect(g, a, b, threshold);
        }
        stamp.stampInto(mask, y);
    }
    const bool fewValues = values.count() < 3;

    int k = r - r2;
    if (k == 0 && !keep) return fewValues;
    if (k == 0) k = 1;
    if (r >= 2 && r2 <= r - 2 && !keep) {
        for (int y = 0; y < height; ++y) {
            uint8_t *g = grey.row(y);
            const uint8_t *bits = mask.row(y);
            for (int x = 0; x < width; x += 8) {
                const unsigned byte = bits[x >> 3];
                if (byte == 0xff) continue;
                const int n = std::min(8, width - x);
                for (int b = 0; b < n; ++b)
                    if (!((byte >> (7 - b)) & 1u)) g[x + b] = 0;
            }
        }
    }
    thin_mask(mask, k);
    return fewValues;
}
