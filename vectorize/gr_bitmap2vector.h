#pragma once
// The edge follower: the outlines of the areas of a bitmap as strokes through
// the midpoints of pixel edges, in pixel coordinates of the bitmap (y down,
// pixel (x, y) covering [x, x + 1] x [y, y + 1]).
//
// GR_Bitmap2Vector<BM_Pixel1> follows the outlines of the set pixels of a
// mask: closed loops only, ink joined across diagonals (a checkerboard of
// four pixels is one piece of ink). The colour of index 1 of the colour list
// goes on the side of the ink.
// GR_Bitmap2Vector<BM_PixelBgr24> follows the borders between areas of equal
// 24-bit values: closed loops around an area that touches one other value,
// and open chains between the points where three values meet. Each side gets
// the colour of its value.
#include <memory>
#include <vector>

#include "suite/graphic/bm_pixel_map.h"
#include "suite/graphic/cm_palette.h"
#include "suite/graphic/gr_stroke.h"

template <typename P>
class GR_Bitmap2Vector {
public:
    using Map = BM_PixelMap<P>;

    // `marks`, when given, is reused across runs (it is resized as needed);
    // otherwise the follower keeps its own.
    GR_Bitmap2Vector(Map &source, const CColorList &colors, BM_MarkMap *marks = nullptr);
    virtual ~GR_Bitmap2Vector() = default;

    // Restricts the next run to the box of pixels [x0, x1) x [y0, y1), grown
    // by two pixels.
    void setModifiedBox(int x0, int y0, int x1, int y1);
    // Added to every point: where pixel (0, 0) of the source lies.
    void setOrigin(double x, double y) { originX_ = x, originY_ = y; }

    // Clears the two outer rows and columns of the work box in the source,
    // then follows every outline inside it.
    std::vector<GR_StrokeData> run();

private:
    struct Pixel {
        int x, y;
    };
    struct Walk;

    unsigned value(Pixel p) const { return source_.get(p.x, p.y); }
    bool marked(Pixel p, int direction) const;
    void mark(Pixel p, int direction);
    void follow(Pixel a, Pixel b, int direction, std::vector<GR_StrokeData> &out);
    // Walks from the edge between a and b; true when it ended at a point
    // where three values meet.
    bool walk(Pixel a, Pixel b, int direction, bool reverse, Walk &points);
    void finish(const Walk &points, Pixel a, Pixel b, std::vector<GR_StrokeData> &out) const;

    Map &source_;
    const CColorList &colors_;
    std::unique_ptr<BM_MarkMap> ownMarks_;
    BM_MarkMap *marks_;
    bool restricted_ = false;
    int boxX0_ = 0, boxY0_ = 0, boxX1_ = 0, boxY1_ = 0;
    double originX_ = 0.0, originY_ = 0.0;
};

extern template class GR_Bitmap2Vector<BM_Pixel1>;
extern template class GR_Bitmap2Vector<BM_PixelBgr24>;
