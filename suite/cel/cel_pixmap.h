#pragma once
// Pixel objects. A leaf holds one block of width x height pixels, rows from the
// top, no padding between rows, no tiling; the first pixel of a row is the
// image's left edge.
#include <QImage>

#include <cstdint>
#include <cstring>
#include <memory>

#include "suite/cel/cel_representation.h"

struct CEL_RGBA8Pixel {
    uint8_t r, g, b, a;
    bool operator==(const CEL_RGBA8Pixel &) const = default;
};
struct CEL_RGBA16Pixel {
    uint16_t r, g, b, a;
    bool operator==(const CEL_RGBA16Pixel &) const = default;
};

class CEL_Pixmap : public CEL_Representation {
public:
    int width() const { return width_; }
    int height() const { return height_; }
    size_t pixelCount() const { return size_t(width_) * size_t(height_); }
    virtual int bytesPerPixel() const = 0;
    virtual const void *rawData() const = 0;
    // The picture for the screen: colour leaves show their colours opaque
    // (a scan's alpha is 0 everywhere), matte leaves show grey levels.
    virtual QImage getImage() const = 0;

protected:
    int width_ = 0;
    int height_ = 0;
};

template <class P, int Type>
class CEL_PixmapOf : public CEL_Pixmap {
public:
    using Pixel = P;
    static constexpr int kType = Type;

    CEL_PixmapOf() = default;
    // A block of width x height pixels, all zero.
    CEL_PixmapOf(int width, int height) { allocate(width, height, true); }
    CEL_PixmapOf(const CEL_PixmapOf &o) : CEL_Pixmap(o)
    {
        allocate(o.width_, o.height_, false);
        if (pixelCount())
            std::memcpy(data_.get(), o.data_.get(), pixelCount() * sizeof(P));
    }
    CEL_PixmapOf &operator=(const CEL_PixmapOf &) = delete;

    int type() const override { return Type; }
    int bytesPerPixel() const override { return int(sizeof(P)); }
    const void *rawData() const override { return data_.get(); }

    P *data() { return data_.get(); }
    const P *data() const { return data_.get(); }
    P *row(int y) { return data_.get() + size_t(y) * size_t(width_); }
    const P *row(int y) const { return data_.get() + size_t(y) * size_t(width_); }
    P &at(int x, int y) { return row(y)[x]; }
    const P &at(int x, int y) const { return row(y)[x]; }

    // Hands a block over to the leaf, which owns it from now on.
    void setData(std::unique_ptr<P[]> pixels, int width, int height)
    {
        data_ = std::move(pixels);
        width_ = width;
        height_ = height;
    }
    // A block for width x height pixels; unset pixels are left as they are
    // when `zero` is false, for callers that write every pixel.
    static std::unique_ptr<P[]> makeBlock(int width, int height, bool zero)
    {
        const size_t n = size_t(width > 0 ? width : 0) * size_t(height > 0 ? height : 0);
        return zero ? std::make_unique<P[]>(n) : std::make_unique_for_overwrite<P[]>(n);
    }

private:
    void allocate(int width, int height, bool zero)
    {
        setData(makeBlock(width, height, zero), width > 0 ? width : 0, height > 0 ? height : 0);
    }
    std::unique_ptr<P[]> data_;
};

class CEL_PixmapRGBA8;
class CEL_PixmapRGBA16;
class CEL_PixmapMatte16;

class CEL_PixmapRGBA8 final : public CEL_PixmapOf<CEL_RGBA8Pixel, CEL_TYPE_RGBA8> {
public:
    using CEL_PixmapOf::CEL_PixmapOf;
    CEL_PixmapRGBA8(const CEL_PixmapRGBA8 &) = default;
    QImage getImage() const override;
};

class CEL_PixmapRGBA16 final : public CEL_PixmapOf<CEL_RGBA16Pixel, CEL_TYPE_RGBA16> {
public:
    using CEL_PixmapOf::CEL_PixmapOf;
    CEL_PixmapRGBA16(const CEL_PixmapRGBA16 &) = default;
    QImage getImage() const override;
};

class CEL_PixmapMatte16 final : public CEL_PixmapOf<uint16_t, CEL_TYPE_MATTE16> {
public:
    using CEL_PixmapOf::CEL_PixmapOf;
    CEL_PixmapMatte16(const CEL_PixmapMatte16 &) = default;
    QImage getImage() const override;
};

class CEL_PixmapMatte8 final : public CEL_PixmapOf<uint8_t, CEL_TYPE_MATTE8> {
public:
    using CEL_PixmapOf::CEL_PixmapOf;
    CEL_PixmapMatte8(const CEL_PixmapMatte8 &) = default;
    // Grey levels of another leaf: the luminance of a colour pixel, the top
    // eight bits of a 16-bit one, rounded.
    explicit CEL_PixmapMatte8(const CEL_PixmapRGBA8 &src);
    explicit CEL_PixmapMatte8(const CEL_PixmapRGBA16 &src);
    explicit CEL_PixmapMatte8(const CEL_PixmapMatte16 &src);
    QImage getImage() const override;
};

using CEL_PixmapPtr = UT_SharePtr<CEL_Pixmap>;
using CEL_PixmapRGBA8Ptr = UT_SharePtr<CEL_PixmapRGBA8>;
using CEL_PixmapRGBA16Ptr = UT_SharePtr<CEL_PixmapRGBA16>;
using CEL_PixmapMatte8Ptr = UT_SharePtr<CEL_PixmapMatte8>;
using CEL_PixmapMatte16Ptr = UT_SharePtr<CEL_PixmapMatte16>;
