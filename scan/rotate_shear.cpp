// The shears for every pixel kind, on the processor's widest vectors.
#define SHEAR_NAMESPACE shear_plain
#include "scan/rotate_shear_engine.h"

#include <atomic>
#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

#include "scan/rotate_shear_avx2.h"

namespace {
std::atomic<bool> wideAllowed{true};
}

void set_shear_wide_vectors(bool allowed) { wideAllowed = allowed; }

namespace {
// The result is a fresh block of tens of megabytes that the shears write
// once from end to end. Backed by huge pages its first writes fault once
// every 2 MB instead of every 4 KB; the kernel may decline, which is fine.
void prefer_huge_pages(void *block, size_t bytes)
{
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    constexpr uintptr_t kHuge = uintptr_t(2) << 20;
    const uintptr_t begin = (reinterpret_cast<uintptr_t>(block) + kHuge - 1) & ~(kHuge - 1);
    const uintptr_t end = (reinterpret_cast<uintptr_t>(block) + bytes) & ~(kHuge - 1);
    if (end > begin)
        madvise(reinterpret_cast<void *>(begin), end - begin, MADV_HUGEPAGE);
#else
    (void)block;
    (void)bytes;
#endif
}
} // namespace

template <class P>
void shear_pixels(const ShearGeometry &g, const P *src, size_t stride, const P &background, P *out)
{
    prefer_huge_pages(out, size_t(g.out_w) * size_t(g.out_h) * sizeof(P));
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
