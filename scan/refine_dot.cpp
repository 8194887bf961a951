#include "scan/refine_dot.h"

#include <algorithm>
#include <cmath>

Math::Point2d refine_dot(const BM_MaskMap &mask, const BM_GreyMap &grey, Math::Point2d point, int width, int height) {
    const int w = std::min(mask.width(), grey.width()), h = std::min(mask.height(), grey.height());
    if (!(point.x >= 0.0 && point.y >= 0.0 && point.x < w && point.y < h)) return point;

    const int halfW = width / 2, halfH = height / 2;
    const int x0 = std::max(static_cast<int>(std::floor(point.x - halfW)), 0);
    const int x1 = std::min(static_cast<int>(std::ceil(point.x + halfW)), w - 1);
    const int y0 = std::max(static_cast<int>(std::floor(point.y - halfH)), 0);
    const int y1 = std::min(static_cast<int>(std::ceil(point.y + halfH)), h - 1);

    double weight = 0.0, sumX = 0.0, sumY = 0.0;
    for (int y = y0; y <= y1; ++y) {
        const uint8_t *bits = mask.row(y);
        const uint8_t *g = grey.row(y);
        for (int x = x0; x <= x1; ++x) {
            if (!((bits[x >> 3] >> (7 - (x & 7))) & 1u)) continue;
            const double wgt = g[x] / 255.0;
            weight += wgt;
            sumX += wgt * x;
            sumY += wgt * y;
        }
    }
    if (weight == 0.0) return point;
    return {sumX / weight, sumY / weight};
}
