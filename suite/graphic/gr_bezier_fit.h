#pragma once
// Fitting a polyline of many points (an outline traced along pixel edges)
// with few cubic Bezier segments or few lines, so that every point stays
// within a given distance of the result and corners stay where they are.
//
// The stages, one function each: load the points without repeats; find the
// corners by the turning angle between the chords to the points a few error
// lengths away on either side; smooth with the corners pinned; start a closed
// path at a corner; fit each piece between corners by least squares with
// Newton reparametrization, splitting at the worst point (Schneider), with the
// tangents at a split taken from both sides so that the joins are smooth;
// merge neighbouring segments of a piece again where one segment fits both.
// Long runs are judged on samples of their points; a segment is accepted
// only once all of its points are checked.
#include <cstdint>
#include <numbers>
#include <vector>

#include "suite/graphic/gr_bezier_path.h"

struct GR_FitOptions {
    // Turning angles (radians) above which a point is a corner. Ink outlines
    // keep sharp turns only; pencil lines keep gentler ones too, since a
    // pencil stroke's direction changes are part of the hand's line.
    static constexpr double kInkCornerAngle = std::numbers::pi / 3;
    static constexpr double kPencilCornerAngle = std::numbers::pi / 4;

    // Largest distance, in world units, from a point of the input to the
    // result; each cubic also keeps the root mean square distance of its
    // points within 0.4 times this, so that it follows them rather than
    // running beside them. Zero or less keeps every point and only sets the
    // degree.
    double maxError = 1.0;
    // 3: cubic segments; 1: lines. Any other value is taken as 3.
    int degree = 3;
    double cornerAngle = kInkCornerAngle;
    // Passes of (previous + 2 point + next) / 4 once the corners are found;
    // corners stay in place. The fit is then within maxError of the
    // smoothed points.
    int smoothPasses = 0;
    // With smoothing, whether the two ends of an open path move too; the fit
    // itself always keeps them.
    bool smoothEnds = false;
};

// Keeps its buffers from path to path, so that fitting the thousands of
// outlines of a page allocates almost nothing but the results.
class GR_BezierFitter {
public:
    // A degree-1 path in, a path of the options' degree out. A closed path
    // (first point == last) comes out closed, starting at a corner when it
    // has one. A path of fewer than 2 distinct points comes back as its one
    // point (or empty), with the degree set.
    GR_BezierPath2d Fit(const GR_BezierPath2d &path, const GR_FitOptions &options);

private:
    struct Segment {
        int first, last;                // indices into pts_
        Math::Vector2d startTangent;    // unit, along the path at `first`
        Math::Vector2d endTangent;      // unit, back along the path at `last`
        Math::Point2d c1, c2;           // control points (cubics only)
    };
    struct Curve {
        Math::Point2d p0, c1, c2, p3;
    };
    struct Measure {
        double worst2;  // squared
        int worst;      // index into pts_
        double sum2 = 0;  // of the squared distances
        int count = 0;
    };
    struct Attempt {
        bool fits;
        int worst;  // the point farthest from the segment, where to split
        Math::Point2d c1, c2;
    };

    void load(const GR_BezierPath2d &path);
    void findCorners();
    void arrange();
    void fitPiece(int first, int last, Math::Vector2d startTangent, Math::Vector2d endTangent);
    Attempt attempt(const Segment &s);
    Attempt attemptCubic(const Segment &s);
    Attempt attemptLine(const Segment &s);
    Attempt verify(const Segment &s, int stride, const Curve &curve);
    void solveArms(const Segment &s, int stride, Curve &curve) const;
    Measure measure(const Segment &s, int stride, const Curve &curve, bool refine);
    bool within(const Measure &m) const;
    Math::Vector2d sideTangent(int from, int limit) const;
    Math::Vector2d centreTangent(int at, int low, int high) const;
    void writeTo(GR_BezierPath2d &out) const;

    // Options of the current path.
    double tolerance2_ = 1.0;  // maxError squared
    double reach_ = 3.0;       // path length over which corners and tangents are judged
    bool cubic_ = true;
    GR_FitOptions options_;

    bool closed_ = false;
    // The distinct points as loaded, in path order; a closed path's repeated
    // last point left out.
    std::vector<Math::Point2d> raw_;
    std::vector<uint8_t> rawCorner_;   // raw_.size(): 1 at a corner
    std::vector<double> cosTurn_;      // raw_.size(): cosine of the turning angle
    std::vector<int> armBack_, armAhead_;
    // The points to fit, from the start point on; a closed path repeats its
    // start at the end. arc_[i] is the length of the polyline up to pts_[i].
    std::vector<Math::Point2d> pts_;
    std::vector<uint8_t> corner_;
    std::vector<double> arc_;
    std::vector<double> u_;            // parameters of the points of one attempt
    std::vector<Segment> stack_, done_;
};
