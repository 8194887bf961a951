// Moving and scaling a leaf into a new one. At scale 1 a whole shift copies
// rows and a fractional one blends four neighbours with fixed weights. Any
// other scale is separable: each axis has a table of source taps per
// destination position, rows are resampled across first and blended down.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

#include "suite/base/assertion.h"
#include "suite/cel/cel_algo.h"

namespace {

// How often the progress hears from a scale.
constexpr int kProgressRows = 64;
// Horizontally resampled source rows kept; a destination row needs at most two
// new ones when enlarging, and reductions visit each source row at most twice.
constexpr int kCachedRows = 4;

// A channel value from a sum of weighted ones, rounded half up and clamped.
template <class V>
V toValue(float f)
{
    constexpr float kMax = float(std::numeric_limits<V>::max());
    return V(std::clamp(f + 0.5f, 0.0f, kMax));
}

// Channel access of a pixel type for the resampling loops.
template <class P>
struct Channels {
    static constexpr int n = 4;
    using Value = decltype(P::r);
    static void load(const P &p, float *v) { v[0] = p.r, v[1] = p.g, v[2] = p.b, v[3] = p.a; }
    static void store(P &p, const float *v)
    {
        p = {toValue<Value>(v[0]), toValue<Value>(v[1]), toValue<Value>(v[2]), toValue<Value>(v[3])};
    }
};

template <class P>
    requires std::is_integral_v<P>
struct Channels<P> {
    static constexpr int n = 1;
    static void load(const P &p, float *v) { v[0] = p; }
    static void store(P &p, const float *v) { p = toValue<P>(v[0]); }
};

// Source taps of each destination position along one axis.
struct AxisTaps {
    std::vector<int> begin;  // destination i uses entries begin[i] .. begin[i + 1] - 1
    std::vector<int> index;
    std::vector<float> weight;

