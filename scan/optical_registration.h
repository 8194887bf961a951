#pragma once
// Optical registration of a scanned picture: where its centre peg hole is and
// how far the peg bar is turned.
#include <cstdint>

#include "scan/registration_options.h"
#include "suite/cel/cel_pixmap.h"

// x, y: the centre peg in image pixels (y from the first row down); angle in
// radians, counter-clockwise with y up, corrected for the side. False, with
// all three 0, when no single fit was found.
bool optical_registration(const CEL_PixmapPtr &pixmap, float *x, float *y, float *angle, double threshold, int dpi,
                          int side, double rmargin, double pegpitch, double looseness, int strict);

// The same with every option of the search given, round holes, calibration
// and traces included (the station itself searches with traces off).
bool optical_registration(const CEL_PixmapPtr &pixmap, const PegRegistrationOptions &options, float *x, float *y,
                          float *angle);

// The band a sheet's holes are searched in, by its peg side (1 left, 2 top,
// 3 right, 4 bottom): 3, 1, 4 and 2; a sheet without a side as bottom.
int registration_side_of_peg_side(int32_t peg_side);
