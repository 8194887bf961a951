// Stretching the grey levels of a Matte8 leaf.
#include <algorithm>
#include <array>
#include <cmath>

#include "suite/base/assertion.h"
#include "suite/cel/cel_algo.h"

namespace {

using Levels = std::array<uint8_t, 256>;

Levels stretchTable(double black, double white)
{
    Levels table{};
    const double b = black * 255.0, w = white * 255.0;
    for (int v = 0; v < 256; ++v) {
        if (w <= b) {
            table[v] = v >= b ? 255 : 0;
        } else {
            const double level = std::floor((v - b) * 255.0 / (w - b) + 0.5);
            table[v] = uint8_t(std::clamp(level, 0.0, 255.0));
        }
    }
    return table;
}

} // namespace

void CelAlgo::stretchGrayPixmap(CEL_PixmapMatte8 *leaf, double black, double white)
{
    LMV_ASSERT_VOID(leaf);
    LMV_ASSERT_VOID(std::isfinite(black) && std::isfinite(white));
    const Levels table = stretchTable(black, white);
    uint8_t *p = leaf->data();
    const size_t n = leaf->pixelCount();
    for (size_t i = 0; i < n; ++i)
        p[i] = table[p[i]];
}
