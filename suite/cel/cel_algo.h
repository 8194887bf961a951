#pragma once
// Image kernels that the station calls on pixel objects.
#include <QImage>

#include "suite/cel/cel_pixmap.h"

namespace CelAlgo {

// Mirrors a leaf in place. `transpose` swaps x and y first (the leaf's width
// and height swap with it); then `flipRows` turns it upside down (row y goes
// to row height-1-y) and `flipColumns` mirrors it left to right.
void preFlip(CEL_PixmapRGBA8 *leaf, bool transpose, bool flipRows, bool flipColumns);
void preFlip(CEL_PixmapRGBA16 *leaf, bool transpose, bool flipRows, bool flipColumns);
void preFlip(CEL_PixmapMatte8 *leaf, bool transpose, bool flipRows, bool flipColumns);
void preFlip(CEL_PixmapMatte16 *leaf, bool transpose, bool flipRows, bool flipColumns);

// A new leaf of width x height whose pixel (x, y) shows the source at
// ((x - tx) / sx, (y - ty) / sy): the content moved by (tx, ty) and scaled by
// (sx, sy). Whole shifts at scale 1 copy pixels exactly; other positions are
// sampled bilinearly, and reductions average the source area of each pixel.
// What falls outside the source is 0. `progress` may be null. A null result
// means bad arguments or a stop asked by `progress`.
struct ScaleProgress {
    virtual ~ScaleProgress() = default;
    // Called every few rows with the rows written so far; false stops the work.
    virtual bool rowsDone(int done, int total) = 0;
};
CEL_PixmapRGBA8Ptr scale(const CEL_PixmapRGBA8 *leaf, int width, int height, double tx, double ty,
                         double sx, double sy, ScaleProgress *progress);
CEL_PixmapRGBA16Ptr scale(const CEL_PixmapRGBA16 *leaf, int width, int height, double tx, double ty,
                          double sx, double sy, ScaleProgress *progress);
CEL_PixmapMatte8Ptr scale(const CEL_PixmapMatte8 *leaf, int width, int height, double tx, double ty,
                          double sx, double sy, ScaleProgress *progress);
CEL_PixmapMatte16Ptr scale(const CEL_PixmapMatte16 *leaf, int width, int height, double tx, double ty,
                           double sx, double sy, ScaleProgress *progress);

// Stretches grey levels in place so that `black` (0..1) becomes 0 and `white`
// (0..1) becomes 255, with the levels between spread linearly and clamped.
// With white <= black the picture becomes two-valued at `black`.
void stretchGrayPixmap(CEL_PixmapMatte8 *leaf, double black, double white);

} // namespace CelAlgo

namespace CEL_Util {
// The grey picture of a Matte8 leaf, as QImage::Format_Grayscale8.
QImage getGrayScaleImage(const CEL_PixmapMatte8 *leaf);
} // namespace CEL_Util
