#include "scan/refine_dot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace {

// g / 255.0 for every grey level g, as the division gives it.
constexpr std::array<double, 256> kWeightOf = [] {
    std::array<double, 256> w{};
    for (int g = 0; g < 256; ++g) w[static_cast<size_t>(g)] = g / 255.0;
    return w;
}();

// The mask bits of byte i of a row that fall in columns x0..x1.
unsigned bits_in_columns(unsigned byte, int i, int x0, int x1) {
    if (i == x0 >> 3) byte &= 0xffu >> (x0 & 7);
    if (i == x1 >> 3) byte &= (0xff00u >> ((x1 & 7) + 1)) & 0xffu;
    return byte;
}

}  // namespace

Math::Point2d refine_dot(const BM_MaskMap &mask, const BM_GreyMap &grey, Math::Point2d point, int width, int height) {
    const int w = std::min(mask.width(), grey.width()), h = std::min(mask.height(), grey.height());
    if (!(point.x >= 0.0 && point.y >= 0.0 && point.x < w && point.y < h)) return point;

    const int halfW = width / 2, halfH = height / 2;
    const int x0 = std::max(static_cast<int>(std::floor(point.x - halfW)), 0);
    const int x1 = std::min(static_cast<int>(std::ceil(point.x + halfW)), w - 1);
    // Rows the mask doesn't store are clear and add nothing.
    const int y0 = std::max(static_cast<int>(std::floor(point.y - halfH)), std::max(mask.firstRow(), 0));
    const int y1 = std::min(static_cast<int>(std::ceil(point.y + halfH)), std::min(mask.lastRow(), h - 1));

    // The sums run over the masked pixels row by row, left to right. Clear
    // mask bytes are passed over whole, and pixels of grey 0 add exactly
    // nothing, so they are passed over too; the order of the additions that
    // remain, and so the rounding, is that of a plain sweep.
    double weight = 0.0, sumX = 0.0, sumY = 0.0;
    auto add = [&](uint8_t level, double x, double y) {
        if (!level) return;
        const double wgt = kWeightOf[level];
        weight += wgt;
        sumX += wgt * x;
        sumY += wgt * y;
    };
    for (int y = y0; y <= y1; ++y) {
        const uint8_t *bits = mask.row(y);
        const uint8_t *g = grey.row(y);
        const double fy = y;
        for (int i = x0 >> 3; i <= (x1 >> 3); ++i) {
            unsigned byte = bits[i];
            if (!byte) continue;
            byte = bits_in_columns(byte, i, x0, x1);
            if (byte == 0xffu) {
                // Inside a region: eight pixels in a row.
                for (int b = 0; b < 8; ++b) add(g[i * 8 + b], i * 8 + b, fy);
                continue;
            }
            while (byte) {
                const int b = __builtin_clz(byte) - 24;  // leftmost pixel first
                byte &= ~(0x80u >> b);
                add(g[i * 8 + b], i * 8 + b, fy);
            }
        }
    }
    if (weight == 0.0) return point;
    return {sumX / weight, sumY / weight};
}
