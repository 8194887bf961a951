#pragma once
// The field chart of the test scanner: peg holes, a grid and two arrow heads,
// white on black, at a field size and resolution, optionally skewed a little
// as a fed or optically registered sheet would be. The skew is chosen apart
// from the painting so that a caller can paint with a skew it knows.
#include <QImage>

#include <array>

#include <QRect>
#include <QSize>
#include <QTransform>

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

// Where the chart lands. It is painted in chart pixels (inches times the
// resolution, x along the peg bar, y down from the peg edge) onto a square
// sheet, in continuous coordinates where sheet pixel (i, j) covers
// [i, i + 1) x [j, j + 1); the sheet is then resampled to the image's size,
// which squeezes it across. The painter uses `chart_to_sheet` itself.
struct FieldChartPlacement {
    QTransform chart_to_sheet;
    int sheet_size = 0;  // the square sheet's side
    QSize image_size;    // the final picture, pegs on the left
    // The squeeze from the square sheet to the final picture.
    QTransform sheet_to_image() const;
    // chart_to_sheet followed by the squeeze.
    QTransform chart_to_image() const;
};
FieldChartPlacement placement_of_field_chart(double field, double dpi, bool skewed, double x_calibration,
                                             double y_calibration, const FieldChartSkew &skew);

// The round peg hole's bounding square, in chart pixels; the hole is painted
// as exactly this filled circle, without an outline.
QRect centre_hole_of_field_chart(double field, double dpi, bool skewed);

// The bounding rectangles of the two slots, left then right, in chart pixels;
// painted as filled rounded rectangles, without an outline.
std::array<QRect, 2> slots_of_field_chart(double field, double dpi, bool skewed);

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
