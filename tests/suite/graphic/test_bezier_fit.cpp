// Smoothing, the Bezier fitter and UpgradeBeziers: every input point within
// the error of the result, corners exact, loops closed, few segments.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>

#include "suite/graphic/gr_bezier_fit.h"
#include "suite/graphic/gr_bezier_path_operator.h"
#include "suite/graphic/gr_drawing_toolbox.h"

using Math::Point2d;

namespace {

// The outline of the pixels within `r` of the origin whose centres are
// `ink`, as the edge follower traces it: counter-clockwise through the
// midpoints of the pixel edges, scaled to world units, closed. The shape must
// be convex, so that no two ink pixels touch at a corner only.
template <class Ink>
std::vector<Point2d> traced(Ink ink, int r, double unitsPerPixel) {
    std::map<std::pair<int, int>, std::pair<int, int>> next;  // edge start to end, ink on the left
    for (int y = -r; y <= r; ++y)
        for (int x = -r; x <= r; ++x) {
            if (!ink(x + 0.5, y + 0.5)) continue;
            if (!ink(x + 0.5, y - 0.5)) next[{x, y}] = {x + 1, y};
            if (!ink(x + 1.5, y + 0.5)) next[{x + 1, y}] = {x + 1, y + 1};
            if (!ink(x + 0.5, y + 1.5)) next[{x + 1, y + 1}] = {x, y + 1};
            if (!ink(x - 0.5, y + 0.5)) next[{x, y + 1}] = {x, y};
        }
    std::vector<Point2d> points;
    const auto start = next.begin()->first;
    auto at = start;
    do {
        const auto to = next.at(at);
        points.push_back({(at.first + to.first) * 0.5 * unitsPerPixel, (at.second + to.second) * 0.5 * unitsPerPixel});
        at = to;
    } while (at != start);
    points.push_back(points.front());
    return points;
}

std::vector<Point2d> tracedDisk(double radius, double unitsPerPixel) {
    const auto ink = [&](double x, double y) { return std::hypot(x - 0.3, y - 0.2) <= radius; };
    return traced(ink, static_cast<int>(std::ceil(radius)) + 1, unitsPerPixel);
}

// A polygon through `corners` with a point every `step` units along its sides.
std::vector<Point2d> sampled(const std::vector<Point2d> &corners, double step) {
    std::vector<Point2d> points{corners.front()};
    for (size_t i = 1; i < corners.size(); ++i) {
        const Point2d a = corners[i - 1], b = corners[i];
        const int n = std::max(1, static_cast<int>(std::ceil(a.GetDistance(b) / step)));
        for (int k = 1; k <= n; ++k) points.push_back({a.x + (b.x - a.x) * k / n, a.y + (b.y - a.y) * k / n});
    }
    return points;
}

// The points where segments of `path` end.
std::vector<Point2d> joints(const GR_BezierPath2d &path) {
    std::vector<Point2d> out;
    for (int i = 0; i < path.pointCount(); i += path.degree()) out.push_back(path.point(i));
    return out;
}

// Distance from p to the curve of `path`, measured on a dense polyline of it.
double distanceTo(const GR_BezierPath2d &path, const Point2d &p) {
    double best = INFINITY;
    const int d = path.degree(), samples = d == 3 ? 100 : 1;
    for (int s = 0; s + d < path.pointCount(); s += d) {
        const Point2d *c = &path.point(s);
        const auto at = [&](double t) -> Point2d {
            if (d == 1) return {c[0].x + t * (c[1].x - c[0].x), c[0].y + t * (c[1].y - c[0].y)};
            const double u = 1 - t, b0 = u * u * u, b1 = 3 * u * u * t, b2 = 3 * u * t * t, b3 = t * t * t;
            return {b0 * c[0].x + b1 * c[1].x + b2 * c[2].x + b3 * c[3].x, b0 * c[0].y + b1 * c[1].y + b2 * c[2].y + b3 * c[3].y};
        };
        for (int k = 0; k < samples; ++k)
            best = std::min(best, std::sqrt(Math::Segment2d{at(double(k) / samples), at(double(k + 1) / samples)}.GetDistanceSq(p)));
    }
    return best;
}

struct Shape {
    const char *name;
    std::vector<Point2d> points;
    std::vector<Point2d> corners;  // each must end a segment, exactly
    bool round;                    // no corner: every join smooth
    double error;
    int mostCubics, mostLines;
};

std::vector<Shape> shapes() {
    const std::vector<Point2d> square{{0, 0}, {100, 0}, {100, 100}, {0, 100}, {0, 0}};
    const std::vector<Point2d> ell{{0, 0}, {60, 0}, {60, 20}, {20, 20}, {20, 80}, {0, 80}, {0, 0}};
    const std::vector<Point2d> sliver{{0, 0}, {200, 3}, {0, 6}, {0, 0}};
    const std::vector<Point2d> triangle{{0, 0}, {100, 0}, {50, 80}, {0, 0}};
    const std::vector<Point2d> zigzag{{0, 0}, {30, 40}, {60, 0}, {90, 40}};
    // A 12-field drawing is 5000 units and 12 inches wide: at 300 dpi a pixel
    // is about 1.39 units.
    const double px300 = 5000.0 / (12 * 300);
    // Its sides are staircases whose steps are longer than the reach of the
    // corner tangents.
    const auto tilted = [](double x, double y) {
        const double c = std::cos(0.3), s = std::sin(0.3);
        return std::abs(x * c + y * s) <= 40 && std::abs(y * c - x * s) <= 25;
    };
    return {
        // Unsmoothed steps of a pixel against an error of a pixel: a cubic
        // or two more than a smooth circle needs.
        {"circle r50 at 300 dpi", tracedDisk(50 / px300, px300), {}, true, 1.4, 9, 24},
        {"circle r50 at 600 dpi", tracedDisk(100 / px300, px300 / 2), {}, true, 1.4, 9, 24},
        // Ten pixels across, a traced dot is nearly an octagon.
        {"dot r5 px", tracedDisk(5, px300), {}, false, 1.4, 4, 10},
        {"tilted rectangle of pixels", traced(tilted, 50, px300), {}, false, 1.4, 8, 6},
        {"square", sampled(square, 5), {square.begin(), square.end() - 1}, false, 1.0, 4, 4},
        {"L shape", sampled(ell, 5), {ell.begin(), ell.end() - 1}, false, 1.0, 6, 6},
        {"sliver", sampled(sliver, 5), {sliver.begin(), sliver.end() - 1}, false, 1.0, 3, 3},
        {"triangle of 3 points", triangle, {triangle.begin(), triangle.end() - 1}, false, 1.0, 3, 3},
        {"open zig-zag", sampled(zigzag, 5), zigzag, false, 1.0, 3, 3},
    };
}

}  // namespace

