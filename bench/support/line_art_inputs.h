#pragma once
// Inputs and measures shared by the line art benchmark and its fidelity
// report: a generated pencil page, the drawings of the shared line art
// folder when it is there, both tracers on the same thresholded bitmap, and
// the comparison of a traced result with that bitmap.
#include <QPainterPath>

#include <memory>
#include <string>
#include <vector>

#include "suite/graphic/bm_pixel_map.h"

namespace lineart {

// A 300-dpi 12-field page (3600 x 2700) of pencil-like strokes, as ink
// values (paper 0, ink high) with soft edges and grain. Same seed, same page.
BM_GreyMap pencilPage(unsigned seed);

struct Drawing {
    std::string name;
    BM_GreyMap bitmap;  // thresholded: 0 paper, 255 ink
};

// The generated page, thresholded at the vectorizer's default.
Drawing generatedPage();
// Each picture of the shared line art folder ($LINEART_DIR, else the one
// beside the project), thresholded as its kind needs; empty, with `where`
// telling where it looked, when there is none.
std::vector<Drawing> sharedDrawings(std::string &where);

// Ink values to 0 / 255 at `threshold` (0 to 1), as the vectorizer does.
BM_GreyMap thresholded(const BM_GreyMap &ink, double threshold);

struct Traced {
    QPainterPath outlines;  // pixel units, rows down, to fill even-odd
    long segments = 0;
    long paths = 0;
};

// potrace with its default parameters on the ink of `bitmap`.
Traced tracePotrace(const BM_GreyMap &bitmap);
// Our line art with the vectorizer's default options on the same bitmap,
// through a 300-dpi 12-field matrix and back to pixels.
Traced traceOurs(const BM_GreyMap &bitmap);

// The work alone, for timing and memory: the result is dropped. Our line
// art changes its bitmap (as the vectorizer hands it over), so it takes a
// copy that the caller makes; potrace's conversion to its own bitmap is part
// of its work.
void runPotrace(const BM_GreyMap &bitmap);
void runOurs(std::unique_ptr<BM_GreyMap> bitmap);

struct Fidelity {
    long differing = 0;      // pixels whose ink differs from the bitmap's
    double iou = 0.0;        // ink in both / ink in either
    long boundary = 0;       // ink-to-paper pixel edges of the bitmap
    double offset() const { return boundary ? double(differing) / double(boundary) : 0.0; }
};

// `traced` rendered onto the bitmap's pixel grid (a pixel is ink when its
// centre is inside) and compared with it.
Fidelity compare(const Traced &traced, const BM_GreyMap &bitmap);

}  // namespace lineart
