#pragma once
// Uncompressed pixel maps of 24, 8, 2 and 1 bits a pixel. Rows are aligned on
// 4 bytes; in a 1-bit row x = 0 is bit 7 of the first byte, in a 2-bit row
// the top two bits; a 24-bit pixel is the bytes blue, green, red, read as the
// number red << 16 | green << 8 | blue.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

// Zeroed bytes from calloc: a large block comes as fresh pages that take no
// memory until written, so a mostly white page costs what its ink does.
class BM_Bytes {
public:
    BM_Bytes() = default;
    explicit BM_Bytes(size_t size) : size_(size), data_(size ? static_cast<uint8_t *>(std::calloc(size, 1)) : nullptr) {
        if (size && !data_) throw std::bad_alloc();
    }
    BM_Bytes(const BM_Bytes &o) : BM_Bytes(o.size_) {
        if (size_) std::memcpy(data_, o.data_, size_);
    }
    BM_Bytes(BM_Bytes &&o) noexcept : size_(std::exchange(o.size_, 0)), data_(std::exchange(o.data_, nullptr)) {}
    BM_Bytes &operator=(BM_Bytes o) noexcept {
        std::swap(size_, o.size_);
        std::swap(data_, o.data_);
        return *this;
    }
    ~BM_Bytes() { std::free(data_); }

    uint8_t *data() { return data_; }
    const uint8_t *data() const { return data_; }
    size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

private:
    size_t size_ = 0;
    uint8_t *data_ = nullptr;
};

struct BM_PixelBgr24 {
    static constexpr int kBits = 24;
};
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
    void allocate(int width, int height) { allocateRows(width, height, 0, height - 1); }
    // A map of width x height that stores only rows first..last: the others
    // read as clear, writes to them are dropped, and they take no memory. A
    // band of a large picture costs no more than the band. The row just
    // above and just below the stored ones (when inside the map) can be read
    // through row() and stay clear, so a reader may look one row past a set
    // pixel without a test.
    void allocateRows(int width, int height, int first, int last) {
        width_ = width > 0 ? width : 0;
        height_ = height > 0 ? height : 0;
        stride_ = static_cast<int>(((static_cast<int64_t>(width_) * Pixel::kBits + 7) / 8 + 3) / 4 * 4);
        first_ = first < 0 ? 0 : first;
        last_ = last >= height_ ? height_ - 1 : last;
        if (first_ > last_) {
            first_ = 0;
            last_ = -1;
        }
        top_ = first_ > 0 ? first_ - 1 : 0;
        const int bottom = last_ < 0 ? -1 : (last_ + 1 < height_ ? last_ + 1 : last_);
        data_ = BM_Bytes(static_cast<size_t>(stride_) * static_cast<size_t>(bottom - top_ + 1));
    }
    void clear() {
        if (!data_.empty()) std::memset(data_.data(), 0, data_.size());
    }

    // The stored rows; all of them unless made by allocateRows.
    int firstRow() const { return first_; }
    int lastRow() const { return last_; }
    bool stores(int y) const { return y >= first_ && y <= last_; }

    int width() const { return width_; }
    int height() const { return height_; }
    int bytesPerRow() const { return stride_; }
    // Row y, for a stored row or one of the clear rows beside them.
    uint8_t *row(int y) { return data_.data() + offset(y); }
    const uint8_t *row(int y) const { return data_.data() + offset(y); }
    // The first row kept in memory: row 0 of a whole map.
    uint8_t *data() { return data_.data(); }
    const uint8_t *data() const { return data_.data(); }

    // One pixel's value; x is not checked, a row not stored reads as clear.
    unsigned get(int x, int y) const {
        if (!stores(y)) return 0;
        const uint8_t *r = row(y);
        if constexpr (Pixel::kBits == 24) return r[3 * x] | (r[3 * x + 1] << 8) | (unsigned(r[3 * x + 2]) << 16);
        else if constexpr (Pixel::kBits == 8) return r[x];
        else if constexpr (Pixel::kBits == 2) return (r[x >> 2] >> (6 - 2 * (x & 3))) & 3u;
        else return (r[x >> 3] >> (7 - (x & 7))) & 1u;
    }
    void set(int x, int y, unsigned v) {
        if (!stores(y)) return;
        uint8_t *r = row(y);
        if constexpr (Pixel::kBits == 24) {
            r[3 * x] = static_cast<uint8_t>(v);
            r[3 * x + 1] = static_cast<uint8_t>(v >> 8);
            r[3 * x + 2] = static_cast<uint8_t>(v >> 16);
        } else if constexpr (Pixel::kBits == 8) {
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
    size_t offset(int y) const { return static_cast<size_t>(y - top_) * static_cast<size_t>(stride_); }

    int width_ = 0, height_ = 0, stride_ = 0;
    int first_ = 0, last_ = -1, top_ = 0;  // stored rows; row top_ is data_[0]
    BM_Bytes data_;
};

using BM_IndexMap = BM_PixelMap<BM_PixelBgr24>;
using BM_GreyMap = BM_PixelMap<BM_PixelGray8>;
using BM_MaskMap = BM_PixelMap<BM_Pixel1>;
using BM_MarkMap = BM_PixelMap<BM_Pixel2>;
