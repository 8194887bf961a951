#include "scan/locate_pegs.h"

#include <cstdio>
#include <vector>

#include "scan/contour_tracer.h"
#include "scan/peg_candidates.h"
#include "scan/peg_mask.h"
#include "suite/base/assertion.h"

bool locate_pegs(BM_GreyMap &grey, const PegRegistrationOptions &options, Math::Point2d points[3]) {
    LMV_ASSERT_RET(points != nullptr, false);
    if (options.rdebug) {
        std::fprintf(stderr, "Performing optical registration. Looseness factor is %f\n", options.looseness);
        std::fprintf(stderr, "Calibration values: %f %f\n", options.calibX, options.calibY);
    }
    const Math::Box2d searchBox = search_box_of_pegs(grey.width(), grey.height(), options);
    const int threshold = static_cast<int>(options.threshr * 255.0);
    // Only the band's rows of the mask are kept: the stamps reach no others.
    BM_MaskMap mask;
    allocate_peg_mask(mask, grey.width(), grey.height(), searchBox, 2);
    build_peg_mask(grey, mask, threshold, searchBox, Math::Box2d{}, 2, 2, false);

    std::vector<GR_BezierPath2d> polygons;
    {
        ContourTracer tracer;
        tracer.mask = &mask;
        trace_contours(tracer, polygons);
    }
    const PegCandidates candidates = peg_candidates(polygons, mask, grey, options);
    polygons.clear();

    Math::Point2d a, c, b;
    if (!decide_pegs(candidates, searchBox, options, a, c, b)) return false;
    const double h = grey.height();
    int i = 0;
    for (const Math::Point2d &p : {a, c, b}) {
        const double y = p.y / options.calibY;
        points[i++] = {p.x / options.calibX, h - y};
    }
    return true;
}
