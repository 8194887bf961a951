// The float kinds: grey 8 and 16 bits, colour 16 bits.
#include "scan/rotate_shear_engine.h"

template void shear_pixels(const ShearGeometry &, const uint8_t *, size_t, const uint8_t &, uint8_t *);
template void shear_pixels(const ShearGeometry &, const uint16_t *, size_t, const uint16_t &, uint16_t *);
template void shear_pixels(const ShearGeometry &, const CEL_RGBA16Pixel *, size_t, const CEL_RGBA16Pixel &,
                           CEL_RGBA16Pixel *);