    void add(double j, double w, int srcSize)
    {
        if (w > 0 && j >= 0 && j < srcSize) {
            index.push_back(int(j));
            weight.push_back(float(w));
        }
    }
};

// Destination i shows source position (i - shift) / scale. Enlarging (and
// scale 1) samples bilinearly at pixel centres, so a whole shift has one tap
// of weight 1; reducing averages the source interval that the pixel covers.
// Taps outside the source are dropped: what lies outside is 0.
AxisTaps makeTaps(int dstSize, int srcSize, double shift, double scale)
{
    AxisTaps taps;
    taps.begin.reserve(size_t(dstSize) + 1);
    const double magnitude = std::fabs(scale);
    for (int i = 0; i < dstSize; ++i) {
        taps.begin.push_back(int(taps.index.size()));
        if (magnitude >= 1.0) {
            const double c = (i + 0.5 - shift) / scale - 0.5;
            if (!(c > -1.0 && c < srcSize))
                continue;
            const double j = std::floor(c), f = c - j;
            taps.add(j, 1.0 - f, srcSize);
            taps.add(j + 1.0, f, srcSize);
        } else {
            double a = (i - shift) / scale, b = (i + 1 - shift) / scale;
            if (a > b)
                std::swap(a, b);
            a = std::max(a, 0.0);
            b = std::min(b, double(srcSize));
            for (double j = std::floor(a); j < b; ++j)
                taps.add(j, (std::min(b, j + 1.0) - std::max(a, j)) * magnitude, srcSize);
        }
    }
    taps.begin.push_back(int(taps.index.size()));
    return taps;
}

bool reportRows(CelAlgo::ScaleProgress *progress, int done, int total)
{
    if (!progress || (done % kProgressRows != 0 && done != total))
        return true;
    return progress->rowsDone(done, total);
}

// dst[x] = src[x - offset] where that lies in the source row, else 0.
template <class P>
void placeRow(const P *src, int srcWidth, P *dst, int dstWidth, long long offset)
{
    if (!src) {
        std::fill(dst, dst + dstWidth, P{});
        return;
    }
    const long long x0 = std::clamp<long long>(offset, 0, dstWidth);
    const long long x1 = std::clamp<long long>(srcWidth + offset, x0, dstWidth);
    std::fill(dst, dst + x0, P{});
    std::copy(src + (x0 - offset), src + (x1 - offset), dst + x0);
    std::fill(dst + x1, dst + dstWidth, P{});
}

// Source row `y`, or null outside the picture.
template <class Leaf>
const typename Leaf::Pixel *rowOrNull(const Leaf &leaf, long long y)
{
    return y >= 0 && y < leaf.height() ? leaf.row(int(y)) : nullptr;
}

// Whole shifts at scale 1: rows copied as they are, the rest cleared.
template <class Leaf>
bool shiftCopy(const Leaf &src, Leaf &dst, long long tx, long long ty, CelAlgo::ScaleProgress *progress)
{
    for (int y = 0; y < dst.height(); ++y) {
        placeRow(rowOrNull(src, y - ty), src.width(), dst.row(y), dst.width(), tx);
        if (!reportRows(progress, y + 1, dst.height()))
            return false;
    }
    return true;
}

// Fractional shifts at scale 1, the registration's cut: every pixel blends
// the same four neighbours with the same weights. Source rows are first
// placed, shifted by the whole part and padded with 0, so the blend itself
// has no edge cases.
template <class Leaf>
bool shiftBlend(const Leaf &src, Leaf &dst, double tx, double ty, CelAlgo::ScaleProgress *progress)
{
    using P = typename Leaf::Pixel;
    constexpr int N = Channels<P>::n;
    const int w = dst.width(), h = dst.height();
    const double ix = std::floor(tx), iy = std::floor(ty);
    const float fx = float(tx - ix), fy = float(ty - iy);
    // Destination (x, y) takes source (x - ix - 1 + {0, 1}, y - iy - 1 + {0, 1}).
    const float w00 = fy * fx, w01 = fy * (1 - fx), w10 = (1 - fy) * fx, w11 = (1 - fy) * (1 - fx);
    const long long offsetX = (long long)ix + 1, offsetY = (long long)iy + 1;

    std::vector<P> above(size_t(w) + 1), below(size_t(w) + 1);
    placeRow(rowOrNull(src, -offsetY), src.width(), below.data(), w + 1, offsetX);
    for (int y = 0; y < h; ++y) {
        std::swap(above, below);
        placeRow(rowOrNull(src, y + 1 - offsetY), src.width(), below.data(), w + 1, offsetX);
        const P *a = above.data(), *b = below.data();
        P *out = dst.row(y);
        for (int x = 0; x < w; ++x) {
            float a0[N], a1[N], b0[N], b1[N], v[N];
            Channels<P>::load(a[x], a0);
            Channels<P>::load(a[x + 1], a1);
            Channels<P>::load(b[x], b0);
            Channels<P>::load(b[x + 1], b1);
            for (int c = 0; c < N; ++c)
                v[c] = w00 * a0[c] + w01 * a1[c] + w10 * b0[c] + w11 * b1[c];
            Channels<P>::store(out[x], v);
        }
        if (!reportRows(progress, y + 1, h))
            return false;
    }
    return true;
}

template <class Leaf>
class Resampler {
public:
    using P = typename Leaf::Pixel;
    static constexpr int N = Channels<P>::n;

    Resampler(const Leaf &src, int width, int height, double tx, double ty, double sx, double sy)
        : src_(src), xTaps_(makeTaps(width, src.width(), tx, sx)), yTaps_(makeTaps(height, src.height(), ty, sy)),
          rowLength_(size_t(width) * N), acc_(rowLength_)
    {
        for (auto &row : cache_)
            row.resize(rowLength_);
        cacheTag_.fill(-1);
    }