TEST(BezierFitter, StaysWithinTheErrorKeepsCornersAndLoopsWithFewSegments) {
    GR_BezierFitter fitter;
    for (const Shape &shape : shapes())
        for (int degree : {3, 1}) {
            SCOPED_TRACE(testing::Message() << shape.name << ", degree " << degree);
            const GR_BezierPath2d in(shape.points);
            const GR_BezierPath2d out = fitter.Fit(in, {.maxError = shape.error, .degree = degree});
            ASSERT_EQ(out.degree(), degree);
            ASSERT_EQ((out.pointCount() - 1) % degree, 0);
            EXPECT_LE(out.segmentCount(), degree == 3 ? shape.mostCubics : shape.mostLines);
            EXPECT_EQ(out.isClosed(), in.isClosed());
            if (!in.isClosed()) {
                EXPECT_TRUE(out.point(0) == in.point(0) && out.lastPoint() == in.lastPoint());
            }
            double worst = 0;
            for (const Point2d &p : shape.points) worst = std::max(worst, distanceTo(out, p));
            EXPECT_LE(worst, shape.error + 1e-6);
            const std::vector<Point2d> ends = joints(out);
            for (const Point2d &c : shape.corners)
                EXPECT_NE(std::find(ends.begin(), ends.end(), c), ends.end()) << c.x << " " << c.y;
            // A line vertex is an input point; a join without a corner is smooth.
            for (int i = 0; degree == 1 && i < out.pointCount(); ++i)
                EXPECT_NE(std::find(shape.points.begin(), shape.points.end(), out.point(i)), shape.points.end());
            for (int i = 3; degree == 3 && shape.round && i < out.pointCount(); i += 3) {
                const Point2d before = out.point(i - 1), after = out.point(i + 1 < out.pointCount() ? i + 1 : 1);
                const Math::Vector2d a = out.point(i) - before, b = after - out.point(i);
                EXPECT_NEAR(a.x * b.y - a.y * b.x, 0, 1e-6 * std::hypot(a.x, a.y) * std::hypot(b.x, b.y)) << i;
                EXPECT_GT(a.x * b.x + a.y * b.y, 0) << i;
            }
        }
}

