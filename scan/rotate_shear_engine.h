#pragma once
// The shear passes, written once over the channel type, the number of channels
// and the arithmetic of the blend. Included only by the files that compile it
// for one instruction set each, in a namespace of their own (SHEAR_NAMESPACE).
//
// Every pass treats a line as the old code did: the value written at the n-th
// place is mix(src[n], prev), where prev is the background before the first
// value and the value read last after that; colour kinds write one more pixel,
// the blend of the background with the line's last value. All canvases are
// filled with the background, so every pixel that is read has been written.
//
// The vertical pass runs along rows for the cache: columns with the same whole
// shift form runs, and within a run every column is at the same place of its
// line, so a row of a run is one blend of two canvas rows.
//
// When blending the background with itself gives the background exactly (the
// fixed-point blend, or a background of 0), passes 2 and 3 work only inside
// the columns that the pass before wrote; outside them the result would be the
// background anyway.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "scan/rotate_geometry.h"
#include "scan/rotate_shear.h"

namespace SHEAR_NAMESPACE {

// float32 weights, truncated.
struct FloatBlend {
    using Weight = float;
    static constexpr bool kKeepsBackground = false;
    static Weight a(const ShearStep &s) { return s.wa; }
    static Weight b(const ShearStep &s) { return s.wb; }
    template <class T>
    static T mix(T x, T y, Weight wa, Weight wb)
    {
        return T(int32_t(float(x) * wa + float(y) * wb));
    }
};

// 24-bit fixed point for 8-bit channels: no float in the inner loops, and the
// two weights add up to one exactly.
struct FixedBlend {
    using Weight = uint32_t;
    static constexpr bool kKeepsBackground = true;
    static Weight a(const ShearStep &s) { return Weight(int32_t(double(s.wa) * 16777216.0)); }
    static Weight b(const ShearStep &s) { return 0x1000000u - a(s); }
    template <class T>
    static T mix(T x, T y, Weight wa, Weight wb)
    {
        static_assert(sizeof(T) == 1, "24-bit weights leave room for 8-bit values only");
        return T((uint32_t(x) * wa + uint32_t(y) * wb) >> 24);
    }
};

// How a pixel kind is handled: its channel type, channel count and blend.
template <class P>
struct ShearTraits;
template <>
struct ShearTraits<uint8_t> {
    using Channel = uint8_t;
    static constexpr int kChannels = 1;
    using Blend = FloatBlend;
};
template <>
struct ShearTraits<uint16_t> {
    using Channel = uint16_t;
    static constexpr int kChannels = 1;
    using Blend = FloatBlend;
};
template <>
struct ShearTraits<CEL_RGBA16Pixel> {
    using Channel = uint16_t;
    static constexpr int kChannels = 4;
    using Blend = FloatBlend;
};
template <>
struct ShearTraits<CEL_RGBA8Pixel> {
    using Channel = uint8_t;
    static constexpr int kChannels = 4;
    using Blend = FixedBlend;
};

// One sheared line of n pixels: dst[i] = mix(src[i], src[i - 1]), with `prev`
// standing before src. Kept as a plain loop for the vectoriser, which takes
// 16 to 32 channels a step; a body unrolled by hand by four pixels measured
// twice as slow.
template <class Blend, int C, class T, class W>
void blend_line(T *__restrict dst, const T *__restrict src, int32_t n, const T *prev, W wa, W wb)
{
    if (n <= 0)
        return;
    for (int c = 0; c < C; ++c)
        dst[c] = Blend::mix(src[c], prev[c], wa, wb);
    const int32_t len = n * C;
    for (int32_t i = C; i < len; ++i)
        dst[i] = Blend::mix(src[i], src[i - C], wa, wb);
}

// A row of the vertical pass: dst[i] = mix(a[i], b[i]) with weights per channel.
template <class Blend, class T, class W>
void blend_rows(T *__restrict dst, const T *__restrict a, const T *__restrict b, const W *__restrict wa,
                const W *__restrict wb, int32_t len)
{
    for (int32_t i = 0; i < len; ++i)
        dst[i] = Blend::mix(a[i], b[i], wa[i], wb[i]);
}

// The blends of whole lines by the plain loops above. A build may give a kind
// kernels of its own by specialising ShearKernels before it compiles shear().
template <class Blend, int C, class T>
struct PlainKernels {
    using W = typename Blend::Weight;

    static void line(T *dst, const T *src, int32_t n, const T *prev, W wa, W wb)
    {
        blend_line<Blend, C>(dst, src, n, prev, wa, wb);
    }

