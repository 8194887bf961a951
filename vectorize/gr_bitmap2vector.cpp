#include "vectorize/gr_bitmap2vector.h"

#include <algorithm>
#include <cmath>

namespace {

// Directions: left, down, right, up.
constexpr int kDx[4] = {-1, 0, 1, 0};
constexpr int kDy[4] = {0, 1, 0, -1};
// The pixel that owns the edge of a pixel on a side, and the mark bit of it:
// 2 for the horizontal edge under a pixel, 1 for the vertical edge at its right.
constexpr int kOwnerDx[4] = {-1, 0, 0, 0};
constexpr int kOwnerDy[4] = {0, 0, 0, -1};
constexpr unsigned kMarkBit[4] = {1, 2, 1, 2};

}  // namespace

// Points of a walk: the first walk grows the front, the reverse walk the back.
template <typename P>
struct GR_Bitmap2Vector<P>::Walk {
    std::vector<Math::Point2d> front;  // in reverse order
    std::vector<Math::Point2d> back;
    void add(bool reverse, Pixel a, Pixel b) {
        const Math::Point2d mid{(a.x + b.x) * 0.5, (a.y + b.y) * 0.5};
        (reverse ? back : front).push_back(mid);
    }
};

template <typename P>
GR_Bitmap2Vector<P>::GR_Bitmap2Vector(Map &source, const CColorList &colors, BM_MarkMap *marks)
    : source_(source), colors_(colors), marks_(marks) {
    if (!marks_) {
        ownMarks_ = std::make_unique<BM_MarkMap>();
        marks_ = ownMarks_.get();
    }
}

template <typename P>
void GR_Bitmap2Vector<P>::setModifiedBox(int x0, int y0, int x1, int y1) {
    restricted_ = true;
    boxX0_ = x0, boxY0_ = y0, boxX1_ = x1, boxY1_ = y1;
}

template <typename P>
bool GR_Bitmap2Vector<P>::marked(Pixel p, int d) const {
    return marks_->get(p.x + kOwnerDx[d], p.y + kOwnerDy[d]) & kMarkBit[d];
}

template <typename P>
void GR_Bitmap2Vector<P>::mark(Pixel p, int d) {
    const int x = p.x + kOwnerDx[d], y = p.y + kOwnerDy[d];
    marks_->set(x, y, marks_->get(x, y) | kMarkBit[d]);
}

template <typename P>
std::vector<GR_StrokeData> GR_Bitmap2Vector<P>::run() {
    std::vector<GR_StrokeData> strokes;
    const int w = source_.width(), h = source_.height();
    int x0 = 0, y0 = 0, x1 = w, y1 = h;
    if (restricted_) {
        x0 = std::max(boxX0_ - 2, 0), y0 = std::max(boxY0_ - 2, 0);
        x1 = std::min(boxX1_ + 2, w), y1 = std::min(boxY1_ + 2, h);
    }
    if (x1 - x0 < 1 || y1 - y0 < 1) return strokes;
    if (marks_->width() != w || marks_->height() != h) marks_->allocate(w, h);
    else marks_->clear();

    // No outline may reach the edge of the box: the walk then never looks
    // outside the bitmap.
    // Only set pixels are written, so that the untouched pages of a mostly
    // empty bitmap stay untouched.
    auto clear = [this](int x, int y) {
        if (source_.get(x, y)) source_.set(x, y, 0);
    };
    for (int y = y0; y < y1; ++y) {
        if (y < y0 + 2 || y >= y1 - 2) {
            for (int x = x0; x < x1; ++x) clear(x, y);
            continue;
        }
        for (int x : {x0, x0 + 1, x1 - 2, x1 - 1})
            if (x >= x0 && x < x1) clear(x, y);
    }

    for (int y = y0; y + 1 < y1; ++y) {
        const uint8_t *row = source_.row(y);
        for (int x = x0; x < x1; ++x) {
            if constexpr (P::kBits == 1) {
                // Every outline has an edge with ink above it: a row byte
                // with no ink starts nothing.
                if ((x & 7) == 0 && row[x >> 3] == 0 && x + 8 <= x1) {
                    x += 7;
                    continue;
                }
            }
            const Pixel a{x, y};
            const unsigned v = value(a);
            if (v != value({x, y + 1}) && !marked(a, 1)) follow(a, {x, y + 1}, 1, strokes);
            if constexpr (P::kBits == 24) {
                if (x + 1 < x1 && v != value({x + 1, y}) && !marked(a, 2)) follow(a, {x + 1, y}, 2, strokes);
            }
        }
    }
    return strokes;
}

