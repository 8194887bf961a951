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
// A cubic has four degrees of freedom; this many samples of a long run of
// points judge a fit about as well as all of them, at a fraction of the cost.
// A fit is accepted only once all points are checked.
constexpr int kSamples = 32;
// The root mean square distance of a segment's points, as a part of the
// error: what keeps the curve on the points rather than beside them.
constexpr double kMeanPerError = 0.4;
// How much more a corner may turn over twice its reach and still be one;
// a round shape turns twice as much.
constexpr double kCornerGrowth = 1.5;

inline Vector2d operator*(double k, const Vector2d &v) { return {k * v.x, k * v.y}; }
inline Vector2d operator+(const Vector2d &a, const Vector2d &b) { return {a.x + b.x, a.y + b.y}; }
inline Vector2d operator-(const Vector2d &v) { return {-v.x, -v.y}; }
inline Point2d operator+(const Point2d &p, const Vector2d &v) { return {p.x + v.x, p.y + v.y}; }
inline double dot(const Vector2d &a, const Vector2d &b) { return a.x * b.x + a.y * b.y; }

// std::hypot guards against overflow at several times the cost; world
// coordinates are far from that.
inline double distance(const Point2d &a, const Point2d &b) {
    return std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y));
}

inline Vector2d unit(Vector2d v) {
    v.Normalize();
    return v;
}

inline int floorDiv(int a, int b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

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
    const int half = closed_ ? std::max(1, (m - 1) / 2) : m;
    // Arms reach at most half a loop: a path index j runs from -m to 2m.
    arc_.resize(static_cast<size_t>(m) + 1);
    arc_[0] = 0;
    for (int i = 1; i <= m; ++i) arc_[i] = arc_[i - 1] + distance(raw_[i - 1], raw_[i < m ? i : 0]);
    const double total = arc_[m];
    const auto wrap = [m](int j) { return j < 0 ? j + m : j >= m ? j - m : j; };
    const auto at = [&](int j) { return j < 0 ? arc_[j + m] - total : j >= m ? arc_[j - m] + total : arc_[j]; };
    const auto point = [&](int j) -> const Point2d & { return raw_[wrap(j)]; };

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
            const double other = cosTurn_[static_cast<size_t>(wrap(j))];
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
    pts_.assign(raw_.begin() + static_cast<std::ptrdiff_t>(start), raw_.end());
    pts_.insert(pts_.end(), raw_.begin(), raw_.begin() + static_cast<std::ptrdiff_t>(start));
    corner_.assign(rawCorner_.begin() + static_cast<std::ptrdiff_t>(start), rawCorner_.end());
    corner_.insert(corner_.end(), rawCorner_.begin(), rawCorner_.begin() + static_cast<std::ptrdiff_t>(start));
    if (closed_) {
        pts_.push_back(pts_.front());
        corner_.push_back(corner_.front());
    } else {
        corner_.front() = corner_.back() = 1;
    }
    arc_.resize(pts_.size());
    arc_[0] = 0;
    for (size_t i = 1; i < pts_.size(); ++i) arc_[i] = arc_[i - 1] + distance(pts_[i - 1], pts_[i]);
}

// Fits pts_[first..last] with segments whose joins are smooth, and appends
// them to done_: split at the worst point until every part fits, then joined
// again where one segment fits two neighbours, since a cut at the worst point
// is often one that was not needed.
void GR_BezierFitter::fitPiece(int first, int last, Vector2d startTangent, Vector2d endTangent) {
    const size_t begin = done_.size();
    stack_.clear();
    stack_.push_back({first, last, startTangent, endTangent, {}, {}});
    while (!stack_.empty()) {
        Segment s = stack_.back();
        stack_.pop_back();
        const Attempt a = attempt(s);
        if (a.fits) {
            s.c1 = a.c1, s.c2 = a.c2;
            done_.push_back(s);
            continue;
        }
        const Vector2d t = cubic_ ? centreTangent(a.worst, first, last) : Vector2d{};
        // The left part goes on top, so that parts come off in path order.
        stack_.push_back({a.worst, s.last, t, s.endTangent, {}, {}});
        stack_.push_back({s.first, a.worst, s.startTangent, -t, {}, {}});
    }
    size_t kept = begin;
    for (size_t i = begin + 1; i < done_.size(); ++i) {
        Segment joined{done_[kept].first, done_[i].last, done_[kept].startTangent, done_[i].endTangent, {}, {}};
        const Attempt a = attempt(joined);
        if (a.fits) {
            joined.c1 = a.c1, joined.c2 = a.c2;
            done_[kept] = joined;
        } else {
            done_[++kept] = done_[i];
        }
    }
    done_.resize(kept + 1);
}

