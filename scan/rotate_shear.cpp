// The shears for every pixel kind, on the processor's widest vectors.
#define SHEAR_NAMESPACE shear_plain
#include "scan/rotate_shear_engine.h"

#include <atomic>

#include "scan/rotate_shear_avx2.h"

namespace {
std::atomic<bool> wideAllowed{true};
}

void set_shear_wide_vectors(bool allowed) { wideAllowed = allowed; }

template <class P>
void shear_pixels(const ShearGeometry &g, const P *src, size_t stride, const P &background, P *out)
{
#ifdef SHEAR_HAVE_AVX2
    if (wideAllowed && __builtin_cpu_supports("avx2"))
        return shear_avx2(g, src, stride, background, out);
#endif
    shear_plain::shear(g, src, stride, background, out);
}

template void shear_pixels(const ShearGeometry &, const uint8_t *, size_t, const uint8_t &, uint8_t *);
template void shear_pixels(const ShearGeometry &, const uint16_t *, size_t, const uint16_t &, uint16_t *);
template void shear_pixels(const ShearGeometry &, const CEL_RGBA16Pixel *, size_t, const CEL_RGBA16Pixel &,
                           CEL_RGBA16Pixel *);
template void shear_pixels(const ShearGeometry &, const CEL_RGBA8Pixel *, size_t, const CEL_RGBA8Pixel &,
                           CEL_RGBA8Pixel *);
