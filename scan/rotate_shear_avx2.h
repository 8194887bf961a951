#pragma once
// The shears compiled for AVX2, for the dispatch in rotate_shear.cpp.
#include <cstddef>

#include "scan/rotate_geometry.h"
#include "suite/cel/cel_pixmap.h"

#if defined(__x86_64__) || defined(__i386__)
#define SHEAR_HAVE_AVX2 1
void shear_avx2(const ShearGeometry &g, const uint8_t *src, size_t stride, const uint8_t &bg, uint8_t *out);
void shear_avx2(const ShearGeometry &g, const uint16_t *src, size_t stride, const uint16_t &bg, uint16_t *out);
void shear_avx2(const ShearGeometry &g, const CEL_RGBA8Pixel *src, size_t stride, const CEL_RGBA8Pixel &bg,
                CEL_RGBA8Pixel *out);
void shear_avx2(const ShearGeometry &g, const CEL_RGBA16Pixel *src, size_t stride, const CEL_RGBA16Pixel &bg,
                CEL_RGBA16Pixel *out);
#endif
