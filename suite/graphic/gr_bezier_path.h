#pragma once
// A path of points. Degree 1: a polyline through every point. Degree 3: cubic
// Bezier segments, the points being p0 c c p1 c c p2 ... (3n + 1 of them). A
// path whose first point equals its last is closed.
#include <utility>
#include <vector>

#include "suite/graphic/math_geometry.h"

class GR_BezierPath2d {
public:
    GR_BezierPath2d() = default;
    explicit GR_BezierPath2d(std::vector<Math::Point2d> points, int degree = 1)
        : points_(std::move(points)), degree_(degree) {}

    void append(const Math::Point2d &p) { points_.push_back(p); }
    void reserve(int count) { points_.reserve(static_cast<size_t>(count > 0 ? count : 0)); }
    int pointCount() const { return static_cast<int>(points_.size()); }
    const Math::Point2d &point(int i) const { return points_[static_cast<size_t>(i)]; }
    Math::Point2d &point(int i) { return points_[static_cast<size_t>(i)]; }
    const Math::Point2d &lastPoint() const { return points_.back(); }
    bool isEmpty() const { return points_.empty(); }
    const std::vector<Math::Point2d> &points() const { return points_; }
    std::vector<Math::Point2d> &points() { return points_; }

    int degree() const { return degree_; }
    void setDegree(int degree) { degree_ = degree; }
    // Segments: lines of a polyline or cubics of a Bezier path.
    int segmentCount() const {
        if (points_.size() < 2) return 0;
        return static_cast<int>(points_.size() - 1) / (degree_ == 3 ? 3 : 1);
    }
    bool isClosed() const { return points_.size() > 2 && points_.front() == points_.back(); }

    Math::Box2d boundingBox() const {
        Math::Box2d box;
        for (const Math::Point2d &p : points_) box.add(p);
        return box;
    }
    // Shoelace area of the points as a polygon (the control polygon of a
    // Bezier path); positive when they run counter-clockwise with y up.
    double GetPolygonArea() const {
        double twice = 0.0;
        for (size_t i = 0; i + 1 < points_.size(); ++i)
            twice += points_[i].x * points_[i + 1].y - points_[i + 1].x * points_[i].y;
        if (points_.size() > 1) twice += points_.back().x * points_.front().y - points_.front().x * points_.back().y;
        return twice / 2.0;
    }

    friend bool operator==(const GR_BezierPath2d &, const GR_BezierPath2d &) = default;

private:
    std::vector<Math::Point2d> points_;
    int degree_ = 1;
};
