// The 8-bit colour kind, in 24-bit fixed point.
#include "scan/rotate_shear_engine.h"

template void shear_pixels(const ShearGeometry &, const CEL_RGBA8Pixel *, size_t, const CEL_RGBA8Pixel &,
                           CEL_RGBA8Pixel *);
