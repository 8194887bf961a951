#pragma once
// From an 8-bit ink bitmap (ink high) to the 1-bit mask that the edge
// follower traces, with the jag filter, the expansion and the erosion.
#include <cstdint>

#include "suite/graphic/bm_pixel_map.h"
#include "suite/graphic/math_geometry.h"

// Sets in `mask` (cleared, same size) every pixel of `source` darker than
// `level`, with the disk of the larger of `jag` and `expand` (each at most
// 15) stamped instead of the pixel, then eroded so that the net growth is
// `expand` (and one pixel less with `erode`). Pixels outside `outerBox`, or
// inside a non-empty `pegBox`, are cleared in `source` and never set. The
// outer box is in pixels with y upward (row r spans height - r - 1 to
// height - r), the peg box in pixels with rows counted down, as the peg
// geometry gives them. With a jag filter and no erosion, `source` is also cleared
// where the mask is clear, so specks leave the texture too. True when the
// pixels inside the box take fewer than three values.
bool thresholdBitmap(BM_GreyMap &source, BM_MaskMap &mask, uint8_t level, const Math::Box2d &outerBox,
                     const Math::Box2d &pegBox, int jag, int expand, bool erode);

// Removes `n` layers of pixels from the edges of the set areas of `mask`
// (4-neighbours; column 0 and row 0 count as clear).
void erodeBitmap(BM_MaskMap &mask, int n);

// Grows the non-black (non-zero) areas of an index bitmap over black pixels,
// one pixel a round for `n` rounds (at most 15; a negative n is 15): a black
// inner pixel takes its first non-black neighbour of left, above, below,
// right.
void expandIndexBitmap(BM_IndexMap &bitmap, int n);
