#pragma once
// The peg hole search: candidates from the boundaries of bright regions in a
// band along the peg side, then the one triple that fits a peg bar.
#include <vector>

#include "scan/registration_options.h"
#include "suite/graphic/bm_pixel_map.h"
#include "suite/graphic/math_geometry.h"

struct PegCandidates {
    std::vector<Math::Point2d> center;  // calibrated points, in order of discovery
    std::vector<Math::Point2d> side;
};

// The search band of the options' side, in image pixels.
Math::Box2d search_box_of_pegs(int width, int height, const PegRegistrationOptions &options);

// The decision among candidates: true with a (first end), c (centre), b
// (second end) in calibrated pixels when exactly one triple fits.
bool decide_pegs(const PegCandidates &candidates, const Math::Box2d &searchBox, const PegRegistrationOptions &options,
                 Math::Point2d &a, Math::Point2d &c, Math::Point2d &b);

// The whole search on an inverted grey picture (holes bright), which it
// changes (outside the band it becomes 0). On success `points` holds a, c, b
// in image pixels with y counted upward.
bool locate_pegs(BM_GreyMap &grey, const PegRegistrationOptions &options, Math::Point2d points[3]);