template <typename P>
void GR_Bitmap2Vector<P>::follow(Pixel a, Pixel b, int d, std::vector<GR_StrokeData> &out) {
    mark(a, d);
    mark(b, (d + 2) & 3);
    Walk points;
    points.back.push_back({(a.x + b.x) * 0.5, (a.y + b.y) * 0.5});
    // The first walk goes along the edge with the sides swapped; its points
    // are laid in front, so the stroke runs the other way.
    const bool chain = walk(b, a, (d + 2) & 3, false, points);
    if (chain) {
        walk(a, b, d, true, points);
    } else {
        points.front.push_back(points.back.front());
    }
    finish(points, a, b, out);
}

template <typename P>
bool GR_Bitmap2Vector<P>::walk(Pixel a, Pixel b, int d, bool reverse, Walk &points) {
    const unsigned va = value(a), vb = value(b);
    for (;;) {
        const int t = (d + 3) & 3;
        const Pixel a2{a.x + kDx[t], a.y + kDy[t]};
        const Pixel b2{b.x + kDx[t], b.y + kDy[t]};
        const unsigned v2a = value(a2), v2b = value(b2);
        const bool straight = v2a == va && v2b == vb && !marked(a2, d);
        const bool toA = v2a == vb && !marked(a, t);
        const bool toB = v2b == va && !marked(b, t);
        if (!straight && v2a != vb && v2b != va && !(v2a == va && v2b == vb)) {
            // Three values meet: the chain ends at the corner.
            points.add(reverse, b2, a);
            return true;
        }
        if (straight) {
            a = a2, b = b2;
        } else if (toA && toB) {
            // A checkerboard. Turning to b joins a with its diagonal, turning
            // to a joins b with its own. The side that the first walk had as
            // a decides: set (ink, a colour) joins, black does not; the
            // reverse walk has that side as b, so both ends of a chain join
            // the same pixels.
            const bool takeB = reverse ? vb == 0 : va != 0;
            if (takeB) a = b2, d = (d + 1) & 3;
            else b = a2, d = t;
        } else if (toB) {
            a = b2, d = (d + 1) & 3;
        } else if (toA) {
            b = a2, d = t;
        } else {
            return false;
        }
        mark(a, d);
        mark(b, (d + 2) & 3);
        points.add(reverse, a, b);
    }
}

template <typename P>
void GR_Bitmap2Vector<P>::finish(const Walk &points, Pixel a, Pixel b, std::vector<GR_StrokeData> &out) const {
    GR_BezierPath2d path;
    path.reserve(static_cast<int>(points.front.size() + points.back.size()));
    auto append = [&](const Math::Point2d &p) {
        const Math::Point2d q{std::round(p.x * 2.0) * 0.5 + 0.5 + originX_, std::round(p.y * 2.0) * 0.5 + 0.5 + originY_};
        if (path.isEmpty() || !(path.lastPoint() == q)) path.append(q);
    };
    for (auto it = points.front.rbegin(); it != points.front.rend(); ++it) append(*it);
    for (const Math::Point2d &p : points.back) append(p);
    if (path.pointCount() < 2) return;

    GR_StrokeData stroke(std::move(path));
    const unsigned va = value(a), vb = value(b);
    if constexpr (P::kBits == 1) {
        if (va) stroke.SetColor(0, colors_.at(1));
        if (vb) stroke.SetColor(1, colors_.at(1));
    } else {
        stroke.SetColor(0, colors_.at(va));
        stroke.SetColor(1, colors_.at(vb));
    }
    out.push_back(std::move(stroke));
}

template class GR_Bitmap2Vector<BM_Pixel1>;
template class GR_Bitmap2Vector<BM_PixelBgr24>;
