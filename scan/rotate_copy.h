#pragma once
// Copies of the part of a picture that is turned: the part itself, and the
// part turned by whole quarters.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

// A w x h block of pixels, rows `stride` pixels apart; `owned` keeps it alive
// when it is a copy.
template <class P>
struct PixelView {
    const P *data = nullptr;
    size_t stride = 0;
    std::unique_ptr<P[]> owned;
};

// The part (x0, y0) of size w x h of a width x height block. A part that runs
// past the right edge reads on along the block, where the next row lies, and
// finds 0 past the block's end: callers pass parts inside the picture, and
// nothing outside the block is ever read.
template <class P>
PixelView<P> view_of_part(const P *pixels, int32_t width, int32_t height, int32_t x0, int32_t y0, int32_t w,
                          int32_t h)
{
    if (x0 >= 0 && y0 >= 0 && x0 + w <= width && y0 + h <= height)
        return {pixels + size_t(y0) * size_t(width) + size_t(x0), size_t(width), nullptr};
    auto block = std::make_unique<P[]>(size_t(w) * size_t(h));
    const int64_t total = int64_t(width) * height;
    for (int32_t j = 0; j < h; ++j) {
        const int64_t start = (int64_t(y0) + j) * width + x0;
        const int64_t n = std::clamp<int64_t>(total - start, 0, w);
        if (n > 0)
            std::memcpy(block.get() + size_t(j) * size_t(w), pixels + start, size_t(n) * sizeof(P));
    }
    PixelView<P> view{block.get(), size_t(w), std::move(block)};
    return view;
}

// The w x h pixels of `src` turned by `turns` quarters anticlockwise: pixel
// (i, j) goes to (j, w-1-i) for one turn, (w-1-i, h-1-j) for two and
// (h-1-j, i) for three. Odd turns give an h x w block.
template <class P>
std::unique_ptr<P[]> turned_copy(const P *src, size_t stride, int32_t w, int32_t h, int32_t turns)
{
    auto out = std::make_unique_for_overwrite<P[]>(size_t(w) * size_t(h));
    P *dst = out.get();
    const size_t W = size_t(w), H = size_t(h);
    if (turns == 0) {
        for (size_t j = 0; j < H; ++j)
            std::memcpy(dst + j * W, src + j * stride, W * sizeof(P));
        return out;
    }
    if (turns == 2) {
        for (size_t j = 0; j < H; ++j) {
            const P *s = src + j * stride;
            P *d = dst + (H - 1 - j) * W;
            for (size_t i = 0; i < W; ++i)
                d[W - 1 - i] = s[i];
        }
        return out;
    }
    // Odd turns transpose; tiles keep both sides in the cache.
    constexpr size_t kTile = 64;
    for (size_t j0 = 0; j0 < H; j0 += kTile) {
        const size_t j1 = std::min(H, j0 + kTile);
        for (size_t i0 = 0; i0 < W; i0 += kTile) {
            const size_t i1 = std::min(W, i0 + kTile);
            for (size_t j = j0; j < j1; ++j) {
                const P *s = src + j * stride;
                for (size_t i = i0; i < i1; ++i) {
                    if (turns == 1)
                        dst[(W - 1 - i) * H + j] = s[i];
                    else
                        dst[i * H + (H - 1 - j)] = s[i];
                }
            }
        }
    }
    return out;
}
