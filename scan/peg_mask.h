#pragma once
// The mask of bright pixels that the peg hole search traces: every pixel of
// the grey picture above a threshold inside a box stamps a small disc.
#include "suite/graphic/bm_pixel_map.h"
#include "suite/graphic/math_geometry.h"

// Fills `mask` (the grey picture's size) from `grey`. Pixels outside `search`
// or inside `exclusion` (when not empty) are overwritten with 0 in `grey`.
// r1, r2 (each at most 15) size the stamp and the thinning that follows;
// registration passes 2, 2 and false. True when the pixels looked at had fewer
// than 3 distinct values.
bool build_peg_mask(BM_GreyMap &grey, BM_MaskMap &mask, int threshold, const Math::Box2d &search,
                    const Math::Box2d &exclusion, int r1, int r2, bool keep);
