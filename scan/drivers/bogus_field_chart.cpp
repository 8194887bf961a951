#include "scan/drivers/bogus_field_chart.h"

#include <QPainter>
#include <QPen>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>

namespace {

struct FileCloser {
    void operator()(std::FILE *f) const { std::fclose(f); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

// One draw in [0, 1], in 1/32767 steps. Seeded once per run so that two runs
// skew differently but a run can be followed by its log.
double uniform_draw() {
    static const bool seeded = (std::srand(static_cast<unsigned>(std::time(nullptr))), true);
    (void)seeded;
    return (std::rand() & 32767) / 32767.0;
}

// Inches to whole pixels, truncated as the chart's geometry is defined.
struct Pixels {
    double dpi;
    int operator()(double inches) const { return static_cast<int>(inches * dpi); }
};

// The skewed sheet's chart is moved half an inch in, to leave room for the skew.
double margin_of(bool skewed) { return skewed ? 0.5 : 0.0; }

void paint_chart(QPainter &p, double F, double D, bool skewed) {
    const Pixels px{D};
    const double M = margin_of(skewed);
    const double T = 0.75;
    const double centre = F / 2 + M;

    // Peg holes: the round one in the middle, the slots four inches either side.
    // Filled without an outline: an aliased one-pixel outline is not centred on
    // the shape's edge and would move the holes by a fraction of a pixel.
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawEllipse(centre_hole_of_field_chart(F, D, skewed));
    for (const QRect &slot : slots_of_field_chart(F, D, skewed)) p.drawRoundedRect(slot, 40, 40);

    p.setPen(QPen(Qt::white, D / 30));
    const double top = T + 0.375;
    const double bottom = top + 0.75 * F;
    for (int i = 0; i <= F; ++i)
        p.drawLine(px(centre + 0.5 * i), px(top), px(centre + 0.5 * i), px(bottom));
    for (int i = 1; i <= F; ++i)
        p.drawLine(px(centre - 0.5 * i), px(top), px(centre - 0.5 * i), px(bottom));
    for (int i = 0; i <= 2 * F; ++i) {
        const double y = top + 0.375 * i;
        p.drawLine(px(M), px(y), px(M + F), px(y));
    }
    p.drawLine(px(M), px(top), px(M + F), px(bottom));
    p.drawLine(px(M), px(bottom), px(M + F), px(top));

    // Arrow heads pointing out along the centre line, the right one marked by
    // a black dot just beyond its point.
    const double Y = 0.375 * F + 0.375 + T;
    const double left_point = centre - 4;
    const double right_point = centre + 4;
    p.drawLine(px(left_point), px(Y), px(left_point + 0.25), px(Y - 0.25));
    p.drawLine(px(left_point), px(Y), px(left_point + 0.25), px(Y + 0.25));
    p.drawLine(px(right_point), px(Y), px(right_point - 0.25), px(Y - 0.25));
    p.drawLine(px(right_point), px(Y), px(right_point - 0.25), px(Y + 0.25));
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::black);
    p.drawEllipse(QRect(px(right_point), px(Y - 0.125), px(0.25), px(0.25)));
}

}  // namespace

FieldChartSkew skew_of_field_chart(bool skewed) {
    FieldChartSkew s;
    if (skewed) {
        const double a = uniform_draw();
        const double b = uniform_draw();
        const double c = uniform_draw();
        s.rotation = 2 * a - 1;
        s.x_offset = (2 * b - 1) * 0.125;
        s.y_offset = c * 0.175 - 0.125;
    }
    if (FilePtr f{std::fopen("DUMMY_XYR_OFFSET_FILE", "r")}) {
        std::fprintf(stderr, "DUMMY_XYR_OFFSET_FILE opened\n");
        // A short file overrides what it holds and leaves the rest.
        const int read = std::fscanf(f.get(), "%lf,%lf,%lf", &s.x_offset, &s.y_offset, &s.rotation);
        (void)read;
        std::fprintf(stderr, "xoff:%g, yoff:%g, roff:%g\n", s.x_offset, s.y_offset, s.rotation);
    }
    std::fprintf(stderr, "xoff:%g, yoff:%g, roff:%g\n", s.x_offset, s.y_offset, s.rotation);
    return s;
}

QTransform FieldChartPlacement::sheet_to_image() const {
    if (sheet_size <= 0) return QTransform();
    return QTransform::fromScale(double(image_size.width()) / sheet_size, double(image_size.height()) / sheet_size);
}

QTransform FieldChartPlacement::chart_to_image() const { return chart_to_sheet * sheet_to_image(); }

FieldChartPlacement placement_of_field_chart(double field, double dpi, bool skewed, double x_calibration,
                                             double y_calibration, const FieldChartSkew &skew) {
    const double E = (x_calibration < 1.0 || y_calibration < 1.0) ? 5.0 : 0.0;
    const int W = static_cast<int>(((skewed ? 1 : 0) + field + E) * dpi);
    const int H = static_cast<int>((field + 2 + E) * 0.75 * dpi);
    FieldChartPlacement placement;
    placement.sheet_size = W;
    // The chart stands in landscape on its peg side: W and H change places.
    placement.image_size = QSize(H, W);
    QTransform &t = placement.chart_to_sheet;
    const bool unscaled =
        (x_calibration == 1.0 && y_calibration == 1.0) || x_calibration == 0.0 || y_calibration == 0.0;
    if (!unscaled) {
        // The chart is turned a quarter below, so the horizontal calibration
        // acts on the painter's vertical.
        t.scale(1.0 / y_calibration, 1.0 / x_calibration);
        t.translate(dpi * E * 0.5, -E * dpi);
    }
    t.rotate(skew.rotation - 90.0);
    t.translate(skew.x_offset * dpi - W, std::trunc(skew.y_offset * dpi));
    return placement;
}

QRect centre_hole_of_field_chart(double field, double dpi, bool skewed) {
    const Pixels px{dpi};
    const double M = margin_of(skewed);
    return QRect(px(field / 2 + M - 0.125), px(0.25), px(0.25), px(0.25));
}

std::array<QRect, 2> slots_of_field_chart(double field, double dpi, bool skewed) {
    const Pixels px{dpi};
    const double M = margin_of(skewed);
    std::array<QRect, 2> rects;
    const double lefts[] = {(field - 8) / 2 + M - 0.35, (field + 8) / 2 + M - 0.35};
    for (size_t k = 0; k < rects.size(); ++k) rects[k] = QRect(px(lefts[k]), px(0.305), px(0.7), px(0.14));
    return rects;
}

QImage paint_field_chart(double field, double dpi, bool skewed, double x_calibration, double y_calibration,
                         const FieldChartSkew &skew) {
    const FieldChartPlacement placement =
        placement_of_field_chart(field, dpi, skewed, x_calibration, y_calibration, skew);
    const int W = placement.sheet_size;
    if (W <= 0 || placement.image_size.isEmpty()) return QImage();

    // Grey is enough for white on black, and a quarter of the memory of RGB
    // on a sheet that is painted square before it is scaled.
    QImage sheet(W, W, QImage::Format_Grayscale8);
    if (sheet.isNull()) return QImage();
    sheet.fill(Qt::black);
    {
        QPainter p(&sheet);
        p.setRenderHint(QPainter::Antialiasing);
        p.setWorldTransform(placement.chart_to_sheet);
        paint_chart(p, field, dpi, skewed);
    }
    // Smooth edges, as a real scan has: a hole's centre then lies where the
    // chart puts it to a small fraction of a pixel, which the registration
    // accuracy figures depend on. Black and white scans threshold them away.
    return sheet.scaled(placement.image_size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage make_field_chart(double field, double dpi, bool skewed, double x_calibration, double y_calibration) {
    return paint_field_chart(field, dpi, skewed, x_calibration, y_calibration, skew_of_field_chart(skewed));
}
