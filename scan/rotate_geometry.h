#pragma once
// The arithmetic of a rotation: quarter turns, canvas sizes, where the centre
// lands and the shift of each sheared line. Everything is float32 unless a
// comment says otherwise, so that results are the same on every machine.
#include <cstdint>

// The whole quarter turns taken out of an angle, and what remains.
struct QuarterTurn {
    int32_t turns = 0;     // 0 to 3 quarter turns anticlockwise
    float reduced = 0.0f;  // the rest, below 90 degrees
};
QuarterTurn quarter_turn_of_angle(float angle);

// Where the point (cx, cy) of a w x h part lands in its quarter-turned copy.
void turn_centre(int32_t turns, int32_t w, int32_t h, float *cx, float *cy);

// Sizes of the three shears for a w x h copy turned by `reduced` degrees.
struct ShearGeometry {
    int32_t w = 0, h = 0;    // the copy
    float a = 0.0f;          // radians
    float s = 0.0f, c = 0.0f, t = 0.0f;
    float q = 0.0f;          // h * t, the widest shift of the first pass
    int32_t w2 = 0, h2 = 0;  // the working canvas
    int32_t out_w = 0, out_h = 0;
};
ShearGeometry shear_geometry(int32_t w, int32_t h, float reduced);

// Moves the centre from the copy into the result.
void shear_centre(const ShearGeometry &g, float *cx, float *cy);

// How one line is shifted by v: whole pixels and the weights of the two taps.
struct ShearStep {
    int32_t off = 0;
    float wa = 1.0f;  // weight of the value read
    float wb = 0.0f;  // weight of the value before it
};
ShearStep shear_step(float v);

// The shift of each pass's line number.
float pass1_shift(const ShearGeometry &g, int32_t row);
float pass2_shift(const ShearGeometry &g, int32_t column);
float pass3_shift(const ShearGeometry &g, int32_t row);

// The part of a line that a pass reads and where it goes.
struct ShearLine {
    int32_t src_start = 0;
    int32_t count = 0;
    int32_t dst_start = 0;
};
// Pass 2 reads the columns of a canvas with h2 rows that holds h rows of picture.
ShearLine pass2_line(const ShearGeometry &g, int32_t off);
// Pass 3 reads the rows of a canvas w2 wide.
ShearLine pass3_line(const ShearGeometry &g, int32_t off);
