#include "suite/graphic/gr_bezier_fit.h"

#include <algorithm>
#include <cmath>

#include "suite/graphic/gr_bezier_path_operator.h"

using Math::Point2d;
using Math::Vector2d;

namespace {

// Corners are judged, and the tangents at the ends of a piece estimated, over
// this many error lengths of path on each side: far enough that the steps of
// a staircase traced along pixel edges average out, near enough to tell a
// corner from a small round shape.
constexpr double kReachPerError = 3.0;
// Newton steps on the parameters when a cubic is close to fitting (within
// twice the error); beyond that a split is the better buy.
constexpr int kNewtonSteps = 4;
// How much more a corner may turn over twice its reach and still be one;
// a round shape turns twice as much.
constexpr double kCornerGrowth = 1.5;

inline Vector2d operator*(double k, const Vector2d &v) { return {k * v.x, k * v.y}; }
inline Vector2d operator+(const Vector2d &a, const Vector2d &b) { return {a.x + b.x, a.y + b.y}; }
inline Vector2d operator-(const Vector2d &v) { return {-v.x, -v.y}; }
inline Point2d operator+(const Point2d &p, const Vector2d &v) { return {p.x + v.x, p.y + v.y}; }
inline double dot(const Vector2d &a, const Vector2d &b) { return a.x * b.x + a.y * b.y; }

inline Vector2d unit(Vector2d v) {
    v.Normalize();
    return v;
}

inline int floorDiv(int a, int b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

inline Point2d bezier(const Point2d c[4], double t) {
    const double s = 1 - t;
    const double b0 = s * s * s, b1 = 3 * s * s * t, b2 = 3 * s * t * t, b3 = t * t * t;
    return {b0 * c[0].x + b1 * c[1].x + b2 * c[2].x + b3 * c[3].x, b0 * c[0].y + b1 * c[1].y + b2 * c[2].y + b3 * c[3].y};
}

// One Newton step towards the parameter of the curve's point nearest to p,
// kept in [0, 1] so that the distance measured there is one to the curve.
inline double newtonStep(const Point2d c[4], const Point2d &p, double u) {
    const double s = 1 - u;
    const Point2d q = bezier(c, u);
    const Vector2d d1{3 * (s * s * (c[1].x - c[0].x) + 2 * s * u * (c[2].x - c[1].x) + u * u * (c[3].x - c[2].x)),
                      3 * (s * s * (c[1].y - c[0].y) + 2 * s * u * (c[2].y - c[1].y) + u * u * (c[3].y - c[2].y))};
    const Vector2d d2{6 * (s * (c[2].x - 2 * c[1].x + c[0].x) + u * (c[3].x - 2 * c[2].x + c[1].x)),
                      6 * (s * (c[2].y - 2 * c[1].y + c[0].y) + u * (c[3].y - 2 * c[2].y + c[1].y))};
    const Vector2d off = q - p;
    const double den = dot(d1, d1) + dot(off, d2);
    if (!(std::abs(den) > 1e-12)) return u;
    return std::clamp(u - dot(off, d1) / den, 0.0, 1.0);
}

}  // namespace

GR_BezierPath2d GR_BezierFitter::Fit(const GR_BezierPath2d &path, const GR_FitOptions &options) {
    options_ = options;
    cubic_ = options.degree != 1;
    const bool exact = !(options.maxError > 0);
    tolerance2_ = exact ? 0.0 : options.maxError * options.maxError;
    reach_ = exact ? 0.0 : kReachPerError * options.maxError;

    load(path);
    if (raw_.size() < 2) {
        GR_BezierPath2d out(path.points(), cubic_ ? 3 : 1);
        out.points().resize(std::min<size_t>(out.points().size(), 1));
        return out;
    }
    rawCorner_.assign(raw_.size(), 0);
    if (!exact) findCorners();
    GR_BezierPath2dOperator::SmoothPoints(raw_, options.smoothPasses, closed_, options.smoothEnds, rawCorner_);
    arrange();

    done_.clear();
    const int end = static_cast<int>(pts_.size()) - 1;
    if (exact) {
        for (int i = 0; i < end; ++i) fitPiece(i, i + 1, unit(pts_[i + 1] - pts_[i]), unit(pts_[i] - pts_[i + 1]));
    } else if (closed_ && !corner_[0]) {
        // No corner: the seam is an ordinary join, with one tangent across it.
        const Vector2d t = centreTangent(0, 0, end);
        fitPiece(0, end, t, -t);
    } else {
        for (int first = 0, last = 1; last <= end; ++last) {
            if (!corner_[static_cast<size_t>(last)] && last != end) continue;
            fitPiece(first, last, sideTangent(first, last), sideTangent(last, first));
            first = last;
        }
    }
    GR_BezierPath2d out;
    writeTo(out);
    return out;
}

// raw_: the points without consecutive repeats; a closed path's repeated
// start left out. Fewer than 3 distinct points can't make a loop: such a
// path is fitted as an open one that happens to end where it began.
void GR_BezierFitter::load(const GR_BezierPath2d &path) {
    raw_.clear();
    for (const Point2d &p : path.points())
        if (raw_.empty() || !(raw_.back() == p)) raw_.push_back(p);
    closed_ = path.isClosed() && raw_.size() > 1 && raw_.front() == raw_.back();
    if (closed_) raw_.pop_back();
    if (closed_ && raw_.size() < 3) {
        raw_.push_back(raw_.front());
        closed_ = false;
    }
}

// A point is a corner when the chords to the points `reach_` along the path
// on either side (at most half a loop, at least the neighbours) turn by more
// than the corner angle there, by no more at any point between those two,
// and by not much more over twice that reach.
// Equal turns go to the first, so the two points of a staircase's cut corner
// make one corner.
void GR_BezierFitter::findCorners() {
    const int m = static_cast<int>(raw_.size());
    if (m < 3) return;
    arc_.resize(static_cast<size_t>(m) + 1);
    arc_[0] = 0;
    for (int i = 0; i < m; ++i) arc_[i + 1] = arc_[i] + raw_[i].GetDistance(raw_[(i + 1) % m]);
    const double total = arc_[m];
    const auto wrap = [m](int j) { return j - floorDiv(j, m) * m; };
    const auto at = [&](int j) { return closed_ ? arc_[wrap(j)] + floorDiv(j, m) * total : arc_[j]; };
    const auto point = [&](int j) { return raw_[closed_ ? wrap(j) : j]; };

    const int half = closed_ ? std::max(1, (m - 1) / 2) : m;
    const int first = closed_ ? 0 : 1, end = closed_ ? m : m - 1;
    cosTurn_.assign(static_cast<size_t>(m), 1.0);
    armBack_.assign(static_cast<size_t>(m), 0);
    armAhead_.assign(static_cast<size_t>(m), 0);
    int back = closed_ ? -half : 0, ahead = 0;
    for (int i = first; i < end; ++i) {
        ahead = std::max(ahead, i + 1);
        const int aheadMost = closed_ ? i + half : m - 1;
        while (ahead < aheadMost && at(ahead) - at(i) < reach_) ++ahead;
        back = std::max(back, closed_ ? i - half : 0);
        while (back + 1 < i && at(i) - at(back + 1) >= reach_) ++back;
        const Vector2d in = point(i) - point(back), out = point(ahead) - point(i);
        const double lengths = dot(in, in) * dot(out, out);
        cosTurn_[i] = lengths > 0 ? dot(in, out) / std::sqrt(lengths) : 1.0;
        armBack_[i] = back;
        armAhead_[i] = ahead;
    }
    // The turn between chords twice as long: at a corner it is about the
    // same, on a small round shape about twice as much.
    const auto wideTurn = [&](int i) {
        int b = armBack_[i], a = armAhead_[i];
        const int aheadMost = closed_ ? i + half : m - 1, backMost = closed_ ? i - half : 0;
        while (a < aheadMost && at(a) - at(i) < 2 * reach_) ++a;
        while (b > backMost && at(i) - at(b) < 2 * reach_) --b;
        const Vector2d in = point(i) - point(b), out = point(a) - point(i);
        const double lengths = dot(in, in) * dot(out, out);
        return std::acos(std::clamp(lengths > 0 ? dot(in, out) / std::sqrt(lengths) : 1.0, -1.0, 1.0));
    };
    const double cosLimit = std::cos(options_.cornerAngle);
    for (int i = first; i < end; ++i) {
        const double c = cosTurn_[i];
        if (!(c < cosLimit) || wideTurn(i) > kCornerGrowth * std::acos(std::max(c, -1.0))) continue;
        bool sharpest = true;
        for (int j = armBack_[i] + 1; j < armAhead_[i] && sharpest; ++j) {
            const double other = cosTurn_[static_cast<size_t>(closed_ ? wrap(j) : j)];
            sharpest = j == i || other > c || (other == c && j > i);
        }
        rawCorner_[i] = sharpest;
    }
}

// pts_: raw_ from its first corner on (a closed path's seam goes there), the
// start repeated at the end of a closed path; corner_ marks where pieces
// meet, the ends of an open path included; arc_ the length up to each point.
void GR_BezierFitter::arrange() {
    const size_t m = raw_.size();
    size_t start = 0;
    if (closed_)
        start = static_cast<size_t>(std::find(rawCorner_.begin(), rawCorner_.end(), 1) - rawCorner_.begin()) % m;
    pts_.clear();
    corner_.clear();
    for (size_t k = 0; k < m; ++k) {
        pts_.push_back(raw_[(start + k) % m]);
        corner_.push_back(rawCorner_[(start + k) % m]);
    }
    if (closed_) {
        pts_.push_back(pts_.front());
        corner_.push_back(corner_.front());
    } else {
        corner_.front() = corner_.back() = 1;
    }
    arc_.resize(pts_.size());
    arc_[0] = 0;
    for (size_t i = 1; i < pts_.size(); ++i) arc_[i] = arc_[i - 1] + pts_[i - 1].GetDistance(pts_[i]);
}

// Fits pts_[first..last] with segments whose joins are smooth, and appends
// them to done_.
void GR_BezierFitter::fitPiece(int first, int last, Vector2d startTangent, Vector2d endTangent) {
    stack_.clear();
    piece_.clear();
    stack_.push_back({first, last, startTangent, endTangent, {}, {}});
    while (!stack_.empty()) {
        Segment s = stack_.back();
        stack_.pop_back();
        const Attempt a = attempt(s);
        if (a.fits) {
            s.c1 = a.c1, s.c2 = a.c2;
            piece_.push_back(s);
            continue;
        }
        const Vector2d t = cubic_ ? centreTangent(a.worst, first, last) : Vector2d{};
        // The left half goes on top, so segments come off in path order.
        stack_.push_back({a.worst, s.last, t, s.endTangent, {}, {}});
        stack_.push_back({s.first, a.worst, s.startTangent, -t, {}, {}});
    }
    // Splitting at the worst point often cuts where no cut was needed: join
    // neighbours again where one segment fits both.
    size_t kept = 0;
    for (size_t i = 1; i < piece_.size(); ++i) {
        Segment joined{piece_[kept].first, piece_[i].last, piece_[kept].startTangent, piece_[i].endTangent, {}, {}};
        const Attempt a = attempt(joined);
        if (a.fits) {
            joined.c1 = a.c1, joined.c2 = a.c2;
            piece_[kept] = joined;
        } else {
            piece_[++kept] = piece_[i];
        }
    }
    done_.insert(done_.end(), piece_.begin(), piece_.begin() + static_cast<std::ptrdiff_t>(kept + 1));
}

GR_BezierFitter::Attempt GR_BezierFitter::attempt(const Segment &s) {
    if (s.last - s.first == 1) {
        // Nothing between the ends: one segment fits, straight as far as the
        // tangents allow.
        const Point2d &p0 = pts_[s.first], &p3 = pts_[s.last];
        const double third = p0.GetDistance(p3) / 3;
        return {true, s.first, p0 + third * s.startTangent, p3 + third * s.endTangent};
    }
    return cubic_ ? attemptCubic(s) : attemptLine(s);
}

GR_BezierFitter::Attempt GR_BezierFitter::attemptLine(const Segment &s) {
    const Math::Segment2d chord{pts_[s.first], pts_[s.last]};
    double worst2 = -1;
    int worst = s.first + 1;
    for (int i = s.first + 1; i < s.last; ++i) {
        const double d2 = chord.GetDistanceSq(pts_[i]);
        if (d2 > worst2) worst2 = d2, worst = i;
    }
    return {worst2 <= tolerance2_, worst, {}, {}};
}

// Least squares for the two control arm lengths along the given tangents,
// the points at their chord-length parameters (then Newton-refined ones).
GR_BezierFitter::Attempt GR_BezierFitter::attemptCubic(const Segment &s) {
    const int n = s.last - s.first;
    const Point2d *p = pts_.data() + s.first;
    const Vector2d t1 = s.startTangent, t2 = s.endTangent;
    const double span = arc_[s.last] - arc_[s.first];
    u_.resize(static_cast<size_t>(n) + 1);
    for (int i = 1; i < n; ++i) u_[i] = (arc_[s.first + i] - arc_[s.first]) / span;

    Point2d c[4] = {p[0], {}, {}, p[n]};
    const double chord = p[0].GetDistance(p[n]);
    const auto solve = [&] {
        double c00 = 0, c01 = 0, c11 = 0, x0 = 0, x1 = 0;
        for (int i = 1; i < n; ++i) {
            const double u = u_[i], v = 1 - u;
            const double b0 = v * v * v, b1 = 3 * v * v * u, b2 = 3 * v * u * u, b3 = u * u * u;
            const Vector2d rest{p[i].x - (p[0].x * (b0 + b1) + p[n].x * (b2 + b3)),
                                p[i].y - (p[0].y * (b0 + b1) + p[n].y * (b2 + b3))};
            c00 += b1 * b1, c01 += b1 * b2, c11 += b2 * b2;
            x0 += b1 * dot(rest, t1), x1 += b2 * dot(rest, t2);
        }
        c01 *= dot(t1, t2);
        const double det = c00 * c11 - c01 * c01;
        double a1 = 0, a2 = 0;
        if (std::abs(det) > 1e-12 * c00 * c11) {
            a1 = (x0 * c11 - x1 * c01) / det;
            a2 = (c00 * x1 - c01 * x0) / det;
        }
        // Arms that point backwards, or reach past the length of the points
        // they fit, make loops between the points: fall back to a third of
        // the chord and let the error decide.
        const double least = 1e-6 * chord;
        if (!(a1 >= least && a2 >= least && a1 <= span && a2 <= span)) a1 = a2 = chord / 3;
        c[1] = p[0] + a1 * t1;
        c[2] = p[n] + a2 * t2;
    };
    int worst = s.first + 1;
    const auto error = [&] {
        double worst2 = -1;
        for (int i = 1; i < n; ++i) {
            const Point2d q = bezier(c, u_[i]);
            const double d2 = (q.x - p[i].x) * (q.x - p[i].x) + (q.y - p[i].y) * (q.y - p[i].y);
            if (d2 > worst2) worst2 = d2, worst = s.first + i;
        }
        return worst2;
    };
    solve();
    double e = error();
    for (int step = 0; step < kNewtonSteps && e > tolerance2_ && e <= 4 * tolerance2_; ++step) {
        for (int i = 1; i < n; ++i) u_[i] = newtonStep(c, p[i], u_[i]);
        solve();
        e = error();
    }
    return {e <= tolerance2_, worst, c[1], c[2]};
}

// Unit direction of the path leaving pts_[from] towards pts_[limit], from the
// points within reach_ of it.
Vector2d GR_BezierFitter::sideTangent(int from, int limit) const {
    const int step = limit > from ? 1 : -1;
    Vector2d sum;
    for (int j = from + step;; j += step) {
        sum = sum + (pts_[j] - pts_[from]);
        if (j == limit || std::abs(arc_[j] - arc_[from]) >= reach_) break;
    }
    if (sum.x == 0 && sum.y == 0) sum = pts_[limit] - pts_[from];
    return unit(sum);
}

// Unit direction of the path through pts_[at], from the points within reach_
// on both sides, inside [low, high]; a closed path without corners is read
// across its seam.
Vector2d GR_BezierFitter::centreTangent(int at, int low, int high) const {
    const int m = static_cast<int>(pts_.size()) - 1;
    const bool around = closed_ && !corner_[0];
    const auto wrap = [m](int j) { return j - floorDiv(j, m) * m; };
    const auto length = [&](int j) { return around ? arc_[wrap(j)] + floorDiv(j, m) * arc_[m] : arc_[j]; };
    Vector2d sum;
    for (int q = 1;; ++q) {
        const int ahead = at + q, back = at - q;
        if (around ? 2 * q > m : ahead > high || back < low) break;
        sum = sum + (pts_[around ? wrap(ahead) : ahead] - pts_[around ? wrap(back) : back]);
        if (length(ahead) - length(back) >= 2 * reach_) break;
    }
    if (sum.x == 0 && sum.y == 0) sum = pts_[high] - pts_[low];
    return unit(sum);
}

void GR_BezierFitter::writeTo(GR_BezierPath2d &out) const {
    out.setDegree(cubic_ ? 3 : 1);
    out.reserve(static_cast<int>(done_.size()) * (cubic_ ? 3 : 1) + 1);
    out.append(pts_[done_.front().first]);
    for (const Segment &s : done_) {
        if (cubic_) {
            out.append(s.c1);
            out.append(s.c2);
        }
        out.append(pts_[s.last]);
    }
}
