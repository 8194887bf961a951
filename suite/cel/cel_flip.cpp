// Mirroring and transposing a leaf in place.
#include <algorithm>

#include "suite/base/assertion.h"
#include "suite/cel/cel_algo.h"

namespace {

// Edge of the square tiles of the transposing copy: both the rows read and the
// rows written stay in cache.
constexpr int kTile = 64;

// Mirrors rows and columns within the block, no new memory.
template <class Leaf>
void flipInPlace(Leaf &leaf, bool flipRows, bool flipColumns)
{
    const int w = leaf.width(), h = leaf.height();
    if (flipRows) {
        for (int y = 0; y < h / 2; ++y) {
            auto *a = leaf.row(y), *b = leaf.row(h - 1 - y);
            if (flipColumns)
                for (int x = 0; x < w; ++x)
                    std::swap(a[x], b[w - 1 - x]);
            else
                std::swap_ranges(a, a + w, b);
        }
        // The middle row of an odd height stays, mirrored if asked.
        if (flipColumns && h % 2)
            std::reverse(leaf.row(h / 2), leaf.row(h / 2) + w);
    } else if (flipColumns) {
        for (int y = 0; y < h; ++y)
            std::reverse(leaf.row(y), leaf.row(y) + w);
    }
}

// Transposes into a new block, with the flips done in the same copy.
template <class Leaf>
void transposeFlip(Leaf &leaf, bool flipRows, bool flipColumns)
{
    const int sw = leaf.width(), sh = leaf.height();
    const int dw = sh, dh = sw;
    auto block = Leaf::makeBlock(dw, dh, false);
    const auto *src = leaf.data();
    for (int ty = 0; ty < dh; ty += kTile) {
        const int yEnd = std::min(ty + kTile, dh);
        for (int tx = 0; tx < dw; tx += kTile) {
            const int xEnd = std::min(tx + kTile, dw);
            for (int y = ty; y < yEnd; ++y) {
                // Destination (x, y) is source (y', x') of the transposed picture.
                const int srcX = flipRows ? dh - 1 - y : y;
                auto *out = block.get() + size_t(y) * size_t(dw);
                for (int x = tx; x < xEnd; ++x) {
                    const int srcY = flipColumns ? dw - 1 - x : x;
                    out[x] = src[size_t(srcY) * size_t(sw) + size_t(srcX)];
                }
            }
        }
    }
    leaf.setData(std::move(block), dw, dh);
}

template <class Leaf>
void preFlipLeaf(Leaf *leaf, bool transpose, bool flipRows, bool flipColumns)
{
    LMV_ASSERT_VOID(leaf);
    if (transpose)
        transposeFlip(*leaf, flipRows, flipColumns);
    else
        flipInPlace(*leaf, flipRows, flipColumns);
}

} // namespace

void CelAlgo::preFlip(CEL_PixmapRGBA8 *leaf, bool transpose, bool flipRows, bool flipColumns)
{
    preFlipLeaf(leaf, transpose, flipRows, flipColumns);
}

void CelAlgo::preFlip(CEL_PixmapRGBA16 *leaf, bool transpose, bool flipRows, bool flipColumns)
{
    preFlipLeaf(leaf, transpose, flipRows, flipColumns);
}

void CelAlgo::preFlip(CEL_PixmapMatte8 *leaf, bool transpose, bool flipRows, bool flipColumns)
{
    preFlipLeaf(leaf, transpose, flipRows, flipColumns);
}

void CelAlgo::preFlip(CEL_PixmapMatte16 *leaf, bool transpose, bool flipRows, bool flipColumns)
{
    preFlipLeaf(leaf, transpose, flipRows, flipColumns);
}