    // The weights of the vertical pass, repeated over each column's channels.
    class Columns {
    public:
        void resize(int32_t n)
        {
            wa_.resize(size_t(n) * C);
            wb_.resize(size_t(n) * C);
        }
        void set(int32_t k, W wa, W wb)
        {
            std::fill_n(wa_.begin() + ptrdiff_t(k) * C, C, wa);
            std::fill_n(wb_.begin() + ptrdiff_t(k) * C, C, wb);
        }
        // Pixels [k0, k1) of a row: dst = mix(a, b) by each column's weights.
        void blend(T *dst, const T *a, const T *b, int32_t k0, int32_t k1) const
        {
            const size_t at = size_t(k0) * C;
            blend_rows<Blend>(dst + at, a + at, b + at, wa_.data() + at, wb_.data() + at, (k1 - k0) * C);
        }

    private:
        std::vector<W> wa_, wb_;
    };
};

template <class P>
struct ShearKernels
    : PlainKernels<typename ShearTraits<P>::Blend, ShearTraits<P>::kChannels, typename ShearTraits<P>::Channel> {};

// A column range [lo, hi); empty when lo >= hi.
struct Span {
    int32_t lo = 0, hi = 0;
    Span hull(Span o) const { return {std::min(lo, o.lo), std::max(hi, o.hi)}; }
    Span cut(int32_t from, int32_t to) const { return {std::max(lo, from), std::min(hi, to)}; }
    bool empty() const { return lo >= hi; }
};

template <class P>
class ShearEngine {
    using Traits = ShearTraits<P>;
    using T = typename Traits::Channel;
    using Blend = typename Traits::Blend;
    using W = typename Blend::Weight;
    using Kernels = ShearKernels<P>;
    static constexpr int C = Traits::kChannels;
    // Colour kinds write the blend with the background after a line's end.
    static constexpr bool kTail = C > 1;

public:
    ShearEngine(const ShearGeometry &g, const P &background) : g_(g)
    {
        std::memcpy(bg_, &background, sizeof bg_);
        bool zero = true;
        for (T v : bg_)
            zero = zero && v == 0;
        spans_ = Blend::kKeepsBackground || zero;
        bgRow_.resize(size_t(g.w2) * C);
        for (size_t i = 0; i < bgRow_.size(); ++i)
            bgRow_[i] = bg_[i % C];
    }

    // Passes 2 and 3 go row by row; pass 1 runs just ahead of them into a
    // ring of the rows that the vertical shifts can reach, so the canvases
    // stay in the cache instead of being made whole.
    void run(const P *src, size_t stride, P *out)
    {
        src_ = reinterpret_cast<const T *>(src);
        srcStride_ = stride * C;
        prepareColumns();
        const int32_t maxOff = runs_.front().off, minOff = runs_.back().off;
        ringRows_ = maxOff - minOff + 2;
        ring_ = std::make_unique_for_overwrite<T[]>(rowLen() * size_t(ringRows_));
        span1_.assign(size_t(g_.h2), Span{g_.w2, 0});
        std::vector<T> sheared(rowLen());
        int32_t made = 0;
        for (int32_t r = 0; r < g_.out_h; ++r) {
            for (; made <= std::min(g_.h2 - 1, r - minOff); ++made)
                pass1(made);
            const Span touched = pass2(r, sheared.data());
            pass3(r, sheared.data(), touched, reinterpret_cast<T *>(out) + size_t(r) * size_t(g_.out_w) * C);
        }
    }

private:
    size_t rowLen() const { return size_t(g_.w2) * C; }
    T *row1(int32_t j) const { return ring_.get() + size_t(j % ringRows_) * rowLen(); }

    // n pixels of background; never more than a canvas row.
    void fill(T *dst, int32_t n) const { std::copy_n(bgRow_.data(), size_t(n) * C, dst); }

    // The last pixel of a line: the background blended with the value before.
    void writeTail(T *dst, const T *last, W wa, W wb) const
    {
        for (int c = 0; c < C; ++c)
            dst[c] = Blend::mix(bg_[c], last[c], wa, wb);
    }

