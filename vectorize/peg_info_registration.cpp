#include <cmath>
#include <cstdio>
#include <numbers>
#include <utility>

#include "vectorize/peg_info.h"
#include "vectorize/pix2vec_options.h"
#include "vectorize/scaninfo_keywords.h"

namespace {

// Puts the two end pegs in the order in which the paper lies on the left of
// the way from a to b.
void orderEndPegs(int side, Math::Point2d &a, Math::Point2d &b) {
    const bool swap = (side == 1 && b.x > a.x) || (side == 2 && a.x > b.x) || (side == 3 && b.y > a.y) ||
                      (side == 4 && a.y > b.y);
    if (swap) std::swap(a, b);
}

}  // namespace

void PegInfo::InitFromPegPositions(Math::Point2d a, Math::Point2d c, Math::Point2d b, int side,
                                   const PegMargins &margins, bool keepPegBars, double pegBarSize, double givenDpi,
                                   double pegDistance, double calibX, double calibY) {
    orderEndPegs(side, a, b);
    if (currentVectorizeOptions()->rdebug)
        std::printf("InitFromPegPositions: (%f %f)  (%f %f) (%f %f)\n", a.x, height - a.y - 0.5, c.x,
                    height - c.y - 0.5, b.x, height - b.y - 0.5);

    dpi = truncatedToInt(givenDpi);
    paper_size = 12.0f;
    const double perPixel = 5000.0 / double(float(dpi) * 12.0f);

    if (!keepPegBars) {
        for (const Math::Point2d &p : {a, c, b}) peg_box.add({p.x, height - p.y});
        peg_box.enlarge(pegBarSize * 0.5 * dpi);
    }

    // Centre peg to the origin, the bar a→b turned onto the x axis.
    transform = Math::Matrix2x3();
    transform.Translate(-c.x, -c.y);
    Math::Vector2d e = b - a;
    e.Normalize();
    const Math::Matrix2x3 unturn = Math::Matrix2x3(e, {-e.y, e.x}, {}).Inverse();
    transform.Scale(calibX, calibY);
    transform.Multiply(unturn);
    transform.Scale(perPixel, perPixel);

    const double v = (5000.0 / paper_size) * pegDistance;
    switch (side) {
        case 1:
            transform.Rotate(std::numbers::pi);
            transform.Translate(0.0, v);
            break;
        case 2:
            transform.Translate(0.0, -v);
            break;
        case 3:
            transform.Rotate(-std::numbers::pi / 2);
            transform.Translate(-v, 0.0);
            break;
        case 4:
            transform.Rotate(std::numbers::pi / 2);
            transform.Translate(v, 0.0);
            break;
        default:
            break;
    }
    setPictureBox(margins);
}
