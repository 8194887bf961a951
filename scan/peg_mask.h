#pragma once
// The mask of bright pixels that the peg hole search traces: every pixel of
// the grey picture above a threshold inside a box stamps a small disc.
#include "suite/graphic/bm_pixel_map.h"
#include "suite/graphic/math_geometry.h"

// Fills `mask` (the grey picture's size) from `grey`. A mask that already
// has that size and stores every row the stamps can reach (as
// allocate_peg_mask makes it) is cleared and kept, unless a thinning follows;
// any other is allocated whole. Pixels outside `search`
// or inside `exclusion` (when not empty) are overwritten with 0 in `grey`.
// r1, r2 (each at most 15) size the stamp and the thinning that follows;
// registration passes 2, 2 and false. True when the pixels looked at had fewer
// than 3 distinct values.
bool build_peg_mask(BM_GreyMap &grey, BM_MaskMap &mask, int threshold, const Math::Box2d &search,
                    const Math::Box2d &exclusion, int r1, int r2, bool keep);

// Allocates `mask` for build_peg_mask on a width x height picture with only
// the rows that the pixels of `search` can stamp with radius r: the rest of a
// large picture takes neither memory nor time.
void allocate_peg_mask(BM_MaskMap &mask, int width, int height, const Math::Box2d &search, int r);
