// The shear passes for processors with AVX2: the same code, vectorised eight
// floats wide, and RGBA8 by kernels of its own. No FMA: the results stay
// identical.
#include "scan/rotate_shear_avx2.h"

#ifdef SHEAR_HAVE_AVX2
// Everything the engine takes from the standard library and the pixel
// headers is seen first, so that only the engine itself gets the target.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <immintrin.h>
#include <memory>
#include <vector>

#include "scan/rotate_shear.h"

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif
#define SHEAR_NAMESPACE shear_wide
#include "scan/rotate_shear_engine.h"
#include "scan/rotate_fixed_avx2.h"

namespace shear_wide {
// RGBA8 blends by 16-bit multiply-adds rather than the compiler's 32-bit products.
template <>
struct ShearKernels<CEL_RGBA8Pixel> : fixed_avx2::Rgba8Kernels {};
} // namespace shear_wide

void shear_avx2(const ShearGeometry &g, const uint8_t *src, size_t stride, const uint8_t &bg, uint8_t *out)
{
    shear_wide::shear(g, src, stride, bg, out);
}
void shear_avx2(const ShearGeometry &g, const uint16_t *src, size_t stride, const uint16_t &bg, uint16_t *out)
{
    shear_wide::shear(g, src, stride, bg, out);
}
void shear_avx2(const ShearGeometry &g, const CEL_RGBA8Pixel *src, size_t stride, const CEL_RGBA8Pixel &bg,
                CEL_RGBA8Pixel *out)
{
    shear_wide::shear(g, src, stride, bg, out);
}
void shear_avx2(const ShearGeometry &g, const CEL_RGBA16Pixel *src, size_t stride, const CEL_RGBA16Pixel &bg,
                CEL_RGBA16Pixel *out)
{
    shear_wide::shear(g, src, stride, bg, out);
}
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
#endif
