#include "scan/pixmap_rotate.h"

#include <numbers>
#include <utility>

#include "scan/pixmap_pixmap.h"
#include "scan/rotate_copy.h"
#include "scan/rotate_geometry.h"
#include "scan/rotate_shear.h"
#include "suite/base/assertion.h"
#include "suite/base/lmv_trace.h"

namespace {

// The rotated part, inclusive on all sides.
struct Part {
    int32_t x0, x1, y0, y1;
};

int32_t limited(int32_t v, int32_t hi)
{
    if (v > hi)
        v = hi;
    return v < 0 ? 0 : v;
}

// Cuts the part down to a width x height picture. A right edge beyond the
// picture moves the left edge to the last column and stays where it is;
// every caller passes the whole picture, so this has never been evened out.
Part limit_part(Part p, int32_t width, int32_t height)
{
    p.y0 = limited(p.y0, height - 1);
    p.y1 = limited(p.y1, height - 1);
    p.x0 = limited(p.x0, width - 1);
    if (p.x1 < 0)
        p.x1 = 0;
    if (p.x1 > width - 1)
        p.x0 = width - 1;
    return p;
}

template <class P>
using SetPixels = void (*)(LMV_pixmap *, std::unique_ptr<P[]>, int32_t, int32_t, uint8_t);

// The rotation of one pixel kind; `leaf` is the filled slot.
template <class Leaf, class P = typename Leaf::Pixel>
void rotate_kind(LMV_pixmap *pixmap, int32_t kind, const UT_SharePtr<Leaf> &leaf, float angle, float *cx,
                 float *cy, const Part &part, const P &background, SetPixels<P> set_pixels)
{
    LMV_ASSERT_VOID(type_of_pixmap(pixmap) == kind);
    LMV_ASSERT_VOID(angle > 0.0f && angle < 360.0f);
    int32_t w = part.x1 - part.x0 + 1;
    int32_t h = part.y1 - part.y0 + 1;
    LMV_ASSERT_VOID(w >= 1 && h >= 1);

    *cx -= float(part.x0);
    *cy -= float(part.y0);
    PixelView<P> view = view_of_part(leaf->data(), leaf->width(), leaf->height(), part.x0, part.y0, w, h);

    const QuarterTurn turn = quarter_turn_of_angle(angle);
    turn_centre(turn.turns, w, h, cx, cy);
    std::unique_ptr<P[]> turned;
    // Without a quarter turn the shears read the part where it is.
    if (turn.turns != 0) {
        turned = turned_copy(view.data, view.stride, w, h, turn.turns);
        if (turn.turns % 2)
            std::swap(w, h);
        view = {turned.get(), size_t(w), nullptr};
    }

    const ShearGeometry g = shear_geometry(w, h, turn.reduced);
    if (g.a == 0.0f) {
        if (!turned)
            turned = turned_copy(view.data, view.stride, w, h, 0);
        set_pixels(pixmap, std::move(turned), w, h, 1);
        return;
    }
    shear_centre(g, cx, cy);
    auto out = std::make_unique_for_overwrite<P[]>(size_t(g.out_w) * size_t(g.out_h));
    shear_pixels(g, view.data, view.stride, background, out.get());
    set_pixels(pixmap, std::move(out), g.out_w, g.out_h, 1);
}

} // namespace

void rotate_LMV_pixmap(LMV_pixmap *pixmap, float angle, float *cx, float *cy, int32_t x0, int32_t x1, int32_t y0,
                       int32_t y1, const uint8_t *background)
{
    LMV_trace("In rotate_LMV_pixmap.\n");
    if (angle == 0.0f) {
        LMV_trace("Out rotate_LMV_pixmap (bail - rotate is no-op).\n");
        return;
    }
    LMV_ASSERT_VOID(pixmap != nullptr);
    LMV_ASSERT_VOID(cx != nullptr);
    LMV_ASSERT_VOID(cy != nullptr);

    const Part part = limit_part({x0, x1, y0, y1}, width_of_pixmap(pixmap), height_of_pixmap(pixmap));
    const auto channel = [background](int c) { return background ? background[c] : uint8_t(0); };
    switch (type_of_pixmap(pixmap)) {
    case PIXMAP_RGBA16: {
        // An 8-bit background is widened as the 16-bit kernels have always
        // taken it: shifted left by 7.
        const CEL_RGBA16Pixel bg{uint16_t(channel(0) << 7), uint16_t(channel(1) << 7), uint16_t(channel(2) << 7),
                                 uint16_t(channel(3) << 7)};
        rotate_kind(pixmap, PIXMAP_RGBA16, rgba16_of_pixmap(pixmap), angle, cx, cy, part, bg, &set_rgba16_of_pixmap);
        break;
    }
    case PIXMAP_RGBA8: {
        const CEL_RGBA8Pixel bg{channel(0), channel(1), channel(2), channel(3)};
        rotate_kind(pixmap, PIXMAP_RGBA8, rgba8_of_pixmap(pixmap), angle, cx, cy, part, bg, &set_rgba8_of_pixmap);
        break;
    }
    case PIXMAP_MATTE16:
        rotate_kind(pixmap, PIXMAP_MATTE16, matte16_of_pixmap(pixmap), angle, cx, cy, part, uint16_t(0),
                    &set_matte16_of_pixmap);
        break;
    case PIXMAP_MATTE8:
        rotate_kind(pixmap, PIXMAP_MATTE8, matte8_of_pixmap(pixmap), angle, cx, cy, part, uint8_t(0),
                    &set_matte8_of_pixmap);
        break;
    default:
        break;
    }
    LMV_trace("Out rotate_LMV_pixmap.\n");
}

float rotation_angle_from_radians(double radians)
{
    const float d = float(radians / std::numbers::pi * 180.0);
    return d < 0.0f ? -d : 360.0f - d;
}
