#pragma once
// The shape of one pixel of the target picture, process-wide: 0 narrow,
// 1 square, 2 unset (not a value to set), 3 wide.
#include <cstdint>

enum PixelShape : int32_t {
    PIXEL_SHAPE_NARROW = 0,
    PIXEL_SHAPE_SQUARE = 1,
    PIXEL_SHAPE_UNSET = 2,
    PIXEL_SHAPE_WIDE = 3,
};

int32_t current_pixel_shape();
// Sets the current shape and the pixel aspect; Unset is refused.
void set_basic_pixel_shape(int32_t shape);
// The session's copy of the shape, always set together with the current one.
void set_session_pixel_shape(int32_t shape);
int32_t session_pixel_shape();
// Width over height of one pixel of the current shape.
double pixel_aspect();