GR_BezierFitter::Attempt GR_BezierFitter::attempt(const Segment &s) {
    if (s.last - s.first == 1) {
        // Nothing between the ends: one segment fits, straight as far as the
        // tangents allow.
        const Point2d &p0 = pts_[s.first], &p3 = pts_[s.last];
        const double third = distance(p0, p3) / 3;
        return {true, s.first, p0 + third * s.startTangent, p3 + third * s.endTangent};
    }
    if (pts_[s.first] == pts_[s.last]) {
        // A loop: no one segment makes it, however small; split at half its length.
        const auto half = std::lower_bound(arc_.begin() + s.first + 1, arc_.begin() + s.last - 1,
                                           (arc_[s.first] + arc_[s.last]) / 2);
        return {false, static_cast<int>(half - arc_.begin()), {}, {}};
    }
    return cubic_ ? attemptCubic(s) : attemptLine(s);
}

// The chord from end to end, judged by the distance of every point to it.
GR_BezierFitter::Attempt GR_BezierFitter::attemptLine(const Segment &s) {
    const Point2d a = pts_[s.first];
    const Vector2d d = pts_[s.last] - a;
    const double length2 = dot(d, d), inverse = length2 > 0 ? 1 / length2 : 0;
    double worst2 = -1;
    int worst = s.first + 1;
    for (int i = s.first + 1; i < s.last; ++i) {
        const Vector2d v = pts_[i] - a;
        const double t = std::clamp(dot(v, d) * inverse, 0.0, 1.0);
        const double dx = v.x - t * d.x, dy = v.y - t * d.y, d2 = dx * dx + dy * dy;
        if (d2 > worst2) worst2 = d2, worst = i;
    }
    return {worst2 <= tolerance2_, worst, {}, {}};
}

// Least squares for the two control arm lengths along the given tangents,
// on the sampled points at their chord-length parameters; then, while the
// fit is near, Newton steps on the parameters and least squares again. A fit
// of samples counts only once every point between them is near too.
GR_BezierFitter::Attempt GR_BezierFitter::attemptCubic(const Segment &s) {
    const int n = s.last - s.first;
    const Point2d *p = pts_.data() + s.first;
    const double *arc = arc_.data() + s.first;
    const double span = arc[n] - arc[0];
    const int stride = std::max(1, n / kSamples);
    u_.resize(static_cast<size_t>(n) + 1);
    u_[0] = 0, u_[n] = 1;
    for (int i = stride; i < n; i += stride) u_[i] = (arc[i] - arc[0]) / span;

    Curve curve{p[0], {}, {}, p[n]};
    for (int step = 0;; ++step) {
        solveArms(s, stride, curve);
        const bool refine = step < kNewtonSteps;
        const Measure m = measure(s, stride, curve, refine);
        if (within(m)) return stride == 1 ? Attempt{true, m.worst, curve.c1, curve.c2} : verify(s, stride, curve);
        if (!refine || m.worst2 > 4 * tolerance2_) return {false, m.worst, curve.c1, curve.c2};
    }
}

// The samples' fit on all points: the parameters between samples taken
// along the path from theirs, then refined by Newton once.
GR_BezierFitter::Attempt GR_BezierFitter::verify(const Segment &s, int stride, const Curve &curve) {
    const int n = s.last - s.first;
    const double *arc = arc_.data() + s.first;
    for (int j = 0; j < n; j += stride) {
        const int k = std::min(j + stride, n);
        const double from = u_[j], scale = (u_[k] - from) / (arc[k] - arc[j]);
        for (int i = j + 1; i < k; ++i) u_[i] = from + (arc[i] - arc[j]) * scale;
    }
    Measure m = measure(s, 1, curve, false);
    if (!within(m) && m.worst2 <= 4 * tolerance2_) {
        measure(s, 1, curve, true);
        m = measure(s, 1, curve, false);
    }
    return {within(m), m.worst, curve.c1, curve.c2};
}

