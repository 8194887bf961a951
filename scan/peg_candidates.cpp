#include "scan/peg_candidates.h"

#include <cmath>
#include <cstdio>
#include <numbers>

#include "scan/refine_dot.h"

namespace {

// 0.85² and 1.15² as float64 products: the area limits sit on these exact
// values, not on the decimal 0.7225 and 1.3225.
constexpr double kSmaller = 0.7224999999999999;
constexpr double kLarger = 1.3224999999999998;
static_assert(kSmaller == 0.85 * 0.85 && kLarger == 1.15 * 1.15);

// A round hole a quarter of an inch across.
bool is_centre_area(double area, double dpi) {
    const double r = dpi * 0.125;
    return area > std::floor(r) * kSmaller * std::floor(r) * std::numbers::pi &&
           area < std::ceil(r) * kLarger * std::ceil(r) * std::numbers::pi;
}

// A slot an eighth to a quarter of an inch wide and half an inch long.
bool is_side_area(double area, double dpi) {
    return area > std::floor(dpi * 0.125) * (std::floor(dpi * 0.5) * kSmaller) &&
           area < std::ceil(dpi * 0.25) * (std::ceil(dpi * 0.5) * kLarger);
}

Math::Point2d mean_point(const GR_BezierPath2d &polygon) {
    Math::Point2d sum;
    for (const Math::Point2d &p : polygon.points()) {
        sum.x += p.x;
        sum.y += p.y;
    }
    const double n = polygon.pointCount();
    return {sum.x / n, sum.y / n};
}

}  // namespace

PegCircle fit_peg_circle(const GR_BezierPath2d &polygon, double calibX, double calibY) {
    PegCircle circle;
    const int n = polygon.pointCount() - 1;  // the closing point repeats the first
    if (n < 2) return circle;
    std::vector<Math::Point2d> points;
    points.reserve(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) points.push_back({polygon.point(i).x * calibX, polygon.point(i).y * calibY});
    for (const Math::Point2d &p : points) {
        circle.centre.x += p.x;
        circle.centre.y += p.y;
    }
    circle.centre.x /= n;
    circle.centre.y /= n;
    double sum = 0.0, sumSq = 0.0;
    for (const Math::Point2d &p : points) {
        const double d = circle.centre.GetDistance(p);
        sum += d;
        sumSq += d * d;
    }
    circle.radius = sum / n;
    circle.variance = sumSq / n - circle.radius * circle.radius;
    return circle;
}

PegCandidates peg_candidates(const std::vector<GR_BezierPath2d> &polygons, const BM_MaskMap &mask,
                             const BM_GreyMap &grey, const PegRegistrationOptions &options) {
    PegCandidates found;
    for (const GR_BezierPath2d &polygon : polygons) {
        if (polygon.isEmpty()) continue;
        Math::Point2d dot;
        double area = 0.0;
        if (!options.centerPegHoles) {
            area = std::fabs(polygon.GetPolygonArea()) * options.calibX * options.calibY;
            // The centroid is the costly part, over the polygon's whole box;
            // a polygon of no candidate's size needs it only for the traces.
            if (!options.rdebug && !is_centre_area(area, options.dpi) && !is_side_area(area, options.dpi)) continue;
            dot = mean_point(polygon);
            if (options.rdebug) std::printf("Dot at: %f %f -> ", dot.x, dot.y);
            const Math::Box2d box = polygon.boundingBox();
            const int width = static_cast<int>(box.width() + 0.5);
            const int height = static_cast<int>(box.height() + 0.5);
            dot = refine_dot(mask, grey, dot, width, height);
            if (options.rdebug) std::printf(" refined to: %f %f\n", dot.x, dot.y);
            dot.x *= options.calibX;
            dot.y *= options.calibY;
            if (options.rdebug) std::printf(" calibrated to: %f %f\n", dot.x, dot.y);
        } else {
            // Round holes are placed by their outline; the centroid is not used.
            if (options.rdebug) {
                const Math::Point2d mean = mean_point(polygon);
                std::printf("Dot at: %f %f -> ", mean.x, mean.y);
            }
            const PegCircle circle = fit_peg_circle(polygon, options.calibX, options.calibY);
            dot = circle.centre;
            area = std::numbers::pi * circle.radius * circle.radius;
            if (options.rdebug)
                std::printf("Fitted circle at: %f %f radius: %f (%f inches diameter) variance : %f  from %d points\n",
                            dot.x, dot.y, circle.radius, 2.0 * circle.radius / options.dpi, circle.variance,
                            polygon.pointCount() - 1);
        }

        if (is_centre_area(area, options.dpi)) {
            if (options.rdebug) std::printf("Found a center peg candidate at: (%f, %f)\n", dot.x, dot.y);
            found.center.push_back(dot);
        }
        if (!options.centerPegHoles && is_side_area(area, options.dpi)) {
            if (options.rdebug) std::printf("Found a side peg candidate at coordinates (%f, %f)\n", dot.x, dot.y);
            found.side.push_back(dot);
        }
    }
    return found;
}
