#pragma once
// Whole-drawing operations on the strokes of an access object's current drawing.
#include "suite/graphic/gr_drawing_access.h"

class GR_DrawingToolbox {
public:
    // Turns the polyline strokes of every layer into Bezier paths within
    // `fitError` world units, keeping their corners, as one operation (the
    // listeners hear of it once):
    // - each stroke is first smoothed by `smoothPasses` passes, with its
    //   corners held in place; the fit is then within `fitError` of the
    //   smoothed points;
    // - `fitDegree` 1 makes lines, 3 or any other value cubics; `fitError`
    //   of 0 or less keeps every point and only sets the degree;
    // - `keepEnds`: the ends of open strokes stay exactly where they are, so
    //   that centre lines still meet at their joints; off, the smoothing
    //   moves them too (the fit never does). Closed strokes stay closed;
    // - `pencil`: the strokes are pencil lines, whose hand-drawn turns matter
    //   more than an ink outline's: corners are kept from a turn of 45 degrees
    //   on instead of 60. It changes nothing else for now;
    // - strokes that are already not polylines (degree other than 1) are
    //   left as they are.
    static void UpgradeBeziers(GR_DrawingAccess &access, double fitError, int fitDegree, bool keepEnds,
                               int smoothPasses, bool pencil);
};
