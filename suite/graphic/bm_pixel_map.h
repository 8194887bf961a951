#pragma once
// Uncompressed pixel maps of 8, 2 and 1 bits a pixel. Rows are aligned on
// 4 bytes; in a 1-bit row x = 0 is bit 7 of the first byte, in a 2-bit row
// the top two bits.
#include <cstdint>
#include <cstring>
#include <vector>

struct BM_PixelGray8 {
    static constexpr int kBits = 8;
};
struct BM_Pixel2 {
    static constexpr int kBits = 2;
};
struct BM_Pixel1 {
    static constexpr int kBits = 1;
};

template <typename Pixel>
class BM_PixelMap {
public:
    BM_PixelMap() = default;
    BM_PixelMap(int width, int height) { allocate(width, height); }

    // Fresh, cleared pixels.
    void allocate(int width, int height) {
        width_ = width > 0 ? width : 0;
        height_ = height > 0 ? height : 0;
        stride_ = static_cast<int>(((static_cast<int64_t>(width_) * Pixel::kBits + 7) / 8 + 3) / 4 * 4);
        data_.assign(static_cast<size_t>(stride_) * static_cast<size_t>(height_), 0);
    }
    void clear() { std::memset(data_.data(), 0, data_.size()); }

    int width() const { return width_; }
    int height() const { return height_; }
    int bytesPerRow() const { return stride_; }
    uint8_t *row(int y) { return data_.data() + static_cast<size_t>(y) * static_cast<size_t>(stride_); }
    const uint8_t *row(int y) const { return data_.data() + static_cast<size_t>(y) * static_cast<size_t>(stride_); }
    uint8_t *data() { return data_.data(); }
    const uint8_t *data() const { return data_.data(); }

    // One pixel's value; no bounds check.
    unsigned get(int x, int y) const {
        const uint8_t *r = row(y);
        if constexpr (Pixel::kBits == 8) return r[x];
        else if constexpr (Pixel::kBits == 2) return (r[x >> 2] >> (6 - 2 * (x & 3))) & 3u;
        else return (r[x >> 3] >> (7 - (x & 7))) & 1u;
    }
    void set(int x, int y, unsigned v) {
        uint8_t *r = row(y);
        if constexpr (Pixel::kBits == 8) {
            r[x] = static_cast<uint8_t>(v);
        } else if constexpr (Pixel::kBits == 2) {
            const int shift = 6 - 2 * (x & 3);
            r[x >> 2] = static_cast<uint8_t>((r[x >> 2] & ~(3u << shift)) | ((v & 3u) << shift));
        } else {
            const int shift = 7 - (x & 7);
            r[x >> 3] = static_cast<uint8_t>((r[x >> 3] & ~(1u << shift)) | ((v & 1u) << shift));
        }
    }

private:
    int width_ = 0, height_ = 0, stride_ = 0;
    std::vector<uint8_t> data_;
};

using BM_GreyMap = BM_PixelMap<BM_PixelGray8>;
using BM_MaskMap = BM_PixelMap<BM_Pixel1>;
using BM_MarkMap = BM_PixelMap<BM_Pixel2>;
