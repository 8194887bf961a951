#pragma once
// A path of points; registration uses it as a closed polygon.
#include <utility>
#include <vector>

#include "suite/graphic/math_geometry.h"

class GR_BezierPath2d {
public:
    GR_BezierPath2d() = default;
    explicit GR_BezierPath2d(std::vector<Math::Point2d> points) : points_(std::move(points)) {}

    void append(const Math::Point2d &p) { points_.push_back(p); }
    void reserve(int count) { points_.reserve(static_cast<size_t>(count > 0 ? count : 0)); }
    int pointCount() const { return static_cast<int>(points_.size()); }
    const Math::Point2d &point(int i) const { return points_[static_cast<size_t>(i)]; }
    const Math::Point2d &lastPoint() const { return points_.back(); }
    bool isEmpty() const { return points_.empty(); }
    const std::vector<Math::Point2d> &points() const { return points_; }
    Math::Box2d boundingBox() const {
        Math::Box2d box;
        for (const Math::Point2d &p : points_) box.add(p);
        return box;
    }
    // Shoelace area; positive when the points run counter-clockwise with y up.
    double signedArea() const {
        double twice = 0.0;
        for (size_t i = 0; i + 1 < points_.size(); ++i)
            twice += points_[i].x * points_[i + 1].y - points_[i + 1].x * points_[i].y;
        if (points_.size() > 1) twice += points_.back().x * points_.front().y - points_.front().x * points_.back().y;
        return twice / 2.0;
    }

private:
    std::vector<Math::Point2d> points_;
};
