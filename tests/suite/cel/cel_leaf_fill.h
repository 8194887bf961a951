#pragma once
// Deterministic pixel patterns and the leaf list for the leaf tests.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>

#include "suite/cel/cel_pixmap.h"

inline void fillPixel(uint8_t &p, uint32_t v) { p = uint8_t(v); }
inline void fillPixel(uint16_t &p, uint32_t v) { p = uint16_t(v * 2654435761u >> 16); }
inline void fillPixel(CEL_RGBA8Pixel &p, uint32_t v) { p = {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)}; }
inline void fillPixel(CEL_RGBA16Pixel &p, uint32_t v)
{
    p = {uint16_t(v), uint16_t(v * 7), uint16_t(v * 31 + 5), uint16_t(~v)};
}

// A leaf whose every pixel differs from its neighbours, from a fixed seed.
template <class Leaf>
Leaf patternLeaf(int w, int h, uint32_t seed = 7)
{
    Leaf leaf(w, h);
    std::mt19937 rng(seed);
    for (size_t i = 0; i < leaf.pixelCount(); ++i)
        fillPixel(leaf.data()[i], rng());
    return leaf;
}

// The four leaves, for typed tests.
using CelLeafTypes = ::testing::Types<CEL_PixmapMatte8, CEL_PixmapMatte16, CEL_PixmapRGBA8, CEL_PixmapRGBA16>;
