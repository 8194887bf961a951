#pragma once
// A stroke: a path, how it is drawn, and what lies on each side of it. Side 0
// is on the right of the path's direction (y up), side 1 on its left: a
// clockwise outline has side 0 inside. An empty slot is nothing (paper, or a
// region no stroke paints).
#include <array>

#include "suite/graphic/gr_bezier_path.h"
#include "suite/graphic/gr_color.h"

class GR_StrokeData {
public:
    GR_StrokeData() = default;
    explicit GR_StrokeData(GR_BezierPath2d path) : path_(std::move(path)) {}

    const GR_BezierPath2d &path() const { return path_; }
    GR_BezierPath2d &path() { return path_; }
    const GR_LineStyle &lineStyle() const { return style_; }
    void setLineStyle(const GR_LineStyle &style) { style_ = style; }
    const GR_ColorPtr &Color(int side) const { return colors_[side & 1]; }
    void SetColor(int side, GR_ColorPtr color) { colors_[side & 1] = std::move(color); }
    bool isClosed() const { return path_.isClosed(); }

private:
    GR_BezierPath2d path_;
    GR_LineStyle style_;
    std::array<GR_ColorPtr, 2> colors_;
};
