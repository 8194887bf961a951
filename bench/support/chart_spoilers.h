#pragma once
// Ways to spoil a painted field chart before it is scanned, as paper and
// scanners do, and skews that push the holes against the end of the band
// that registration searches. Charts are white on black (the holes white):
// whatever is white here scans dark.
#include <QImage>

#include <cstdint>

#include "support/registration_accuracy.h"

namespace regacc {

// Adds normally distributed grey noise of `sigma` levels to every pixel.
void add_grey_noise(QImage &chart, double sigma, uint32_t seed);

// Scatters `specks` round specks of dust 0.004 to 0.012 inch across: half
// anywhere in the peg band, half close around the peg holes (0.02 to 0.1
// inch from their edges), where they may touch a hole.
void add_dust(QImage &chart, const ChartSheet &sheet, int specks, uint32_t seed);

// A box blur of (2 radius + 1) pixels square.
void box_blur(QImage &chart, int radius);

enum class Hole { Centre, Side };

// The sheet's skew with its y offset changed so that the deepest point of
// the centre hole, or of the deeper slot, lies `overshoot` pixels beyond the
// end of the one-inch band that is searched (negative: short of it).
FieldChartSkew skew_at_band_end(const ChartSheet &sheet, Hole hole, double overshoot);

}  // namespace regacc
