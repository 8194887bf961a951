#pragma once
// Turning a scanned picture by any angle: whole quarter turns as a copy, the
// rest of less than 90 degrees by three shears with linear interpolation.
#include <cstdint>

struct LMV_pixmap;

// Turns the part x0..x1, y0..y1 (inclusive) of `pixmap` by `angle` degrees
// (0 < angle < 360; exactly 0 does nothing) and replaces the pixmap's data by
// the result. (`cx`, `cy`) is a point of the source on entry and the same point
// in the result on return. `background` is the colour (4 bytes) of the
// uncovered corners of an RGBA picture, or null for 0.
void rotate_LMV_pixmap(LMV_pixmap *pixmap, float angle, float *cx, float *cy, int32_t x0, int32_t x1,
                       int32_t y0, int32_t y1, const uint8_t *background);

// The angle that the scan loop passes for a turn measured in radians.
float rotation_angle_from_radians(double radians);
