#pragma once
// Operations on the points of a path that keep its shape: smoothing.
#include <cstdint>
#include <span>

#include "suite/graphic/gr_bezier_path.h"

class GR_BezierPath2dOperator {
public:
    // `passes` times, every point becomes (previous + 2 point + next) / 4, all
    // from the points of the pass before. A closed path is smoothed around its
    // seam when `keepClosed` is on and stays closed; otherwise, and for an
    // open path, the two ends stay where they are unless `keepEnds` is off,
    // in which case an end takes its missing neighbour to be itself. Meant
    // for polylines: the points of a Bezier path are smoothed as if they were one.
    static void Smooth(GR_BezierPath2d &path, int passes, bool keepClosed, bool keepEnds = true);

    // The kernel of Smooth on bare points: `cyclic` treats the points as a
    // loop without a repeated last point; a point with `pinned[i]` set stays
    // (`pinned` may be empty).
    static void SmoothPoints(std::span<Math::Point2d> points, int passes, bool cyclic, bool moveEnds,
                             std::span<const uint8_t> pinned = {});
};
