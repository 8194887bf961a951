#pragma once
// How well optical registration finds the test scanner's field chart: the
// chart is painted with a skew we choose, scanned as the test scanner would
// send it, registered as the station does, and compared with where the
// painting put the centre peg hole and the peg bar.
#include <QImage>
#include <QPointF>

#include <cstdint>

#include "scan/drivers/bogus_field_chart.h"
#include "suite/cel/cel_pixmap.h"

namespace regacc {

// One sheet as the test scanner paints it for a fed or optically registered
// drawing (the widened sheet), with a skew of our choosing.
struct ChartSheet {
    double field = 12.0;  // inches
    int dpi = 300;
    FieldChartSkew skew;
};

QImage paint_sheet(const ChartSheet &sheet);

// The same sheet made the way a scan makes it: the skew is read from a file
// "DUMMY_XYR_OFFSET_FILE" holding "x,y,r", written to a fresh temporary
// directory that is the current directory for the call. The chart unit's
// messages on the standard error are swallowed. Null when the directory
// can't be made.
QImage sheet_through_offset_file(const ChartSheet &sheet);

// Where the centre peg hole and the bar lie in the stored picture of a peg
// side (1 left, 2 top, 3 right, 4 bottom).
struct ChartTruth {
    QPointF centre;      // in pixel indices, as registration reports it
    double angle = 0.0;  // radians, counter-clockwise with y up; 0 when straight
};
ChartTruth truth_of_sheet(const ChartSheet &sheet, int32_t peg_side);

// The same measured on the painted pixels instead of the chart's geometry:
// the mean of the chart's pixels around the centre hole, each weighted by its
// whiteness, and the bar from one slot's weighted mean to the other's. The
// painting's sampling moves these from the geometry by a small fraction of a
// pixel; a clean `chart` of `sheet` only.
ChartTruth painted_truth_of_sheet(const QImage &chart, const ChartSheet &sheet, int32_t peg_side);

// The depth of the test scan. A colour scan of the chart carries the
// scanner's colour ramp, so its holes are not uniformly dark.
enum class Depth { Grey, Colour };

// The picture as the station stores it: `chart` (a painted sheet, possibly
// spoiled afterwards) turned into a Bogus-Color scan of that depth and peg
// side, through the band loader in the driver's pieces. The driver's
// messages on the standard output are swallowed.
CEL_PixmapPtr scan_sheet(const QImage &chart, const ChartSheet &sheet, int32_t peg_side, Depth depth);

struct Registration {
    bool found = false;
    float x = 0.0f, y = 0.0f, angle = 0.0f;
};

// optical_registration with the station's settings for a drawing without a
// threshold: threshold 0.5, a margin of an inch, pitch 8, strict.
Registration register_as_station(const CEL_PixmapPtr &picture, int dpi, int32_t peg_side);

struct RegistrationError {
    bool registered = false;
    double angle_degrees = 0.0;  // |found - true|, whole turns apart counted as equal
    double centre_pixels = 0.0;  // distance from the true centre
};
RegistrationError error_of(const Registration &found, const ChartTruth &truth);

// scan_sheet, register_as_station and error_of in one.
RegistrationError measure_sheet(const QImage &chart, const ChartSheet &sheet, int32_t peg_side,
                                Depth depth = Depth::Grey);

}  // namespace regacc