    bool run(Leaf &dst, CelAlgo::ScaleProgress *progress)
    {
        const int w = dst.width(), h = dst.height();
        for (int y = 0; y < h; ++y) {
            std::fill(acc_.begin(), acc_.end(), 0.0f);
            for (int t = yTaps_.begin[y]; t < yTaps_.begin[y + 1]; ++t) {
                const float wy = yTaps_.weight[t];
                const float *across = resampledRow(yTaps_.index[t]);
                for (size_t k = 0; k < rowLength_; ++k)
                    acc_[k] += wy * across[k];
            }
            P *out = dst.row(y);
            for (int x = 0; x < w; ++x)
                Channels<P>::store(out[x], acc_.data() + size_t(x) * N);
            if (!reportRows(progress, y + 1, h))
                return false;
        }
        return true;
    }

private:
    // Source row j resampled to the destination width, from the cache.
    const float *resampledRow(int j)
    {
        const int slot = j % kCachedRows;
        float *row = cache_[slot].data();
        if (cacheTag_[slot] == j)
            return row;
        cacheTag_[slot] = j;
        const P *in = src_.row(j);
        const size_t w = xTaps_.begin.size() - 1;
        for (size_t x = 0; x < w; ++x) {
            float sum[N] = {};
            for (int t = xTaps_.begin[x]; t < xTaps_.begin[x + 1]; ++t) {
                float v[N];
                Channels<P>::load(in[xTaps_.index[t]], v);
                const float wx = xTaps_.weight[t];
                for (int c = 0; c < N; ++c)
                    sum[c] += wx * v[c];
            }
            std::copy_n(sum, N, row + x * N);
        }
        return row;
    }

    const Leaf &src_;
    AxisTaps xTaps_, yTaps_;
    size_t rowLength_;
    std::vector<float> acc_;
    std::array<std::vector<float>, kCachedRows> cache_;
    std::array<int, kCachedRows> cacheTag_;
};

bool isWhole(double v)
{
    return v == std::floor(v);
}

template <class Leaf>
UT_SharePtr<Leaf> scaleLeaf(const Leaf *leaf, int width, int height, double tx, double ty, double sx, double sy,
                            CelAlgo::ScaleProgress *progress)
{
    LMV_ASSERT_RET(leaf, nullptr);
    LMV_ASSERT_RET(width >= 0 && height >= 0, nullptr);
    LMV_ASSERT_RET(std::isfinite(tx) && std::isfinite(ty), nullptr);
    LMV_ASSERT_RET(std::isfinite(sx) && std::isfinite(sy) && sx != 0.0 && sy != 0.0, nullptr);

    auto out = UT_makeShared<Leaf>();
    out->setData(Leaf::makeBlock(width, height, false), width, height);
    // Beyond this every pixel falls outside any picture anyway.
    constexpr double kFar = 1e12;
    tx = std::clamp(tx, -kFar, kFar);
    ty = std::clamp(ty, -kFar, kFar);
    bool done;
    if (sx == 1.0 && sy == 1.0 && isWhole(tx) && isWhole(ty)) {
        done = shiftCopy(*leaf, *out, (long long)tx, (long long)ty, progress);
    } else if (sx == 1.0 && sy == 1.0) {
        done = shiftBlend(*leaf, *out, tx, ty, progress);
    } else {
        done = Resampler<Leaf>(*leaf, width, height, tx, ty, sx, sy).run(*out, progress);
    }
    return done ? out : nullptr;
}

} // namespace

CEL_PixmapRGBA8Ptr CelAlgo::scale(const CEL_PixmapRGBA8 *leaf, int width, int height, double tx, double ty, double sx,
                                  double sy, CelAlgo::ScaleProgress *progress)
{
    return scaleLeaf(leaf, width, height, tx, ty, sx, sy, progress);
}

CEL_PixmapRGBA16Ptr CelAlgo::scale(const CEL_PixmapRGBA16 *leaf, int width, int height, double tx, double ty,
                                   double sx, double sy, CelAlgo::ScaleProgress *progress)
{
    return scaleLeaf(leaf, width, height, tx, ty, sx, sy, progress);
}

CEL_PixmapMatte8Ptr CelAlgo::scale(const CEL_PixmapMatte8 *leaf, int width, int height, double tx, double ty,
                                   double sx, double sy, CelAlgo::ScaleProgress *progress)
{
    return scaleLeaf(leaf, width, height, tx, ty, sx, sy, progress);
}

CEL_PixmapMatte16Ptr CelAlgo::scale(const CEL_PixmapMatte16 *leaf, int width, int height, double tx, double ty,
                                    double sx, double sy, CelAlgo::ScaleProgress *progress)
{
    return scaleLeaf(leaf, width, height, tx, ty, sx, sy, progress);
}
