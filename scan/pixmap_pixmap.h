#pragma once
// LMV_pixmap: the scanner code's handle on one image, four slots of which at
// most one is filled, and the band loader that drivers feed scan lines to.
#include <QImage>
#include <QTransform>

#include <cstdint>
#include <memory>

#include "scan/scsi_bytes.h"
#include "suite/cel/cel_pixmap.h"

// Kinds of an LMV_pixmap, as create_pixmap takes them and type_of_pixmap
// returns them.
enum LMV_PixmapKind : int32_t {
    PIXMAP_RGBA16 = 1,
    PIXMAP_RGBA8 = 2,
    PIXMAP_MATTE16 = 3,
    PIXMAP_MATTE8 = 4,
    PIXMAP_NONE = 5,
};

struct LMV_pixmap {
    CEL_PixmapRGBA8Ptr rgba8;
    CEL_PixmapRGBA16Ptr rgba16;
    CEL_PixmapMatte8Ptr matte8;
    CEL_PixmapMatte16Ptr matte16;
    uint8_t owns_data = 1;
    int32_t ref_count = 1;
    int32_t width = 0;
    int32_t height = 0;
    int32_t x_offset = 0;
    int32_t y_offset = 0;
    int32_t flags = 0;
};

// Life.
LMV_pixmap *create_pixmap(int32_t kind, int32_t width, int32_t height, int32_t x_offset, int32_t y_offset);
LMV_pixmap *create_pixmap(int32_t kind, int32_t width, int32_t height);
LMV_pixmap *wrap_rgba8_pixmap(const CEL_PixmapRGBA8Ptr &leaf, int32_t width, int32_t height, uint8_t owns_data);
LMV_pixmap *wrap_rgba16_pixmap(const CEL_PixmapRGBA16Ptr &leaf, int32_t width, int32_t height, uint8_t owns_data);
LMV_pixmap *wrap_matte8_pixmap(const CEL_PixmapMatte8Ptr &leaf, int32_t width, int32_t height, uint8_t owns_data);
LMV_pixmap *wrap_matte16_pixmap(const CEL_PixmapMatte16Ptr &leaf, int32_t width, int32_t height, uint8_t owns_data);
void release_pixmap(LMV_pixmap *pixmap);
LMV_pixmap *clone_pixmap(const LMV_pixmap *source);

// Slots.
int32_t type_of_pixmap(const LMV_pixmap *pixmap);
CEL_PixmapRGBA8Ptr rgba8_of_pixmap(const LMV_pixmap *pixmap);
CEL_PixmapRGBA16Ptr rgba16_of_pixmap(const LMV_pixmap *pixmap);
CEL_PixmapMatte8Ptr matte8_of_pixmap(const LMV_pixmap *pixmap);
CEL_PixmapMatte16Ptr matte16_of_pixmap(const LMV_pixmap *pixmap);
CEL_RGBA8Pixel *rgba8_data_of_pixmap(const LMV_pixmap *pixmap);
CEL_RGBA16Pixel *rgba16_data_of_pixmap(const LMV_pixmap *pixmap);
uint8_t *matte8_data_of_pixmap(const LMV_pixmap *pixmap);
uint16_t *matte16_data_of_pixmap(const LMV_pixmap *pixmap);
CEL_PixmapPtr best_of_pixmap(const LMV_pixmap *pixmap);
void set_rgba8_of_pixmap(LMV_pixmap *pixmap, std::unique_ptr<CEL_RGBA8Pixel[]> pixels, int32_t width, int32_t height, uint8_t owns_data);
void set_rgba16_of_pixmap(LMV_pixmap *pixmap, std::unique_ptr<CEL_RGBA16Pixel[]> pixels, int32_t width, int32_t height, uint8_t owns_data);
void set_matte8_of_pixmap(LMV_pixmap *pixmap, std::unique_ptr<uint8_t[]> pixels, int32_t width, int32_t height, uint8_t owns_data);
void set_matte16_of_pixmap(LMV_pixmap *pixmap, std::unique_ptr<uint16_t[]> pixels, int32_t width, int32_t height, uint8_t owns_data);
void replace_pixmap(LMV_pixmap *pixmap, const CEL_PixmapPtr &leaf, int32_t width, int32_t height, uint8_t owns_data);
int32_t width_of_pixmap(const LMV_pixmap *pixmap);
int32_t height_of_pixmap(const LMV_pixmap *pixmap);
void set_size_of_pixmap(LMV_pixmap *pixmap, int32_t width, int32_t height);

// Operations.
void flip_pixmap(LMV_pixmap *pixmap, bool s);
void scale_pixmap(LMV_pixmap *pixmap, double tx, double ty, int32_t width, int32_t height, double sx, double sy);
void stretch_gray_pixmap(LMV_pixmap *pixmap, double black, double white);
void image_of_pixmap(const LMV_pixmap *pixmap, QImage *image);

// Stores one block of raster data, turned for the peg side (1 left, 2 top,
// 3 right, 4 bottom). `x` and `y` name the next pixel and are carried from
// band to band. Kind 2 takes RGB bytes; kind 4 takes grey bytes or, with
// `one_bit`, packed lines of ceil(width / 8) bytes.
void load_band_of_pixmap(LMV_pixmap *pixmap, int32_t *x, int32_t *y, const uint8_t *data, int32_t length,
                         bool invert, bool one_bit, int32_t peg_side, bool first, bool last);

// The band loader's turn in continuous coordinates: from a raster of `width`
// pixels a line and `height` lines (pixel (i, j) covering [i, i + 1) x
// [j, j + 1)) to the stored picture of that peg side; identity for side 1 and
// for sides the loader doesn't know.
QTransform turn_of_peg_side(int32_t peg_side, int32_t width, int32_t height);

// An image from outside the scanner drivers, as one band turned for the peg
// side: Matte8 for a one-bit image, RGBA8 for anything else; null for a null image.
CEL_PixmapPtr pixmap_from_QImage(const QImage &image, int32_t peg_side);
