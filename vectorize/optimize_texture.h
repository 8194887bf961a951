#pragma once
// A page-sized texture cut into pieces that each cover a group of the line
// art's outlines, so that a drawing carries the grey of its ink and not of
// its paper.
#include "suite/graphic/cm_palette.h"

class GR_DrawingAccess;

// Works on the first layer of the access object's current drawing, whose
// strokes use `texture`. Each top-level outline with the holes inside it is a
// component; with `optimize` each component starts as a group and two groups
// merge while the box around both is no larger than their two boxes
// together; without it, one group holds everything. Each group gets its own
// texture cropped from `texture` to its box, the strokes move to a new layer
// with it, the old layer is erased and `texture` leaves the palette info.
void optimizeTexture(GR_DrawingAccess &access, const CM_TexturePtr &texture, bool optimize);
