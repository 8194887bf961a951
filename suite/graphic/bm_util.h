#pragma once
// Bitmap operations the drawing library offers its users.
#include "suite/graphic/bm_pixel_map.h"

namespace BM_Util {

// `source` at width x height (each at least 1): a shrunk side averages the
// source pixels each target pixel covers, a grown side repeats the nearest.
// One pass over the source and integer arithmetic only.
BM_GreyMap FastResize(const BM_GreyMap &source, int width, int height);

}  // namespace BM_Util
