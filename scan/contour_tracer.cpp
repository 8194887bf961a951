#include "scan/contour_tracer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
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
// mask does both: an empty row has no frame to clear.
SetRows clear_frame(BM_MaskMap &mask) {
    const int w = mask.width(), h = mask.height(), stride = mask.bytesPerRow();
    SetRows rows;
    if (w < 5 || h < 5) {
        mask.clear();
        return rows;
    }
    for (int y : {0, 1, h - 2, h - 1}) std::memset(mask.row(y), 0, static_cast<size_t>(stride));
    const int lastKept = w - 3;  // columns w - 2 and beyond go
    const int keepByte = lastKept >> 3;
    const uint8_t keepBits = static_cast<uint8_t>(0xff00u >> ((lastKept & 7) + 1));
    rows.first = h;
    for (int y = 2; y < h - 2; ++y) {
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

// One boundary walk over the mask. The marks hold two bits a pixel: 2 when
// the crack under it was walked, 1 when the crack to its right was.
class BoundaryWalker {
public:
    // `marks` row 0 stands for mask row `marksTop`.
    BoundaryWalker(const BM_MaskMap &mask, BM_MarkMap &marks, int marksTop)
        : mask_(mask.data()), maskStride_(mask.bytesPerRow()), marks_(marks.data()), markStride_(marks.bytesPerRow()),
          marksTop_(marksTop) {}

    bool crackUnderWalked(int x, int y) const { return markOf(x, y) & 2u; }

    // Walks the boundary through the crack between (x, y) and (x, y + 1) and
    // returns its crack midpoints, last walked first, closed on the start.
    GR_BezierPath2d follow(int x, int y) {
        // Doubled midpoints, so that they stay integers during the walk.
        points_.clear();
        int ax = x, ay = y + 1, bx = x, by = y;
        const unsigned a0 = value(ax, ay), b0 = value(bx, by);
        int w = 2;  // (direction from A to B, up) + 3
        mark(bx, by, 1);
        points_.push_back({ax + bx, ay + by});
        for (;;) {
            const int nax = ax + kStepX[w], nay = ay + kStepY[w];
            const int nbx = bx + kStepX[w], nby = by + kStepY[w];
            const unsigned a = value(nax, nay), b = value(nbx, nby);
            bool turnToB;
            if (a == a0 && b == b0) {
                if (walked(nax, nay, (w + 1) & 3)) break;
                ax = nax, ay = nay, bx = nbx, by = nby;
                mark(ax, ay, (w + 1) & 3);
                points_.push_back({ax + bx, ay + by});
                continue;
            } else if (a == b0 && b == a0) {
                // Four pixels in a checkerboard: set pixels touching at the
                // corner stay one region. The pairing of the cracks at the
                // corner is fixed by the pixels alone; when its crack was
                // walked the boundary is closed, and the other pair belongs
                // to another walk.
                turnToB = a0 != 0;
            } else {
                turnToB = b == a0;
            }
            if (turnToB) {
                if (walked(nbx, nby, (w + 2) & 3)) break;
                ax = nbx, ay = nby;
                w = (w + 1) & 3;
            } else {
                if (walked(nax, nay, (w + 2) & 3)) break;
                bx = nax, by = nay;
                w = (w + 3) & 3;
            }
            mark(ax, ay, (w + 1) & 3);
            points_.push_back({ax + bx, ay + by});
        }
        points_.push_back(points_.front());

        GR_BezierPath2d path;
        path.reserve(static_cast<int>(points_.size()));
        for (auto it = points_.rbegin(); it != points_.rend(); ++it) {
            // Crack midpoints lie on half pixels, already on the 1/64 grid
            // that polygon points are rounded to; the mask's origin is 0.
            const Math::Point2d p{it->x / 2.0 + 0.5, it->y / 2.0 + 0.5};
            if (path.isEmpty() || !(path.lastPoint() == p)) path.append(p);
        }
        return path;
    }

private:
    struct Doubled {
        int x, y;
    };

    unsigned value(int x, int y) const {
        return (mask_[static_cast<size_t>(y) * maskStride_ + static_cast<size_t>(x >> 3)] >> (7 - (x & 7))) & 1u;
    }
    size_t markAt(int x, int y) const {
        return static_cast<size_t>(y - marksTop_) * markStride_ + static_cast<size_t>(x >> 2);
    }
    uint8_t &markByte(int x, int y) { return marks_[markAt(x, y)]; }
    unsigned markOf(int x, int y) const { return (marks_[markAt(x, y)] >> (6 - 2 * (x & 3))) & 3u; }
    void addMark(int x, int y, unsigned v) { markByte(x, y) |= static_cast<uint8_t>(v << (6 - 2 * (x & 3))); }

    // The crack on side d of pixel (x, y): the left and upper cracks are
    // kept on the neighbours.
    static constexpr int kCrackX[4] = {-1, 0, 0, 0};
    static constexpr int kCrackY[4] = {0, 0, 0, -1};
    static constexpr unsigned kCrackBit[4] = {1, 2, 1, 2};
    bool walked(int x, int y, int d) const { return markOf(x + kCrackX[d], y + kCrackY[d]) & kCrackBit[d]; }
    void mark(int x, int y, int d) { addMark(x + kCrackX[d], y + kCrackY[d], kCrackBit[d]); }

    const uint8_t *mask_;
    size_t maskStride_;
    uint8_t *marks_;
    size_t markStride_;
    int marksTop_;
    std::vector<Doubled> points_;
};

}  // namespace

void trace_contours(ContourTracer &tracer, std::vector<GR_BezierPath2d> &out) {
    if (!tracer.mask) return;
    BM_MaskMap &mask = *tracer.mask;
    const int width = mask.width(), height = mask.height();
    const SetRows rows = clear_frame(mask);
    if (rows.empty()) return;
    const int first = rows.first, last = rows.last;
    const int rowBytes = (width + 7) / 8;

    // Walks touch the marks only from the row above the first set row to
    // the row below the last one: marks are kept for those rows alone, and
    // marks already there are cleared instead of made anew.
    const int m0 = std::max(first - 1, 0), m1 = std::min(last + 1, height - 1);
    BM_MarkMap &marks = tracer.marks;
    if (marks.width() != width || m0 < tracer.marksTop || m1 >= tracer.marksTop + marks.height()) {
        marks.allocate(width, m1 - m0 + 1);
        tracer.marksTop = m0;
    } else {
        std::memset(marks.row(m0 - tracer.marksTop), 0,
                    static_cast<size_t>(marks.bytesPerRow()) * static_cast<size_t>(m1 - m0 + 1));
    }

    int x0 = 0, x1 = width - 1, y0 = first, y1 = last;
    if (tracer.limited) {
        x0 = std::max(x0, static_cast<int>(std::max(std::floor(tracer.limit.x0), -1.0)));
        x1 = std::min(x1, static_cast<int>(std::min(std::ceil(tracer.limit.x1), static_cast<double>(width))));
        y0 = std::max(y0, static_cast<int>(std::max(std::floor(tracer.limit.y0), -1.0)));
        y1 = std::min(y1, static_cast<int>(std::min(std::ceil(tracer.limit.y1), static_cast<double>(height))));
    }

    BoundaryWalker walker(mask, marks, tracer.marksTop);
    // Every region has a bottom edge in a row where it has set pixels, so a
    // zero byte of the row being read can be passed over whole.
    for (int y = y0; y <= y1; ++y) {
        const uint8_t *upper = mask.row(y);
        const uint8_t *lower = mask.row(y + 1);
        for (int i = x0 >> 3; i <= (x1 >> 3); ++i) {
            if ((i & 7) == 0 && i + 8 <= rowBytes) {
                uint64_t eight;
                std::memcpy(&eight, upper + i, 8);
                if (!eight) {
                    i += 7;
                    continue;
                }
            }
            if (!upper[i]) continue;
            unsigned diff = static_cast<unsigned>(upper[i] ^ lower[i]);
            while (diff) {
                const int bit = 31 - __builtin_clz(diff);  // leftmost pixel first
                diff &= ~(1u << bit);
                const int x = i * 8 + (7 - bit);
                if (x < x0 || x > x1) continue;
                if (walker.crackUnderWalked(x, y)) continue;
                GR_BezierPath2d path = walker.follow(x, y);
                if (path.pointCount() >= 2) out.push_back(std::move(path));
            }
        }
    }
}
