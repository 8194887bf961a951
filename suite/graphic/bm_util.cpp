#include "suite/graphic/bm_util.h"

#include <algorithm>
#include <vector>

namespace BM_Util {

namespace {

// For each target coordinate, the first source coordinate it covers; the
// entry after the last is the source length. A grown side maps several
// targets to one source.
std::vector<int> spans(int source, int target) {
    std::vector<int> start(static_cast<size_t>(target) + 1);
    for (int i = 0; i <= target; ++i) start[static_cast<size_t>(i)] = static_cast<int>(int64_t(i) * source / target);
    return start;
}

}  // namespace

BM_GreyMap FastResize(const BM_GreyMap &source, int width, int height) {
    width = std::max(width, 1);
    height = std::max(height, 1);
    BM_GreyMap out(width, height);
    const int sw = source.width(), sh = source.height();
    if (sw < 1 || sh < 1) return out;
    const std::vector<int> xs = spans(sw, width), ys = spans(sh, height);
    std::vector<uint32_t> sums(static_cast<size_t>(width));
    for (int ty = 0; ty < height; ++ty) {
        const int y0 = ys[size_t(ty)], y1 = std::max(ys[size_t(ty) + 1], y0 + 1);
        std::fill(sums.begin(), sums.end(), 0u);
        for (int y = y0; y < y1; ++y) {
            const uint8_t *row = source.row(y);
            for (int tx = 0; tx < width; ++tx) {
                const int x0 = xs[size_t(tx)], x1 = std::max(xs[size_t(tx) + 1], x0 + 1);
                uint32_t s = 0;
                for (int x = x0; x < x1; ++x) s += row[x];
                sums[size_t(tx)] += s;
            }
        }
        uint8_t *dst = out.row(ty);
        for (int tx = 0; tx < width; ++tx) {
            const uint32_t count = uint32_t(std::max(xs[size_t(tx) + 1] - xs[size_t(tx)], 1)) * uint32_t(y1 - y0);
            dst[tx] = static_cast<uint8_t>((sums[size_t(tx)] + count / 2) / count);
        }
    }
    return out;
}

}  // namespace BM_Util
