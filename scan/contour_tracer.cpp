#include "scan/contour_tracer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

// Directions: 0 left, 1 down, 2 right, 3 up.
constexpr int kStepX[4] = {-1, 0, 1, 0};
constexpr int kStepY[4] = {0, 1, 0, -1};

// Most rows of a scan's mask are empty: they are read 64 bytes at a time.
bool row_is_empty(const uint8_t *r, int bytes) {
    int i = 0;
#if defined(__SSE2__)
    for (; i + 64 <= bytes; i += 64) {
        const auto *v = reinterpret_cast<const __m128i *>(r + i);
        const __m128i any = _mm_or_si128(_mm_or_si128(_mm_loadu_si128(v), _mm_loadu_si128(v + 1)),
                                         _mm_or_si128(_mm_loadu_si128(v + 2), _mm_loadu_si128(v + 3)));
        if (_mm_movemask_epi8(_mm_cmpeq_epi8(any, _mm_setzero_si128())) != 0xffff) return false;
    }
#endif
    for (; i + 8 <= bytes; i += 8) {
        uint64_t v;
        std::memcpy(&v, r + i, 8);
        if (v) return false;
    }
    for (; i < bytes; ++i)
        if (r[i]) return false;
    return true;
}

// The rows that hold set pixels once the frame is cleared.
struct SetRows {
    int first = 0, last = -1;
    bool empty() const { return first > last; }
};

// Clears the outer two pixels of every row and column, and the padding bits
// after the last pixel, so that no boundary reaches the picture's edge, and
// finds the first and last rows left with set pixels. One pass over the
// stored rows does both: an empty row has no frame to clear.
SetRows clear_frame(BM_MaskMap &mask) {
    const int w = mask.width(), h = mask.height(), stride = mask.bytesPerRow();
    SetRows rows;
    if (w < 5 || h < 5) {
        mask.clear();
        return rows;
    }
    for (int y : {0, 1, h - 2, h - 1})
        if (mask.stores(y)) std::memset(mask.row(y), 0, static_cast<size_t>(stride));
    const int lastKept = w - 3;  // columns w - 2 and beyond go
    const int keepByte = lastKept >> 3;
    const uint8_t keepBits = static_cast<uint8_t>(0xff00u >> ((lastKept & 7) + 1));
    rows.first = h;
    for (int y = std::max(2, mask.firstRow()); y <= std::min(h - 3, mask.lastRow()); ++y) {
        uint8_t *r = mask.row(y);
        if (row_is_empty(r, stride)) continue;
        r[0] &= 0x3f;
        r[keepByte] &= keepBits;
        std::memset(r + keepByte + 1, 0, static_cast<size_t>(stride - keepByte - 1));
        if (row_is_empty(r, keepByte + 1)) continue;
        rows.first = std::min(rows.first, y);
        rows.last = y;
    }
    return rows;
}

// One boundary walk over the mask. A pixel is addressed by its bit index
// in the mask's rows, so a step is one addition. The walk keeps A, the pixel
// on the side of the boundary where the start's lower pixel lies, and the
// direction w of walking; B, the pixel across the crack, is A's neighbour in
// direction w + 1.
class BoundaryWalker {
public:
    BoundaryWalker(const BM_MaskMap &mask, BM_MaskMap &walked)
        : top_(std::max(mask.firstRow() - 1, 0)), bits_(mask.row(top_)), walked_(walked.row(walked.firstRow())),
          walkedTop_(walked.firstRow()), rowBits_(static_cast<std::ptrdiff_t>(mask.bytesPerRow()) * 8),
          step_{-1, rowBits_, 1, -rowBits_} {}

    bool crackUnderWalked(int x, int y) const { return bit(walked_, at(x, y - walkedTop_)); }

    // Walks the boundary through the crack between (x, y) and (x, y + 1),
    // marking the cracks under pixels that it goes along, and returns its
    // crack midpoints from the last walked to the start, closed on the start.
    GR_BezierPath2d follow(int x, int y) {
        int ax = x, ay = y + 1, w = 2;
        std::ptrdiff_t a = at(ax, ay - top_);
        const std::ptrdiff_t startA = a;
        const unsigned a0 = bit(bits_, a);
        // The walked crack lies under B when walking right, under A when
        // walking left; the walked bits' rows start elsewhere than the mask's.
        const std::ptrdiff_t toWalked = static_cast<std::ptrdiff_t>(top_ - walkedTop_) * rowBits_;
        points_.clear();
        auto note = [&] {
            // Crack midpoints lie on half pixels, already on the 1/64 grid
            // that polygon points are rounded to; the mask's origin is 0.
            points_.push_back({(2 * ax + kStepX[(w + 1) & 3] + 1) * 0.5, (2 * ay + kStepY[(w + 1) & 3] + 1) * 0.5});
            if (!(w & 1)) setBit(walked_, a + toWalked - (w == 2 ? rowBits_ : 0));
        };
        note();
        for (;;) {
            // A' and B' one step on; both are read, then one of three moves.
            const std::ptrdiff_t na = a + step_[w];
            const std::ptrdiff_t nb = na + step_[(w + 1) & 3];
            const unsigned da = bit(bits_, na) ^ a0, db = bit(bits_, nb) ^ a0;
            if (!da && db) {  // straight on
                a = na, ax += kStepX[w], ay += kStepY[w];
            } else if (!da || (!db && a0)) {
                // Turn towards B. With four pixels in a checkerboard (da and
                // not db) set pixels touching at the corner stay one region.
                a = nb, ax += kStepX[w] + kStepX[(w + 1) & 3], ay += kStepY[w] + kStepY[(w + 1) & 3];
                w = (w + 1) & 3;
            } else {
                w = (w + 3) & 3;  // turn towards A: A stays
            }
            // Every crack has one successor, so the walk comes back to its
            // start and to no other crack already walked.
            if (a == startA && w == 2) break;
            note();
        }
        points_.push_back(points_.front());
        std::reverse(points_.begin(), points_.end());
        return GR_BezierPath2d(std::move(points_));
    }

private:
    std::ptrdiff_t at(int x, int row) const { return static_cast<std::ptrdiff_t>(row) * rowBits_ + x; }
    static unsigned bit(const uint8_t *bits, std::ptrdiff_t i) { return (bits[i >> 3] >> (7 - (i & 7))) & 1u; }
    static void setBit(uint8_t *bits, std::ptrdiff_t i) { bits[i >> 3] |= static_cast<uint8_t>(0x80u >> (i & 7)); }

