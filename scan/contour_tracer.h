#pragma once
// Boundaries of the set regions of a one-bit mask, as closed polygons on the
// cracks between pixels (half-pixel coordinates). Set pixels that touch only
// at a corner belong to one region; a light island in a region has a
// boundary of its own.
#include <vector>

#include "suite/graphic/bm_pixel_map.h"
#include "suite/graphic/gr_bezier_path.h"

struct ContourTracer {
    BM_MaskMap *mask = nullptr;  // its outer two pixels are cleared by the trace
    // The cracks under pixels that walks went along, a bit a pixel as in the
    // mask, for the rows the last trace reached; the trace sizes them itself
    // and reuses them when they cover the rows it needs.
    BM_MaskMap walked;
    bool limited = false;        // registration traces the whole mask
    Math::Box2d limit;
};

// Appends one closed polygon (first point == last point) for each boundary,
// in the order the scan from the top meets them.
void trace_contours(ContourTracer &tracer, std::vector<GR_BezierPath2d> &out);
