#pragma once
// The grey-weighted centroid of the masked pixels in a window around a point.
#include "suite/graphic/bm_pixel_map.h"
#include "suite/graphic/math_geometry.h"

// Window of `width` by `height` pixels around `point`, clamped to the
// picture; the point comes back unchanged outside the picture or when the
// window weighs nothing. Pixels weigh at their indices (no half pixel).
Math::Point2d refine_dot(const BM_MaskMap &mask, const BM_GreyMap &grey, Math::Point2d point, int width, int height);