TEST(BezierFitter, ZeroErrorKeepsEveryPointAndDegenerateInputComesBack) {
    GR_BezierFitter fitter;
    const GR_BezierPath2d zigzag({{0, 0}, {1, 1}, {2, 0}, {3, 1}});
    const GR_BezierPath2d cubic = fitter.Fit(zigzag, {.maxError = 0});
    EXPECT_EQ(joints(cubic), zigzag.points());
    EXPECT_EQ(fitter.Fit(zigzag, {.maxError = 0, .degree = 1}), zigzag);
    // Repeated points are one point; there and back again is no loop but
    // still ends where it began.
    EXPECT_EQ(fitter.Fit(GR_BezierPath2d({{5, 5}, {5, 5}}), {}), GR_BezierPath2d({{5, 5}}, 3));
    const GR_BezierPath2d back = fitter.Fit(GR_BezierPath2d({{0, 0}, {9, 0}, {9, 0}, {0, 0}}), {.degree = 1});
    EXPECT_EQ(back.points(), (std::vector<Point2d>{{0, 0}, {9, 0}, {0, 0}}));
    // A loop within the error of one point is still a loop.
    for (int degree : {1, 3}) EXPECT_TRUE(fitter.Fit(GR_BezierPath2d(tracedDisk(3, 1)), {.maxError = 10, .degree = degree}).isClosed());
}

TEST(BezierPathOperator, SmoothAveragesNeighboursAndKeepsEndsAndLoops) {
    const std::vector<Point2d> open{{0, 0}, {4, 8}, {8, 0}, {12, 8}};
    GR_BezierPath2d path(open);
    GR_BezierPath2dOperator::Smooth(path, 1, true);
    EXPECT_EQ(path.points(), (std::vector<Point2d>{{0, 0}, {4, 4}, {8, 4}, {12, 8}}));
    GR_BezierPath2dOperator::Smooth(path, 1, true, false);
    EXPECT_EQ(path.point(0), (Point2d{1, 1}));
    EXPECT_EQ(path.lastPoint(), (Point2d{11, 7}));

    // A closed square is smoothed across its seam, on every corner alike.
    GR_BezierPath2d square({{0, 0}, {8, 0}, {8, 8}, {0, 8}, {0, 0}});
    GR_BezierPath2dOperator::Smooth(square, 2, true);
    EXPECT_TRUE(square.isClosed());
    EXPECT_EQ(square.point(0), (Point2d{3, 3}));
    EXPECT_EQ(square.point(2), (Point2d{5, 5}));
    // Not kept closed: the seam is an end, and stays.
    GR_BezierPath2d seam({{0, 0}, {8, 0}, {8, 8}, {0, 8}, {0, 0}});
    GR_BezierPath2dOperator::Smooth(seam, 1, false);
    EXPECT_EQ(seam.point(0), (Point2d{0, 0}));
    EXPECT_EQ(seam.point(1), (Point2d{6, 2}));
}

namespace {

struct CountingListener : GR_DrawingListener {
    int calls = 0;
    size_t changes = 0;
    void DrawingChanged(const GR_VectorDrawingObj &, const std::vector<GR_DrawingChange> &c) override {
        ++calls;
        changes += c.size();
    }
};

}  // namespace

TEST(DrawingToolbox, UpgradeBeziersFitsEveryPolylineInOneOperation) {
    const std::vector<Point2d> zigzag = sampled({{0, 0}, {30, 40}, {60, 0}, {90, 40}}, 2);
    const GR_BezierPath2d done({{0, 0}, {1, 0}, {2, 0}, {3, 0}}, 3);
    for (bool keepEnds : {true, false}) {
        SCOPED_TRACE(keepEnds);
        GR_PaletteInfo info;
        GR_ColorDict dict(info);
        GR_DrawingAccess access(dict);
        GR_VectorDrawingObj drawing;
        access.SetCurrentDrawing(&drawing);
        access.CreateLayerAbove({GR_StrokeData(GR_BezierPath2d(tracedDisk(30, 1.39)))});
        access.CreateLayerAbove({GR_StrokeData(GR_BezierPath2d(zigzag)), GR_StrokeData(done)});
        CountingListener listener;
        access.AddListener(&listener);
        GR_DrawingToolbox::UpgradeBeziers(access, 1.4, 7, keepEnds, 2, false);
        EXPECT_EQ(listener.calls, 1);
        EXPECT_EQ(listener.changes, 2u);

        const GR_BezierPath2d &loop = drawing.layer(0)->stroke(0).path();
        EXPECT_EQ(loop.degree(), 3);
        EXPECT_TRUE(loop.isClosed());
        EXPECT_LE(loop.segmentCount(), 8);
        const GR_BezierPath2d &line = drawing.layer(1)->stroke(0).path();
        EXPECT_EQ(line.degree(), 3);
        EXPECT_EQ(line.point(0) == zigzag.front() && line.lastPoint() == zigzag.back(), keepEnds);
        EXPECT_EQ(drawing.layer(1)->stroke(1).path(), done);
    }
}