void GR_BezierFitter::solveArms(const Segment &s, int stride, Curve &curve) const {
    const int n = s.last - s.first;
    const Point2d *p = pts_.data() + s.first;
    const Vector2d t1 = s.startTangent, t2 = s.endTangent;
    double c00 = 0, c01 = 0, c11 = 0, x0 = 0, x1 = 0;
    for (int i = stride; i < n; i += stride) {
        const double u = u_[i], v = 1 - u;
        const double b1 = 3 * v * v * u, b2 = 3 * v * u * u, head = v * v * (1 + 2 * u), tail = u * u * (3 - 2 * u);
        const Vector2d rest{p[i].x - (p[0].x * head + p[n].x * tail), p[i].y - (p[0].y * head + p[n].y * tail)};
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
    // Arms that point backwards, or reach past the length of the points they
    // fit, make loops between the points: fall back to a third of the chord
    // and let the error decide.
    const double chord = distance(p[0], p[n]), span = arc_[s.last] - arc_[s.first];
    if (!(a1 >= 1e-6 * chord && a2 >= 1e-6 * chord && a1 <= span && a2 <= span)) a1 = a2 = chord / 3;
    curve.c1 = p[0] + a1 * t1;
    curve.c2 = p[n] + a2 * t2;
}

// The largest distance of the sampled points from the curve, measured at
// their parameters (a distance at any parameter bounds the distance to the
// curve); with `refine`, each parameter also takes a Newton step towards the
// curve's nearest point.
GR_BezierFitter::Measure GR_BezierFitter::measure(const Segment &s, int stride, const Curve &c, bool refine) {
    const int n = s.last - s.first;
    const Point2d *p = pts_.data() + s.first;
    // The cubic as a polynomial in u: k0 + k1 u + k2 u^2 + k3 u^3.
    const Point2d &k0 = c.p0;
    const Vector2d k1{3 * (c.c1.x - k0.x), 3 * (c.c1.y - k0.y)};
    const Vector2d k2{3 * (c.c2.x - 2 * c.c1.x + k0.x), 3 * (c.c2.y - 2 * c.c1.y + k0.y)};
    const Vector2d k3{c.p3.x - 3 * c.c2.x + 3 * c.c1.x - k0.x, c.p3.y - 3 * c.c2.y + 3 * c.c1.y - k0.y};
    Measure m{-1, s.first + std::min(stride, n - 1)};
    for (int i = stride; i < n; i += stride) {
        const double u = u_[i];
        const Vector2d off{((k3.x * u + k2.x) * u + k1.x) * u + k0.x - p[i].x,
                           ((k3.y * u + k2.y) * u + k1.y) * u + k0.y - p[i].y};
        const double d2 = dot(off, off);
        if (d2 > m.worst2) m.worst2 = d2, m.worst = s.first + i;
        m.sum2 += d2, ++m.count;
        if (!refine) continue;
        const Vector2d d1{(3 * k3.x * u + 2 * k2.x) * u + k1.x, (3 * k3.y * u + 2 * k2.y) * u + k1.y};
        const Vector2d dd{6 * k3.x * u + 2 * k2.x, 6 * k3.y * u + 2 * k2.y};
        const double den = dot(d1, d1) + dot(off, dd);
        if (den > 1e-12) u_[i] = std::clamp(u - dot(off, d1) / den, 0.0, 1.0);
    }
    return m;
}

// No point farther than the error, and the points on average (root mean
// square) well within it, so that a segment doesn't run along one side of
// its points, which would show as a line drawn thinner or fatter.
bool GR_BezierFitter::within(const Measure &m) const {
    return m.worst2 <= tolerance2_ && m.sum2 <= kMeanPerError * kMeanPerError * tolerance2_ * m.count;
}

// Unit direction of the path leaving pts_[from] towards pts_[limit], from the
// points within reach_ of it; along a straight run, the direction of the
// line that best fits the longest stretch (doubling) that stays within half
// the error of it, since the steps of a staircase can be longer than reach_.
Vector2d GR_BezierFitter::sideTangent(int from, int limit) const {
    const int step = limit > from ? 1 : -1;
    Vector2d sum;
    for (int j = from + step;; j += step) {
        sum = sum + (pts_[j] - pts_[from]);
        if (j == limit || std::abs(arc_[j] - arc_[from]) >= reach_) break;
    }
    if (sum.x == 0 && sum.y == 0) sum = pts_[limit] - pts_[from];
    for (double stretch = 2 * reach_; from + step != limit; stretch *= 2) {
        int to = from + step;
        while (to != limit && std::abs(arc_[to] - arc_[from]) < stretch) to += step;
        // The principal axis of the points from..to.
        const int low = std::min(from, to), high = std::max(from, to);
        double mx = 0, my = 0;
        for (int j = low; j <= high; ++j) mx += pts_[j].x, my += pts_[j].y;
        mx /= high - low + 1, my /= high - low + 1;
        double sxx = 0, sxy = 0, syy = 0;
        for (int j = low; j <= high; ++j) {
            const double dx = pts_[j].x - mx, dy = pts_[j].y - my;
            sxx += dx * dx, sxy += dx * dy, syy += dy * dy;
        }
        const double angle = 0.5 * std::atan2(2 * sxy, sxx - syy);
        const Vector2d axis{std::cos(angle), std::sin(angle)};
        double off2 = 0;
        for (int j = low; j <= high; ++j) {
            const double across = (pts_[j].x - mx) * axis.y - (pts_[j].y - my) * axis.x;
            off2 = std::max(off2, across * across);
        }
        if (off2 * 4 > tolerance2_) break;
        sum = dot(axis, pts_[to] - pts_[from]) < 0 ? -axis : axis;
        if (to == limit) break;
    }
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