    // Horizontal: row j of the first canvas from the source.
    void pass1(int32_t j)
    {
        T *row = row1(j);
        if (j >= g_.h) {
            fill(row, g_.w2);
            return;
        }
        const ShearStep step = shear_step(pass1_shift(g_, j));
        const W wa = Blend::a(step), wb = Blend::b(step);
        const int32_t off = std::clamp(step.off, 0, g_.w2);
        const int32_t n = std::min(g_.w, g_.w2 - off);
        const T *line = src_ + size_t(j) * srcStride_;
        fill(row, off);
        Kernels::line(row + size_t(off) * C, line, n, bg_, wa, wb);
        int32_t end = off + n;
        if (kTail && n > 0 && end < g_.w2) {
            writeTail(row + size_t(end) * C, line + size_t(n - 1) * C, wa, wb);
            ++end;
        }
        fill(row + size_t(end) * C, g_.w2 - end);
        span1_[size_t(j)] = {off, end};
    }

    // Columns of the vertical pass that share one whole shift.
    struct Run {
        int32_t k0, k1;
        int32_t off;
        ShearLine line;
    };

    void prepareColumns()
    {
        columns_.resize(g_.w2);
        runs_.clear();
        for (int32_t k = 0; k < g_.w2; ++k) {
            const ShearStep step = shear_step(pass2_shift(g_, k));
            columns_.set(k, Blend::a(step), Blend::b(step));
            if (runs_.empty() || runs_.back().off != step.off)
                runs_.push_back({k, k + 1, step.off, pass2_line(g_, step.off)});
            else
                runs_.back().k1 = k + 1;
        }
    }

    // Vertical: row r of the second canvas. Returns the columns it blended;
    // the rest is background.
    Span pass2(int32_t r, T *dst) const
    {
        Span touched{g_.w2, 0};
        for (const Run &run : runs_) {
            const int32_t n = r - run.line.dst_start, count = run.line.count;
            const T *a = nullptr, *b = nullptr;
            Span span;
            if (count >= 1 && n >= 0 && n < count) {
                const int32_t j = run.line.src_start + n;
                a = row1(j);
                b = n == 0 ? bgRow_.data() : row1(j - 1);
                span = n == 0 ? span1_[size_t(j)] : span1_[size_t(j)].hull(span1_[size_t(j - 1)]);
            } else if (kTail && count >= 1 && n == count) {
                const int32_t j = run.line.src_start + count - 1;
                a = bgRow_.data();
                b = row1(j);
                span = span1_[size_t(j)];
            }
            span = (a && spans_) ? span.cut(run.k0, run.k1) : Span{run.k0, a ? run.k1 : run.k0};
            if (span.empty())
                span = {run.k0, run.k0};
            fill(dst + size_t(run.k0) * C, span.lo - run.k0);
            if (!span.empty()) {
                columns_.blend(dst, a, b, span.lo, span.hi);
                touched = touched.hull(span);
            }
            fill(dst + size_t(span.hi) * C, run.k1 - span.hi);
        }
        return spans_ ? touched : Span{0, g_.w2};
    }

    // Horizontal: row r of the second canvas straight into the result.
    void pass3(int32_t r, const T *src, Span touched, T *dst) const
    {
        const ShearStep step = shear_step(pass3_shift(g_, r));
        const ShearLine line = pass3_line(g_, step.off);
        const Span part = touched.cut(line.src_start, line.src_start + line.count);
        if (line.count < 1 || part.empty()) {
            fill(dst, g_.out_w);
            return;
        }
        const W wa = Blend::a(step), wb = Blend::b(step);
        // Before the part, and after it, the source is background.
        const int32_t at = std::min(line.dst_start + (part.lo - line.src_start), g_.out_w);
        const int32_t n = std::min(part.hi - part.lo, g_.out_w - at);
        fill(dst, at);
        Kernels::line(dst + size_t(at) * C, src + size_t(part.lo) * C, n, bg_, wa, wb);
        int32_t end = at + n;
        const bool cutShort = part.hi < line.src_start + line.count;
        if ((kTail || cutShort) && n == part.hi - part.lo && end < g_.out_w) {
            writeTail(dst + size_t(end) * C, src + size_t(part.hi - 1) * C, wa, wb);
            ++end;
        }
        fill(dst + size_t(end) * C, g_.out_w - end);
    }

    const ShearGeometry &g_;
    T bg_[C];
    bool spans_ = false;
    std::vector<T> bgRow_;
    const T *src_ = nullptr;
    size_t srcStride_ = 0;
    std::unique_ptr<T[]> ring_;
    int32_t ringRows_ = 1;
    std::vector<Span> span1_;
    typename Kernels::Columns columns_;
    std::vector<Run> runs_;
};

template <class P>
void shear(const ShearGeometry &g, const P *src, size_t stride, const P &background, P *out)
{
    ShearEngine<P>(g, background).run(src, stride, out);
}

} // namespace SHEAR_NAMESPACE
