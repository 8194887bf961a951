#pragma once
// Optical registration of a scanned picture: where its centre peg hole is and
// how far the peg bar is turned.
#include "suite/cel/cel_pixmap.h"

// x, y: the centre peg in image pixels (y from the first row down); angle in
// radians, counter-clockwise with y up, corrected for the side. False, with
// all three 0, when no single fit was found.
bool optical_registration(const CEL_PixmapPtr &pixmap, float *x, float *y, float *angle, double threshold, int dpi,
                          int side, double rmargin, double pegpitch, double looseness, int strict);