    int top_;                  // the mask row that bit index 0 is in
    const uint8_t *bits_;
    uint8_t *walked_;
    int walkedTop_;
    std::ptrdiff_t rowBits_;
    std::ptrdiff_t step_[4];
    std::vector<Math::Point2d> points_;
};

// Eight mask bytes from `p` as one word whose top bit is the first pixel;
// bytes past `bytes` read as clear.
uint64_t word_at(const uint8_t *p, int bytes) {
    uint64_t v = 0;
    if (bytes >= 8)
        std::memcpy(&v, p, 8);
    else
        std::memcpy(&v, p, static_cast<size_t>(bytes));
    return __builtin_bswap64(v);
}

// A byte of 0xff for each byte of v that isn't 0.
uint64_t nonzero_bytes(uint64_t v) {
    constexpr uint64_t kLow7 = 0x7f7f7f7f7f7f7f7fu;
    const uint64_t high = (((v & kLow7) + kLow7) | v) & ~kLow7;
    return (high >> 7) * 0xffu;
}

}  // namespace

void trace_contours(ContourTracer &tracer, std::vector<GR_BezierPath2d> &out) {
    if (!tracer.mask) return;
    BM_MaskMap &mask = *tracer.mask;
    const int width = mask.width(), height = mask.height();
    const SetRows rows = clear_frame(mask);
    if (rows.empty()) return;
    const int first = rows.first, last = rows.last;
    const int rowBytes = (width + 7) / 8;

    // Walks go along the cracks under the rows from the one above the first
    // set row to the last set row: walked bits are kept for those rows alone,
    // and bits already there are cleared instead of made anew.
    BM_MaskMap &walked = tracer.walked;
    const int m0 = first - 1, m1 = last;
    if (walked.width() != width || walked.height() != height || !walked.stores(m0) || !walked.stores(m1))
        walked.allocateRows(width, height, m0, m1);
    else
        std::memset(walked.row(m0), 0, static_cast<size_t>(walked.bytesPerRow()) * static_cast<size_t>(m1 - m0 + 1));

    int x0 = 0, x1 = width - 1, y0 = first, y1 = last;
    if (tracer.limited) {
        x0 = std::max(x0, static_cast<int>(std::max(std::floor(tracer.limit.x0), -1.0)));
        x1 = std::min(x1, static_cast<int>(std::min(std::ceil(tracer.limit.x1), static_cast<double>(width))));
        y0 = std::max(y0, static_cast<int>(std::max(std::floor(tracer.limit.y0), -1.0)));
        y1 = std::min(y1, static_cast<int>(std::min(std::ceil(tracer.limit.y1), static_cast<double>(height))));
    }
    if (x0 > x1) return;

    BoundaryWalker walker(mask, walked);
    // A boundary starts at the first crack, in row order and from the left,
    // between a pixel and the one under it that differ, in a byte of the
    // upper row that isn't clear: every region has a bottom edge in a row
    // where it has set pixels, so no boundary is lost by passing over the
    // clear bytes. Eight bytes are looked at together.
    const int firstWord = (x0 >> 3) & ~7;
    for (int y = y0; y <= y1; ++y) {
        const uint8_t *upper = mask.row(y);
        const uint8_t *lower = mask.row(y + 1);
        const uint8_t *done = walked.row(y);
        for (int i = firstWord; i <= (x1 >> 3); i += 8) {
            if ((i & 63) == 0 && i + 64 <= rowBytes && row_is_empty(upper + i, 64)) {
                i += 56;
                continue;
            }
            const uint64_t u = word_at(upper + i, rowBytes - i);
            if (!u) continue;
            uint64_t starts = (u ^ word_at(lower + i, rowBytes - i)) & nonzero_bytes(u);
            starts &= ~word_at(done + i, rowBytes - i);
            while (starts) {
                const int bit = 63 - __builtin_clzll(starts);
                starts &= ~(uint64_t{1} << bit);
                const int x = i * 8 + (63 - bit);
                if (x < x0 || x > x1) continue;
                if (walker.crackUnderWalked(x, y)) continue;  // by a walk begun in this word
                GR_BezierPath2d path = walker.follow(x, y);
                if (path.pointCount() >= 2) out.push_back(std::move(path));
            }
        }
    }
}
