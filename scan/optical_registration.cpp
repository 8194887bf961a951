#include "scan/optical_registration.h"

#include <cmath>
#include <numbers>

#include "scan/locate_pegs.h"
#include "suite/base/assertion.h"

namespace {

// The grey levels of any leaf: a Matte8 leaf as it is, another kind through
// its grey conversion, null for a kind without one.
UT_SharePtr<const CEL_PixmapMatte8> matte8_of(const CEL_PixmapPtr &pixmap) {
    const CEL_Pixmap *leaf = pixmap.get();
    if (const auto *m8 = dynamic_cast<const CEL_PixmapMatte8 *>(leaf)) return UT_SharePtr<const CEL_PixmapMatte8>(m8);
    if (const auto *c8 = dynamic_cast<const CEL_PixmapRGBA8 *>(leaf))
        return UT_SharePtr<const CEL_PixmapMatte8>(new CEL_PixmapMatte8(*c8));
    if (const auto *c16 = dynamic_cast<const CEL_PixmapRGBA16 *>(leaf))
        return UT_SharePtr<const CEL_PixmapMatte8>(new CEL_PixmapMatte8(*c16));
    if (const auto *m16 = dynamic_cast<const CEL_PixmapMatte16 *>(leaf))
        return UT_SharePtr<const CEL_PixmapMatte8>(new CEL_PixmapMatte8(*m16));
    return {};
}

}  // namespace

bool optical_registration(const CEL_PixmapPtr &pixmap, float *x, float *y, float *angle, double threshold, int dpi,
                          int side, double rmargin, double pegpitch, double looseness, int strict) {
    PegRegistrationOptions options;
    options.threshr = threshold;
    options.dpi = static_cast<double>(dpi);
    options.rmargin = rmargin;
    options.side = side;
    options.strict = strict;
    options.looseness = looseness;
    options.pegpitch = pegpitch;
    options.rdebug = false;
    return optical_registration(pixmap, options, x, y, angle);
}

bool optical_registration(const CEL_PixmapPtr &pixmap, const PegRegistrationOptions &options, float *x, float *y,
                          float *angle) {
    LMV_ASSERT_RET(x != nullptr && y != nullptr && angle != nullptr, false);
    if (!pixmap) return false;
    const UT_SharePtr<const CEL_PixmapMatte8> matte = matte8_of(pixmap);
    if (!matte) return false;

    // The holes are dark on light paper; the search looks for bright regions.
    const int width = matte->width(), height = matte->height();
    BM_GreyMap grey(width, height);
    for (int row = 0; row < height; ++row) {
        const uint8_t *from = matte->row(row);
        uint8_t *to = grey.row(row);
        for (int column = 0; column < width; ++column) to[column] = static_cast<uint8_t>(~from[column]);
    }

    *x = 0.0f;
    *y = 0.0f;
    *angle = 0.0f;
    Math::Point2d points[3];
    if (!locate_pegs(grey, options, points)) return false;
    const Math::Point2d &a = points[0], &c = points[1], &b = points[2];

    *x = static_cast<float>(c.x);
    *y = static_cast<float>(height - c.y);  // back to rows counted downward

    Math::Vector2d v = b - a;
    v.Normalize();
    float turn = (v.x == 0.0 && v.y == 0.0) ? 0.0f : static_cast<float>(std::atan2(v.y, v.x));
    // Each side's bar runs a→b in its own direction (left, up, down); bring
    // them all to 0 for a straight drawing. Float arithmetic on purpose: the
    // stored angle is a float and side 1 is left unwrapped near 0 or -2π.
    constexpr float kHalfPi = static_cast<float>(std::numbers::pi / 2.0);
    constexpr float kPi = static_cast<float>(std::numbers::pi);
    switch (options.side) {
    case 1: turn = turn - kPi; break;
    case 3: turn = turn - kHalfPi; break;
    case 4: turn = turn + kHalfPi; break;
    default: break;
    }
    *angle = turn;
    return true;
}

int registration_side_of_peg_side(int32_t peg_side) {
    switch (peg_side) {
    case 1: return 3;
    case 2: return 1;
    case 3: return 4;
    default: return 2;
    }
}
