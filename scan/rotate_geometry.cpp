#include "scan/rotate_geometry.h"

#include <algorithm>
#include <cmath>

QuarterTurn quarter_turn_of_angle(float angle)
{
    // The subtraction in double, narrowed once, keeps the remainder exact.
    const auto minus = [angle](double by) { return float(double(angle) - by); };
    if (angle < 90.0f)
        return {0, angle};
    if (angle < 180.0f)
        return {1, minus(90.0)};
    if (angle < 270.0f)
        return {2, minus(180.0)};
    return {3, minus(270.0)};
}

void turn_centre(int32_t turns, int32_t w, int32_t h, float *cx, float *cy)
{
    const float x = *cx, y = *cy;
    switch (turns) {
    case 1:
        *cx = y;
        *cy = float(w - 1) - x;
        break;
    case 2:
        *cx = float(w - 1) - x;
        *cy = float(h - 1) - y;
        break;
    case 3:
        // One pixel off the mirror of the quarter turn; results elsewhere
        // were measured with these values, so they stay.
        *cx = float(h) - y;
        *cy = x - 1.0f;
        break;
    default:
        break;
    }
}

ShearGeometry shear_geometry(int32_t w, int32_t h, float reduced)
{
    ShearGeometry g;
    g.w = w;
    g.h = h;
    g.a = reduced * 0.017453292f;
    g.s = std::sin(g.a);
    g.c = std::cos(g.a);
    g.t = float(std::tan(double(g.a) * 0.5));

    const float fw = float(w), fh = float(h);
    const float ws = fw * g.s, hc = fh * g.c;
    g.h2 = int32_t(std::max({ws + 1.0f, hc + 1.0f, fh, ws + hc + 1.0f}));

    g.q = fh * g.t;
    const float last_s = float(w - 1) * g.s;
    g.w2 = int32_t(std::max({(float(g.h2) - last_s) * g.t + g.q + fw, g.q + 1.0f, fw + 1.0f, g.q + fw + 1.0f}));

    const float e = (fh + (ws - (g.q + fw) * g.s) - last_s) * g.t + (g.q + fw) - 1.0f;
    const float f = ws - g.q * g.s + fh - 1.0f;
    // The result is cut from the canvas's corner; it never reaches past it.
    g.out_w = std::clamp(int32_t(std::floor(e + 0.5f)), 0, g.w2);
    g.out_h = std::clamp(int32_t(std::floor(f + 0.5f)), 0, g.h2);
    return g;
}

void shear_centre(const ShearGeometry &g, float *cx, float *cy)
{
    const float u = *cy * g.t + *cx;
    *cy = float(g.w) * g.s - u * g.s + *cy;
    *cx = (*cy - float(g.w - 1) * g.s) * g.t + u;
}

ShearStep shear_step(float v)
{
    ShearStep step;
    step.off = int32_t(std::floor(v));
    step.wa = std::ceil(v) - v;
    if (step.wa == 0.0f)
        step.wa = 1.0f;
    step.wb = float(1.0 - double(step.wa));
    return step;
}

float pass1_shift(const ShearGeometry &g, int32_t row) { return float(row) * g.t; }

float pass2_shift(const ShearGeometry &g, int32_t column) { return float(g.w - 1 - column) * g.s; }

float pass3_shift(const ShearGeometry &g, int32_t row) { return (float(row) - float(g.w - 1) * g.s) * g.t; }

ShearLine pass2_line(const ShearGeometry &g, int32_t off)
{
    // Shifted up, the line loses its top rows and, as it always has, its last
    // row of picture; shifted down, it runs to the bottom of the canvas.
    if (off < 0)
        return {-off, g.h - 1 + off, 0};
    return {0, g.h2 - off, off};
}

ShearLine pass3_line(const ShearGeometry &g, int32_t off)
{
    if (off < 0)
        return {-off, g.w2 - 1 + off, 0};
    return {0, g.w2 - off, off};
}
