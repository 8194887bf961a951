#pragma once
// Candidates for the peg holes: each traced boundary in the band is judged by
// its area as a round hole, a slot, or both.
#include <vector>

#include "scan/locate_pegs.h"
#include "suite/graphic/gr_bezier_path.h"

// A circle through the points of a closed polygon (its repeated last point
// left out), in calibrated pixels. Fewer than three points give all zeros.
struct PegCircle {
    Math::Point2d centre;
    double radius = 0.0;
    double variance = 0.0;  // mean squared distance minus the squared radius
};
PegCircle fit_peg_circle(const GR_BezierPath2d &polygon, double calibX, double calibY);

// The centre and side candidates among `polygons`, in calibrated pixels and
// in the polygons' order. `mask` and `grey` are those the polygons were
// traced from; they refine each polygon's mean point.
PegCandidates peg_candidates(const std::vector<GR_BezierPath2d> &polygons, const BM_MaskMap &mask,
                             const BM_GreyMap &grey, const PegRegistrationOptions &options);
