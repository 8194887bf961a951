#pragma once
// Plane geometry of the drawing library: points, vectors, boxes and segments
// in double precision.
#include <algorithm>
#include <cmath>

namespace Math {

struct Vector2d {
    double x = 0.0, y = 0.0;
    // Scales to length 1; a zero vector stays zero.
    void Normalize() {
        const double length = std::hypot(x, y);
        if (length > 0.0) {
            x /= length;
            y /= length;
        }
    }
};

struct Point2d {
    double x = 0.0, y = 0.0;
    // Rounds both coordinates to the nearest multiple of `step`.
    void Round(double step) {
        x = std::round(x / step) * step;
        y = std::round(y / step) * step;
    }
    double GetDistance(const Point2d &o) const { return std::hypot(o.x - x, o.y - y); }
    Vector2d operator-(const Point2d &o) const { return {x - o.x, y - o.y}; }
    friend bool operator==(const Point2d &, const Point2d &) = default;
};

// A box from (x0, y0) to (x1, y1); empty when x1 < x0 or y1 < y0.
struct Box2d {
    double x0 = 0.0, y0 = 0.0, x1 = -1.0, y1 = -1.0;
    bool isEmpty() const { return x1 < x0 || y1 < y0; }
    Point2d center() const { return {(x0 + x1) / 2, (y0 + y1) / 2}; }
    void add(const Point2d &p) {
        if (isEmpty()) {
            x0 = x1 = p.x;
            y0 = y1 = p.y;
            return;
        }
        x0 = std::min(x0, p.x), x1 = std::max(x1, p.x);
        y0 = std::min(y0, p.y), y1 = std::max(y1, p.y);
    }
    // Grows the box by `margin` on every side; an empty box stays empty.
    void enlarge(double margin) {
        if (isEmpty()) return;
        x0 -= margin, y0 -= margin;
        x1 += margin, y1 += margin;
    }
    void clear() { *this = Box2d{}; }
    double width() const { return isEmpty() ? 0.0 : x1 - x0; }
    double height() const { return isEmpty() ? 0.0 : y1 - y0; }
};

struct Segment2d {
    Point2d a, b;
    // Where the projection of p falls along the segment: 0 at a, 1 at b.
    double GetProjectedRatio(const Point2d &p) const {
        const double dx = b.x - a.x, dy = b.y - a.y;
        const double length2 = dx * dx + dy * dy;
        return length2 > 0.0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / length2 : 0.0;
    }
    // Squared distance from p to the nearest point of the segment.
    double GetDistanceSq(const Point2d &p) const {
        const double t = std::clamp(GetProjectedRatio(p), 0.0, 1.0);
        const double qx = a.x + t * (b.x - a.x) - p.x, qy = a.y + t * (b.y - a.y) - p.y;
        return qx * qx + qy * qy;
    }
};

}  // namespace Math
