#include "suite/graphic/gr_bezier_path_operator.h"

using Math::Point2d;

namespace {

inline Point2d average(const Point2d &prev, const Point2d &p, const Point2d &next) {
    return {(prev.x + 2 * p.x + next.x) * 0.25, (prev.y + 2 * p.y + next.y) * 0.25};
}

}  // namespace

void GR_BezierPath2dOperator::SmoothPoints(std::span<Point2d> p, int passes, bool cyclic, bool moveEnds,
                                           std::span<const uint8_t> pinned) {
    const size_t n = p.size();
    if (n < 3 && !(n == 2 && moveEnds && !cyclic)) return;
    auto fixed = [&](size_t i) { return !pinned.empty() && pinned[i]; };
    for (int pass = 0; pass < passes; ++pass) {
        // `prev` keeps the previous point as it was before this pass.
        if (cyclic) {
            const Point2d first = p[0];
            Point2d prev = p[n - 1];
            for (size_t i = 0; i < n; ++i) {
                const Point2d cur = p[i];
                if (!fixed(i)) p[i] = average(prev, cur, i + 1 < n ? p[i + 1] : first);
                prev = cur;
            }
            continue;
        }
        Point2d prev = p[0];
        if (moveEnds && !fixed(0)) p[0] = average(prev, prev, p[1]);
        for (size_t i = 1; i + 1 < n; ++i) {
            const Point2d cur = p[i];
            if (!fixed(i)) p[i] = average(prev, cur, p[i + 1]);
            prev = cur;
        }
        if (moveEnds && !fixed(n - 1)) p[n - 1] = average(prev, p[n - 1], p[n - 1]);
    }
}

void GR_BezierPath2dOperator::Smooth(GR_BezierPath2d &path, int passes, bool keepClosed, bool keepEnds) {
    std::vector<Point2d> &points = path.points();
    if (passes <= 0 || points.size() < 2) return;
    if (keepClosed && path.isClosed()) {
        SmoothPoints(std::span(points).first(points.size() - 1), passes, true, false);
        points.back() = points.front();
        return;
    }
    SmoothPoints(points, passes, false, !keepEnds);
}
