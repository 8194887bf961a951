#pragma once
// The field chart of the test scanner: peg holes, a grid and two arrow heads,
// white on black, at a field size and resolution, optionally skewed a little
// as a fed or optically registered sheet would be. The skew is chosen apart
// from the painting so that a caller can paint with a skew it knows.
#include <QImage>

struct FieldChartSkew {
    double x_offset = 0.0;  // inches
    double y_offset = 0.0;  // inches
    double rotation = 0.0;  // degrees
};

// The skew of one scan. Unskewed is no skew at all; skewed is a fresh random
// draw (the generator is seeded from the time on the first draw of the run):
// up to a degree of rotation, an eighth of an inch sideways, a little up or
// down. A file "DUMMY_XYR_OFFSET_FILE" in the current directory, holding
// "x,y,r", overrides either. Both report the result on the standard error.
FieldChartSkew skew_of_field_chart(bool skewed);

// Paints the chart of `field` inches at `dpi` with the given skew. `skewed`
// widens the sheet by an inch and moves the chart half an inch in, to leave
// room for the skew. Calibrations other than 1.0 scale the chart and give it
// a five-inch margin (a calibration below 1.0). The chart is drawn turned a
// quarter, pegs on the left: the result is trunc((field + 2 + margin) * 0.75 *
// dpi) pixels wide and trunc((skewed + field + margin) * dpi) pixels high.
QImage paint_field_chart(double field, double dpi, bool skewed, double x_calibration, double y_calibration,
                         const FieldChartSkew &skew);

// skew_of_field_chart and paint_field_chart together: one scan's chart.
QImage make_field_chart(double field, double dpi, bool skewed, double x_calibration, double y_calibration);
