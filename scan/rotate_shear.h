#pragma once
// The three shears of a rotation of less than 90 degrees, for each pixel kind.
#include <cstddef>

#include "scan/rotate_geometry.h"
#include "suite/cel/cel_pixmap.h"

// Shears the g.w x g.h pixels at `src` (rows `stride` pixels apart) into the
// g.out_w x g.out_h pixels at `out`. Uncovered pixels get `background`.
// Defined for uint8_t, uint16_t, CEL_RGBA8Pixel and CEL_RGBA16Pixel.
template <class P>
void shear_pixels(const ShearGeometry &g, const P *src, size_t stride, const P &background, P *out);

extern template void shear_pixels(const ShearGeometry &, const uint8_t *, size_t, const uint8_t &, uint8_t *);
extern template void shear_pixels(const ShearGeometry &, const uint16_t *, size_t, const uint16_t &, uint16_t *);
extern template void shear_pixels(const ShearGeometry &, const CEL_RGBA16Pixel *, size_t, const CEL_RGBA16Pixel &,
                                  CEL_RGBA16Pixel *);
extern template void shear_pixels(const ShearGeometry &, const CEL_RGBA8Pixel *, size_t, const CEL_RGBA8Pixel &,
                                  CEL_RGBA8Pixel *);

// Whether the shears may use the processor's AVX2 instructions where it has
// them (the default). Both ways give the same pixels; tests check each.
void set_shear_wide_vectors(bool allowed);
